#include "server/ServerColorControl.h"

#include "server/WidgetProxy.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QRegularExpression>
#include <QSpinBox>
#include <QStyleOptionFocusRect>

namespace BPrivate {

static constexpr int kMost = 255;
static constexpr int kPageStep = 16;
static constexpr int kMinRampWidth = 64;
static constexpr int kMinRampHeight = 16;
static constexpr int kMargin = 6; // of the gradient: half the mark's width
static constexpr int kSpace = 4;
// the toolkit has them translated, with the marks of their keys
static constexpr const char* kLabels[] = {"&Red:", "&Green:", "Bl&ue:"};

static QString
label_text(int index)
{
	static const QRegularExpression kKey("\\s*\\(&.\\)|&");
	return QCoreApplication::translate("QColorDialog", kLabels[index]).remove(kKey);
}

static QString
spoken_text(int index)
{
	QString text = label_text(index);
	while (text.endsWith(u':') || text.endsWith(u'：') || text.endsWith(u' '))
		text.chop(1);
	return text;
}

// #pragma mark - ColorRamp

ColorRamp::ColorRamp(int shift) : fShift(shift), fSize(kMinRampWidth, kMinRampHeight)
{
	setRange(0, kMost);
	setPageStep(kPageStep);
}

void
ColorRamp::SetColor(uint32 color)
{
	fColor = color;
	QSignalBlocker blocker(this);
	SetProgramValue(color >> fShift & 0xff);
	update();
}

void
ColorRamp::SetPreferredSize(QSize size)
{
	fSize = size.expandedTo(minimumSizeHint());
	updateGeometry();
}

QSize
ColorRamp::minimumSizeHint() const
{
	return QSize(kMinRampWidth, kMinRampHeight);
}

QColor
ColorRamp::ColorAt(uint32 component) const
{
	const uint32 color = (fColor & ~(uint32(kMost) << fShift)) | component << fShift;
	return QColor::fromRgb(color >> 8);
}

void
ColorRamp::paintEvent(QPaintEvent*)
{
	QPainter painter(this);
	const bool mirrored = layoutDirection() == Qt::RightToLeft;
	const QRect bar = rect().adjusted(kMargin, 2, -kMargin, -2);
	QLinearGradient ramp(bar.topLeft(), bar.topRight());
	ramp.setColorAt(mirrored ? 1 : 0, ColorAt(0));
	ramp.setColorAt(mirrored ? 0 : 1, ColorAt(kMost));
	painter.setOpacity(isEnabled() ? 1 : 0.4);
	painter.fillRect(bar, ramp);
	painter.setPen(palette().color(QPalette::Mid));
	painter.drawRect(bar.adjusted(0, 0, -1, -1));
	const int x = bar.left()
		+ QStyle::sliderPositionFromValue(0, kMost, sliderPosition(), bar.width() - 1, mirrored);
	const QRect mark(x - 3, 0, 7, height());
	painter.setPen(palette().color(QPalette::WindowText));
	painter.setBrush(palette().color(hasFocus() ? QPalette::Highlight : QPalette::Button));
	painter.drawRect(mark.adjusted(0, 0, -1, -1));
}

// #pragma mark - ServerColorControl

ServerColorControl::ServerColorControl()
{
	auto* grid = new QGridLayout(this);
	grid->setContentsMargins(0, 0, 0, 0);
	grid->setSpacing(kSpace);
	for (int i = 0; i < 3; i++)
		AddPart(i);
	// one whole in the focus order: before the proxy, which would get the same policy
	setFocusPolicy(Qt::TabFocus);
	setFocusProxy(fParts[0].ramp);
	SetColor(0);
}

void
ServerColorControl::AddPart(int index)
{
	auto* grid = static_cast<QGridLayout*>(layout());
	Part& part = fParts[index];
	part.ramp = new ColorRamp(24 - 8 * index);
	part.number = new QSpinBox;
	part.number->setRange(0, kMost);
	auto* label = new QLabel(label_text(index));
	label->setBuddy(part.number);
	grid->addWidget(part.ramp, index, 0);
	grid->addWidget(label, index, 1);
	grid->addWidget(part.number, index, 2);
	grid->setRowStretch(index, 1);
	grid->setColumnStretch(0, 1);
	for (QWidget* widget : std::initializer_list<QWidget*>{part.ramp, part.number}) {
		widget->setAccessibleName(spoken_text(index));
		widget->installEventFilter(this);
	}
	connect(part.ramp, &QSlider::valueChanged, this,
		[this, index](int value) { PartChanged(index, value); });
	connect(part.number, &QSpinBox::valueChanged, this,
		[this, index](int value) { PartChanged(index, value); });
}

void
ServerColorControl::SetColor(uint32 color)
{
	fColor = color;
	for (int i = 0; i < 3; i++) {
		fParts[i].ramp->SetColor(color);
		QSignalBlocker blocker(fParts[i].number);
		const int value = color >> (24 - 8 * i) & 0xff;
		// what is being typed stays as it is typed
		if (fParts[i].number->value() != value)
			fParts[i].number->setValue(value);
	}
}

void
ServerColorControl::SetRampSize(QSize size)
{
	const QSize each(size.width(), (size.height() - 2 * kSpace) / 3);
	for (const Part& part : fParts)
		part.ramp->SetPreferredSize(each);
	layout()->activate();
}

//! The view has the focus when a part of it has.
bool
ServerColorControl::eventFilter(QObject*, QEvent* event)
{
	if (event->type() == QEvent::FocusIn && fSink != nullptr)
		fSink->Send(BMessage(kProxyFocus));
	return false;
}

void
ServerColorControl::PartChanged(int index, int value)
{
	const int shift = 24 - 8 * index;
	SetColor((fColor & ~(uint32(kMost) << shift)) | uint32(value) << shift);
	BMessage event;
	event.AddInt32("value", int32(fColor));
	if (fSink != nullptr)
		fSink->Send(std::move(event));
}

} // namespace BPrivate
