#pragma once

#include <SupportDefs.h>

inline constexpr float B_SIZE_UNSET = -2;
inline constexpr float B_SIZE_UNLIMITED = 1024 * 1024 * 1024;

/*!	Width and height as a BRect counts them: right - left and bottom - top, so one less than the
	pixels. */
class BSize {
public:
	float width = B_SIZE_UNSET;
	float height = B_SIZE_UNSET;

	BSize() = default;
	BSize(float width, float height) : width(width), height(height) { }

	float Width() const { return width; }
	float Height() const { return height; }
	int32 IntegerWidth() const { return static_cast<int32>(width); }
	int32 IntegerHeight() const { return static_cast<int32>(height); }
	void Set(float newWidth, float newHeight)
	{
		width = newWidth;
		height = newHeight;
	}
	void SetWidth(float newWidth) { width = newWidth; }
	void SetHeight(float newHeight) { height = newHeight; }
	bool IsWidthSet() const { return width != B_SIZE_UNSET; }
	bool IsHeightSet() const { return height != B_SIZE_UNSET; }

	bool operator==(const BSize& other) const
	{
		return width == other.width && height == other.height;
	}
	bool operator!=(const BSize& other) const { return !(*this == other); }
};
