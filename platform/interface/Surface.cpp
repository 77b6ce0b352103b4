#include "interface/Surface.h"

#include <cmath>
#include <string.h>

namespace BPrivate {

QImage
Surface::MakeImage(QSize size, float scale, QImage::Format format)
{
	QImage image(std::ceil(size.width() * scale), std::ceil(size.height() * scale), format);
	image.setDevicePixelRatio(scale);
	image.setDotsPerMeterX(kDotsPerMeter);
	image.setDotsPerMeterY(kDotsPerMeter);
	return image;
}

Surface::~Surface()
{
	Finish();
}

void
Surface::SetImage(QImage image)
{
	Finish();
	fImage = std::move(image);
	fScale = fImage.devicePixelRatio();
	const QSizeF size = fImage.deviceIndependentSize();
	fSize = QSize(std::floor(size.width() + 0.001), std::floor(size.height() + 0.001));
}

QPainter&
Surface::Painter(const QRegion& clip, QPointF origin)
{
	fTouched = true;
	if (fPainter && fThread != std::this_thread::get_id())
		Finish();
	if (!fPainter) {
		Unshare(true);
		fPainter = std::make_unique<QPainter>(&fImage);
		fThread = std::this_thread::get_id();
		fPainter->setClipRegion(clip);
		fPainter->setWorldTransform(QTransform::fromTranslate(origin.x(), origin.y()));
	} else if (clip != fClip || origin != fOrigin) {
		fPainter->setWorldTransform(QTransform());
		fPainter->setClipRegion(clip);
		fPainter->setWorldTransform(QTransform::fromTranslate(origin.x(), origin.y()));
	}
	fClip = clip;
	fOrigin = origin;
	return *fPainter;
}

/*!	The server shows the image that it was given; drawing goes on in another one, best in one whose
	memory is there already. */
void
Surface::Unshare(bool keepPixels)
{
	if (fImage.isDetached())
		return;
	QImage next = std::exchange(fSpare, QImage());
	if (!next.isDetached() || next.size() != fImage.size() || next.format() != fImage.format()
		|| next.devicePixelRatio() != fImage.devicePixelRatio())
		next = MakeImage(fSize, fImage.devicePixelRatio(), fImage.format());
	if (keepPixels)
		memcpy(next.bits(), fImage.constBits(), fImage.sizeInBytes());
	fImage = std::move(next);
}

static bool
is_whole(qreal number)
{
	return number == std::floor(number);
}

bool
Surface::Copy(const QImage& source, QPointF where, const QRegion& clip)
{
	qreal scale = fImage.devicePixelRatio();
	QPointF device = where * scale;
	if (source.format() != fImage.format() || source.devicePixelRatio() != scale
		|| !is_whole(device.x()) || !is_whole(device.y()))
		return false;
	// at a broken scale the painter decides which pixels a clip's edge takes
	bool everything = clip.contains(QRect(QPoint(0, 0), fSize)) && clip.rectCount() == 1;
	if (!everything && !is_whole(scale))
		return false;
	fTouched = true;
	const QPoint offset = device.toPoint();
	const QRect target = QRect(offset, source.size()) & fImage.rect();
	// what is painted over whole need not be copied from the frame that the server has
	if (!fPainter)
		Unshare(!everything || target != fImage.rect());
	int depth = fImage.depth() / 8;
	uchar* bits = fImage.bits();
	for (const QRect& part : clip) {
		QRect pixels = everything ? target
								  : target
				& QRect(part.topLeft() * scale, QSize(part.width() * scale, part.height() * scale));
		for (int y = pixels.top(); y <= pixels.bottom(); y++) {
			memcpy(bits + y * fImage.bytesPerLine() + pixels.left() * depth,
				source.constScanLine(y - offset.y()) + (pixels.left() - offset.x()) * depth,
				pixels.width() * depth);
		}
	}
	return true;
}

void
Surface::TextDrawn(bool keepPainter)
{
	if (!keepPainter)
		Finish();
}

void
Surface::Finish()
{
	fPainter.reset();
}

QImage
Surface::TakeFrame()
{
	Finish();
	fTouched = false;
	return fImage;
}

} // namespace BPrivate
