#pragma once

#include "interface/AccessibleText.h"
#include "interface/WindowData.h"
#include "server/WidgetProxy.h"

#include <Cursor.h>
#include <QRegion>
#include <View.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace BPrivate {

//! To the pixels that a rectangle covers, edges included.
QRect to_qrect(BRect rect);
BRect to_brect(QRect rect);

//! What PushState() keeps.
struct DrawState {
	rgb_color high = {0, 0, 0, 255};
	rgb_color low = {255, 255, 255, 255};
	BPoint pen;
	float penSize = 1;
	drawing_mode mode = B_OP_COPY;
	BFont font;
	bool fontSet = false; // it does not follow the desktop's
};

//! A colour of the desktop that a view was archived with, lighter below a tint of 1, darker above.
struct UIColor {
	int32 which = -1; // none
	float tint = 1;

	rgb_color Color() const;
};

enum { kHighColor, kLowColor, kViewColor, kColorCount };

/*!	The inside of a view, and what the parts of the kit do with views. Thread: the view's. */
struct ViewData {
	static ViewData& Of(const BView* view) { return *view->fData; }

	BView* view;
	BWindow* window = nullptr;
	BView* parent = nullptr; // the window's root for what is directly in it
	std::vector<BView*> children;
	BRect frame;
	BPoint scroll; // left top of the bounds
	uint32 flags;
	uint32 resizing;
	int32 hideLevel = 0;
	bool isRoot = false;
	bool attached = false; // AttachedToWindow() was called
	bool movedPending = false;
	bool resizedPending = false;
	rgb_color viewColor = {255, 255, 255, 255};
	DrawState state;
	std::vector<DrawState> states;
	UIColor uiColors[kColorCount];
	uint32 eventMask = 0;
	uint32 eventOptions = 0;
	uint32 mouseMask = 0; // until the buttons are up
	uint32 mouseOptions = 0;
	BCursorID cursor = B_CURSOR_ID_SYSTEM_DEFAULT;
	std::unique_ptr<WidgetProxy> proxy;
	std::unique_ptr<AccessibleText> accessible; // while it is in a window
	std::optional<QRegion> drawClip;            // in Draw(): what the update is about

	//! For a control's constructor: a real widget stands for the view.
	void SetProxy(std::unique_ptr<WidgetProxy> widget);
	bool IsProxy() const { return proxy != nullptr; }

	// The tree
	void AttachTo(BWindow* newWindow);
	void Detach();
	void AddChild(BView* child, BView* before);
	bool RemoveChild(BView* child);
	BView* ViewAt(BPoint where); // in this view's coordinates

	// Archives
	void Write(BMessage* into, status_t* status) const;
	void Read(const BMessage& archive);
	status_t WriteChildren(BArchiver& archiver) const;
	//! What cannot be read is left out, and the first error told.
	status_t ReadChildren(BUnarchiver& unarchiver);

	// Geometry
	BRect Bounds() const { return frame.OffsetToCopy(scroll); }
	//! Where the view's 0, 0 is in the window.
	BPoint Origin() const;
	//! What is to be seen of the view, in the window's pixels; empty when it is hidden.
	QRect VisibleRect() const;
	//! The same without what its drawn children cover.
	QRegion VisibleRegion() const;
	bool IsVisible() const;
	void SetFrame(BRect newFrame);
	void FollowParent(BRect oldParent, BRect newParent);
	void PlaceProxies();
	//! The real widgets that the view lies in leave it free.
	void PlaceAncestors();
	//! Calls FrameMoved() and FrameResized() for what changed since the last time.
	void TellFrame();

	// Drawing
	void DrawTree(const QRegion& dirty);
	//! False when there is nothing to draw into.
	bool BeginDrawing();
	QPainter* Painter();
	QRegion Clip() const;
	void Invalidate(QRect inWindow);

private:
	void ReadColors(const BMessage& archive);
	void ReadFont(const BMessage& archive);
	void SetWindow(BWindow* newWindow);
	void PlaceProxy();
	void PlaceAccessible();
	void OrderFocus();
	void CollectProxies(std::vector<int64>& ids) const;
	void CallAttached();
	void CallDetached();
	void SubtractChildren(QRegion& region) const;
	void PostFrameEvent(bool moved, bool resized);
};

} // namespace BPrivate
