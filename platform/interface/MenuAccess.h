#pragma once

#include "server/MenuModel.h"

#include <MenuItem.h>

namespace BPrivate {

//! What the kit does with menus beyond their public functions. Thread: the menu's.
class MenuAccess {
public:
	//! The menu and those below it are about to be shown.
	static void AddDynamicItems(BMenu& menu);
	static MenuModel ModelOf(const BMenu& menu);
	//! An item of the menu or of one below, NULL if there is none any more, or it is not enabled.
	static BMenuItem* Find(const BMenu& menu, int64 id);
	static status_t Invoke(BMenuItem& item) { return item.Invoke(); }
	//! In radio mode.
	static void Mark(BMenuItem& item);
};

} // namespace BPrivate
