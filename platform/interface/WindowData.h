#pragma once

#include "interface/Surface.h"
#include "server/EventPort.h"
#include "server/FrameMailbox.h"

#include <Cursor.h>
#include <Message.h>
#include <QRegion>
#include <View.h>
#include <Window.h>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace BPrivate {

struct WindowTraits;

/*!	The inside of a window: what it knows of itself, its views' picture, and what happens with the
	server's messages.
	Thread: under the window's lock; frame and decor also under `mirror`, so that others may
	read them without. */
struct WindowData {
	static WindowData& Of(const BWindow* window) { return *window->fData; }

	struct Shortcut {
		uint32 key;
		uint32 modifiers;
		std::unique_ptr<BMessage> message;
		BHandler* target;
	};

	explicit WindowData(BWindow* window);
	~WindowData();

	BWindow* window;
	int64 id; // the server's
	bool offscreen = false;

	mutable std::mutex mirror;
	BRect frame;
	BRect decor;

	std::string title;
	window_look look = B_TITLED_WINDOW_LOOK;
	window_feel feel = B_NORMAL_WINDOW_FEEL;
	uint32 flags = 0;
	uint32 workspaces = 0;
	//! What Qt can have at a most.
	static constexpr float kMost = 16383;
	BRect limits{
		0, 0, kMost, kMost}; // left, top: the smallest width and height; right, bottom: the largest
	int32 hideLevel = 1;
	bool minimized = false;
	bool serverMinimized = false; // as it was told or has reported last
	bool active = false;
	int64 generation = 0; // of the newest SetFrame()
	float scale = 1;

	BView* root = nullptr;
	BView* focus = nullptr;
	BView* pointerView = nullptr;
	int64 drag = 0; // what is dragged over the window; 0: nothing
	BMessage dragged;
	int32 toldCursor = B_CURSOR_ID_SYSTEM_DEFAULT; // what the server knows
	int64 toldDrag = 0;
	bool focusFromServer = false;
	std::vector<Shortcut> shortcuts;
	std::vector<BView*>
		frameEvents; // views whose B_VIEW_MOVED or B_VIEW_RESIZED found the queue full

	Surface surface;
	QRegion dirty; // in the window's pixels
	bool updatePosted = false;
	bool inUpdate = false;
	int32 updatesDisabled = 0;
	std::shared_ptr<FrameMailbox> mailbox;
	std::shared_ptr<MoveSlots> moves;

	static BWindow* MakeOffscreen(BBitmap* bitmap);
	void MakeRoot();

	// Archives
	status_t Write(BMessage* into, status_t status, bool deep) const;
	void Read(const BMessage& archive);
	void ReadViews(const BMessage& archive);
	//! The old types' look and feel.
	static window_look LookOf(window_type type);
	static window_feel FeelOf(window_type type);

	// The server
	void Open();
	WindowTraits Traits() const;
	void SendTraits();
	void SetFrame(BRect newFrame);
	void AdoptFrame(BRect newFrame);
	void TellMinimized();

	// Drawing
	void Invalidate(const QRegion& region);
	void ScheduleUpdate();
	/*!	Draws what is invalid, and commits. `evenHidden`: for a picture of a window that nobody
		sees. */
	void Update(bool evenHidden = false);
	//! Gives the server the picture, if anything was drawn since the last time.
	void Commit();
	bool CanDraw() const;
	QColor ColorBeyond(const QImage& picture) const;
	void DeliverFrameEvents();
	BRect Limited(BRect newFrame) const;

	// The server's messages
	bool HandleMessage(BMessage* message, BHandler* target);
	void FrameReported(BMessage* message, bool moved);
	void MinimizeReported(bool isMinimized);
	void PointerMessage(BMessage* message);
	void PointerMoved(BMessage* message, BView* under, BPoint where);
	void KeyMessage(BMessage* message);
	bool RunShortcut(BMessage* message);
	void FilesDragged(BMessage* message);
	void FilesDropped(BMessage* message);
	void EndDrag();
	//! Tells the server how the pointer looks over the view that it is over; `wait`: until it knows.
	void TellPointer(bool wait);
	void SetActive(bool isActive);
	void SetFocus(BView* view, bool tellServer);
	void ViewGone(BView* view);

private:
	bool IsOwnThread() const;
	void PrepareSurface();
	std::vector<BView*> PointerWatchers(BView* under) const;
};

} // namespace BPrivate
