#include "prefs/window/TFontFamilyMenu.h"

#include <Font.h>
#include <MenuItem.h>
#include <Message.h>

#include "prefs/window/pref_codes.h"

namespace {

bool
is_installed(const std::string& family)
{
	font_family name = {};
	family.copy(name, B_FONT_FAMILY_LENGTH);
	return count_font_styles(name) > 0;
}

//! What is drawn in place of a family that is not there.
std::string
substitute()
{
	font_family family;
	be_plain_font->GetFamilyAndStyle(&family, nullptr);
	return family;
}

} // namespace

TFontFamilyMenu::TFontFamilyMenu(uint32 command) : BMenu(""), fCommand(command)
{
	SetLabelFromMarked(true);
}

void
TFontFamilyMenu::SetFamily(const std::string& family)
{
	fFamily = family;
	BMenuItem* item = FindFamily();
	if (item == nullptr) {
		if (fIsFirstUnlisted)
			delete RemoveItem(int32(0));
		const std::string label
			= is_installed(family) ? family : family + " (" + substitute() + ")";
		AddFamily(family.c_str(), label.c_str(), 0);
		fIsFirstUnlisted = true;
		item = ItemAt(0);
	}
	item->SetMarked(true);
}

status_t
TFontFamilyMenu::SetTargetForItems(BMessenger target)
{
	fTarget = target;
	return BMenu::SetTargetForItems(target);
}

bool
TFontFamilyMenu::AddDynamicItem(add_state state)
{
	if (state == B_INITIAL_ADD && (update_font_families(true) || !fIsListed)) {
		update_font_families(false);
		ListFamilies();
	}
	return false;
}

void
TFontFamilyMenu::ListFamilies()
{
	RemoveItems(0, CountItems(), true);
	font_family family;
	for (int32 i = 0; get_font_family(i, &family) == B_OK; i++)
		AddFamily(family, family, i);
	fIsListed = true;
	fIsFirstUnlisted = false;
	SetFamily(fFamily);
}

void
TFontFamilyMenu::AddFamily(const char* family, const char* label, int32 index)
{
	auto* message = new BMessage(fCommand);
	message->AddString(kFontFamily, family);
	auto* item = new BMenuItem(label, message);
	item->SetTarget(fTarget);
	AddItem(item, index);
}

BMenuItem*
TFontFamilyMenu::FindFamily() const
{
	for (int32 i = 0; i < CountItems(); i++) {
		if (fFamily == ItemAt(i)->Message()->GetString(kFontFamily, ""))
			return ItemAt(i);
	}
	return nullptr;
}
