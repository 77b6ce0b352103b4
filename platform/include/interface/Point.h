#pragma once

#include <SupportDefs.h>
#include <algorithm>
#include <stdio.h>

class BRect;

/*!	A place in pixels, x to the right, y down. */
class BPoint {
public:
	float x = 0;
	float y = 0;

	BPoint() = default;
	BPoint(float x, float y) : x(x), y(y) { }

	void Set(float newX, float newY)
	{
		x = newX;
		y = newY;
	}
	//! Moves it to the nearest place in `rect`.
	inline void ConstrainTo(BRect rect);
	void PrintToStream() const { printf("BPoint(x:%.0f, y:%.0f)\n", x, y); }

	BPoint operator-() const { return BPoint(-x, -y); }
	BPoint operator+(const BPoint& other) const { return BPoint(x + other.x, y + other.y); }
	BPoint operator-(const BPoint& other) const { return BPoint(x - other.x, y - other.y); }
	BPoint& operator+=(const BPoint& other) { return *this = *this + other; }
	BPoint& operator-=(const BPoint& other) { return *this = *this - other; }
	bool operator==(const BPoint& other) const { return x == other.x && y == other.y; }
	bool operator!=(const BPoint& other) const { return !(*this == other); }
};

inline const BPoint B_ORIGIN;

#include <Rect.h>
