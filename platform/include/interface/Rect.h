#pragma once

#include <Point.h>
#include <Size.h>
#include <math.h>

/*!	A rectangle by its outermost pixels, all four included: (0, 0, 9, 4) covers ten by five, and its
	Width() is 9. It is valid when left <= right and top <= bottom; a new one is not. */
class BRect {
public:
	float left = 0;
	float top = 0;
	float right = -1;
	float bottom = -1;

	BRect() = default;
	BRect(float left, float top, float right, float bottom)
		: left(left),
		  top(top),
		  right(right),
		  bottom(bottom)
	{ }
	BRect(BPoint leftTop, BPoint rightBottom)
		: BRect(leftTop.x, leftTop.y, rightBottom.x, rightBottom.y)
	{ }
	BRect(BPoint leftTop, BSize size)
		: BRect(leftTop.x, leftTop.y, leftTop.x + size.width, leftTop.y + size.height)
	{ }
	//! A square whose side covers `side` pixels.
	explicit BRect(float side) : BRect(0, 0, side - 1, side - 1) { }

	bool IsValid() const { return left <= right && top <= bottom; }
	float Width() const { return right - left; }
	int32 IntegerWidth() const { return static_cast<int32>(ceilf(right - left)); }
	float Height() const { return bottom - top; }
	int32 IntegerHeight() const { return static_cast<int32>(ceilf(bottom - top)); }
	BSize Size() const { return BSize(Width(), Height()); }

	BPoint LeftTop() const { return BPoint(left, top); }
	BPoint RightBottom() const { return BPoint(right, bottom); }
	BPoint LeftBottom() const { return BPoint(left, bottom); }
	BPoint RightTop() const { return BPoint(right, top); }

	void Set(float newLeft, float newTop, float newRight, float newBottom)
	{
		*this = BRect(newLeft, newTop, newRight, newBottom);
	}
	//! Each moves one corner and with it two sides.
	void SetLeftTop(BPoint point)
	{
		left = point.x;
		top = point.y;
	}
	void SetRightBottom(BPoint point)
	{
		right = point.x;
		bottom = point.y;
	}
	void SetLeftBottom(BPoint point)
	{
		left = point.x;
		bottom = point.y;
	}
	void SetRightTop(BPoint point)
	{
		right = point.x;
		top = point.y;
	}

	//! Make it smaller on each side, move it by a distance, move its left top corner; ...Copy leave
	//! it and answer a changed one.
	void InsetBy(float dx, float dy) { InsetBySelf(dx, dy); }
	void InsetBy(BPoint distance) { InsetBySelf(distance); }
	void OffsetBy(float dx, float dy) { OffsetBySelf(dx, dy); }
	void OffsetBy(BPoint distance) { OffsetBySelf(distance); }
	void OffsetTo(float x, float y) { OffsetToSelf(x, y); }
	void OffsetTo(BPoint point) { OffsetToSelf(point); }

	BRect& InsetBySelf(float dx, float dy)
	{
		Set(left + dx, top + dy, right - dx, bottom - dy);
		return *this;
	}
	BRect& InsetBySelf(BPoint distance) { return InsetBySelf(distance.x, distance.y); }
	BRect& OffsetBySelf(float dx, float dy)
	{
		Set(left + dx, top + dy, right + dx, bottom + dy);
		return *this;
	}
	BRect& OffsetBySelf(BPoint distance) { return OffsetBySelf(distance.x, distance.y); }
	BRect& OffsetToSelf(float x, float y)
	{
		Set(x, y, x + Width(), y + Height());
		return *this;
	}
	BRect& OffsetToSelf(BPoint point) { return OffsetToSelf(point.x, point.y); }

	BRect InsetByCopy(float dx, float dy) const { return BRect(*this).InsetBySelf(dx, dy); }
	BRect InsetByCopy(BPoint distance) const { return BRect(*this).InsetBySelf(distance); }
	BRect OffsetByCopy(float dx, float dy) const { return BRect(*this).OffsetBySelf(dx, dy); }
	BRect OffsetByCopy(BPoint distance) const { return BRect(*this).OffsetBySelf(distance); }
	BRect OffsetToCopy(float x, float y) const { return BRect(*this).OffsetToSelf(x, y); }
	BRect OffsetToCopy(BPoint point) const { return BRect(*this).OffsetToSelf(point); }

	//! The common part (not valid when there is none) and the smallest rectangle around both.
	BRect operator&(BRect other) const
	{
		return BRect(std::max(left, other.left), std::max(top, other.top),
			std::min(right, other.right), std::min(bottom, other.bottom));
	}
	BRect operator|(BRect other) const
	{
		return BRect(std::min(left, other.left), std::min(top, other.top),
			std::max(right, other.right), std::max(bottom, other.bottom));
	}
	BRect& operator&=(BRect other) { return *this = *this & other; }
	BRect& operator|=(BRect other) { return *this = *this | other; }
	bool operator==(BRect other) const
	{
		return left == other.left && top == other.top && right == other.right
			&& bottom == other.bottom;
	}
	bool operator!=(BRect other) const { return !(*this == other); }

	//! False when either is not valid.
	bool Intersects(BRect other) const
	{
		return IsValid() && other.IsValid() && (*this & other).IsValid();
	}
	bool Contains(BPoint point) const
	{
		return point.x >= left && point.x <= right && point.y >= top && point.y <= bottom;
	}
	bool Contains(BRect other) const
	{
		return other.left >= left && other.right <= right && other.top >= top
			&& other.bottom <= bottom;
	}
	void PrintToStream() const
	{
		printf("BRect(l:%.1f, t:%.1f, r:%.1f, b:%.1f)\n", left, top, right, bottom);
	}
};

inline void
BPoint::ConstrainTo(BRect rect)
{
	x = std::max(std::min(x, rect.right), rect.left);
	y = std::max(std::min(y, rect.bottom), rect.top);
}
