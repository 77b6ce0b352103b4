#pragma once

#include "server/MenuModel.h"

#include <QComboBox>
#include <QMenu>

namespace BPrivate {

class ProxySink;

/*!	A combo box whose list is a menu: it shows the label of the model's one line, and opens the menu
	of that. The event that it sends: "item" (int64), the id of the one that was chosen. Server thread
	only. */
class ServerMenuField : public QComboBox {
public:
	ServerMenuField();

	void SetSink(ProxySink* sink);
	void Show(const MenuModel& bar);

	QSize sizeHint() const override;
	QSize minimumSizeHint() const override;
	void showPopup() override;
	void hidePopup() override;

protected:
	void mousePressEvent(QMouseEvent* event) override;
	void wheelEvent(QWheelEvent* event) override;
	void keyPressEvent(QKeyEvent* event) override;

private:
	QSize SizeFor(int textWidth) const;

	QMenu fMenu;
	int fWidestText = 0;
};

} // namespace BPrivate
