#include <Menu.h>

#include <Debug.h>
#include <List.h>
#include <MenuItem.h>
#include <Message.h>
#include <Window.h>
#include <algorithm>
#include <string.h>

BMenu::BMenu(const char* title, menu_layout layout)
	: BMenu(BRect(), title, B_FOLLOW_LEFT_TOP, B_WILL_DRAW, layout)
{ }

BMenu::BMenu(BRect frame, const char* name, uint32 resizingMode, uint32 flags, menu_layout layout)
	: BView(frame, name, resizingMode, flags),
	  fSuperitem(NULL),
	  fLayout(layout),
	  fEnabled(true),
	  fRadioMode(false),
	  fLabelFromMarked(false)
{ }

BMenu::~BMenu()
{
	for (BMenuItem* item : fItems) {
		item->fSuper = NULL;
		delete item;
	}
	if (fSuperitem != NULL) {
		fSuperitem->fSubmenu = NULL;
		fSuperitem->Changed();
	}
}

void
BMenu::AttachedToWindow()
{
	BView::AttachedToWindow();
	for (BMenuItem* item : fItems)
		item->Install(Window());
}

bool
BMenu::AddItem(BMenuItem* item)
{
	return AddItem(item, CountItems());
}

bool
BMenu::AddItem(BMenuItem* item, int32 index)
{
	if (!CanAdd(item, index))
		return false;
	Insert(item, index);
	return true;
}

bool
BMenu::AddItem(BMenu* submenu)
{
	return AddItem(submenu, CountItems());
}

bool
BMenu::AddItem(BMenu* submenu, int32 index)
{
	if (submenu == NULL || submenu->fSuperitem != NULL || index < 0 || index > CountItems())
		return false;
	Insert(new BMenuItem(submenu), index);
	return true;
}

bool
BMenu::AddList(BList* items, int32 index)
{
	if (items == NULL || index < 0 || index > CountItems())
		return false;
	bool all = true;
	for (int32 i = 0; i < items->CountItems(); i++) {
		if (AddItem(static_cast<BMenuItem*>(items->ItemAt(i)), index))
			index++;
		else
			all = false;
	}
	return all;
}

bool
BMenu::AddSeparatorItem()
{
	return AddItem(new BSeparatorItem);
}

bool
BMenu::CanAdd(const BMenuItem* item, int32 index) const
{
	return item != NULL && item->fSuper == NULL && index >= 0 && index <= CountItems();
}

void
BMenu::Insert(BMenuItem* item, int32 index)
{
	fItems.insert(fItems.begin() + index, item);
	item->fSuper = this;
	if (item->IsMarked())
		ItemMarked(item);
	const BMenu* root = this;
	while (root->Supermenu() != NULL)
		root = root->Supermenu();
	if (root->Window() != NULL)
		item->Install(root->Window());
	Changed();
}

BMenuItem*
BMenu::TakeOut(int32 index)
{
	BMenuItem* item = ItemAt(index);
	if (item == NULL)
		return NULL;
	fItems.erase(fItems.begin() + index);
	item->fSuper = NULL;
	Changed();
	return item;
}

bool
BMenu::RemoveItem(BMenuItem* item)
{
	return TakeOut(IndexOf(item)) != NULL;
}

BMenuItem*
BMenu::RemoveItem(int32 index)
{
	return TakeOut(index);
}

bool
BMenu::RemoveItem(BMenu* submenu)
{
	return TakeOut(IndexOf(submenu)) != NULL;
}

bool
BMenu::RemoveItems(int32 index, int32 count, bool deleteItems)
{
	if (ItemAt(index) == NULL)
		return false;
	while (count-- > 0 && ItemAt(index) != NULL) {
		BMenuItem* item = TakeOut(index);
		if (deleteItems)
			delete item;
	}
	return true;
}

int32
BMenu::CountItems() const
{
	return fItems.size();
}

BMenuItem*
BMenu::ItemAt(int32 index) const
{
	return index >= 0 && index < CountItems() ? fItems[index] : NULL;
}

BMenu*
BMenu::SubmenuAt(int32 index) const
{
	const BMenuItem* item = ItemAt(index);
	return item != NULL ? item->Submenu() : NULL;
}

int32
BMenu::IndexOf(BMenuItem* item) const
{
	auto found = std::find(fItems.begin(), fItems.end(), item);
	return found != fItems.end() ? found - fItems.begin() : -1;
}

int32
BMenu::IndexOf(BMenu* submenu) const
{
	return submenu != NULL ? IndexOf(submenu->fSuperitem) : -1;
}

template<typename Condition>
static BMenuItem*
find_item(const BMenu& menu, Condition condition)
{
	for (int32 i = 0; BMenuItem* item = menu.ItemAt(i); i++) {
		if (condition(*item))
			return item;
		BMenuItem* below = item->Submenu() != NULL ? find_item(*item->Submenu(), condition) : NULL;
		if (below != NULL)
			return below;
	}
	return NULL;
}

BMenuItem*
BMenu::FindItem(const char* label) const
{
	if (label == NULL)
		return NULL;
	return find_item(
		*this, [label](const BMenuItem& item) { return strcmp(item.Label(), label) == 0; });
}

BMenuItem*
BMenu::FindItem(uint32 command) const
{
	return find_item(*this, [command](const BMenuItem& item) {
		return item.Message() != NULL && item.Command() == command;
	});
}

BMenuItem*
BMenu::FindMarked()
{
	auto found = std::find_if(
		fItems.begin(), fItems.end(), [](const BMenuItem* item) { return item->IsMarked(); });
	return found != fItems.end() ? *found : NULL;
}

status_t
BMenu::SetTargetForItems(BHandler* target)
{
	return SetTargetForItems(BMessenger(target));
}

//! As far as it works: the error of the last item that did not take it.
status_t
BMenu::SetTargetForItems(BMessenger target)
{
	status_t result = B_OK;
	for (BMenuItem* item : fItems) {
		status_t error = item->SetTarget(target);
		if (error != B_OK)
			result = error;
	}
	return result;
}

void
BMenu::SetEnabled(bool enabled)
{
	fEnabled = enabled;
	if (fSuperitem != NULL)
		fSuperitem->SetEnabled(enabled);
	Changed();
}

void
BMenu::SetRadioMode(bool on)
{
	fRadioMode = on;
	if (!on)
		fLabelFromMarked = false;
	Changed();
}

void
BMenu::SetLabelFromMarked(bool on)
{
	fLabelFromMarked = on;
	if (on)
		SetRadioMode(true);
}

bool
BMenu::IsEnabled() const
{
	return fEnabled && (fSuperitem == NULL || fSuperitem->IsEnabled());
}

bool
BMenu::IsRadioMode() const
{
	return fRadioMode;
}

bool
BMenu::IsLabelFromMarked() const
{
	return fLabelFromMarked;
}

BMenu*
BMenu::Supermenu() const
{
	return fSuperitem != NULL ? fSuperitem->Menu() : NULL;
}

BMenuItem*
BMenu::Superitem() const
{
	return fSuperitem;
}

bool
BMenu::AddDynamicItem(add_state)
{
	return false;
}

void
BMenu::ItemMarked(BMenuItem* marked)
{
	if (fRadioMode) {
		for (BMenuItem* item : fItems) {
			if (item != marked)
				item->fMarked = false;
		}
	}
	if (fLabelFromMarked && fSuperitem != NULL)
		fSuperitem->SetLabel(marked->Label());
}

void
BMenu::Changed()
{
	BMenu* root = this;
	while (root->Supermenu() != NULL)
		root = root->Supermenu();
	root->TreeChanged();
}

void
BMenu::TreeChanged()
{ }
