#pragma once

#include <QElapsedTimer>
#include <QMenu>

namespace BPrivate {

/*!	The menu of a field: a list to choose from, which may be very long. It is one column that scrolls, in whatever style, and typing
	goes to an item: to the first that begins with what was typed without a pause, else to the first that has it somewhere. Server
	thread only. */
class FieldMenu : public QMenu {
public:
	explicit FieldMenu(QWidget* parent);

	//! With the marked item in sight, and chosen by Return.
	void Open(QPoint where);

protected:
	void keyPressEvent(QKeyEvent* event) override;

private:
	void Type(const QString& text);
	QAction* FindTyped() const;

	QString fTyped;
	QElapsedTimer fSinceTyped;
};

} // namespace BPrivate
