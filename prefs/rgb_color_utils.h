#pragma once

#include <GraphicsDefs.h>

//! True when the colours DIFFER, alpha included.
bool compare_rgb_color(const rgb_color& a, const rgb_color& b);
