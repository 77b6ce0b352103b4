#include "prefs/rgb_color_utils.h"

bool
compare_rgb_color(const rgb_color& a, const rgb_color& b)
{
	return a.red != b.red || a.green != b.green || a.blue != b.blue || a.alpha != b.alpha;
}
