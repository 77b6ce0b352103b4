#include "server/ServerMenuField.h"

#include "server/ServerMenu.h"
#include "server/WidgetProxy.h"

#include <QKeyEvent>
#include <QStyleOption>

namespace BPrivate {

static constexpr int kNarrowDigits = 4; // of a field that has no room

//! Menus mark a key by an ampersand, a combo box does not.
static QString
plain_text(const QString& label)
{
	return QString(label).replace(QLatin1String("&&"), QLatin1String("&"));
}

ServerMenuField::ServerMenuField() : fMenu(this)
{
	addItem(QString());
}

void
ServerMenuField::SetSink(ProxySink* sink)
{
	fSink = sink;
	QObject::connect(&fMenu, &QMenu::triggered, sink, [sink](QAction* action) {
		BMessage event;
		event.AddInt64("item", chosen_item(*action));
		sink->Send(std::move(event));
	});
}

void
ServerMenuField::Show(const MenuModel& bar)
{
	const MenuModel::Line* line = !bar.lines.empty() ? &bar.lines.front() : nullptr;
	const MenuModel empty;
	const MenuModel& menu = line != nullptr && line->submenu ? *line->submenu : empty;
	const QString text = line != nullptr ? plain_text(line->label) : QString();
	if (itemText(0) != text)
		setItemText(0, text);
	setEnabled(line != nullptr && line->isEnabled);
	show_menu(fMenu, menu);
	fWidestText = fontMetrics().horizontalAdvance(text);
	for (const MenuModel::Line& below : menu.lines)
		fWidestText = qMax(fWidestText, fontMetrics().horizontalAdvance(plain_text(below.label)));
	updateGeometry();
}

QSize
ServerMenuField::SizeFor(int textWidth) const
{
	QStyleOptionComboBox option;
	initStyleOption(&option);
	const QSize text(textWidth, qMax(fontMetrics().height(), 14) + 2);
	return style()->sizeFromContents(QStyle::CT_ComboBox, &option, text, this);
}

QSize
ServerMenuField::sizeHint() const
{
	return SizeFor(fWidestText).expandedTo(minimumSizeHint());
}

QSize
ServerMenuField::minimumSizeHint() const
{
	return SizeFor(fontMetrics().horizontalAdvance(QLatin1Char('0')) * kNarrowDigits);
}

void
ServerMenuField::showPopup()
{
	if (fSink == nullptr)
		return;
	fIsAwaited = true;
	BMessage event;
	event.AddBool("opens", true);
	fSink->Send(std::move(event));
}

//! Below the field, so that the click that opens it chooses nothing.
void
ServerMenuField::Open()
{
	if (!std::exchange(fIsAwaited, false) || !isVisible() || !isEnabled() || fMenu.isEmpty())
		return;
	fMenu.setMinimumWidth(width());
	fMenu.Open(mapToGlobal(QPoint(0, height())));
}

void
ServerMenuField::hidePopup()
{
	fIsAwaited = false;
	fMenu.hide();
}

void
ServerMenuField::focusOutEvent(QFocusEvent* event)
{
	fIsAwaited = false;
	QComboBox::focusOutEvent(event);
}

void
ServerMenuField::mousePressEvent(QMouseEvent* event)
{
	if (event->button() == Qt::LeftButton)
		showPopup();
	else
		event->ignore();
}

void
ServerMenuField::wheelEvent(QWheelEvent* event)
{
	event->ignore();
}

void
ServerMenuField::keyPressEvent(QKeyEvent* event)
{
	switch (event->key()) {
		case Qt::Key_Space:
		case Qt::Key_Up:
		case Qt::Key_Down:
		case Qt::Key_F4:
			showPopup();
			break;
		default:
			event->ignore();
	}
}

} // namespace BPrivate
