#include "server/ServerMenu.h"

#include "server/Registry.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QHash>

namespace BPrivate {

static constexpr char kMarked[] = "be:marked";

static int64
id_of(const QAction& action)
{
	return action.data().toLongLong();
}

//! With its sub-menu, which goes with it.
static void
delete_action(QAction* action)
{
	if (QMenu* submenu = action->menu())
		delete submenu;
	else
		delete action;
}

static QAction*
make_action(QWidget& menu, const MenuModel::Line& line)
{
	QAction* action = line.submenu ? (new QMenu(&menu))->menuAction() : new QAction(&menu);
	action->setData(QVariant::fromValue<qlonglong>(line.id));
	action->setSeparator(line.isSeparator);
	action->setMenuRole(QAction::NoRole);
	return action;
}

static QActionGroup*
radio_group(QWidget& menu)
{
	auto* group = menu.findChild<QActionGroup*>(QString(), Qt::FindDirectChildrenOnly);
	return group != nullptr ? group : new QActionGroup(&menu);
}

static void
show_line(QAction& action, const MenuModel::Line& line, QActionGroup* group)
{
	if (action.text() != line.label)
		action.setText(line.label);
	action.setEnabled(line.isEnabled);
	bool hasKey = line.key.key() != Qt::Key_unknown;
	action.setShortcut(hasKey ? QKeySequence(line.key) : QKeySequence());
	action.setActionGroup(line.submenu ? nullptr : group);
	action.setCheckable(line.canBeMarked);
	action.setProperty(kMarked, line.isMarked);
	action.setChecked(line.isMarked);
	if (line.submenu)
		show_menu(*action.menu(), *line.submenu);
}

static void
show_lines(QWidget& menu, const MenuModel& model)
{
	QHash<int64, QAction*> old;
	for (QAction* action : menu.actions())
		old.insert(id_of(*action), action);
	QActionGroup* group = model.isRadio ? radio_group(menu) : nullptr;
	for (qsizetype i = 0; const MenuModel::Line& line : model.lines) {
		QAction* action = old.value(line.id);
		bool fits = action != nullptr && (action->menu() != nullptr) == (line.submenu != nullptr);
		action = fits ? old.take(line.id) : make_action(menu, line);
		QAction* there = menu.actions().value(i++);
		if (there != action)
			menu.insertAction(there, action);
		show_line(*action, line, group);
	}
	for (QAction* action : old)
		delete_action(action);
}

static void
keep_last_keys(QWidget& menu, QHash<QKeySequence, QAction*>& owners)
{
	for (QAction* action : menu.actions()) {
		if (QMenu* submenu = action->menu())
			keep_last_keys(*submenu, owners);
		else if (!action->shortcut().isEmpty()) {
			if (QAction* earlier = owners.value(action->shortcut()))
				earlier->setShortcut(QKeySequence());
			owners.insert(action->shortcut(), action);
		}
	}
}

void
show_menu(QWidget& menu, const MenuModel& model)
{
	show_lines(menu, model);
	QHash<QKeySequence, QAction*> owners;
	keep_last_keys(menu, owners);
}

int64
chosen_item(QAction& action)
{
	action.setChecked(action.property(kMarked).toBool());
	return id_of(action);
}

void
MenuResult::Tell(int64 chosen)
{
	if (auto tell = std::exchange(fTell, nullptr))
		tell(chosen);
}

ServerPopUp::ServerPopUp(QWidget* parent, int64 id, std::shared_ptr<MenuResult> result)
	: QMenu(parent),
	  fId(id),
	  fResult(std::move(result))
{
	connect(this, &QMenu::triggered, this,
		[this](QAction* action) { fResult->Tell(chosen_item(*action)); });
	// a menu hides before it tells what was chosen: only after that may it end
	connect(this, &QMenu::aboutToHide, this, [this] {
		QMetaObject::invokeMethod(
			qApp, [id = fId] { Registry::Default().Delete(id); }, Qt::QueuedConnection);
	});
}

void
ServerPopUp::Open(QPoint where, const MenuModel& model)
{
	show_menu(*this, model);
	if (!model.lines.empty())
		popup(where);
	if (!isVisible())
		Registry::Default().Delete(fId);
}

} // namespace BPrivate
