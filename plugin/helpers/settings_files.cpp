#include "plugin/helpers/settings_files.h"

#include <Entry.h>
#include <InterfaceDefs.h>

#include "framework/file_utils.h"
#include "prefs/TExitState.h"
#include "prefs/TPref.h"

namespace {

constexpr const char* kPrefFolder = "Shared";
constexpr const char* kPrefName = "TavoraShared_Prefs.arc";

bool
load(merion::TArchivable* record, const char* folder, const char* name)
{
	BEntry entry;
	return merion::get_entry(name, &entry, merion::kEntryBaseUserSettings, folder) == B_OK
		&& record->Load(entry);
}

bool
save(const merion::TArchivable& record, const char* folder, const char* name)
{
	BEntry entry;
	return merion::get_entry(name, &entry, merion::kEntryBaseUserSettings, folder) == B_OK
		&& record.Save(entry);
}

} // namespace

bool
are_reset_keys_held()
{
	constexpr uint32 kResetKeys = B_SHIFT_KEY | B_COMMAND_KEY | B_CONTROL_KEY | B_OPTION_KEY;
	return (modifiers() & kResetKeys) == kResetKeys;
}

bool
has_pref_file()
{
	BEntry entry;
	return merion::get_entry(kPrefName, &entry, merion::kEntryBaseUserSettings, kPrefFolder) == B_OK
		&& entry.Exists();
}

bool
load_exit_state(const char* shortName, const char* exitStateName)
{
	return load(gExitState, shortName, exitStateName);
}

bool
load_pref()
{
	return load(gPref, kPrefFolder, kPrefName);
}

bool
save_exit_state(const char* shortName, const char* exitStateName)
{
	return !are_reset_keys_held() && save(*gExitState, shortName, exitStateName);
}

bool
save_pref(bool force)
{
	return (force || !are_reset_keys_held()) && save(*gPref, kPrefFolder, kPrefName);
}
