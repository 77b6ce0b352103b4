#pragma once

#include <Font.h>
#include <Handler.h>
#include <InterfaceDefs.h>

class BBitmap;
class BCursor;
class BWindow;

namespace BPrivate {
struct ViewData;
}

enum { B_PRIMARY_MOUSE_BUTTON = 1, B_SECONDARY_MOUSE_BUTTON = 2, B_TERTIARY_MOUSE_BUTTON = 4 };

// "transit" of MouseMoved().
enum { B_ENTERED_VIEW = 0, B_INSIDE_VIEW, B_EXITED_VIEW, B_OUTSIDE_VIEW };

// SetEventMask() and SetMouseEventMask().
enum { B_POINTER_EVENTS = 0x00000001, B_KEYBOARD_EVENTS = 0x00000002 };
enum {
	B_LOCK_WINDOW_FOCUS = 0x00000001,
	B_SUSPEND_VIEW_FOCUS = 0x00000002,
	B_NO_POINTER_HISTORY = 0x00000004,
	B_FULL_POINTER_HISTORY = 0x00000008,
};

// Flags of a view.
const uint32 B_FULL_UPDATE_ON_RESIZE = 0x80000000;
const uint32 B_WILL_DRAW = 0x20000000;
const uint32 B_NAVIGABLE_JUMP = 0x08000000;
const uint32 B_FRAME_EVENTS = 0x04000000;
const uint32 B_NAVIGABLE = 0x02000000;

// Resizing modes: which edge of the parent each of the four edges (top, left, bottom, right, a
// nibble each) keeps its distance to.
const uint32 B_FOLLOW_NONE = 0;
const uint32 B_FOLLOW_LEFT = 0x0202;
const uint32 B_FOLLOW_RIGHT = 0x0404;
const uint32 B_FOLLOW_LEFT_RIGHT = 0x0204;
const uint32 B_FOLLOW_H_CENTER = 0x0505;
const uint32 B_FOLLOW_TOP = 0x1010;
const uint32 B_FOLLOW_BOTTOM = 0x3030;
const uint32 B_FOLLOW_TOP_BOTTOM = 0x1030;
const uint32 B_FOLLOW_V_CENTER = 0x5050;
const uint32 B_FOLLOW_ALL_SIDES = B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP_BOTTOM;
const uint32 B_FOLLOW_ALL = B_FOLLOW_ALL_SIDES;
const uint32 B_FOLLOW_LEFT_TOP = B_FOLLOW_LEFT | B_FOLLOW_TOP;

/*!	A rectangle of a window (or of a bitmap that accepts views) that draws and is told of the mouse
	and the keys.
	Thread: everything but the constructor needs the window locked once the view is in one. Owner:
	the parent or the window, which deletes it; a view without either belongs to whoever made it.
	Coordinates: a pixel is a whole number, and a rectangle takes in its right and bottom edge: (0,
	0, 9, 9) is 10 pixels wide.
	Drawing outside Draw() is allowed; it gets to the screen when the window has dealt with the
	messages it has, or by Flush() or Sync().
	Text that is no valid UTF-8 is drawn with replacement characters. */
class BView : public BHandler {
public:
	BView(BRect frame, const char* name, uint32 resizingMode, uint32 flags);
	//! With the children of the archive, whose classes are found by name.
	explicit BView(BMessage* data);
	BView(const BView&) = delete;
	BView& operator=(const BView&) = delete;
	//! Takes itself off its parent and deletes its children.
	~BView() override;

	static BArchivable* Instantiate(BMessage* data);
	//! `deep`: with the children.
	status_t Archive(BMessage* data, bool deep = true) const override;

	virtual void AttachedToWindow();
	virtual void AllAttached();
	virtual void DetachedFromWindow();
	virtual void AllDetached();
	virtual void Draw(BRect updateRect);
	virtual void FrameMoved(BPoint newPosition);
	virtual void FrameResized(float newWidth, float newHeight);
	virtual void MouseDown(BPoint where);
	virtual void MouseUp(BPoint where);
	/*!	`dragMessage`: the files (B_SIMPLE_DATA with "refs") that the pointer is dragging over the
		window, else NULL. A view that does not want them shows it by SetViewCursor(): see there. */
	virtual void MouseMoved(BPoint where, uint32 transit, const BMessage* dragMessage);
	virtual void KeyDown(const char* bytes, int32 numBytes);
	virtual void KeyUp(const char* bytes, int32 numBytes);
	virtual void WindowActivated(bool active);
	virtual void GetPreferredSize(float* width, float* height);
	virtual void ResizeToPreferred();
	virtual void MakeFocus(bool focus = true);
	virtual void Show();
	virtual void Hide();
	virtual void ScrollTo(BPoint where);
	virtual void SetFlags(uint32 flags);
	virtual void SetResizingMode(uint32 mode);
	virtual void SetViewColor(rgb_color color);
	virtual void SetHighColor(rgb_color color);
	virtual void SetLowColor(rgb_color color);
	virtual void SetFont(const BFont* font, uint32 mask = B_FONT_ALL);
	virtual void SetPenSize(float size);
	virtual void SetDrawingMode(drawing_mode mode);

	void MessageReceived(BMessage* message) override;
	BHandler* ResolveSpecifier(BMessage* message, int32 index, BMessage* specifier, int32 form,
		const char* property) override;
	status_t GetSupportedSuites(BMessage* data) override;

	//! `before` NULL: last, on top. The child must have no parent.
	void AddChild(BView* child, BView* before = NULL);
	//! The child then belongs to the caller. False if it is no child of this view.
	bool RemoveChild(BView* child);
	bool RemoveSelf();
	int32 CountChildren() const;
	BView* ChildAt(int32 index) const;
	BView* NextSibling() const;
	BView* PreviousSibling() const;
	BView* Parent() const;
	//! This view, or the first of its offspring, depth first, of that name.
	BView* FindView(const char* name) const;
	BWindow* Window() const;

	BRect Bounds() const;
	//! In the parent's coordinates.
	BRect Frame() const;
	BPoint LeftTop() const;
	void MoveTo(BPoint where);
	void MoveTo(float x, float y);
	void MoveBy(float dh, float dv);
	//! Width and height are right - left and bottom - top.
	void ResizeTo(float width, float height);
	void ResizeBy(float dh, float dv);
	void ScrollTo(float x, float y) { ScrollTo(BPoint(x, y)); }
	void ScrollBy(float dh, float dv);

	void ConvertToParent(BPoint* point) const;
	BPoint ConvertToParent(BPoint point) const;
	void ConvertFromParent(BPoint* point) const;
	BPoint ConvertFromParent(BPoint point) const;
	BRect ConvertToParent(BRect rect) const;
	BRect ConvertFromParent(BRect rect) const;
	void ConvertToScreen(BPoint* point) const;
	BPoint ConvertToScreen(BPoint point) const;
	void ConvertFromScreen(BPoint* point) const;
	BPoint ConvertFromScreen(BPoint point) const;
	BRect ConvertToScreen(BRect rect) const;
	BRect ConvertFromScreen(BRect rect) const;

	uint32 Flags() const;
	uint32 ResizingMode() const;
	bool IsFocus() const;
	//! The view's own, an ancestor's or the window's doing.
	bool IsHidden() const;
	//! With `lookingFrom`: as seen by that view, whose own state does not count.
	bool IsHidden(const BView* lookingFrom) const;

	//! Nothing is drawn at once: Draw() is called when the messages that wait have been dealt with.
	void Invalidate();
	void Invalidate(BRect rect);
	//! Puts what was drawn on the screen, complete, without waiting for it to be seen.
	void Flush() const;
	/*!	Like Flush(): the frame is given to the server when this returns, and later drawing cannot
		change it. In Draw(), a view may so show its picture and then go on to something else;
		unless more is drawn into the window, no other frame follows. */
	void Sync() const;

	/*!	Where the pointer is, in the view's coordinates, and its buttons. `checkMessageQueue`
		changes nothing: the answer is always of this moment. */
	void GetMouse(BPoint* where, uint32* buttons, bool checkMessageQueue = true);
	/*!	How the pointer looks over this view from now on, until the view leaves its window; without one, and for NULL,
		nothing happens. `sync`: the server knows it when this returns.
		While files are dragged over the view from another program, that program shows the pointer: one that is not
		allowed (B_CURSOR_ID_NOT_ALLOWED) makes the server refuse them, until there is another one. */
	void SetViewCursor(const BCursor* cursor, bool sync = true);
	status_t SetEventMask(uint32 mask, uint32 options = 0);
	uint32 EventMask();
	/*!	From MouseDown() only: the view gets these events, wherever the pointer is, until the last
		button is released. */
	status_t SetMouseEventMask(uint32 mask, uint32 options = 0);

	//! The red, green and blue of B_TRANSPARENT_COLOR: the view is never erased before Draw().
	rgb_color ViewColor() const;
	rgb_color HighColor() const;
	rgb_color LowColor() const;
	void SetViewColor(uchar red, uchar green, uchar blue, uchar alpha = 255);
	void SetHighColor(uchar red, uchar green, uchar blue, uchar alpha = 255);
	void SetLowColor(uchar red, uchar green, uchar blue, uchar alpha = 255);
	void GetFont(BFont* font) const;
	void SetFontSize(float size);
	void GetFontHeight(font_height* height) const;
	float StringWidth(const char* string) const;
	float StringWidth(const char* string, int32 length) const;
	float PenSize() const;
	/*!	B_OP_COPY (alpha does not count), B_OP_OVER and B_OP_ALPHA; any other is drawn like
		B_OP_COPY. */
	drawing_mode DrawingMode() const;
	//! Colours, font, pen and drawing mode; PopState() without PushState() does nothing.
	void PushState();
	void PopState();

	void MovePenTo(BPoint point);
	void MovePenTo(float x, float y);
	void MovePenBy(float dh, float dv);
	BPoint PenLocation() const;

	// The baseline begins at the pen, which then stands behind the text. Of very long text only the
	// beginning (see BFont::StringWidth()).
	void DrawString(const char* string);
	void DrawString(const char* string, BPoint location);
	void DrawString(const char* string, int32 length);
	void DrawString(const char* string, int32 length, BPoint location);

	// A pen of 1 covers exactly the pixels of the line, both ends included.
	void StrokeLine(BPoint to, ::pattern p = B_SOLID_HIGH);
	void StrokeLine(BPoint from, BPoint to, ::pattern p = B_SOLID_HIGH);
	void StrokeRect(BRect rect, ::pattern p = B_SOLID_HIGH);
	void FillRect(BRect rect, ::pattern p = B_SOLID_HIGH);
	void StrokeEllipse(BRect rect, ::pattern p = B_SOLID_HIGH);
	void FillEllipse(BRect rect, ::pattern p = B_SOLID_HIGH);

	// NULL or an invalid bitmap draws nothing. A bitmap that accepts views must not be drawn into
	// meanwhile, unless it is locked.
	void DrawBitmap(const BBitmap* bitmap);
	void DrawBitmap(const BBitmap* bitmap, BPoint where);
	void DrawBitmap(const BBitmap* bitmap, BRect viewRect);
	//! The part `bitmapRect` of the bitmap, stretched to `viewRect`.
	void DrawBitmap(const BBitmap* bitmap, BRect bitmapRect, BRect viewRect);
	// The same; drawing never waits.
	void DrawBitmapAsync(const BBitmap* bitmap);
	void DrawBitmapAsync(const BBitmap* bitmap, BPoint where);
	void DrawBitmapAsync(const BBitmap* bitmap, BRect viewRect);
	void DrawBitmapAsync(const BBitmap* bitmap, BRect bitmapRect, BRect viewRect);

private:
	friend struct BPrivate::ViewData;
	BPrivate::ViewData* fData;
};
