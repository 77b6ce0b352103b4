#pragma once

#include <InterfaceDefs.h>

class BBitmap;
class BWindow;

/*!	One of the desktop's screens, as it was when the object was made. Any thread. */
class BScreen {
public:
	/*!	A screen that is not there (any more) makes IsValid() false and Frame() that of the main
		screen. */
	explicit BScreen(screen_id id = B_MAIN_SCREEN_ID);
	/*!	The screen that the middle of the window is on, else the main one. The window need not be
		locked. */
	explicit BScreen(BWindow* window);

	bool IsValid() const;
	screen_id ID() const;
	//! Goes on to the next screen; B_ERROR, and no change, after the last.
	status_t SetToNext();
	//! In the coordinates of all screens together, in which window frames are given.
	BRect Frame() const;
	color_space ColorSpace() const;
	/*!	What the screen shows (all of it for NULL), in a new bitmap that the caller deletes. The
		pointer is never in it. */
	status_t GetBitmap(BBitmap** bitmap, bool drawCursor = true, BRect* frame = NULL);

private:
	int32 fIndex;
	bool fValid;
	BRect fFrame;
};
