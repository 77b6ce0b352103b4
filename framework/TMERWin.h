#pragma once

#include <Window.h>

namespace merion {

/*!	Base of the maker's windows.
	Thread: made and shown from any, otherwise as every window. Owner: its own looper. */
class TMERWin : public BWindow {
public:
	TMERWin(BRect frame, const char* title, window_look look, window_feel feel, uint32 flags,
		uint32 workspaces = B_CURRENT_WORKSPACE);

	//! Shows the window when it is hidden or minimised; brings it to the front when it was there already.
	virtual void Appear();
	//! Moves the window beside another one's frame (place_beside()).
	void PlaceBeside(BRect other);
};

} // namespace merion
