#include "prefs/window/TPresetMenu.h"

#include <string>

#include <MenuItem.h>
#include <Message.h>

#include "framework/TLLT.h"
#include "prefs/presets.h"
#include "prefs/window/pref_codes.h"

TPresetMenu::TPresetMenu(const char* label, uint32 command, BMessenger target)
	: BMenu(label),
	  fCommand(command),
	  fTarget(target)
{ }

bool
TPresetMenu::AddDynamicItem(add_state state)
{
	if (state != B_INITIAL_ADD)
		return false;
	RemoveItems(0, CountItems(), true);
	for (const std::string& name : list_presets()) {
		auto* message = new BMessage(fCommand);
		message->AddString(kPresetName, name.c_str());
		AddItem(new BMenuItem(name.c_str(), message));
	}
	if (CountItems() == 0) {
		auto* none = new BMenuItem(gLLT->Text("PopMItem_No_Preset"), nullptr);
		none->SetEnabled(false);
		AddItem(none);
	}
	SetTargetForItems(fTarget);
	return false;
}
