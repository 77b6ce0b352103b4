#include "support/ArchiveFields.h"

#include <MenuItem.h>
#include <stdlib.h>
#include <string.h>

using namespace BPrivate;

BMenu::BMenu(BMessage* data) : BView(data), fSuperitem(NULL)
{
	const BMessage& archive = archive_or_empty(data);
	// rows are not written; what is neither is a matrix
	const int32 layout = archive.GetInt32("_layout", B_ITEMS_IN_ROW);
	fLayout = layout == B_ITEMS_IN_ROW ? B_ITEMS_IN_ROW : B_ITEMS_IN_COLUMN;
	fResizeToFit = archive.GetBool("_rsize_to_fit", true);
	fEnabled = !archive.GetBool("_disable", false);
	fLabelFromMarked = archive.GetBool("_dyn_label", false);
	fRadioMode = fLabelFromMarked || archive.GetBool("_radio", false);
	ReadItems(archive);
}

void
BMenu::ReadItems(const BMessage& archive)
{
	type_code type;
	int32 count = 0;
	archive.GetInfo("_items", &type, &count);
	BMenuItem* marked = NULL;
	for (int32 i = 0; i < count; i++) {
		BMenuItem* item = archived_object<BMenuItem>(archive, "_items", i);
		if (item == NULL)
			continue;
		fItems.push_back(item);
		item->fSuper = this;
		if (item->fMarked)
			marked = item;
	}
	if (marked != NULL)
		ItemMarked(marked);
}

BArchivable*
BMenu::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BMenu") ? new BMenu(data) : NULL;
}

status_t
BMenu::Archive(BMessage* data, bool deep) const
{
	ArchiveWriter writer(data, BView::Archive(data, deep));
	if (fLayout != B_ITEMS_IN_ROW)
		writer.Int32("_layout", fLayout);
	writer.Bool("_rsize_to_fit", fResizeToFit);
	writer.Bool("_disable", !fEnabled);
	writer.Bool("_radio", fRadioMode);
	// the platform tells here that they are not disabled, and reads it so
	writer.Bool("_trig_disabled", true);
	writer.Bool("_dyn_label", fLabelFromMarked);
	writer.Float("_maxwidth", 0);
	for (size_t i = 0; deep && i < fItems.size(); i++)
		writer.Object("_items", fItems[i]);
	return writer.Status();
}

BMenuItem::BMenuItem(BMessage* data) : BMenuItem(archive_or_empty(data).GetString("_label"), NULL)
{
	const BMessage& archive = archive_or_empty(data);
	SetMessage(archived_message(archive, "_msg"));
	fEnabled = !archive.GetBool("_disable", false);
	fMarked = fCanBeMarked = archive.GetBool("_marked", false);
	const int32 shortcut = archived_choice(archive, "_shortcut", 255, 0);
	fShortcut = char(shortcut);
	fModifiers = archive.GetInt32("_mods", 0);
	fSubmenu = archived_object<BMenu>(archive, "_submenu", 0);
	if (fSubmenu != NULL)
		fSubmenu->fSuperitem = this;
}

BArchivable*
BMenuItem::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BMenuItem") ? new BMenuItem(data) : NULL;
}

status_t
BMenuItem::Archive(BMessage* data, bool deep) const
{
	ArchiveWriter writer(data, BArchivable::Archive(data, deep));
	writer.String("_label", fLabel);
	writer.True("_disable", !fEnabled);
	writer.True("_marked", fMarked);
	if (fShortcut != 0) {
		writer.Int32("_shortcut", uint8(fShortcut));
		writer.Int32("_mods", fModifiers | B_COMMAND_KEY);
	}
	writer.Message("_msg", Message());
	if (deep)
		writer.Object("_submenu", fSubmenu);
	return writer.Status();
}

BSeparatorItem::BSeparatorItem(BMessage* data) : BMenuItem(data)
{
	BMenuItem::SetEnabled(false);
}

BArchivable*
BSeparatorItem::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BSeparatorItem") ? new BSeparatorItem(data) : NULL;
}

status_t
BSeparatorItem::Archive(BMessage* data, bool deep) const
{
	return BMenuItem::Archive(data, deep);
}
