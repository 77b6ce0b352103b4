#pragma once

#include <SupportDefs.h>

class BWindow;

namespace BPrivate {

/*!	Writes what the window shows, its controls included and whatever lies over it, as a PNG file in
	device pixels. A hidden window is drawn for it.
	The caller holds the window's lock. B_NOT_ALLOWED without it, B_ERROR when the display server
	has gone, B_IO_ERROR when the file cannot be written. */
status_t save_window_picture(BWindow* window, const char* pngPath);

} // namespace BPrivate
