#pragma once

#include "interface/FontCache.h"

#include <InterfaceDefs.h>
#include <QImage>
#include <QPainter>
#include <QRegion>
#include <memory>
#include <thread>

namespace BPrivate {

/*!	The picture that the views of one window or one bitmap draw into, and the painter on it.
	Thread: whoever has the window's lock. The painter never outlives a drawn text in a thread that
	is not the window's own, because a font must not go from one thread to another. */
class Surface {
public:
	//! `size` in the window's pixels; device pixels are `scale` times as many, rounded up.
	static QImage MakeImage(QSize size, float scale, QImage::Format format);

	~Surface();

	//! Takes a blank image; what was drawn is lost.
	void SetImage(QImage image);
	bool IsNull() const { return fSize.isEmpty(); }
	const QImage& Image() const { return fImage; }
	//! For a bitmap's: where its pixels are.
	uchar* Bits() { return fImage.bits(); }
	QSize Size() const { return fSize; }
	float Scale() const { return fScale; }

	/*!	The painter, cut to `clip` (in the window's coordinates) and moved so that 0, 0 is `origin`.
		The image counts as drawn into from now on. */
	QPainter& Painter(const QRegion& clip, QPointF origin);
	/*!	Copies an image of the same format and scale with its top left corner at `where`; false when
		that needs a painter. */
	bool Copy(const QImage& source, QPointF where, const QRegion& clip);
	//! After a text: see above.
	void TextDrawn(bool keepPainter);
	//! Ends the painter: all is in the image.
	void Finish();
	bool IsTouched() const { return fTouched; }
	//! An image that was handed out before and may serve again.
	void SetSpare(QImage image) { fSpare = std::move(image); }
	//! The picture as it is, to be handed to others; drawing goes on in a copy.
	QImage TakeFrame();

private:
	void Unshare(bool keepPixels);

	QImage fImage;
	QImage fSpare;
	QSize fSize;
	float fScale = 1;
	std::unique_ptr<QPainter> fPainter;
	std::thread::id fThread;
	QRegion fClip;
	QPointF fOrigin;
	bool fTouched = false;
};

} // namespace BPrivate
