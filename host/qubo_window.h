#pragma once

#include <Rect.h>
#include <SupportDefs.h>

class BWindow;

/*!	Finds the host's window among the application's: the first whose title begins with "Qubo". 0, or -1 when there is
	none. Each window is locked while it is looked at; one that stays locked for half a second is passed over.
	The window may be gone when the call returns: its Lock() tells. */
[[nodiscard]] status_t get_qubo_window(BWindow** window);

//! The same, for the frame of that window's contents in screen coordinates.
[[nodiscard]] status_t get_qubo_win_frame(BRect* frame);
