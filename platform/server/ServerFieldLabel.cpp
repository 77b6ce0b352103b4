#include "server/ServerFieldLabel.h"

#include <QPainter>
#include <QStyle>

namespace BPrivate {

static constexpr int kGap = 4; // at least, between the label and what it labels

ServerFieldLabel::ServerFieldLabel()
{
	setTextFormat(Qt::PlainText);
	setAttribute(Qt::WA_TransparentForMouseEvents);
}

//! A label of something takes an ampersand for the mark of a key.
void
ServerFieldLabel::SetLabel(const QString& label)
{
	fLabel = label;
	setText(QString(label).replace(QLatin1Char('&'), QLatin1String("&&")));
	update();
}

void
ServerFieldLabel::SetDivider(int divider)
{
	fDivider = divider;
	update();
}

void
ServerFieldLabel::paintEvent(QPaintEvent*)
{
	QPainter painter(this);
	const QRect room(0, 0, qMax(0, fDivider - kGap), height());
	const QString fitting = fontMetrics().elidedText(fLabel, Qt::ElideRight, room.width());
	style()->drawItemText(&painter, room, alignment() | Qt::TextSingleLine, palette(), isEnabled(),
		fitting, foregroundRole());
}

} // namespace BPrivate
