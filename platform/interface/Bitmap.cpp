#include "interface/BitmapData.h"
#include "interface/ViewData.h"
#include "server/Desktop.h"

#include <string.h>

using namespace BPrivate;

static constexpr float kMaxSide = 16384;

namespace BPrivate {

void
BitmapData::Init(BRect newBounds, color_space newSpace, bool acceptsViews, bool clear)
{
	if (!newBounds.IsValid() || newBounds.Width() >= kMaxSide || newBounds.Height() >= kMaxSide
		|| (newSpace != B_RGB32 && newSpace != B_RGBA32)) {
		status = B_BAD_VALUE;
		return;
	}
	bounds = newBounds;
	space = newSpace;
	QSize size(newBounds.IntegerWidth() + 1, newBounds.IntegerHeight() + 1);
	QImage image = Surface::MakeImage(size, acceptsViews ? desktop_scale() : 1,
		newSpace == B_RGB32 ? QImage::Format_RGB32 : QImage::Format_ARGB32);
	if (image.isNull()) {
		status = B_NO_MEMORY;
		return;
	}
	image.fill(clear ? Qt::white : Qt::black);
	if (!clear && newSpace == B_RGBA32)
		image.fill(Qt::transparent);
	if (acceptsViews) {
		window = WindowData::MakeOffscreen(bitmap);
		surface = &WindowData::Of(window).surface;
	} else {
		own = std::make_unique<Surface>();
		surface = own.get();
	}
	surface->SetImage(std::move(image));
	bits = surface->Bits();
	status = B_OK;
	if (window != NULL)
		window->Unlock();
}

BBitmap*
BitmapData::FromImage(const QImage& image)
{
	bool alpha = image.hasAlphaChannel();
	const QImage converted
		= image.convertToFormat(alpha ? QImage::Format_ARGB32 : QImage::Format_RGB32);
	auto* made = new BBitmap(
		BRect(0, 0, image.width() - 1, image.height() - 1), 0u, alpha ? B_RGBA32 : B_RGB32);
	if (!made->IsValid() || converted.isNull()) {
		delete made;
		return NULL;
	}
	for (int y = 0; y < converted.height(); y++) {
		memcpy(static_cast<uchar*>(made->Bits()) + y * made->BytesPerRow(),
			converted.constScanLine(y), converted.width() * 4);
	}
	return made;
}

} // namespace BPrivate

BBitmap::BBitmap(BRect bounds, color_space colorSpace, bool acceptsViews, bool)
	: fData(new BitmapData(this))
{
	fData->Init(bounds, colorSpace, acceptsViews, false);
}

BBitmap::BBitmap(BRect bounds, uint32 flags, color_space colorSpace) : fData(new BitmapData(this))
{
	fData->Init(bounds, colorSpace, (flags & B_BITMAP_ACCEPTS_VIEWS) != 0,
		(flags & B_BITMAP_CLEAR_TO_WHITE) != 0);
}

BBitmap::BBitmap(const BBitmap* source, bool acceptsViews, bool) : fData(new BitmapData(this))
{
	if (source == NULL || !source->IsValid()) {
		fData->status = B_BAD_VALUE;
		return;
	}
	fData->Init(source->Bounds(), source->ColorSpace(), acceptsViews, false);
	if (!IsValid())
		return;
	const QImage& pixels = BitmapData::Of(source).surface->Image();
	if (pixels.devicePixelRatio() == fData->surface->Scale()) {
		memcpy(fData->bits, pixels.constBits(), pixels.sizeInBytes());
		return;
	}
	QPainter& painter
		= fData->surface->Painter(QRect(QPoint(0, 0), fData->surface->Size()), QPointF(0, 0));
	painter.setCompositionMode(QPainter::CompositionMode_Source);
	painter.setRenderHint(QPainter::SmoothPixmapTransform);
	painter.drawImage(QPointF(0, 0), pixels);
	fData->surface->Finish();
}

BBitmap::~BBitmap()
{
	if (fData->window != NULL && fData->window->Lock())
		fData->window->Quit();
	delete fData;
}

status_t
BBitmap::InitCheck() const
{
	return fData->status;
}

bool
BBitmap::IsValid() const
{
	return fData->status == B_OK;
}

void*
BBitmap::Bits() const
{
	return fData->bits;
}

int32
BBitmap::BitsLength() const
{
	return IsValid() ? fData->surface->Image().sizeInBytes() : 0;
}

int32
BBitmap::BytesPerRow() const
{
	return IsValid() ? fData->surface->Image().bytesPerLine() : 0;
}

color_space
BBitmap::ColorSpace() const
{
	return fData->space;
}

BRect
BBitmap::Bounds() const
{
	return fData->bounds;
}

void
BBitmap::SetBits(const void* data, int32 length, int32 offset, color_space colorSpace)
{
	if (!IsValid() || data == NULL || length <= 0 || offset < 0 || offset >= BitsLength()
		|| (colorSpace != B_RGB32 && colorSpace != B_RGBA32))
		return;
	memcpy(fData->bits + offset, data, std::min(length, BitsLength() - offset));
}

void
BBitmap::AddChild(BView* view)
{
	if (fData->window != NULL)
		fData->window->AddChild(view);
}

bool
BBitmap::RemoveChild(BView* view)
{
	return fData->window != NULL && fData->window->RemoveChild(view);
}

int32
BBitmap::CountChildren() const
{
	return fData->window != NULL ? fData->window->CountChildren() : 0;
}

BView*
BBitmap::ChildAt(int32 index) const
{
	return fData->window != NULL ? fData->window->ChildAt(index) : NULL;
}

BView*
BBitmap::FindView(const char* name) const
{
	return fData->window != NULL ? fData->window->FindView(name) : NULL;
}

BView*
BBitmap::FindView(BPoint point) const
{
	return fData->window != NULL ? fData->window->FindView(point) : NULL;
}

bool
BBitmap::Lock()
{
	return fData->window != NULL && fData->window->Lock();
}

void
BBitmap::Unlock()
{
	if (fData->window != NULL)
		fData->window->Unlock();
}

bool
BBitmap::IsLocked() const
{
	return fData->window != NULL && fData->window->IsLocked();
}
