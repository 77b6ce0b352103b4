// The menus of the preferences window that are built in code, and the colours that one of them chooses from.

#include <string>

#include <Box.h>
#include <ColorControl.h>
#include <MenuField.h>
#include <MenuItem.h>
#include <Message.h>

#include "framework/TAppPrivacy.h"
#include "framework/TArchivable.h"
#include "framework/TLLT.h"
#include "prefs/window/TFontFamilyMenu.h"
#include "prefs/window/TPrefView.h"
#include "prefs/window/pref_codes.h"

namespace {

constexpr int32 kEncodingCount = 5; // positions, with the separator's
constexpr int32 kEncodingSeparator = 3;
constexpr int32 kCRTypeCount = 3;
constexpr int32 kNoSeparator = -1;

constexpr const char* kColorKeys[kColorCount] = {"PopMItem_Col_Lyrics", "PopMItem_Col_BG",
	"PopMItem_Col_Active_Lyrics", "PopMItem_Col_Active_BG", "PopMItem_Col_Active_Frame"};

constexpr const char* kFileNameField = "FileName";
constexpr const char* kColorField = "Color";

void
empty_menu(BMenu* menu)
{
	menu->RemoveItems(0, menu->CountItems(), true);
}

//! Items whose positions are the numbers that they stand for; their labels' keys end in these.
void
build_numbered_menu(
	BMenu* menu, const char* keyPrefix, int32 count, int32 separator, uint32 command)
{
	empty_menu(menu);
	for (int32 i = 0; i < count; i++) {
		if (i == separator) {
			menu->AddSeparatorItem();
			continue;
		}
		const std::string key = keyPrefix + std::to_string(i);
		menu->AddItem(new BMenuItem(gLLT->Text(key.c_str()), new BMessage(command)));
	}
}

//! Without such an item none is marked, and the menu's field shows `title`.
void
mark_item(BMenu* menu, int32 index, const char* title = "")
{
	BMenuItem* item = menu->ItemAt(index);
	if (item != nullptr && dynamic_cast<BSeparatorItem*>(item) == nullptr) {
		item->SetMarked(true);
		return;
	}
	if (BMenuItem* marked = menu->FindMarked())
		marked->SetMarked(false);
	if (BMenuItem* field = menu->Superitem())
		field->SetLabel(title);
}

//! Negative when none is marked.
int32
marked_index(BMenu* menu)
{
	return menu->IndexOf(menu->FindMarked());
}

rgb_color
color_of(const BMenuItem* item)
{
	rgb_color color = {0, 0, 0, 255};
	const void* data;
	ssize_t size;
	if (item->Message()->FindData(kColorField, B_RAW_TYPE, &data, &size) == B_OK
		&& size == sizeof(color))
		color = *static_cast<const rgb_color*>(data);
	return color;
}

void
set_color(BMenuItem* item, rgb_color color)
{
	BMessage* message = item->Message();
	message->RemoveName(kColorField);
	message->AddData(kColorField, B_RAW_TYPE, &color, sizeof(color));
}

} // namespace

void
TPrefView::BuildMenus()
{
	BuildLanguageMenu();
	const struct {
		BMenuField* field;
		uint32 command;
	} encodings[] = {
		{fMFieldReadEncoding, kMFieldReadEncoding}, {fMFieldWriteEncoding, kMFieldWriteEncoding}};
	for (const auto& [field, command] : encodings) {
		build_numbered_menu(
			field->Menu(), "PopMItem_Encoding_", kEncodingCount, kEncodingSeparator, command);
		field->Menu()->SetTargetForItems(this);
	}
	build_numbered_menu(
		fMFieldWriteCRType->Menu(), "PopMItem_RC_", kCRTypeCount, kNoSeparator, kMFieldWriteCRType);
	fMFieldWriteCRType->Menu()->SetTargetForItems(this);
	BuildColorMenu();
	BuildOptionMenu();
	UpdateMenus();
}

void
TPrefView::BuildLanguageMenu()
{
	BMenu* menu = fMFieldLanguage->Menu();
	empty_menu(menu);
	for (const merion::language_file& file : gAppPrivacy->Languages()) {
		auto* message = new BMessage(kMFieldLanguage);
		message->AddString(kFileNameField, file.name.c_str());
		menu->AddItem(new BMenuItem(file.language.c_str(), message));
	}
	menu->SetTargetForItems(this);
	UpdateLanguage();
}

void
TPrefView::BuildColorMenu()
{
	BMenu* menu = fMFieldColor->Menu();
	const int32 marked = marked_index(menu);
	empty_menu(menu);
	for (const char* key : kColorKeys)
		menu->AddItem(new BMenuItem(gLLT->Text(key), new BMessage(kMFieldColor)));
	menu->SetTargetForItems(this);
	mark_item(menu, marked >= 0 ? marked : kColorLyrics);
}

void
TPrefView::MFieldLanguageChanged(const BMessage* message)
{
	const char* file;
	if (message->FindString(kFileNameField, &file) != B_OK)
		return;
	gPref->fLanguageFile = file;
	NotifyPrefChange(kPrefLanguageChanged);
}

void
TPrefView::MFieldReadEncodingChanged()
{
	gPref->fReadEncoding = marked_index(fMFieldReadEncoding->Menu());
	NotifyPrefChange(kPrefReadEncodingChanged);
}

void
TPrefView::MFieldWriteEncodingChanged()
{
	gPref->fWriteEncoding = marked_index(fMFieldWriteEncoding->Menu());
	NotifyPrefChange(kPrefWriteEncodingChanged);
}

void
TPrefView::MFieldWriteCRTypeChanged()
{
	gPref->fWriteCRType = marked_index(fMFieldWriteCRType->Menu());
	NotifyPrefChange(kPrefWriteCRTypeChanged);
}

void
TPrefView::MFieldColorChanged()
{
	if (const BMenuItem* item = fMFieldColor->Menu()->FindMarked())
		ShowColor(color_of(item));
}

void
TPrefView::ColCtrlAppearanceChanged()
{
	BMenu* menu = fMFieldColor->Menu();
	if (BMenuItem* item = menu->FindMarked())
		set_color(item, fColCtrlAppearance->ValueAsColor());
	ShowDispColor(fColCtrlAppearance->ValueAsColor());
	for (int32 i = 0; i < kColorCount; i++)
		gPref->Color(i) = color_of(menu->ItemAt(i));
	NotifyPrefChange(kPrefAppearanceChanged);
}

void
TPrefView::UpdateMenus()
{
	UpdateLanguage();
	mark_item(fMFieldReadEncoding->Menu(), gPref->fReadEncoding);
	mark_item(fMFieldWriteEncoding->Menu(), gPref->fWriteEncoding);
	mark_item(fMFieldWriteCRType->Menu(), gPref->fWriteCRType);
	UpdateColors();
	fFontFamilyMenu->SetFamily(gPref->fFontFamily.Get());
}

//! A file that is not there, or is no language, has no item: its name is shown then.
void
TPrefView::UpdateLanguage()
{
	const std::string chosen = gPref->fLanguageFile.Get();
	BMenu* menu = fMFieldLanguage->Menu();
	int32 index = menu->CountItems() - 1;
	while (index >= 0 && chosen != menu->ItemAt(index)->Message()->GetString(kFileNameField, ""))
		index--;
	mark_item(menu, index, chosen.c_str());
}

void
TPrefView::UpdateColors()
{
	BMenu* menu = fMFieldColor->Menu();
	for (int32 i = 0; i < kColorCount; i++)
		set_color(menu->ItemAt(i), gPref->Color(i));
	MFieldColorChanged();
}

void
TPrefView::ShowColor(rgb_color color)
{
	fColCtrlAppearance->SetValue(color);
	ShowDispColor(color);
}

void
TPrefView::ShowDispColor(rgb_color color)
{
	fViewDispColor->SetViewColor(color);
	fViewDispColor->Invalidate();
	fBoxDispColor->Invalidate();
}
