#include "interface/ViewData.h"

#include <AppDefs.h>
#include <Debug.h>
#include <algorithm>
#include <cmath>
#include <string.h>

namespace BPrivate {

QRect
to_qrect(BRect rect)
{
	int left = std::lround(rect.left);
	int top = std::lround(rect.top);
	return QRect(left, top, std::lround(rect.right) - left + 1, std::lround(rect.bottom) - top + 1);
}

BRect
to_brect(QRect rect)
{
	return BRect(rect.left(), rect.top(), rect.right(), rect.bottom());
}

void
ViewData::SetProxy(std::unique_ptr<WidgetProxy> widget)
{
	proxy = std::move(widget);
	if (state.fontSet)
		proxy->SetFont(state.font);
}

void
ViewData::AddChild(BView* child, BView* before)
{
	ViewData& data = Of(child);
	ASSERT(data.parent == NULL);
	ASSERT(window == NULL || window->IsLocked());
	auto place = std::find(children.begin(), children.end(), before);
	children.insert(place, child);
	data.parent = view;
	if (window != NULL)
		data.AttachTo(window);
}

bool
ViewData::RemoveChild(BView* child)
{
	auto place = std::find(children.begin(), children.end(), child);
	if (child == NULL || place == children.end())
		return false;
	ASSERT(window == NULL || window->IsLocked());
	ViewData& data = Of(child);
	if (window != NULL) {
		data.Invalidate(data.VisibleRect());
		data.Detach();
	}
	children.erase(std::find(children.begin(), children.end(), child));
	data.PlaceAncestors();
	data.parent = NULL;
	return true;
}

void
ViewData::AttachTo(BWindow* newWindow)
{
	SetWindow(newWindow);
	OrderFocus();
	PlaceProxies();
	PlaceAncestors();
	Invalidate(VisibleRect());
	CallAttached();
}

void
ViewData::Detach()
{
	CallDetached();
	SetWindow(NULL);
}

//! Makes the views handlers of the window, or no longer.
void
ViewData::SetWindow(BWindow* newWindow)
{
	if (newWindow == NULL) {
		for (BView* child : children)
			Of(child).SetWindow(NULL);
		if (proxy)
			proxy->Detach();
		WindowData::Of(window).ViewGone(view);
		cursor = B_CURSOR_ID_SYSTEM_DEFAULT;
		window->RemoveHandler(view);
		window = NULL;
		return;
	}
	window = newWindow;
	window->AddHandler(view);
	if (parent != NULL && !Of(parent).isRoot)
		view->SetNextHandler(parent);
	if (proxy && !WindowData::Of(window).offscreen)
		proxy->Attach(WindowData::Of(window).id, BMessenger(view));
	for (BView* child : children)
		Of(child).SetWindow(newWindow);
}

/*!	The hooks may add and remove children: those added in them have been told already. */
void
ViewData::CallAttached()
{
	if (attached)
		return;
	attached = true;
	view->AttachedToWindow();
	const std::vector<BView*> before = children;
	for (BView* child : before) {
		if (std::find(children.begin(), children.end(), child) != children.end())
			Of(child).CallAttached();
	}
	view->AllAttached();
	if (!accessible)
		accessible = AccessibleText::Of(view);
	PlaceAccessible();
}

void
ViewData::CallDetached()
{
	if (!attached)
		return;
	accessible.reset();
	view->DetachedFromWindow();
	const std::vector<BView*> before = children;
	for (BView* child : before) {
		if (std::find(children.begin(), children.end(), child) != children.end())
			Of(child).CallDetached();
	}
	view->AllDetached();
	attached = false;
}

//! The topmost view at a point of this view, or NULL.
BView*
ViewData::ViewAt(BPoint where)
{
	if (hideLevel > 0 || !Bounds().Contains(where))
		return NULL;
	for (auto child = children.rbegin(); child != children.rend(); ++child) {
		ViewData& data = Of(*child);
		BPoint inChild = where - data.frame.LeftTop() + data.scroll;
		if (BView* found = data.ViewAt(inChild))
			return found;
	}
	return isRoot ? NULL : view;
}

BPoint
ViewData::Origin() const
{
	BPoint origin(std::round(frame.left), std::round(frame.top));
	if (parent != NULL)
		origin += Of(parent).Origin();
	return origin - scroll;
}

bool
ViewData::IsVisible() const
{
	for (const ViewData* data = this;; data = &Of(data->parent)) {
		if (data->hideLevel > 0)
			return false;
		if (data->parent == NULL)
			return data->isRoot;
	}
}

QRect
ViewData::VisibleRect() const
{
	if (hideLevel > 0 || (parent == NULL && !isRoot))
		return QRect();
	QRect rect = to_qrect(Bounds().OffsetToCopy(Origin() + scroll));
	return parent != NULL ? rect & Of(parent).VisibleRect() : rect;
}

//! What is drawn over a view by its children, also by those that sit in a real widget.
void
ViewData::SubtractChildren(QRegion& region) const
{
	for (BView* child : children) {
		const ViewData& data = Of(child);
		if (data.hideLevel > 0)
			continue;
		if (data.IsProxy())
			data.SubtractChildren(region);
		else
			region -= data.VisibleRect();
	}
}

QRegion
ViewData::VisibleRegion() const
{
	QRegion region(VisibleRect());
	SubtractChildren(region);
	for (const ViewData* data = this; data->parent != NULL; data = &Of(data->parent)) {
		const std::vector<BView*>& siblings = Of(data->parent).children;
		auto next = std::find(siblings.begin(), siblings.end(), data->view);
		while (++next != siblings.end()) {
			const ViewData& above = Of(*next);
			if (above.hideLevel <= 0 && !above.IsProxy())
				region -= above.VisibleRect();
		}
	}
	return region;
}

void
ViewData::SetFrame(BRect newFrame)
{
	BRect old = frame;
	if (newFrame == old)
		return;
	bool moved = newFrame.LeftTop() != old.LeftTop();
	bool resized = newFrame.Width() != old.Width() || newFrame.Height() != old.Height();
	Invalidate(VisibleRect());
	frame = newFrame;
	if (resized) {
		const std::vector<BView*> followers = children;
		for (BView* child : followers)
			Of(child).FollowParent(old, newFrame);
	}
	Invalidate(VisibleRect());
	PlaceProxies();
	PlaceAncestors();
	PostFrameEvent(moved, resized);
}

/*!	An edge that follows the parent's near edge stays, one that follows the far one goes with it, a
	centred one goes half the way. */
static float
followed(float position, uint32 rule, uint32 farRule, float growth)
{
	constexpr uint32 kCenter = 5;
	if (rule == farRule)
		return position + growth;
	return rule == kCenter ? position + growth / 2 : position;
}

void
ViewData::FollowParent(BRect oldParent, BRect newParent)
{
	constexpr uint32 kBottom = 3;
	constexpr uint32 kRight = 4;
	float wider = newParent.Width() - oldParent.Width();
	float higher = newParent.Height() - oldParent.Height();
	SetFrame(BRect(followed(frame.left, resizing >> 8 & 0xf, kRight, wider),
		followed(frame.top, resizing >> 12 & 0xf, kBottom, higher),
		followed(frame.right, resizing & 0xf, kRight, wider),
		followed(frame.bottom, resizing >> 4 & 0xf, kBottom, higher)));
}

void
ViewData::PostFrameEvent(bool moved, bool resized)
{
	if (window == NULL || !attached || !(flags & B_FRAME_EVENTS))
		return;
	// one message carries all changes until it is dispatched
	bool posted = movedPending || resizedPending;
	movedPending |= moved;
	resizedPending |= resized;
	if (posted)
		return;
	BMessage message(resized ? B_VIEW_RESIZED : B_VIEW_MOVED);
	message.AddInt64("when", system_time());
	if (moved)
		message.AddPoint("where", frame.LeftTop());
	if (resized) {
		message.AddInt32("width", frame.IntegerWidth());
		message.AddInt32("height", frame.IntegerHeight());
	}
	if (window->PostMessage(&message, view) != B_OK)
		WindowData::Of(window).frameEvents.push_back(view);
}

void
ViewData::TellFrame()
{
	if (std::exchange(movedPending, false))
		view->FrameMoved(frame.LeftTop());
	if (std::exchange(resizedPending, false))
		view->FrameResized(frame.Width(), frame.Height());
}

//! Puts the real widgets of this view and its offspring where the views are.
void
ViewData::PlaceProxies()
{
	if (window == NULL || WindowData::Of(window).offscreen)
		return;
	PlaceProxy();
	PlaceAccessible();
	for (BView* child : children)
		Of(child).PlaceProxies();
}

//! Children that are drawn are drawn beneath the widget: it has a hole for each.
void
ViewData::PlaceProxy()
{
	if (!proxy)
		return;
	QRegion visible;
	if (IsVisible()) {
		visible = VisibleRect();
		SubtractChildren(visible);
	}
	proxy->Place(to_qrect(Bounds().OffsetToCopy(Origin() + scroll)), visible);
}

void
ViewData::PlaceAccessible()
{
	if (accessible)
		accessible->Place(IsVisible() ? VisibleRect() : QRect());
}

void
ViewData::PlaceAncestors()
{
	for (BView* above = parent; above != NULL; above = Of(above).parent) {
		ViewData& data = Of(above);
		if (data.window != NULL && !WindowData::Of(data.window).offscreen)
			data.PlaceProxy();
	}
}

void
ViewData::CollectProxies(std::vector<int64>& ids) const
{
	if (proxy)
		ids.push_back(proxy->Id());
	for (BView* child : children)
		Of(child).CollectProxies(ids);
}

//! The toolkit puts what is new behind all the others; the platform's order is that of the tree.
void
ViewData::OrderFocus()
{
	std::vector<int64> added;
	CollectProxies(added);
	if (added.empty() || WindowData::Of(window).offscreen)
		return;
	std::vector<int64> all;
	Of(WindowData::Of(window).root).CollectProxies(all);
	if (all.back() != added.back())
		WidgetProxy::SetFocusOrder(all);
}

void
ViewData::Invalidate(QRect inWindow)
{
	if (window != NULL && !inWindow.isEmpty())
		WindowData::Of(window).Invalidate(inWindow & VisibleRect());
}

/*!	Draws what is dirty of this view and then of its children. */
void
ViewData::DrawTree(const QRegion& dirty)
{
	if (hideLevel > 0 || !dirty.intersects(VisibleRect()))
		return;
	QRegion clip = IsProxy() ? QRegion() : VisibleRegion() & dirty;
	if (!clip.isEmpty()) {
		drawClip = clip;
		if (viewColor != B_TRANSPARENT_COLOR) {
			BPoint origin = Origin();
			QPainter& painter
				= WindowData::Of(window).surface.Painter(clip, QPointF(origin.x, origin.y));
			painter.setCompositionMode(QPainter::CompositionMode_Source);
			painter.fillRect(clip.boundingRect().translated(-origin.x, -origin.y),
				QColor(viewColor.red, viewColor.green, viewColor.blue));
		}
		if (flags & B_WILL_DRAW) {
			BPoint origin = Origin();
			view->Draw(to_brect(clip.boundingRect()).OffsetBySelf(-origin.x, -origin.y));
		}
		drawClip.reset();
	}
	const std::vector<BView*> drawn = children;
	for (BView* child : drawn)
		Of(child).DrawTree(dirty);
}

QRegion
ViewData::Clip() const
{
	return drawClip ? *drawClip : VisibleRegion();
}

/*!	Drawing outside of an update asks for a commit later. */
bool
ViewData::BeginDrawing()
{
	if (window == NULL)
		return false;
	ASSERT(window->IsLocked());
	WindowData& data = WindowData::Of(window);
	if (!data.CanDraw() || !IsVisible())
		return false;
	if (!data.inUpdate && !data.offscreen)
		data.ScheduleUpdate();
	return true;
}

//! NULL when the view has nothing to draw into.
QPainter*
ViewData::Painter()
{
	if (!BeginDrawing())
		return NULL;
	BPoint origin = Origin();
	return &WindowData::Of(window).surface.Painter(Clip(), QPointF(origin.x, origin.y));
}

} // namespace BPrivate
