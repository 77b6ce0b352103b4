#pragma once

#include "server/FieldMenu.h"
#include "server/MenuModel.h"

#include <QComboBox>

namespace BPrivate {

class ProxySink;

/*!	A combo box whose list is a menu: it shows the label of the model's one line, and opens the menu
	of that. Before that it asks the menu's side for the items. The events that it sends: "opens" (bool), to be answered by Open();
	"item" (int64), the id of the one that was chosen. Server thread only. */
class ServerMenuField : public QComboBox {
public:
	ServerMenuField();

	void SetSink(ProxySink* sink);
	void Show(const MenuModel& bar);
	//! Opens the menu, if the user still waits for it.
	void Open();

	QSize sizeHint() const override;
	QSize minimumSizeHint() const override;
	void showPopup() override;
	void hidePopup() override;

protected:
	void mousePressEvent(QMouseEvent* event) override;
	void wheelEvent(QWheelEvent* event) override;
	void keyPressEvent(QKeyEvent* event) override;
	void focusOutEvent(QFocusEvent* event) override;

private:
	QSize SizeFor(int textWidth) const;

	FieldMenu fMenu;
	ProxySink* fSink = nullptr;
	bool fIsAwaited = false; // by the user
	int fWidestText = 0;
};

} // namespace BPrivate
