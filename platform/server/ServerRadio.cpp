#include "server/ServerRadio.h"

#include <QButtonGroup>
#include <QEvent>

namespace BPrivate {

ServerRadio::ServerRadio()
{
	setAutoExclusive(false);
}

void
ServerRadio::SetGroup(quint64 number)
{
	if (parentWidget() == nullptr)
		return;
	const QString name = QStringLiteral("radio %1").arg(number);
	auto* group = parentWidget()->findChild<QButtonGroup*>(name, Qt::FindDirectChildrenOnly);
	if (group == nullptr) {
		group = new QButtonGroup(parentWidget());
		group->setObjectName(name);
	}
	group->addButton(this);
}

//! An exclusive group has always one that is on.
void
ServerRadio::SetOn(bool on)
{
	if (QButtonGroup* all = group()) {
		all->setExclusive(false);
		setChecked(on);
		all->setExclusive(true);
	} else
		setChecked(on);
}

bool
ServerRadio::event(QEvent* event)
{
	if (event->type() == QEvent::ParentAboutToChange && group() != nullptr) {
		QButtonGroup* left = group();
		left->removeButton(this);
		if (left->buttons().isEmpty())
			delete left;
	}
	return QRadioButton::event(event);
}

} // namespace BPrivate
