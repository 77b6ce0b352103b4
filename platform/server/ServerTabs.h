#pragma once

#include <QTabBar>

namespace BPrivate {

/*!	The row of tabs along the upper edge, and the frame beneath, in which other widgets lie. Server thread only. */
class ServerTabs : public QTabBar {
public:
	ServerTabs();

	//! What the row of tabs takes.
	int RowHeight() const { return QTabBar::sizeHint().height(); }
	//! Room for all tabs without their being cut.
	QSize sizeHint() const override;
	QSize minimumSizeHint() const override { return sizeHint(); }

protected:
	void paintEvent(QPaintEvent* event) override;
};

} // namespace BPrivate
