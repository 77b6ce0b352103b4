#include "server/ServerBox.h"

#include <QStyleOption>
#include <QStylePainter>

namespace BPrivate {

// beside a label that interrupts the line
static constexpr int kGap = 3;
static constexpr int kLabelLeft = 10;

ServerBox::ServerBox()
{
	setAttribute(Qt::WA_TransparentForMouseEvents);
	setFocusPolicy(Qt::NoFocus);
}

void
ServerBox::SetBorder(border_style border)
{
	fBorder = border;
	update();
}

void
ServerBox::SetLabelPlace(QRect place)
{
	fLabelPlace = place;
	update();
}

QStyleOptionGroupBox
ServerBox::Option(QSize size) const
{
	QStyleOptionGroupBox option;
	initStyleOption(&option);
	option.rect = QRect(QPoint(), size);
	if (!fLabelPlace.isEmpty())
		option.rect.setTop(fLabelPlace.center().y());
	return option;
}

//! Empty without a label.
QRect
ServerBox::LabelRect(const QStyleOptionGroupBox& option) const
{
	if (!fLabelPlace.isEmpty())
		return fLabelPlace;
	if (option.text.isEmpty())
		return QRect();
	if (fBorder == B_FANCY_BORDER)
		return style()->subControlRect(
			QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxLabel, this);
	const int width = fontMetrics().size(Qt::TextShowMnemonic, option.text).width();
	const int most = option.rect.width() - 2 * kLabelLeft;
	return QRect(kLabelLeft, 0, qMin(width, most), fontMetrics().height());
}

//! The line of a plain border goes through the middle of the label.
QRect
ServerBox::LineRect(const QStyleOptionGroupBox& option) const
{
	QRect line = option.rect;
	if (fLabelPlace.isEmpty() && !option.text.isEmpty())
		line.setTop(LabelRect(option).center().y());
	return line;
}

QRect
ServerBox::InnerRect(QSize size) const
{
	const QStyleOptionGroupBox option = Option(size);
	const QRect label = LabelRect(option);
	QRect inner = option.rect;
	if (fBorder == B_FANCY_BORDER)
		inner = style()->subControlRect(
			QStyle::CC_GroupBox, &option, QStyle::SC_GroupBoxContents, this);
	else if (fBorder == B_PLAIN_BORDER)
		inner = LineRect(option).adjusted(1, 1, -1, -1);
	if (!label.isEmpty())
		inner.setTop(qMax(inner.top(), label.bottom() + 1));
	return inner;
}

QSize
ServerBox::sizeHint() const
{
	const QSize size(200, 200);
	const QSize inner = InnerRect(size).size();
	const QRect label = LabelRect(Option(size));
	const int text = fontMetrics().size(Qt::TextShowMnemonic, title()).width();
	const int labelWidth = fLabelPlace.isEmpty() ? text : label.width();
	return QSize(qMax(size.width() - inner.width(), labelWidth + 2 * kLabelLeft),
		size.height() - inner.height());
}

void
ServerBox::paintEvent(QPaintEvent*)
{
	QStylePainter painter(this);
	QStyleOptionGroupBox option = Option(size());
	const QRect label = LabelRect(option);
	if (!fLabelPlace.isEmpty())
		painter.setClipRegion(QRegion(rect()) - label.adjusted(-kGap, 0, kGap, 0));
	if (fBorder == B_FANCY_BORDER) {
		painter.drawComplexControl(QStyle::CC_GroupBox, option);
		return;
	}
	if (fBorder == B_PLAIN_BORDER) {
		painter.save();
		if (!label.isEmpty())
			painter.setClipRegion(QRegion(rect()) - label.adjusted(-kGap, 0, kGap, 0));
		painter.setPen(palette().color(QPalette::Mid));
		painter.drawRect(LineRect(option).adjusted(0, 0, -1, -1));
		painter.restore();
	}
	if (fLabelPlace.isEmpty() && !label.isEmpty())
		painter.drawItemText(label, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic,
			palette(), isEnabled(), option.text, QPalette::WindowText);
}

} // namespace BPrivate
