#pragma once

#include <InterfaceDefs.h>

class BView;
class BWindow;

namespace BPrivate {
struct BitmapData;
}

// Flags of the second constructor.
enum {
	B_BITMAP_CLEAR_TO_WHITE = 0x00000001,
	B_BITMAP_ACCEPTS_VIEWS = 0x00000002,
	B_BITMAP_IS_AREA = 0x00000004,
	B_BITMAP_IS_LOCKED = 0x00000008 | B_BITMAP_IS_AREA,
	B_BITMAP_IS_CONTIGUOUS = 0x00000010 | B_BITMAP_IS_LOCKED,
};

/*!	A picture in memory, B_RGB32 (what the fourth byte holds does not matter) or B_RGBA32 (alpha not
	multiplied in).
	A bitmap that accepts views is a window of its own that nobody sees: views added to it draw into
	its memory, at once, in the thread that holds its lock; it has no thread and needs no display
	server.
	Such a bitmap holds device pixels: where a screen's scale is 2, its memory is twice as wide and
	high as its bounds, and BytesPerRow() and BitsLength() say so, so that a copy of it on the
	window is as sharp as direct drawing. At scale 1, and in every bitmap without views, Bits() is
	pixel by pixel what the bounds say. */
class BBitmap {
public:
	/*!	Bounds wider or higher than 16384, or empty ones, or another colour space: IsValid() is
		false, InitCheck() tells why. */
	BBitmap(BRect bounds, color_space colorSpace, bool acceptsViews = false,
		bool needsContiguous = false);
	BBitmap(BRect bounds, uint32 flags, color_space colorSpace);
	//! A copy of the pixels, without the views.
	BBitmap(const BBitmap* source, bool acceptsViews = false, bool needsContiguous = false);
	BBitmap(const BBitmap&) = delete;
	BBitmap& operator=(const BBitmap&) = delete;
	//! Deletes its views. Nobody may hold the lock but the caller.
	virtual ~BBitmap();

	status_t InitCheck() const;
	bool IsValid() const;

	void* Bits() const;
	int32 BitsLength() const;
	int32 BytesPerRow() const;
	color_space ColorSpace() const;
	BRect Bounds() const;
	/*!	Copies rows of `colorSpace` B_RGB32 or B_RGBA32 in, from `offset` bytes on; what does not
		fit is cut. */
	void SetBits(const void* data, int32 length, int32 offset, color_space colorSpace);

	// Only for a bitmap that accepts views (else false, 0 or NULL, and nothing happens).
	virtual void AddChild(BView* view);
	virtual bool RemoveChild(BView* view);
	int32 CountChildren() const;
	BView* ChildAt(int32 index) const;
	BView* FindView(const char* name) const;
	BView* FindView(BPoint point) const;
	bool Lock();
	void Unlock();
	bool IsLocked() const;

private:
	friend struct BPrivate::BitmapData;
	BPrivate::BitmapData* fData;
};
