#include "framework/screen_utils.h"

#include <algorithm>
#include <cmath>

#include <Screen.h>

namespace merion {

namespace {

constexpr float kBesideGap = 16;      // room for the borders of both windows
constexpr float kTitleTabHeight = 24; // above a window's contents
constexpr float kHoldWidth = 48;      // this much of a window is enough to take hold of it
constexpr float kHoldHeight = 24;

BPoint
moved_inside(BRect frame, BRect screen)
{
	// The left and top edges win where the window is larger than the screen.
	const float left = std::min(frame.left, screen.right - frame.Width());
	const float top = std::min(frame.top, screen.bottom - frame.Height());
	return BPoint(std::max(left, screen.left), std::max(top, screen.top + kTitleTabHeight));
}

float
distance(BRect frame, BRect screen)
{
	const float x = std::max({screen.left - frame.right, frame.left - screen.right, 0.0f});
	const float y = std::max({screen.top - frame.bottom, frame.top - screen.bottom, 0.0f});
	return x * x + y * y;
}

BRect
nearest_screen(BRect frame, const std::vector<BRect>& screens)
{
	return *std::min_element(screens.begin(), screens.end(),
		[&](BRect a, BRect b) { return distance(frame, a) < distance(frame, b); });
}

} // namespace

std::vector<BRect>
screen_frames()
{
	std::vector<BRect> frames;
	BScreen screen;
	do {
		frames.push_back(screen.Frame());
	} while (screen.SetToNext() == B_OK);
	return frames;
}

bool
is_on_screen(BRect frame, const std::vector<BRect>& screens)
{
	return std::any_of(screens.begin(), screens.end(), [&](BRect screen) {
		const BRect seen = frame & screen;
		return seen.Width() >= std::min(kHoldWidth, frame.Width())
			&& seen.Height() >= std::min(kHoldHeight, frame.Height());
	});
}

BPoint
keep_on_screen(BRect frame, const std::vector<BRect>& screens)
{
	if (is_on_screen(frame, screens))
		return frame.LeftTop();
	return moved_inside(frame, nearest_screen(frame, screens));
}

BPoint
place_beside(BRect frame, BRect other, const std::vector<BRect>& screens)
{
	const BRect screen = nearest_screen(other, screens);
	const float right = other.right + kBesideGap;
	const float left = other.left - kBesideGap - frame.Width();
	const bool fitsRight = right + frame.Width() <= screen.right;
	frame.OffsetTo(fitsRight || left < screen.left ? right : left, other.top);
	return moved_inside(frame, screen);
}

BPoint
place_at_side(BRect frame, BRect other, side where, const std::vector<BRect>& screens)
{
	switch (where) {
		case side::kLeft:
			frame.OffsetTo(other.left - kBesideGap - frame.Width(), other.top);
			break;
		case side::kRight:
			frame.OffsetTo(other.right + kBesideGap, other.top);
			break;
		case side::kAbove:
			frame.OffsetTo(other.left, other.top - kTitleTabHeight - kBesideGap - frame.Height());
			break;
		case side::kBelow:
			frame.OffsetTo(other.left, other.bottom + kTitleTabHeight + kBesideGap);
			break;
	}
	return moved_inside(frame, nearest_screen(other, screens));
}

} // namespace merion
