// The option menu of the preferences window: appearance presets, and colours out of a skin. And the font families.

#include <algorithm>
#include <string>
#include <vector>

#include <Entry.h>
#include <MenuField.h>
#include <MenuItem.h>
#include <Message.h>
#include <Window.h>

#include "framework/TLLT.h"
#include "prefs/presets.h"
#include "prefs/skin_colors.h"
#include "prefs/window/TFontFamilyMenu.h"
#include "prefs/window/TPrefView.h"
#include "prefs/window/TPresetMenu.h"
#include "prefs/window/pref_codes.h"

namespace {

constexpr const char* kWhich = "which"; // an answer's: the button's index
constexpr int32 kGoOn = 0;

//! A request comes back with the answer to its question.
bool
is_answer(const BMessage* message)
{
	return message->HasInt32(kWhich);
}

bool
goes_on(const BMessage* message)
{
	return message->GetInt32(kWhich, -1) == kGoOn;
}

BMenuItem*
make_item(const char* key, uint32 command, const BMessenger& target)
{
	auto* item = new BMenuItem(gLLT->Text(key), new BMessage(command));
	item->SetTarget(target);
	return item;
}

bool
is_preset(const std::string& name)
{
	const std::vector<std::string> presets = list_presets();
	return std::find(presets.begin(), presets.end(), name) != presets.end();
}

bool
is_preset_folder(const BMessage* message)
{
	entry_ref chosen;
	BEntry folder;
	return message->FindRef("directory", &chosen) == B_OK && get_preset_folder(&folder) == B_OK
		&& BEntry(&chosen) == folder;
}

} // namespace

bool
TPrefView::OptionReceived(BMessage* message)
{
	switch (message->what) {
		case kMFieldFontFamily:
			MFieldFontFamilyChanged(message);
			return true;
		case kLoadPreset:
			LoadPresetRqtd(message);
			return true;
		case kSavePreset:
			SavePresetRqtd(message);
			return true;
		case kSaveNewPreset:
			SaveNewPresetRqtd(message);
			return true;
		case kDeletePreset:
			DeletePresetRqtd(message);
			return true;
		case kDeleteAllPresets:
			DeleteAllPresetsRqtd(message);
			return true;
		case kGetSkinColor:
			GetSkinColorRqtd(message);
			return true;
		default:
			return false;
	}
}

/*!	The archive's field, with a menu of ours: a field's own menu stays the same as long as the field. */
void
TPrefView::MakeFontFamilyField()
{
	BMenuField* archived = fMFieldFontFamily;
	fFontFamilyMenu = new TFontFamilyMenu(kMFieldFontFamily);
	fMFieldFontFamily = new BMenuField(archived->Frame(), archived->Name(), archived->Label(),
		fFontFamilyMenu, archived->ResizingMode(), archived->Flags());
	fMFieldFontFamily->SetDivider(archived->Divider());
	archived->Parent()->AddChild(fMFieldFontFamily, archived);
	archived->RemoveSelf();
	delete archived;
}

void
TPrefView::MFieldFontFamilyChanged(const BMessage* message)
{
	const char* family;
	if (message->FindString(kFontFamily, &family) != B_OK)
		return;
	gPref->fFontFamily = family;
	fFontFamilyMenu->SetFamily(family);
	NotifyPrefChange(kPrefAppearanceChanged);
}

void
TPrefView::BuildOptionMenu()
{
	BMenu* menu = fMFieldOption->Menu();
	const BMessenger self(this);
	const BMessenger window(Window());
	fMFieldOption->MenuItem()->SetLabel(gLLT->Text("Button_Choose"));
	menu->RemoveItems(0, menu->CountItems(), true);
	menu->AddItem(new TPresetMenu(gLLT->Text("PopMItem_Load_Preset"), kLoadPreset, self));
	menu->AddItem(new TPresetMenu(gLLT->Text("PopMItem_Save_Preset"), kSavePreset, self));
	menu->AddItem(make_item("PopMItem_Save_New_Preset", kShowSavePanel, window));
	menu->AddItem(new TPresetMenu(gLLT->Text("PopMItem_Delete_Preset"), kDeletePreset, self));
	menu->AddItem(make_item("PopMItem_Delete_All_Presets", kDeleteAllPresets, self));
	menu->AddSeparatorItem();
	menu->AddItem(make_item("PopMItem_Get_Skin_Color", kBrowseSkin, window));
}

void
TPrefView::LoadPresetRqtd(const BMessage* message)
{
	const std::string name = message->GetString(kPresetName, "");
	if (load_preset(name, gPref) != B_OK) {
		fQuestion.Tell((gLLT->Text("Err_Cannot_Read_Preset") + name).c_str());
		return;
	}
	UpdateCompos();
	NotifyPrefChange(kPrefAppearanceChanged);
}

void
TPrefView::SavePresetRqtd(const BMessage* message)
{
	const std::string name = message->GetString(kPresetName, "");
	if (!is_answer(message))
		AskAboutPreset(*message, "Ask_Overwrite_Preset_", name, {"Button_Replace", 'R'});
	else if (goes_on(message))
		SavePreset(name);
}

/*!	The panel has asked about what it shows; a preset of the name may be elsewhere than where the user has gone. */
void
TPrefView::SaveNewPresetRqtd(const BMessage* message)
{
	const std::string name = message->GetString("name", "");
	if (is_preset_folder(message) || !is_preset(name)) {
		SavePreset(name);
		return;
	}
	BMessage save(kSavePreset);
	save.AddString(kPresetName, name.c_str());
	SavePresetRqtd(&save);
}

void
TPrefView::SavePreset(const std::string& name)
{
	ApplyTexts();
	if (save_preset(name, *gPref) != B_OK)
		fQuestion.Tell((gLLT->Text("Err_Cannot_Save_Preset") + name).c_str());
}

void
TPrefView::DeletePresetRqtd(const BMessage* message)
{
	const std::string name = message->GetString(kPresetName, "");
	if (!is_answer(message))
		AskAboutPreset(*message, "Ask_Delete_Preset_", name, {"Button_Delete", 'D'});
	else if (goes_on(message) && delete_preset(name) != B_OK)
		fQuestion.Tell((gLLT->Text("Err_Cannot_Delete_Preset") + name).c_str());
}

void
TPrefView::DeleteAllPresetsRqtd(const BMessage* message)
{
	if (!is_answer(message)) {
		fQuestion.Ask(gLLT->Text("Ask_Delete_All_Presets"),
			{{"Button_Delete_All", 'D'}, {"Button_Cancel", 'N'}}, *message, BMessenger(this));
	} else if (goes_on(message) && delete_all_presets() != B_OK)
		fQuestion.Tell(gLLT->Text("Err_Cannot_Delete_Preset"));
}

//! `key`: of the question's text, without the 1 and the 2, between which the name stands.
void
TPrefView::AskAboutPreset(const BMessage& request, const std::string& key, const std::string& name,
	merion::TQuestion::Button goOn)
{
	const std::string text
		= gLLT->Text((key + "1").c_str()) + name + gLLT->Text((key + "2").c_str());
	fQuestion.Ask(text.c_str(), {goOn, {"Button_Cancel", 'N'}}, request, BMessenger(this));
}

/*!	Tells the display nothing: it takes the colours with the next change of the appearance. */
void
TPrefView::GetSkinColorRqtd(BMessage* message)
{
	entry_ref skin;
	if (message->FindRef("refs", &skin) != B_OK)
		return;
	if (import_skin_colors(skin, gPref) == B_OK) {
		UpdateCompos();
		return;
	}
	const std::string text
		= std::string(gLLT->Text("Err_Cannot_Find_PLEdit")) + gLLT->Text("Hint_Check_ZIP_AT");
	fQuestion.Tell(text.c_str(), {"Button_Understand", 'U'});
}

void
TPrefView::GetSkinColor(
	const std::string* lines, int32 count, const char* key, rgb_color* colour) const
{
	get_skin_color(lines, count, key, colour);
}

int
TPrefView::HexToInt(char c) const
{
	return hex_to_int(c);
}
