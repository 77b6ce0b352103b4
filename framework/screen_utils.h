#pragma once

#include <vector>

#include <Point.h>
#include <Rect.h>

/*!	Where windows go. Rectangles are windows' contents in screen coordinates; `screens` are the screens' frames, never
	empty. */
namespace merion {

//! The frames of all screens. Thread: any.
std::vector<BRect> screen_frames();

//! Whether so much of the frame is on a screen that a user can take hold of it.
bool is_on_screen(BRect frame, const std::vector<BRect>& screens);

//! Where the frame goes so that it is on a screen: its own place if that is one, else the nearest inside the nearest.
BPoint keep_on_screen(BRect frame, const std::vector<BRect>& screens);

//! A place for the frame beside another window: right of it where that is inside its screen, else left of it.
BPoint place_beside(BRect frame, BRect other, const std::vector<BRect>& screens);

enum class side { kLeft, kRight, kAbove, kBelow };

//! A place at that side of another window, with one edge in line, moved inside the other's screen where it is too small.
BPoint place_at_side(BRect frame, BRect other, side where, const std::vector<BRect>& screens);

} // namespace merion
