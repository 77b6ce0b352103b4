#pragma once

#include <InterfaceDefs.h>
#include <Looper.h>

class BBitmap;
class BView;

namespace BPrivate {
struct WindowData;
}

enum window_type {
	B_UNTYPED_WINDOW = 0,
	B_TITLED_WINDOW = 1,
	B_MODAL_WINDOW = 3,
	B_DOCUMENT_WINDOW = 11,
	B_BORDERED_WINDOW = 20,
	B_FLOATING_WINDOW = 21,
};

//! What the border looks like is the desktop's affair; the look says which parts there are.
enum window_look {
	B_BORDERED_WINDOW_LOOK = 20,
	B_NO_BORDER_WINDOW_LOOK = 19,
	B_TITLED_WINDOW_LOOK = 1,
	B_DOCUMENT_WINDOW_LOOK = 11,
	B_MODAL_WINDOW_LOOK = 3,
	B_FLOATING_WINDOW_LOOK = 7,
};

/*!	B_FLOATING_ALL_WINDOW_FEEL is above all other windows of the desktop; the other floating feels
	are too, as the desktop knows no "above this application's windows". The modal feels keep the
	application's other windows from input while the window is shown. */
enum window_feel {
	B_NORMAL_WINDOW_FEEL = 0,
	B_MODAL_SUBSET_WINDOW_FEEL = 2,
	B_MODAL_APP_WINDOW_FEEL = 1,
	B_MODAL_ALL_WINDOW_FEEL = 3,
	B_FLOATING_SUBSET_WINDOW_FEEL = 5,
	B_FLOATING_APP_WINDOW_FEEL = 4,
	B_FLOATING_ALL_WINDOW_FEEL = 6,
};

// Flags of a window.
enum {
	B_NOT_MOVABLE = 0x00000001,
	B_NOT_CLOSABLE = 0x00000020,
	B_NOT_ZOOMABLE = 0x00000040,
	B_NOT_MINIMIZABLE = 0x00004000,
	B_NOT_RESIZABLE = 0x00000002,
	B_NOT_H_RESIZABLE = 0x00000004,
	B_NOT_V_RESIZABLE = 0x00000008,
	//! The window opens without being made active; the user may activate it.
	B_AVOID_FRONT = 0x00000080,
	//! The window never gets the focus.
	B_AVOID_FOCUS = 0x00002000,
	B_WILL_ACCEPT_FIRST_CLICK = 0x00000010,
	B_NO_WORKSPACE_ACTIVATION = 0x00000100,
	B_ASYNCHRONOUS_CONTROLS = 0x00080000,
	//! The application is asked to quit when the window does.
	B_QUIT_ON_WINDOW_CLOSE = 0x00100000,
	B_AUTO_UPDATE_SIZE_LIMITS = 0x00400000,
	//! The Escape key asks the window to quit.
	B_CLOSE_ON_ESCAPE = 0x00800000,
};

#define B_CURRENT_WORKSPACE 0
#define B_ALL_WORKSPACES 0xffffffff

/*!	A window of the desktop and the looper that runs it.
	Thread: its own, which Show() starts; everything but the constructor, Show() and posting
	messages needs the lock (the constructor leaves it locked until the first Show()). Owner:
	itself; Quit() deletes it, and its views with it.
	Frame() and Title() are what this side knows, without asking the server: Frame() changes with
	MoveTo() and ResizeTo() at once, and with what the user does when B_WINDOW_MOVED or
	B_WINDOW_RESIZED is dispatched. The close button posts a B_QUIT_REQUESTED with an int64 "when",
	which one from the application has not. */
class BWindow : public BLooper {
public:
	/*!	`frame` is that of the content, in screen coordinates; `workspaces` B_ALL_WORKSPACES or
		anything else for the current one. */
	BWindow(BRect frame, const char* title, window_type type, uint32 flags,
		uint32 workspaces = B_CURRENT_WORKSPACE);
	BWindow(BRect frame, const char* title, window_look look, window_feel feel, uint32 flags,
		uint32 workspaces = B_CURRENT_WORKSPACE);
	//! With the views of the archive; hidden, like any new window.
	explicit BWindow(BMessage* data);
	~BWindow() override;

	static BArchivable* Instantiate(BMessage* data);
	//! `deep`: with the views.
	status_t Archive(BMessage* data, bool deep = true) const override;

	void Quit() override;
	void DispatchMessage(BMessage* message, BHandler* target) override;
	void MessageReceived(BMessage* message) override;
	BHandler* ResolveSpecifier(BMessage* message, int32 index, BMessage* specifier, int32 form,
		const char* property) override;
	status_t GetSupportedSuites(BMessage* data) override;

	virtual void FrameMoved(BPoint newPosition);
	virtual void FrameResized(float newWidth, float newHeight);
	virtual void WindowActivated(bool active);
	virtual void ScreenChanged(BRect screenSize, color_space depth);
	//! Also the hook that is called when the user minimises the window or brings it back.
	virtual void Minimize(bool minimize);
	/*!	Hide() and Show() are counted: after two Hide() it takes two Show(). A new window is hidden
		once. */
	virtual void Show();
	virtual void Hide();

	bool IsHidden() const;
	bool IsMinimized() const;
	void Activate(bool activate = true);
	bool IsActive() const;
	/*!	No other window of the application is in front of it, as far as the desktop tells: it was
		the last to be active. */
	bool IsFront() const;

	//! The content, in screen coordinates. Any thread that knows the window to exist.
	BRect Frame() const;
	BRect Bounds() const;
	//! With the border; equal to Frame() until the desktop has put one around the window.
	BRect DecoratorFrame() const;
	void MoveTo(BPoint where);
	void MoveTo(float x, float y);
	void MoveBy(float dh, float dv);
	//! Within the size limits. Widths and heights are right - left and bottom - top.
	void ResizeTo(float width, float height);
	void ResizeBy(float dh, float dv);
	void SetSizeLimits(float minWidth, float maxWidth, float minHeight, float maxHeight);
	void GetSizeLimits(float* minWidth, float* maxWidth, float* minHeight, float* maxHeight) const;
	//! To the middle of its screen.
	void CenterOnScreen();

	const char* Title() const;
	void SetTitle(const char* title);
	window_look Look() const;
	status_t SetLook(window_look look);
	window_feel Feel() const;
	/*!	Takes effect on a visible window without hiding it. B_BAD_VALUE for a number that is no
		feel. */
	status_t SetFeel(window_feel feel);
	uint32 Flags() const;
	status_t SetFlags(uint32 flags);

	void AddChild(BView* child, BView* before = NULL);
	bool RemoveChild(BView* child);
	int32 CountChildren() const;
	BView* ChildAt(int32 index) const;
	BView* FindView(const char* name) const;
	//! The topmost view at a point of the window, NULL outside of all.
	BView* FindView(BPoint point) const;
	BView* CurrentFocus() const;

	/*!	A key that, with Command and `modifiers`, posts `message` (owned by the window) to it, or to
		`target`. B_MENU_KEY and others do not count. */
	void AddShortcut(uint32 key, uint32 modifiers, BMessage* message);
	void AddShortcut(uint32 key, uint32 modifiers, BMessage* message, BHandler* target);
	void RemoveShortcut(uint32 key, uint32 modifiers);

	BPoint ConvertToScreen(BPoint point) const;
	BPoint ConvertFromScreen(BPoint point) const;
	BRect ConvertToScreen(BRect rect) const;
	BRect ConvertFromScreen(BRect rect) const;

	/*!	Draws what waits to be drawn, now. Nothing while the window is hidden or updates are
		disabled. */
	void UpdateIfNeeded();
	void Flush() const;
	void Sync() const;
	//! Counted: between them nothing gets to the screen.
	void DisableUpdates();
	void EnableUpdates();

protected:
	void _BatchDone() override;

private:
	friend struct BPrivate::WindowData;
	explicit BWindow(BBitmap* offscreen);
	void Init(BRect frame, const char* title, window_look look, window_feel feel, uint32 flags,
		uint32 workspaces);

	BPrivate::WindowData* fData;
};
