#include "interface/BitmapData.h"
#include "interface/ViewData.h"
#include "server/Desktop.h"
#include "server/ServerLink.h"

#include <Screen.h>

using namespace BPrivate;

//! Also the frame of a screen where there is no server.
static BRect
screen_frame(const DesktopInfo& desktop, size_t index)
{
	if (desktop.screens.empty())
		return BRect(0, 0, 639, 479);
	return to_brect(desktop.screens[index < desktop.screens.size() ? index : 0].frame);
}

BScreen::BScreen(screen_id id) : fIndex(id.id)
{
	DesktopInfo desktop = desktop_info();
	fValid = fIndex >= 0 && static_cast<size_t>(fIndex) < desktop.screens.size();
	fFrame = screen_frame(desktop, fValid ? fIndex : 0);
}

BScreen::BScreen(BWindow* window) : BScreen()
{
	if (window == NULL)
		return;
	BRect frame = window->Frame();
	BPoint middle((frame.left + frame.right) / 2, (frame.top + frame.bottom) / 2);
	DesktopInfo desktop = desktop_info();
	for (size_t i = 0; i < desktop.screens.size(); i++) {
		if (screen_frame(desktop, i).Contains(middle)) {
			fIndex = i;
			fFrame = screen_frame(desktop, i);
			return;
		}
	}
}

bool
BScreen::IsValid() const
{
	return fValid;
}

screen_id
BScreen::ID() const
{
	return screen_id{fIndex};
}

status_t
BScreen::SetToNext()
{
	BScreen next(screen_id{fIndex + 1});
	if (!next.IsValid())
		return B_ERROR;
	*this = next;
	return B_OK;
}

BRect
BScreen::Frame() const
{
	return fFrame;
}

color_space
BScreen::ColorSpace() const
{
	return fValid ? B_RGB32 : B_NO_COLOR_SPACE;
}

status_t
BScreen::GetBitmap(BBitmap** bitmap, bool, BRect* frame)
{
	if (bitmap == NULL || !fValid)
		return B_BAD_VALUE;
	BRect part = frame != NULL ? *frame & fFrame : fFrame;
	if (!part.IsValid())
		return B_BAD_VALUE;
	auto image
		= ServerLink::Default().Call([rect = to_qrect(part)] { return Desktop::Grab(rect); });
	if (!image || image->isNull())
		return B_ERROR;
	*bitmap = BitmapData::FromImage(*image);
	return *bitmap != NULL ? B_OK : B_NO_MEMORY;
}
