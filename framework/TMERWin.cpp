#include "framework/TMERWin.h"

#include "framework/screen_utils.h"

namespace merion {

TMERWin::TMERWin(BRect frame, const char* title, window_look look, window_feel feel, uint32 flags,
	uint32 workspaces)
	: BWindow(frame, title, look, feel, flags, workspaces)
{ }

void
TMERWin::Appear()
{
	if (!Lock())
		return;
	if (IsMinimized())
		Minimize(false);
	if (IsHidden())
		Show();
	else
		Activate();
	Unlock();
}

void
TMERWin::PlaceBeside(BRect other)
{
	MoveTo(place_beside(Frame(), other, screen_frames()));
}

} // namespace merion
