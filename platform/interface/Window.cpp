#include "interface/ViewData.h"
#include "server/ServerWindow.h"

#include <AppDefs.h>
#include <Application.h>
#include <Bitmap.h>
#include <Debug.h>
#include <Screen.h>
#include <algorithm>
#include <atomic>
#include <ctype.h>

using namespace BPrivate;

// the window that was made active last
static std::atomic<int64> sFrontWindow = 0;

//! The look and feel that the old types stand for.
window_look
WindowData::LookOf(window_type type)
{
	switch (type) {
		case B_MODAL_WINDOW:
			return B_MODAL_WINDOW_LOOK;
		case B_DOCUMENT_WINDOW:
			return B_DOCUMENT_WINDOW_LOOK;
		case B_BORDERED_WINDOW:
			return B_BORDERED_WINDOW_LOOK;
		case B_FLOATING_WINDOW:
			return B_FLOATING_WINDOW_LOOK;
		default:
			return B_TITLED_WINDOW_LOOK;
	}
}

window_feel
WindowData::FeelOf(window_type type)
{
	if (type == B_MODAL_WINDOW)
		return B_MODAL_APP_WINDOW_FEEL;
	return type == B_FLOATING_WINDOW ? B_FLOATING_APP_WINDOW_FEEL : B_NORMAL_WINDOW_FEEL;
}

//! A job for the server's end of the window.
template<typename Function>
static void
tell_server(const WindowData& data, Function function)
{
	if (data.offscreen)
		return;
	ServerLink::Default().Post([id = data.id, function] {
		if (auto* server = Registry::Default().Find<ServerWindow>(id))
			function(*server);
	});
}

BWindow::BWindow(BRect frame, const char* title, window_type type, uint32 flags, uint32 workspaces)
	: BWindow(frame, title, WindowData::LookOf(type), WindowData::FeelOf(type), flags, workspaces)
{ }

BWindow::BWindow(BRect frame, const char* title, window_look look, window_feel feel, uint32 flags,
	uint32 workspaces)
	: BLooper(title, B_DISPLAY_PRIORITY),
	  fData(new WindowData(this))
{
	WindowData& data = *fData;
	data.frame = data.Limited(frame);
	data.decor = data.frame;
	data.title = title != NULL ? title : "";
	data.look = look;
	data.feel = feel;
	data.flags = flags;
	data.workspaces = workspaces;
	data.MakeRoot();
	data.Open();
	_SetWindow(this);
}

//! Of a bitmap: never shown, never run, and in nobody's list.
BWindow::BWindow(BBitmap* offscreen) : BLooper("offscreen bitmap"), fData(new WindowData(this))
{
	fData->offscreen = true;
	fData->hideLevel = 0;
	fData->frame = offscreen->Bounds();
	fData->MakeRoot();
}

BWindow::~BWindow()
{
	Lock();
	_SetWindow(NULL);
	fData->updatesDisabled++;
	BView* root = fData->root;
	while (BView* child = root->ChildAt(root->CountChildren() - 1)) {
		RemoveChild(child);
		delete child;
	}
	ViewData::Of(root).window = NULL;
	delete root;
	if (!fData->offscreen)
		ServerLink::Default().Post([id = fData->id] { Registry::Default().Delete(id); });
	delete fData;
}

void
BWindow::Quit()
{
	ASSERT(IsLocked());
	if (!fData->offscreen) {
		if (fData->hideLevel <= 0)
			Hide();
		if ((fData->flags & B_QUIT_ON_WINDOW_CLOSE) && be_app != NULL)
			be_app->PostMessage(B_QUIT_REQUESTED);
	}
	BLooper::Quit();
}

void
BWindow::DispatchMessage(BMessage* message, BHandler* target)
{
	if (!fData->HandleMessage(message, target))
		BLooper::DispatchMessage(message, target);
}

void
BWindow::_BatchDone()
{
	fData->DeliverFrameEvents();
	fData->Update();
}

void
BWindow::FrameMoved(BPoint)
{ }

void
BWindow::FrameResized(float, float)
{ }

void
BWindow::WindowActivated(bool active)
{
	if (active)
		sFrontWindow = fData->id;
}

void
BWindow::ScreenChanged(BRect, color_space)
{ }

void
BWindow::Minimize(bool minimize)
{
	if (fData->minimized == minimize || fData->hideLevel > 0)
		return;
	fData->minimized = minimize;
	fData->TellMinimized();
	if (!minimize)
		fData->Invalidate(to_qrect(Bounds()));
}

/*!	May be called by a thread that has not locked the window, and is what starts it. */
void
BWindow::Show()
{
	if (!Lock())
		return;
	bool start = Thread() < 0;
	if (fData->hideLevel > 0 && --fData->hideLevel == 0) {
		fData->dirty = to_qrect(Bounds());
		if (start)
			fData->updatePosted = PostMessage(kUpdateMessage) == B_OK;
		else
			fData->ScheduleUpdate();
		ViewData::Of(fData->root).PlaceProxies();
		tell_server(*fData, [](ServerWindow& server) { server.SetShown(true); });
	}
	Unlock();
	if (start)
		Run();
}

void
BWindow::Hide()
{
	if (!Lock())
		return;
	if (fData->hideLevel++ == 0)
		tell_server(*fData, [](ServerWindow& server) { server.SetShown(false); });
	Unlock();
}

bool
BWindow::IsHidden() const
{
	return fData->hideLevel > 0;
}

bool
BWindow::IsMinimized() const
{
	return fData->minimized;
}

void
BWindow::Activate(bool activate)
{
	if (!IsHidden())
		tell_server(*fData, [activate](ServerWindow& server) { server.Activate(activate); });
}

bool
BWindow::IsActive() const
{
	return fData->active;
}

bool
BWindow::IsFront() const
{
	return fData->active || (!IsHidden() && sFrontWindow == fData->id);
}

BRect
BWindow::Frame() const
{
	std::lock_guard lock(fData->mirror);
	return fData->frame;
}

BRect
BWindow::Bounds() const
{
	return Frame().OffsetToSelf(B_ORIGIN);
}

BRect
BWindow::DecoratorFrame() const
{
	std::lock_guard lock(fData->mirror);
	return fData->decor;
}

void
BWindow::MoveTo(BPoint where)
{
	where = BPoint(roundf(where.x), roundf(where.y));
	if (where != fData->frame.LeftTop())
		fData->SetFrame(fData->frame.OffsetToCopy(where));
}

void
BWindow::MoveTo(float x, float y)
{
	MoveTo(BPoint(x, y));
}

void
BWindow::MoveBy(float dh, float dv)
{
	MoveTo(fData->frame.LeftTop() + BPoint(dh, dv));
}

void
BWindow::ResizeTo(float width, float height)
{
	BRect frame = fData->frame;
	frame.right = frame.left + roundf(width);
	frame.bottom = frame.top + roundf(height);
	frame = fData->Limited(frame);
	if (frame != fData->frame)
		fData->SetFrame(frame);
}

void
BWindow::ResizeBy(float dh, float dv)
{
	ResizeTo(fData->frame.Width() + dh, fData->frame.Height() + dv);
}

void
BWindow::SetSizeLimits(float minWidth, float maxWidth, float minHeight, float maxHeight)
{
	if (minWidth > maxWidth || minHeight > maxHeight)
		return;
	fData->limits = BRect(std::max(minWidth, 0.0f), std::max(minHeight, 0.0f),
		std::min(maxWidth, WindowData::kMost), std::min(maxHeight, WindowData::kMost));
	fData->SendTraits();
	ResizeTo(fData->frame.Width(), fData->frame.Height());
}

void
BWindow::GetSizeLimits(float* minWidth, float* maxWidth, float* minHeight, float* maxHeight) const
{
	*minWidth = fData->limits.left;
	*maxWidth = fData->limits.right;
	*minHeight = fData->limits.top;
	*maxHeight = fData->limits.bottom;
}

void
BWindow::CenterOnScreen()
{
	BRect screen = BScreen(this).Frame();
	MoveTo(screen.left + floorf((screen.Width() - fData->frame.Width()) / 2),
		screen.top + floorf((screen.Height() - fData->frame.Height()) / 2));
}

const char*
BWindow::Title() const
{
	return fData->title.c_str();
}

void
BWindow::SetTitle(const char* title)
{
	fData->title = title != NULL ? title : "";
	SetName(fData->title.c_str());
	fData->SendTraits();
}

window_look
BWindow::Look() const
{
	return fData->look;
}

status_t
BWindow::SetLook(window_look look)
{
	switch (look) {
		case B_BORDERED_WINDOW_LOOK:
		case B_NO_BORDER_WINDOW_LOOK:
		case B_TITLED_WINDOW_LOOK:
		case B_DOCUMENT_WINDOW_LOOK:
		case B_MODAL_WINDOW_LOOK:
		case B_FLOATING_WINDOW_LOOK:
			fData->look = look;
			fData->SendTraits();
			return B_OK;
		default:
			return B_BAD_VALUE;
	}
}

window_feel
BWindow::Feel() const
{
	return fData->feel;
}

status_t
BWindow::SetFeel(window_feel feel)
{
	if (feel < B_NORMAL_WINDOW_FEEL || feel > B_FLOATING_ALL_WINDOW_FEEL)
		return B_BAD_VALUE;
	fData->feel = feel;
	fData->SendTraits();
	return B_OK;
}

uint32
BWindow::Flags() const
{
	return fData->flags;
}

status_t
BWindow::SetFlags(uint32 flags)
{
	fData->flags = flags;
	fData->SendTraits();
	return B_OK;
}

void
BWindow::AddChild(BView* child, BView* before)
{
	fData->root->AddChild(child, before);
}

bool
BWindow::RemoveChild(BView* child)
{
	return fData->root->RemoveChild(child);
}

int32
BWindow::CountChildren() const
{
	return fData->root->CountChildren();
}

BView*
BWindow::ChildAt(int32 index) const
{
	return fData->root->ChildAt(index);
}

BView*
BWindow::FindView(const char* name) const
{
	return fData->root->FindView(name);
}

BView*
BWindow::FindView(BPoint point) const
{
	return ViewData::Of(fData->root).ViewAt(point);
}

BView*
BWindow::CurrentFocus() const
{
	return fData->focus;
}

void
BWindow::AddShortcut(uint32 key, uint32 modifiers, BMessage* message)
{
	AddShortcut(key, modifiers, message, NULL);
}

void
BWindow::AddShortcut(uint32 key, uint32 modifiers, BMessage* message, BHandler* target)
{
	if (message == NULL)
		return;
	RemoveShortcut(key, modifiers);
	fData->shortcuts.push_back({static_cast<uint32>(tolower(key)), modifiers | B_COMMAND_KEY,
		std::unique_ptr<BMessage>(message), target});
}

void
BWindow::RemoveShortcut(uint32 key, uint32 modifiers)
{
	key = tolower(key);
	modifiers |= B_COMMAND_KEY;
	std::erase_if(fData->shortcuts, [=](const WindowData::Shortcut& shortcut) {
		return shortcut.key == key && shortcut.modifiers == modifiers;
	});
}

BPoint
BWindow::ConvertToScreen(BPoint point) const
{
	return point + Frame().LeftTop();
}

BPoint
BWindow::ConvertFromScreen(BPoint point) const
{
	return point - Frame().LeftTop();
}

BRect
BWindow::ConvertToScreen(BRect rect) const
{
	return rect.OffsetToCopy(ConvertToScreen(rect.LeftTop()));
}

BRect
BWindow::ConvertFromScreen(BRect rect) const
{
	return rect.OffsetToCopy(ConvertFromScreen(rect.LeftTop()));
}

void
BWindow::UpdateIfNeeded()
{
	ASSERT(IsLocked());
	fData->Update();
}

void
BWindow::Flush() const
{
	fData->Commit();
}

void
BWindow::Sync() const
{
	fData->Commit();
}

void
BWindow::DisableUpdates()
{
	fData->updatesDisabled++;
}

void
BWindow::EnableUpdates()
{
	if (fData->updatesDisabled > 0 && --fData->updatesDisabled == 0)
		fData->ScheduleUpdate();
}
