#include "lyrics/TDisplayMenu.h"

#include <Entry.h>
#include <MenuItem.h>
#include <Message.h>
#include <Messenger.h>
#include <Window.h>

#include "framework/TIAPItemAccKeyFormat.h"
#include "framework/TInterAppPrefs.h"
#include "framework/TLLT.h"
#include "framework/accelerator.h"
#include "framework/screen_utils.h"
#include "lyrics/lyrics_codes.h"
#include "plugin/helpers/commman_codes.h"
#include "prefs/app_info.h"

namespace {

constexpr char kOpenKey = 'O';
constexpr char kStayOnTopKey = 'T';
constexpr char kHideKey = 'H';
constexpr char kPrefKey = 'P';
constexpr char kCommonPrefKey = 'M';
constexpr char kHelpKey = 'L';
constexpr char kAboutKey = 'A';

struct PositionItem {
	const char* key;
	merion::side side;
};

constexpr PositionItem kPositionItems[] = {
	{"PopMItem_Pos_Left", merion::side::kLeft},
	{"PopMItem_Pos_Right", merion::side::kRight},
	{"PopMItem_Pos_Above", merion::side::kAbove},
	{"PopMItem_Pos_Below", merion::side::kBelow},
};

struct SizeItem {
	const char* key;
	int32 lines;
};

constexpr SizeItem kSizeItems[] = {
	{"PopMItem_Size_Host_Width", kHostWidth},
	{"PopMItem_Size_3_Lines", 3},
	{"PopMItem_Size_7_Lines", 7},
	{"PopMItem_Size_15_Lines", 15},
};

//! The number goes with the message, under the name kItemNumber.
void
add_number_item(BMenu* menu, const char* key, uint32 what, int32 number, const BMessenger& target)
{
	BMessage* message = new BMessage(what);
	message->AddInt32(kItemNumber, number);
	BMenuItem* item = new BMenuItem(gLLT->Text(key), message);
	item->SetTarget(target);
	menu->AddItem(item);
}

} // namespace

TDisplayMenu::TDisplayMenu(const BMessenger& window, const BMessenger& manager)
	: BPopUpMenu("Display", false, false),
	  fFormat(merion::TIAPItemAccKeyFormat::Format(gIAP))
{
	fPopMItemOpen = AddMenuItem(manager, "PopMItem_Open", kOpenLyrics, kOpenKey);
	AddSeparatorItem();
	fPopMItemStayOnTop
		= AddMenuItem(window, "PopMItem_Stay_On_Top", kStayOnTopItemClicked, kStayOnTopKey);
	BMenu* position = AddSubMenu("PopMItem_Position");
	for (const auto& [key, side] : kPositionItems)
		add_number_item(position, key, kPositionItemClicked, static_cast<int32>(side), window);
	BMenu* size = AddSubMenu("PopMItem_Size");
	for (const auto& [key, lines] : kSizeItems)
		add_number_item(size, key, kSizeItemClicked, lines, window);
	AddMenuItem(window, "PopMItem_Hide", kHideItemClicked, kHideKey);
	AddSeparatorItem();
	AddMenuItem(manager, "PopMItem_Preferences", kPrefItemChosen, kPrefKey);
	AddMenuItem(manager, "PopMItem_Common_Preferences", kCommonPrefItemChosen, kCommonPrefKey);
	AddSeparatorItem();
	AddMenuItem(manager, "PopMItem_Help", kHelpItemChosen, kHelpKey);
	AddMenuItem(manager, "PopMItem_Author_Web", kAuthorWebItemChosen)
		->SetEnabled(gAuthorWebURL[0] != '\0');
	AddMenuItem(manager, "PopMItem_About", kAboutItemChosen, kAboutKey);
}

void
TDisplayMenu::Update(const entry_ref* lyrics, bool isOnTop)
{
	BMessage* open = new BMessage(kOpenLyrics);
	if (lyrics != nullptr)
		open->AddRef("LyricsERef", lyrics);
	fPopMItemOpen->SetMessage(open);
	fPopMItemOpen->SetEnabled(lyrics != nullptr);
	fPopMItemStayOnTop->SetMarked(isOnTop);
}

void
TDisplayMenu::InvokeAccelerator(char accelerator) const
{
	for (const auto& [key, item] : fAccelerators) {
		if (key == accelerator && item->IsEnabled())
			item->Messenger().SendMessage(item->Message());
	}
}

void
TDisplayMenu::AddShortcuts(BWindow* window)
{
	for (const char key :
		{kOpenKey, kStayOnTopKey, kHideKey, kPrefKey, kCommonPrefKey, kHelpKey, kAboutKey}) {
		BMessage* message = new BMessage(kAcceleratorPressed);
		message->AddInt8("Key", key);
		window->AddShortcut(key, 0, message);
	}
}

BMenuItem*
TDisplayMenu::AddMenuItem(const BMessenger& target, const char* key, uint32 what, char accelerator)
{
	std::string label = gLLT->Text(key);
	if (accelerator != 0)
		label = merion::merge_accelerator_key(label, std::string_view(&accelerator, 1), fFormat);
	BMenuItem* item = new BMenuItem(label.c_str(), new BMessage(what));
	item->SetTarget(target);
	AddItem(item);
	if (accelerator != 0)
		fAccelerators.emplace_back(accelerator, item);
	return item;
}

BMenu*
TDisplayMenu::AddSubMenu(const char* key)
{
	BMenu* menu = new BMenu(gLLT->Text(key));
	AddItem(menu);
	return menu;
}
