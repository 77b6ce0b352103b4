#pragma once

#include "interface/Surface.h"

#include <Bitmap.h>
#include <memory>

namespace BPrivate {

/*!	The inside of a bitmap. With views, the surface is that of the window that nobody sees. */
struct BitmapData {
	explicit BitmapData(BBitmap* bitmap) : bitmap(bitmap) { }
	static BitmapData& Of(const BBitmap* bitmap) { return *bitmap->fData; }

	BBitmap* bitmap;
	status_t status = B_NO_INIT;
	BRect bounds;
	color_space space = B_NO_COLOR_SPACE;
	BWindow* window = NULL;
	std::unique_ptr<Surface> own;
	Surface* surface = NULL;
	uchar* bits = NULL;

	void Init(BRect newBounds, color_space newSpace, bool acceptsViews, bool clear);
	static BBitmap* FromImage(const QImage& image);
};

} // namespace BPrivate
