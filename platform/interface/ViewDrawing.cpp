#include "interface/BitmapData.h"
#include "interface/ViewData.h"

#include <cmath>

using namespace BPrivate;

static QColor
to_qcolor(rgb_color color, bool withAlpha)
{
	return QColor(color.red, color.green, color.blue, withAlpha ? color.alpha : 255);
}

//! Right and bottom edges are pixels too.
static QRectF
covered(BRect rect)
{
	return QRectF(rect.left, rect.top, rect.Width() + 1, rect.Height() + 1);
}

//! The pattern in the two colours, or just one of them.
static QBrush
brush_for(const DrawState& state, const pattern& p)
{
	bool alpha = state.mode == B_OP_ALPHA;
	QColor high = to_qcolor(state.high, alpha);
	QColor low = state.mode == B_OP_OVER ? QColor(Qt::transparent) : to_qcolor(state.low, alpha);
	if (p == B_SOLID_HIGH)
		return high;
	if (p == B_SOLID_LOW)
		return low;
	QImage image(8, 8, QImage::Format_ARGB32_Premultiplied);
	for (int y = 0; y < 8; y++) {
		for (int x = 0; x < 8; x++)
			image.setPixelColor(x, y, p.data[y] & (0x80 >> x) ? high : low);
	}
	return QBrush(image);
}

void
BView::PushState()
{
	fData->states.push_back(fData->state);
}

void
BView::PopState()
{
	if (fData->states.empty())
		return;
	fData->state = fData->states.back();
	fData->states.pop_back();
}

rgb_color
BView::ViewColor() const
{
	return fData->viewColor;
}

rgb_color
BView::HighColor() const
{
	return fData->state.high;
}

rgb_color
BView::LowColor() const
{
	return fData->state.low;
}

void
BView::SetViewColor(rgb_color color)
{
	fData->uiColors[kViewColor] = UIColor();
	if (fData->viewColor == color)
		return;
	fData->viewColor = color;
	Invalidate();
}

void
BView::SetHighColor(rgb_color color)
{
	fData->state.high = color;
	fData->uiColors[kHighColor] = UIColor();
}

void
BView::SetLowColor(rgb_color color)
{
	fData->state.low = color;
	fData->uiColors[kLowColor] = UIColor();
}

void
BView::SetViewColor(uchar red, uchar green, uchar blue, uchar alpha)
{
	SetViewColor(make_color(red, green, blue, alpha));
}

void
BView::SetHighColor(uchar red, uchar green, uchar blue, uchar alpha)
{
	SetHighColor(make_color(red, green, blue, alpha));
}

void
BView::SetLowColor(uchar red, uchar green, uchar blue, uchar alpha)
{
	SetLowColor(make_color(red, green, blue, alpha));
}

void
BView::SetFont(const BFont* font, uint32 mask)
{
	if (font == NULL)
		return;
	BFont& mine = fData->state.font;
	BFont taken = mask & B_FONT_FAMILY_AND_STYLE ? *font : mine;
	if (!(mask & B_FONT_FAMILY_AND_STYLE) && (mask & B_FONT_FACE))
		taken.SetFace(font->Face());
	taken.SetSize(mask & B_FONT_SIZE ? font->Size() : mine.Size());
	taken.SetSpacing(mask & B_FONT_SPACING ? font->Spacing() : mine.Spacing());
	taken.SetEncoding(mask & B_FONT_ENCODING ? font->Encoding() : mine.Encoding());
	taken.SetFlags(mask & B_FONT_FLAGS ? font->Flags() : mine.Flags());
	mine = taken;
	fData->state.fontSet = true;
	if (fData->proxy)
		fData->proxy->SetFont(mine);
}

void
BView::SetFontSize(float size)
{
	BFont font(fData->state.font);
	font.SetSize(size);
	SetFont(&font, B_FONT_SIZE);
}

void
BView::GetFont(BFont* font) const
{
	if (font != NULL)
		*font = fData->state.font;
}

void
BView::GetFontHeight(font_height* height) const
{
	fData->state.font.GetHeight(height);
}

float
BView::StringWidth(const char* string) const
{
	return fData->state.font.StringWidth(string);
}

float
BView::StringWidth(const char* string, int32 length) const
{
	return fData->state.font.StringWidth(string, length);
}

void
BView::SetPenSize(float size)
{
	fData->state.penSize = std::max(size, 0.0f);
}

float
BView::PenSize() const
{
	return fData->state.penSize;
}

void
BView::SetDrawingMode(drawing_mode mode)
{
	fData->state.mode = mode;
}

drawing_mode
BView::DrawingMode() const
{
	return fData->state.mode;
}

void
BView::MovePenTo(BPoint point)
{
	fData->state.pen = point;
}

void
BView::MovePenTo(float x, float y)
{
	MovePenTo(BPoint(x, y));
}

void
BView::MovePenBy(float dh, float dv)
{
	fData->state.pen += BPoint(dh, dv);
}

BPoint
BView::PenLocation() const
{
	return fData->state.pen;
}

void
BView::DrawString(const char* string)
{
	DrawString(string, -1);
}

void
BView::DrawString(const char* string, BPoint location)
{
	DrawString(string, -1, location);
}

void
BView::DrawString(const char* string, int32 length, BPoint location)
{
	MovePenTo(location);
	DrawString(string, length);
}

void
BView::DrawString(const char* string, int32 length)
{
	DrawState& state = fData->state;
	const PreparedFont* font = prepared_font(state.font);
	const QString text = drawn_text(string, length);
	if (font == NULL || text.isEmpty() || state.font.Size() <= 0)
		return;
	if (QPainter* painter = fData->Painter()) {
		painter->setCompositionMode(QPainter::CompositionMode_SourceOver);
		painter->setPen(to_qcolor(state.high, state.mode == B_OP_ALPHA));
		painter->setFont(font->font);
		painter->drawText(QPointF(state.pen.x, state.pen.y), text);
		WindowData& window = WindowData::Of(Window());
		window.surface.TextDrawn(window.inUpdate);
	}
	state.pen.x += text_width(*font, text);
}

void
BView::StrokeLine(BPoint to, ::pattern p)
{
	StrokeLine(fData->state.pen, to, p);
}

void
BView::StrokeLine(BPoint from, BPoint to, ::pattern p)
{
	DrawState& state = fData->state;
	MovePenTo(to);
	float size = std::max(state.penSize, 1.0f);
	float more = size - 1;
	if (from.x == to.x || from.y == to.y) {
		BRect line(std::min(from.x, to.x), std::min(from.y, to.y), std::max(from.x, to.x),
			std::max(from.y, to.y));
		from.x == to.x ? line.InsetBy(-more / 2, 0) : line.InsetBy(0, -more / 2);
		FillRect(line, p);
		return;
	}
	QPainter* painter = fData->Painter();
	if (painter == NULL)
		return;
	painter->setCompositionMode(QPainter::CompositionMode_SourceOver);
	painter->setPen(QPen(brush_for(state, p), size, Qt::SolidLine, Qt::SquareCap));
	// the middle of a pixel is half a pixel from its edges
	painter->drawLine(QPointF(from.x + 0.5, from.y + 0.5), QPointF(to.x + 0.5, to.y + 0.5));
}

void
BView::StrokeRect(BRect rect, ::pattern p)
{
	if (!rect.IsValid())
		return;
	// of a wide pen, half lies on each side of the edge
	float more = std::max(fData->state.penSize, 1.0f) - 1;
	BRect outer = rect.InsetByCopy(-std::floor(more / 2), -std::floor(more / 2));
	if (outer.Width() <= 2 * more + 1 || outer.Height() <= 2 * more + 1) {
		FillRect(outer, p);
		return;
	}
	FillRect(BRect(outer.left, outer.top, outer.right, outer.top + more), p);
	FillRect(BRect(outer.left, outer.bottom - more, outer.right, outer.bottom), p);
	float top = outer.top + more + 1;
	float bottom = outer.bottom - more - 1;
	FillRect(BRect(outer.left, top, outer.left + more, bottom), p);
	FillRect(BRect(outer.right - more, top, outer.right, bottom), p);
}

void
BView::FillRect(BRect rect, ::pattern p)
{
	QPainter* painter = rect.IsValid() ? fData->Painter() : NULL;
	if (painter == NULL)
		return;
	painter->setCompositionMode(QPainter::CompositionMode_SourceOver);
	painter->fillRect(covered(rect), brush_for(fData->state, p));
}

void
BView::StrokeEllipse(BRect rect, ::pattern p)
{
	QPainter* painter = rect.IsValid() ? fData->Painter() : NULL;
	if (painter == NULL)
		return;
	float size = std::max(fData->state.penSize, 1.0f);
	painter->setCompositionMode(QPainter::CompositionMode_SourceOver);
	painter->setRenderHint(QPainter::Antialiasing);
	painter->setPen(QPen(brush_for(fData->state, p), size));
	painter->setBrush(Qt::NoBrush);
	painter->drawEllipse(covered(rect).adjusted(0.5, 0.5, -0.5, -0.5));
	painter->setRenderHint(QPainter::Antialiasing, false);
}

void
BView::FillEllipse(BRect rect, ::pattern p)
{
	QPainter* painter = rect.IsValid() ? fData->Painter() : NULL;
	if (painter == NULL)
		return;
	painter->setCompositionMode(QPainter::CompositionMode_SourceOver);
	painter->setRenderHint(QPainter::Antialiasing);
	painter->setPen(Qt::NoPen);
	painter->setBrush(brush_for(fData->state, p));
	painter->drawEllipse(covered(rect));
	painter->setRenderHint(QPainter::Antialiasing, false);
}

/*!	The bitmap's own memory, as a shared image would be copied when the bitmap is written to next.
	B_OP_COPY takes the pixels as they are, without their alpha. */
static QImage
image_to_draw(const BBitmap* bitmap, drawing_mode mode)
{
	const QImage& image = BitmapData::Of(bitmap).surface->Image();
	bool blend = mode == B_OP_OVER || mode == B_OP_ALPHA;
	QImage pixels(image.constBits(), image.width(), image.height(), image.bytesPerLine(),
		blend ? image.format() : QImage::Format_RGB32);
	pixels.setDevicePixelRatio(image.devicePixelRatio());
	return pixels;
}

void
BView::DrawBitmapAsync(const BBitmap* bitmap, BRect bitmapRect, BRect viewRect)
{
	if (bitmap == NULL || !bitmap->IsValid() || !bitmapRect.IsValid() || !viewRect.IsValid())
		return;
	if (!fData->BeginDrawing())
		return;
	const DrawState& state = fData->state;
	const QImage image = image_to_draw(bitmap, state.mode);
	bool opaque = state.mode != B_OP_OVER && state.mode != B_OP_ALPHA;
	BPoint origin = fData->Origin();
	BPoint where = viewRect.LeftTop() + origin;
	Surface& surface = WindowData::Of(Window()).surface;
	if ((opaque || !image.hasAlphaChannel()) && bitmapRect == bitmap->Bounds()
		&& bitmapRect.Width() == viewRect.Width() && bitmapRect.Height() == viewRect.Height()
		&& surface.Copy(image, QPointF(where.x, where.y), fData->Clip()))
		return;
	QPainter* painter = fData->Painter();
	bool stretched
		= bitmapRect.Width() != viewRect.Width() || bitmapRect.Height() != viewRect.Height();
	painter->setCompositionMode(
		opaque ? QPainter::CompositionMode_Source : QPainter::CompositionMode_SourceOver);
	painter->setRenderHint(QPainter::SmoothPixmapTransform, stretched);
	QRectF source
		= covered(bitmapRect.OffsetToCopy(bitmapRect.LeftTop() - bitmap->Bounds().LeftTop()));
	qreal scale = image.devicePixelRatio();
	painter->drawImage(
		covered(viewRect), image, QRectF(source.topLeft() * scale, source.size() * scale));
}

void
BView::DrawBitmapAsync(const BBitmap* bitmap, BRect viewRect)
{
	if (bitmap != NULL)
		DrawBitmapAsync(bitmap, bitmap->Bounds(), viewRect);
}

void
BView::DrawBitmapAsync(const BBitmap* bitmap, BPoint where)
{
	if (bitmap != NULL)
		DrawBitmapAsync(bitmap, bitmap->Bounds(), bitmap->Bounds().OffsetToCopy(where));
}

void
BView::DrawBitmapAsync(const BBitmap* bitmap)
{
	DrawBitmapAsync(bitmap, fData->state.pen);
}

void
BView::DrawBitmap(const BBitmap* bitmap)
{
	DrawBitmapAsync(bitmap);
}

void
BView::DrawBitmap(const BBitmap* bitmap, BPoint where)
{
	DrawBitmapAsync(bitmap, where);
}

void
BView::DrawBitmap(const BBitmap* bitmap, BRect viewRect)
{
	DrawBitmapAsync(bitmap, viewRect);
}

void
BView::DrawBitmap(const BBitmap* bitmap, BRect bitmapRect, BRect viewRect)
{
	DrawBitmapAsync(bitmap, bitmapRect, viewRect);
}
