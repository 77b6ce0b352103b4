#include "server/ServerSign.h"

#include <QPainter>
#include <QPainterPath>

namespace BPrivate {

struct Sign {
	const char* icon; // of the desktops' icon naming standard
	QRgb color;
};

static constexpr Sign kSigns[] = {
	{"dialog-information", qRgb(0x3b, 0x7d, 0xc4)},
	{"dialog-warning", qRgb(0xe8, 0xa3, 0x17)},
	{"dialog-error", qRgb(0xc8, 0x3c, 0x3c)},
};

void
ServerSign::SetKind(Kind kind)
{
	fKind = kind;
	fIcon = QIcon::fromTheme(QLatin1String(kSigns[static_cast<int>(kind)].icon));
	update();
}

void
ServerSign::paintEvent(QPaintEvent*)
{
	QPainter painter(this);
	if (!fIcon.isNull()) {
		fIcon.paint(&painter, rect());
		return;
	}
	painter.setRenderHint(QPainter::Antialiasing);
	painter.scale(width() / 32.0, height() / 32.0);
	Draw(painter);
}

//! In a square of 32.
void
ServerSign::Draw(QPainter& painter) const
{
	const Sign& sign = kSigns[static_cast<int>(fKind)];
	const QColor color(sign.color);
	painter.setPen(QPen(color, 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
	painter.setBrush(color);
	if (fKind == Kind::kWarning)
		painter.drawPolygon(QPolygonF({{16, 3.5}, {29.5, 27.5}, {2.5, 27.5}}));
	else
		painter.drawEllipse(QRectF(2.5, 2.5, 27, 27));
	painter.setPen(QPen(Qt::white, 3.2, Qt::SolidLine, Qt::RoundCap));
	if (fKind == Kind::kStop) {
		painter.drawLine(QPointF(11, 11), QPointF(21, 21));
		painter.drawLine(QPointF(21, 11), QPointF(11, 21));
		return;
	}
	const bool isWarning = fKind == Kind::kWarning;
	painter.drawLine(QPointF(16, isWarning ? 11.5 : 14.5), QPointF(16, isWarning ? 19 : 23));
	painter.drawPoint(QPointF(16, isWarning ? 24 : 9.5));
}

} // namespace BPrivate
