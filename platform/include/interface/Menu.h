#pragma once

#include <InterfaceDefs.h>
#include <Messenger.h>
#include <View.h>
#include <vector>

class BList;
class BMenuItem;

namespace BPrivate {
class MenuAccess;
}

enum menu_layout { B_ITEMS_IN_ROW = 0, B_ITEMS_IN_COLUMN };

// Of BMenu::AddDynamicItem().
enum add_state { B_INITIAL_ADD, B_PROCESSING, B_ABORT };

/*!	A list of items, shown as a menu of the desktop's own: by a menu bar, as a sub-menu of another menu, or by BPopUpMenu::Go().
	Thread: with the window's lock, while it is part of a menu bar in a window; else one thread at a time.
	Owner: a menu owns its items, and an item its sub-menu. A menu may be deleted while it is shown: it is then closed, and nothing is invoked.
	The items without a target of their own send to the window that the menu is in. */
class BMenu : public BView {
public:
	//! The title is the label of the item that it becomes when it is added to another menu.
	explicit BMenu(const char* title, menu_layout layout = B_ITEMS_IN_COLUMN);
	//! With the items of the archive. A matrix of items becomes a column.
	explicit BMenu(BMessage* data);
	~BMenu() override;

	static BArchivable* Instantiate(BMessage* data);
	//! `deep`: with the items.
	status_t Archive(BMessage* data, bool deep = true) const override;

	void AttachedToWindow() override;

	// False: the index is out of range, or the item or the sub-menu is in a menu already.
	bool AddItem(BMenuItem* item);
	//! `index` from 0 to CountItems().
	bool AddItem(BMenuItem* item, int32 index);
	//! Makes an item for the sub-menu.
	bool AddItem(BMenu* submenu);
	bool AddItem(BMenu* submenu, int32 index);
	//! Of BMenuItem pointers. False if one of them could not be added.
	bool AddList(BList* items, int32 index);
	bool AddSeparatorItem();

	// What is removed belongs to the caller.
	bool RemoveItem(BMenuItem* item);
	//! NULL if there is none.
	BMenuItem* RemoveItem(int32 index);
	//! The item of that sub-menu, which is submenu->Superitem().
	bool RemoveItem(BMenu* submenu);
	//! At most `count`. False if there is nothing at the index.
	bool RemoveItems(int32 index, int32 count, bool deleteItems = false);

	int32 CountItems() const;
	//! NULL if out of range.
	BMenuItem* ItemAt(int32 index) const;
	BMenu* SubmenuAt(int32 index) const;
	//! Negative if it is not in this menu.
	int32 IndexOf(BMenuItem* item) const;
	int32 IndexOf(BMenu* submenu) const;
	//! The first with that label, or whose message has that code; sub-menus are searched too. NULL if there is none.
	BMenuItem* FindItem(const char* label) const;
	BMenuItem* FindItem(uint32 command) const;
	//! The first marked item of this menu, NULL if there is none.
	BMenuItem* FindMarked();

	//! For the items that are in the menu now, not for those of sub-menus.
	virtual status_t SetTargetForItems(BHandler* target);
	virtual status_t SetTargetForItems(BMessenger target);

	//! Also of the item that it is the sub-menu of.
	virtual void SetEnabled(bool enabled);
	//! One item is marked at a most, and an item that is invoked is the marked one.
	virtual void SetRadioMode(bool on);
	//! Radio mode, and the item that this is the sub-menu of has the marked item's label.
	virtual void SetLabelFromMarked(bool on);
	//! Its own setting, and that of the item and the menus that it belongs to.
	bool IsEnabled() const;
	bool IsRadioMode() const;
	bool IsLabelFromMarked() const;

	//! What this is the sub-menu of, NULL if of none.
	BMenu* Supermenu() const;
	BMenuItem* Superitem() const;

protected:
	/*!	Hook: a menu field or a pop-up menu opens with this menu in it, which may add and remove items now. Called with
		B_INITIAL_ADD, and for as long as it answers true with B_PROCESSING; never with B_ABORT, because the user sees the menu
		when all of it is there. Sub-menus are asked when the outermost one opens. Not called in a menu bar. */
	virtual bool AddDynamicItem(add_state state);

	BMenu(BRect frame, const char* name, uint32 resizingMode, uint32 flags, menu_layout layout);

private:
	friend class BMenuBar;
	friend class BMenuItem;
	friend class BPrivate::MenuAccess;

	void ReadItems(const BMessage& archive);
	bool CanAdd(const BMenuItem* item, int32 index) const;
	void Insert(BMenuItem* item, int32 index);
	BMenuItem* TakeOut(int32 index);
	void ItemMarked(BMenuItem* item);
	//! Tells the root of the menus that something is to be shown differently.
	void Changed();
	virtual void TreeChanged();

	std::vector<BMenuItem*> fItems;
	BMenuItem* fSuperitem;
	menu_layout fLayout;
	bool fEnabled;
	bool fRadioMode;
	bool fLabelFromMarked;
	bool fResizeToFit = true; // a bar's
};
