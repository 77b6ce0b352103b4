#pragma once

#include "server/MenuModel.h"

#include <QMenu>
#include <functional>
#include <memory>

namespace BPrivate {

/*!	Makes a menu or a menu bar show the model. What it shows already stays, so that an open menu remains open. Of items with the same
	shortcut the last one has it. Server thread only. */
void show_menu(QWidget& menu, const MenuModel& model);
//! The item's id. The mark that the toolkit has set on a click is taken back: whether there is one, the item's side says.
int64 chosen_item(QAction& action);

/*!	Tells what became of a menu, exactly once: the id of the item that was chosen, or 0, at the latest when the last one who could tell is gone.
	Told on whatever thread that happens, the server's as a rule. */
class MenuResult {
public:
	explicit MenuResult(std::function<void(int64)> tell) : fTell(std::move(tell)) { }
	~MenuResult() { Tell(0); }
	MenuResult(const MenuResult&) = delete;
	MenuResult& operator=(const MenuResult&) = delete;

	void Tell(int64 chosen);

private:
	std::function<void(int64)> fTell;
};

/*!	A menu by itself. It is in the registry while it is open, and deletes itself when it closes; deleted before, it tells that nothing
	was chosen. Server thread only. */
class ServerPopUp : public QMenu {
public:
	ServerPopUp(QWidget* parent, int64 id, std::shared_ptr<MenuResult> result);

	void Open(QPoint where, const MenuModel& model);

private:
	int64 fId;
	std::shared_ptr<MenuResult> fResult;
};

} // namespace BPrivate
