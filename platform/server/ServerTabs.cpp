#include "server/ServerTabs.h"

#include <QStyleOptionTabWidgetFrame>
#include <QStylePainter>

namespace BPrivate {

ServerTabs::ServerTabs()
{
	setExpanding(false);
	setDrawBase(false);
	setUsesScrollButtons(true);
	setElideMode(Qt::ElideNone);
}

QSize
ServerTabs::sizeHint() const
{
	int width = 0;
	for (int i = 0; i < count(); i++)
		width += tabSizeHint(i).width();
	return QSize(width, RowHeight());
}

void
ServerTabs::paintEvent(QPaintEvent* event)
{
	QStylePainter painter(this);
	QStyleOptionTabWidgetFrame frame;
	frame.initFrom(this);
	const int overlap = style()->pixelMetric(QStyle::PM_TabBarBaseOverlap, nullptr, this);
	frame.rect.setTop(RowHeight() - overlap);
	frame.lineWidth = style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, this);
	frame.shape = shape();
	frame.tabBarSize = QTabBar::sizeHint();
	frame.tabBarRect = QRect(QPoint(), frame.tabBarSize);
	frame.selectedTabRect = tabRect(currentIndex());
	painter.drawPrimitive(QStyle::PE_FrameTabWidget, frame);
	painter.end();
	QTabBar::paintEvent(event);
}

} // namespace BPrivate
