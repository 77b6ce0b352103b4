#include "server/ServerSlider.h"

#include "server/WidgetProxy.h"

#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionSlider>

namespace BPrivate {

ServerSlider::ServerSlider() : QSlider(Qt::Horizontal)
{
	setFocusPolicy(Qt::StrongFocus);
}

void
ServerSlider::SetLabel(const QString& label)
{
	fLabel = label;
	updateGeometry();
	update();
}

void
ServerSlider::SetProgramValue(int value)
{
	fProgramValue = value;
	if (!fHeld)
		setValue(value);
}

QSize
ServerSlider::sizeHint() const
{
	QSize size = QSlider::sizeHint() + QSize(0, LabelHeight());
	return size.expandedTo(QSize(fontMetrics().horizontalAdvance(fLabel), 0));
}

QSize
ServerSlider::minimumSizeHint() const
{
	return QSlider::minimumSizeHint() + QSize(0, LabelHeight());
}

void
ServerSlider::initStyleOption(QStyleOptionSlider* option) const
{
	QSlider::initStyleOption(option);
	option->rect.setTop(LabelHeight());
}

void
ServerSlider::paintEvent(QPaintEvent* event)
{
	if (!fLabel.isEmpty()) {
		QPainter painter(this);
		const QRect line(0, 0, width(), LabelHeight());
		const QString fitting = fontMetrics().elidedText(fLabel, Qt::ElideRight, width());
		style()->drawItemText(&painter, line, Qt::AlignLeft | Qt::AlignVCenter, palette(),
			isEnabled(), fitting, QPalette::WindowText);
	}
	QSlider::paintEvent(event);
}

//! Beside the thumb the toolkit would go by a page: the thumb comes to the pointer first, and is then taken hold of.
void
ServerSlider::mousePressEvent(QMouseEvent* event)
{
	if (event->button() != Qt::LeftButton || fHeld) {
		event->ignore();
		return;
	}
	fHeld = true;
	fMoved = false;
	setSliderDown(true);
	QPoint where = event->position().toPoint();
	if (!PartRect(QStyle::SC_SliderHandle).contains(where)) {
		setSliderPosition(ValueAt(where.x()));
		where = PartRect(QStyle::SC_SliderHandle).center();
	}
	QMouseEvent press(event->type(), where, event->globalPosition(), event->button(),
		event->buttons(), event->modifiers());
	QSlider::mousePressEvent(&press);
}

void
ServerSlider::mouseReleaseEvent(QMouseEvent* event)
{
	QSlider::mouseReleaseEvent(event);
	if (event->button() == Qt::LeftButton)
		LetGo();
}

//! A slider that is disabled loses the thumb.
void
ServerSlider::changeEvent(QEvent* event)
{
	QSlider::changeEvent(event);
	if (event->type() == QEvent::EnabledChange && !isEnabled())
		LetGo();
}

//! The signals are blocked for what the program does.
void
ServerSlider::sliderChange(SliderChange change)
{
	QSlider::sliderChange(change);
	if (change != SliderValueChange || signalsBlocked())
		return;
	fMoved = true;
	Send(true, !fHeld);
}

void
ServerSlider::LetGo()
{
	if (!std::exchange(fHeld, false))
		return;
	setSliderDown(false);
	if (fMoved)
		Send(false, true);
	else {
		QSignalBlocker blocker(this);
		setValue(fProgramValue);
	}
}

void
ServerSlider::Send(bool moved, bool done)
{
	BMessage event;
	event.AddInt32("value", value());
	event.AddBool("moved", moved);
	event.AddBool("done", done);
	if (fSink != nullptr)
		fSink->Send(std::move(event));
	fProgramValue = value();
}

QRect
ServerSlider::PartRect(QStyle::SubControl part) const
{
	QStyleOptionSlider option;
	initStyleOption(&option);
	return style()->subControlRect(QStyle::CC_Slider, &option, part, this);
}

int
ServerSlider::ValueAt(int x) const
{
	const QRect groove = PartRect(QStyle::SC_SliderGroove);
	const int thumb = PartRect(QStyle::SC_SliderHandle).width();
	return QStyle::sliderValueFromPosition(minimum(), maximum(), x - groove.left() - thumb / 2,
		groove.width() - thumb, layoutDirection() == Qt::RightToLeft);
}

int
ServerSlider::LabelHeight() const
{
	return fLabel.isEmpty() ? 0 : fontMetrics().height() + 2;
}

} // namespace BPrivate
