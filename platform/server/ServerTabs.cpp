#include "server/ServerTabs.h"

#include "server/WidgetProxy.h"

#include <QEvent>
#include <QScopedValueRollback>
#include <QStyleOption>
#include <QStylePainter>

namespace BPrivate {

ServerTabs::ServerTabs() : fBar(this)
{
	setMouseTracking(true);
	setFocusPolicy(Qt::TabFocus); // its place in the focus order; the bar has the focus
	setFocusProxy(&fBar);
	connect(&fBar, &QTabBar::currentChanged, this, [this](int index) { UserChose(index); });
}

void
ServerTabs::SetSink(ProxySink* sink)
{
	fSink = sink;
	sink->WatchFocus(&fBar);
}

void
ServerTabs::Append()
{
	QScopedValueRollback guard(fByProgram, true);
	fBar.addTab(QString());
	PlaceBar();
}

void
ServerTabs::Remove(int index)
{
	QScopedValueRollback guard(fByProgram, true);
	fBar.removeTab(index);
	PlaceBar();
}

void
ServerTabs::Choose(int index)
{
	QScopedValueRollback guard(fByProgram, true);
	fBar.setCurrentIndex(index);
	update();
}

void
ServerTabs::Show(int index, const QString& label, bool enabled)
{
	// the bar chooses another one when the one that is chosen is disabled: the program does not
	QScopedValueRollback guard(fByProgram, true);
	const int chosen = fBar.currentIndex();
	fBar.setTabText(index, label);
	fBar.setTabEnabled(index, enabled);
	fBar.setCurrentIndex(chosen);
	PlaceBar();
}

QStyleOptionTabWidgetFrame
ServerTabs::FrameOption(QSize size) const
{
	QStyleOptionTabWidgetFrame option;
	option.initFrom(this);
	option.rect = QRect(QPoint(), size);
	option.shape = fBar.shape();
	option.lineWidth = style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, this);
	option.tabBarSize = QSize(qMin(fBar.sizeHint().width(), size.width()), TabHeight());
	option.tabBarRect = style()->subElementRect(QStyle::SE_TabWidgetTabBar, &option, this);
	option.selectedTabRect
		= fBar.tabRect(fBar.currentIndex()).translated(option.tabBarRect.topLeft());
	return option;
}

QRect
ServerTabs::InnerRect(QSize size) const
{
	const QStyleOptionTabWidgetFrame option = FrameOption(size);
	return style()->subElementRect(QStyle::SE_TabWidgetTabContents, &option, this);
}

//! Also of tabs that are not there yet.
int
ServerTabs::TabHeight() const
{
	if (fBar.count() > 0)
		return fBar.sizeHint().height();
	QTabBar sample;
	sample.setFont(font());
	sample.addTab(QStringLiteral("Xg"));
	return sample.sizeHint().height();
}

int
ServerTabs::TabsWidth() const
{
	return fBar.sizeHint().width();
}

QRect
ServerTabs::TabRect(int index) const
{
	return fBar.tabRect(index).translated(fBar.pos());
}

void
ServerTabs::PlaceBar()
{
	fBar.setGeometry(FrameOption(size()).tabBarRect);
	update();
}

void
ServerTabs::paintEvent(QPaintEvent*)
{
	QStylePainter painter(this);
	QStyleOptionTabWidgetFrame option = FrameOption(size());
	option.rect = style()->subElementRect(QStyle::SE_TabWidgetTabPane, &option, this);
	painter.drawPrimitive(QStyle::PE_FrameTabWidget, option);
}

void
ServerTabs::resizeEvent(QResizeEvent*)
{
	PlaceBar();
}

void
ServerTabs::changeEvent(QEvent* event)
{
	QWidget::changeEvent(event);
	if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
		PlaceBar();
}

void
ServerTabs::UserChose(int index)
{
	update();
	if (fByProgram || fSink == nullptr)
		return;
	BMessage event;
	event.AddInt32("tab", index);
	fSink->Send(std::move(event));
}

} // namespace BPrivate
