#include "interface/ViewData.h"
#include "server/EventPort.h"

#include <AppDefs.h>
#include <algorithm>
#include <ctype.h>

namespace BPrivate {

static constexpr uint32 kShortcutModifiers
	= B_SHIFT_KEY | B_COMMAND_KEY | B_CONTROL_KEY | B_OPTION_KEY;

/*!	What the window does itself with a message, before anybody's MessageReceived(). False: it is for
	the looper. */
bool
WindowData::HandleMessage(BMessage* message, BHandler* target)
{
	BView* view = dynamic_cast<BView*>(target);
	switch (message->what) {
		case kUpdateMessage:
			updatePosted = false;
			return true;
		case kScaleMessage:
			scale = message->GetFloat("be:scale", scale);
			if (scale != surface.Scale())
				Invalidate(to_qrect(frame.OffsetToCopy(B_ORIGIN)));
			return true;
		case B_WINDOW_MOVED:
		case B_WINDOW_RESIZED:
			FrameReported(message, message->what == B_WINDOW_MOVED);
			return true;
		case B_WINDOW_ACTIVATED:
			SetActive(message->GetBool("active", false));
			return true;
		case B_MINIMIZE:
			MinimizeReported(message->GetBool("minimize", false));
			return true;
		case B_SCREEN_CHANGED:
			window->ScreenChanged(message->GetRect("frame", BRect()),
				static_cast<color_space>(message->GetInt32("mode", B_RGB32)));
			return true;
		case B_MOUSE_DOWN:
		case B_MOUSE_UP:
		case B_MOUSE_MOVED:
		case B_MOUSE_WHEEL_CHANGED:
			PointerMessage(message);
			return true;
		case B_KEY_DOWN:
		case B_KEY_UP:
		case B_UNMAPPED_KEY_DOWN:
		case B_UNMAPPED_KEY_UP:
			KeyMessage(message);
			return true;
		case kFilesDragged:
			FilesDragged(message);
			return true;
		case kFilesDropped:
			FilesDropped(message);
			return true;
		case B_VIEW_MOVED:
		case B_VIEW_RESIZED:
			if (view != NULL)
				ViewData::Of(view).TellFrame();
			return true;
		case kProxyEvent:
			if (view != NULL && ViewData::Of(view).proxy)
				ViewData::Of(view).proxy->HandleEvent(message);
			return true;
		case kProxyFocus:
			if (view != NULL) {
				focusFromServer = true;
				view->MakeFocus(true);
				focusFromServer = false;
			}
			return true;
		default:
			return false;
	}
}

/*!	A report from before the newest MoveTo() or ResizeTo() tells old news: another one is on its
	way. */
void
WindowData::FrameReported(BMessage* message, bool moved)
{
	BRect reported = message->GetRect("be:frame", frame);
	if (message->GetInt64("be:generation", generation) >= generation) {
		BRect adopted = frame;
		if (moved)
			adopted.OffsetTo(message->GetPoint("where", frame.LeftTop()));
		else {
			adopted.right = adopted.left + message->GetInt32("width", reported.IntegerWidth());
			adopted.bottom = adopted.top + message->GetInt32("height", reported.IntegerHeight());
		}
		if (to_qrect(adopted) != to_qrect(frame))
			AdoptFrame(adopted);
		BRect outer = message->GetRect("be:decor", decor);
		std::lock_guard lock(mirror);
		if (reported == frame)
			decor = outer;
	}
	if (moved)
		window->FrameMoved(frame.LeftTop());
	else
		window->FrameResized(frame.Width(), frame.Height());
}

/*!	What the server has done already is never told it again: the order could overtake what the user
	does next, and the two would go on correcting each other. A hook that does not pass it on has it
	undone. */
void
WindowData::MinimizeReported(bool isMinimized)
{
	serverMinimized = isMinimized;
	if (isMinimized != minimized)
		window->Minimize(isMinimized);
	TellMinimized();
}

static void
tell_activated(BView* view, bool active)
{
	view->WindowActivated(active);
	for (int32 i = 0; BView* child = view->ChildAt(i); i++)
		tell_activated(child, active);
}

void
WindowData::SetActive(bool isActive)
{
	if (active == isActive)
		return;
	active = isActive;
	window->WindowActivated(isActive);
	tell_activated(root, isActive);
}

static void
set_point(BMessage* message, const char* name, BPoint point)
{
	message->RemoveName(name);
	message->AddPoint(name, point);
}

static void
set_int32(BMessage* message, const char* name, int32 value)
{
	message->RemoveName(name);
	message->AddInt32(name, value);
}

//! The message then tells the place in the view's coordinates. Answers it.
static BPoint
aim_at(BMessage* message, BView* view, BPoint inWindow)
{
	BPoint where = inWindow - ViewData::Of(view).Origin();
	set_point(message, "where", where);
	set_point(message, "be:view_where", where);
	return where;
}

//! The view that holds the pointer and those that asked for all of its events.
std::vector<BView*>
WindowData::PointerWatchers(BView* under) const
{
	std::vector<BView*> watchers;
	bool exclusive = false;
	std::vector<BView*> waiting{root};
	while (!waiting.empty()) {
		BView* view = waiting.back();
		waiting.pop_back();
		const ViewData& data = ViewData::Of(view);
		waiting.insert(waiting.end(), data.children.begin(), data.children.end());
		if (((data.eventMask | data.mouseMask) & B_POINTER_EVENTS) && view != under)
			watchers.push_back(view);
		exclusive |= (data.mouseMask & B_POINTER_EVENTS) && view != under
			&& (data.mouseOptions & B_LOCK_WINDOW_FOCUS);
	}
	if (under != NULL && !exclusive)
		watchers.insert(watchers.begin(), under);
	return watchers;
}

//! Is `view`, which may be gone, in the tree?
static bool
has_view(BView* tree, const BView* view)
{
	if (tree == view)
		return true;
	for (int32 i = 0; BView* child = tree->ChildAt(i); i++) {
		if (has_view(child, view))
			return true;
	}
	return false;
}

static void
end_mouse_masks(BView* view)
{
	ViewData::Of(view).mouseMask = 0;
	for (int32 i = 0; BView* child = view->ChildAt(i); i++)
		end_mouse_masks(child);
}

void
WindowData::PointerMessage(BMessage* message)
{
	if (message->what == B_MOUSE_MOVED) {
		std::optional<PointerMove> move = moves->Take(message->GetInt64("be:slot", 0));
		if (move) {
			set_point(message, "be:window_where", BPoint(move->x, move->y));
			set_point(message, "screen_where", BPoint(move->screenX, move->screenY));
			set_int32(message, "buttons", move->buttons);
			set_int32(message, "modifiers", move->modifiers);
			message->RemoveName("be:drag");
			message->AddInt64("be:drag", move->drag);
		}
	}
	BPoint where = message->GetPoint("be:window_where", BPoint());
	BView* under = ViewData::Of(root).ViewAt(where);
	if (message->what == B_MOUSE_WHEEL_CHANGED) {
		BHandler* target = under != NULL ? static_cast<BHandler*>(under) : window;
		target->MessageReceived(message);
		return;
	}
	if (message->what == B_MOUSE_MOVED) {
		PointerMoved(message, under, where);
		return;
	}
	for (BView* view : PointerWatchers(under)) {
		// an earlier one's hook may have deleted it
		if (!has_view(root, view))
			continue;
		BPoint inView = aim_at(message, view, where);
		message->what == B_MOUSE_DOWN ? view->MouseDown(inView) : view->MouseUp(inView);
	}
	if (message->what == B_MOUSE_UP && message->GetInt32("buttons", 0) == 0)
		end_mouse_masks(root);
}

void
WindowData::PointerMoved(BMessage* message, BView* under, BPoint where)
{
	const int64 moveDrag = message->GetInt64("be:drag", 0);
	const bool isDrag = moveDrag != 0 && moveDrag == drag;
	if (moveDrag == 0 && drag != 0)
		EndDrag();
	std::vector<BView*> watchers = PointerWatchers(under);
	BView* before = std::exchange(pointerView, under);
	if (before != NULL && before != under
		&& std::find(watchers.begin(), watchers.end(), before) == watchers.end())
		watchers.insert(watchers.begin(), before);
	for (BView* view : watchers) {
		if (!has_view(root, view))
			continue;
		int32 transit = B_OUTSIDE_VIEW;
		if (view == under)
			transit = view == before ? B_INSIDE_VIEW : B_ENTERED_VIEW;
		else if (view == before)
			transit = B_EXITED_VIEW;
		set_int32(message, "be:transit", transit);
		BPoint inView = aim_at(message, view, where);
		view->MouseMoved(inView, transit, isDrag ? &dragged : NULL);
	}
	TellPointer(false);
}

void
WindowData::KeyMessage(BMessage* message)
{
	if (message->what == B_KEY_DOWN && RunShortcut(message))
		return;
	BHandler* target = focus != NULL ? static_cast<BHandler*>(focus) : window;
	if (message->what == B_UNMAPPED_KEY_DOWN || message->what == B_UNMAPPED_KEY_UP
		|| focus == NULL) {
		target->MessageReceived(message);
		return;
	}
	const char* bytes = message->GetString("bytes", "");
	int32 count = 0;
	type_code type;
	if (message->GetInfo("byte", &type, &count) != B_OK)
		return;
	message->what == B_KEY_DOWN ? focus->KeyDown(bytes, count) : focus->KeyUp(bytes, count);
}

bool
WindowData::RunShortcut(BMessage* message)
{
	uint32 held = message->GetInt32("modifiers", 0) & kShortcutModifiers;
	uint32 key = tolower(message->GetInt32("raw_char", 0));
	if (key == B_ESCAPE && held == 0 && (flags & B_CLOSE_ON_ESCAPE)) {
		window->PostMessage(B_QUIT_REQUESTED);
		return true;
	}
	if (!(held & B_COMMAND_KEY))
		return false;
	for (const Shortcut& shortcut : shortcuts) {
		if (shortcut.key != key || shortcut.modifiers != held)
			continue;
		BMessage copy(*shortcut.message);
		copy.AddInt64("when", message->GetInt64("when", 0));
		window->PostMessage(&copy, shortcut.target != NULL ? shortcut.target : window);
		return true;
	}
	return false;
}

} // namespace BPrivate
