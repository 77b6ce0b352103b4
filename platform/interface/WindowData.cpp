#include "interface/ViewData.h"
#include "server/Desktop.h"
#include "server/Registry.h"
#include "server/ServerLink.h"
#include "server/ServerWindow.h"

#include <AppDefs.h>
#include <algorithm>

namespace BPrivate {

WindowData::WindowData(BWindow* window)
	: window(window),
	  id(next_widget_id()),
	  mailbox(std::make_shared<FrameMailbox>()),
	  moves(std::make_shared<MoveSlots>())
{ }

WindowData::~WindowData() = default;

BWindow*
WindowData::MakeOffscreen(BBitmap* bitmap)
{
	return new BWindow(bitmap);
}

void
WindowData::MakeRoot()
{
	root = new BView(frame.OffsetToCopy(B_ORIGIN), NULL, B_FOLLOW_ALL_SIDES, 0);
	ViewData& data = ViewData::Of(root);
	data.isRoot = true;
	data.window = window;
	data.attached = true;
}

WindowTraits
WindowData::Traits() const
{
	WindowTraits traits;
	traits.frame = to_qrect(frame);
	traits.title = QString::fromUtf8(title.c_str());
	traits.look = look;
	traits.feel = feel;
	traits.flags = flags;
	traits.allWorkspaces = workspaces == B_ALL_WORKSPACES;
	// a size in pixels is one more than a width
	traits.minimum = QSize(limits.left + 1, limits.top + 1);
	traits.maximum = QSize(limits.right + 1, limits.bottom + 1);
	return traits;
}

//! Makes the server's end.
void
WindowData::Open()
{
	scale = desktop_scale();
	ServerLink::Default().Post([id = id, traits = Traits(), target = BMessenger(window),
								   moves = moves, mailbox = mailbox] {
		auto port = std::make_shared<EventPort>(target, moves);
		Registry::Default().Add(id, new ServerWindow(traits, port, mailbox));
	});
}

void
WindowData::SendTraits()
{
	ServerLink::Default().Post([id = id, traits = Traits()] {
		if (auto* server = Registry::Default().Find<ServerWindow>(id))
			server->SetTraits(traits);
	});
}

void
WindowData::TellMinimized()
{
	if (serverMinimized == minimized)
		return;
	serverMinimized = minimized;
	ServerLink::Default().Post([id = id, minimize = minimized] {
		if (auto* server = Registry::Default().Find<ServerWindow>(id))
			server->SetMinimized(minimize);
	});
}

/*!	On this side at once, on the screen some time later; reports older than that do not count any
	more. */
void
WindowData::SetFrame(BRect newFrame)
{
	ServerLink::Default().Post([id = id, rect = to_qrect(newFrame), number = ++generation] {
		if (auto* server = Registry::Default().Find<ServerWindow>(id))
			server->SetFrame(rect, number);
	});
	AdoptFrame(newFrame);
}

void
WindowData::AdoptFrame(BRect newFrame)
{
	BRect old = frame;
	{
		std::lock_guard lock(mirror);
		decor = BRect(decor.left + newFrame.left - old.left, decor.top + newFrame.top - old.top,
			decor.right + newFrame.right - old.right, decor.bottom + newFrame.bottom - old.bottom);
		frame = newFrame;
	}
	if (old.Width() == newFrame.Width() && old.Height() == newFrame.Height())
		return;
	ViewData::Of(root).SetFrame(newFrame.OffsetToCopy(B_ORIGIN));
	Invalidate(to_qrect(newFrame.OffsetToCopy(B_ORIGIN)));
}

bool
WindowData::IsOwnThread() const
{
	return window->Thread() == find_thread(NULL);
}

bool
WindowData::CanDraw() const
{
	return offscreen || inUpdate || (hideLevel <= 0 && !minimized && !surface.IsNull());
}

void
WindowData::Invalidate(const QRegion& region)
{
	if (offscreen || region.isEmpty())
		return;
	dirty += region;
	ScheduleUpdate();
}

/*!	In the window's own thread the end of the batch of messages is the update; another thread must
	wake it for that. If the queue is full there is a batch to come anyway. */
void
WindowData::ScheduleUpdate()
{
	if (updatePosted || offscreen || IsOwnThread() || window->Thread() < 0)
		return;
	updatePosted = window->PostMessage(kUpdateMessage) == B_OK;
}

//! A picture of the window's size and scale; a new one is all to be drawn.
void
WindowData::PrepareSurface()
{
	QRect bounds = to_qrect(frame.OffsetToCopy(B_ORIGIN));
	if (!surface.IsNull() && surface.Size() == bounds.size() && surface.Scale() == scale)
		return;
	surface.SetImage(Surface::MakeImage(bounds.size(), scale, QImage::Format_RGB32));
	dirty = bounds;
}

void
WindowData::Update(bool evenHidden)
{
	if (offscreen || inUpdate || updatesDisabled > 0)
		return;
	if (!evenHidden && (hideLevel > 0 || minimized))
		return;
	PrepareSurface();
	// most batches change nothing
	if (surface.IsNull() || (dirty.isEmpty() && !surface.IsTouched()))
		return;
	QRegion region = std::exchange(dirty, QRegion());
	inUpdate = true;
	if (!region.isEmpty())
		ViewData::Of(root).DrawTree(region);
	inUpdate = false;
	Commit();
	if (!dirty.isEmpty())
		ScheduleUpdate();
}

/*!	Of what a window that is made larger has for a moment beyond its picture. A view without a colour
	paints all of itself: it goes on as its last point does. */
QColor
WindowData::ColorBeyond(const QImage& picture) const
{
	const BView* view = root->ChildAt(0) != NULL ? root->ChildAt(0) : root;
	rgb_color color = view->ViewColor();
	if (color == B_TRANSPARENT_COLOR)
		return picture.pixelColor(picture.width() - 1, picture.height() - 1);
	return QColor(color.red, color.green, color.blue);
}

void
WindowData::Commit()
{
	if (offscreen) {
		surface.Finish();
		return;
	}
	if (!surface.IsTouched() || updatesDisabled > 0)
		return;
	Frame picture{surface.TakeFrame(), QColor()};
	picture.rest = ColorBeyond(picture.image);
	bool post = mailbox->Put(std::move(picture));
	surface.SetSpare(mailbox->TakeSpare());
	if (!post)
		return;
	ServerLink::Default().Post([id = id] {
		if (auto* server = Registry::Default().Find<ServerWindow>(id))
			server->Content()->TakeFrame();
	});
}

/*!	`tellServer`: false when the server is who told us. */
void
WindowData::SetFocus(BView* view, bool tellServer)
{
	if (focus == view)
		return;
	BView* old = std::exchange(focus, view);
	if (old != NULL)
		old->MakeFocus(false);
	// the old one's hook may have chosen another
	if (focus != view)
		return;
	window->SetPreferredHandler(view);
	if (!tellServer || offscreen)
		return;
	if (view != NULL && ViewData::Of(view).proxy) {
		ViewData::Of(view).proxy->SetFocus(true);
		return;
	}
	ServerLink::Default().Post([id = id] {
		if (auto* server = Registry::Default().Find<ServerWindow>(id))
			server->Content()->setFocus();
	});
}

//! A view leaves the window.
void
WindowData::ViewGone(BView* view)
{
	if (focus == view) {
		focus = NULL;
		window->SetPreferredHandler(NULL);
	}
	if (pointerView == view)
		pointerView = NULL;
	frameEvents.erase(std::remove(frameEvents.begin(), frameEvents.end(), view), frameEvents.end());
}

//! What the full queue did not take.
void
WindowData::DeliverFrameEvents()
{
	if (frameEvents.empty())
		return;
	const std::vector<BView*> views = std::exchange(frameEvents, {});
	for (BView* view : views) {
		if (view->Window() == window)
			ViewData::Of(view).TellFrame();
	}
}

BRect
WindowData::Limited(BRect newFrame) const
{
	float width = std::min(std::max(newFrame.Width(), limits.left), limits.right);
	float height = std::min(std::max(newFrame.Height(), limits.top), limits.bottom);
	return BRect(newFrame.left, newFrame.top, newFrame.left + width, newFrame.top + height);
}

} // namespace BPrivate
