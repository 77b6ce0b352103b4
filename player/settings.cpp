#include "settings.h"

#include <Directory.h>
#include <Entry.h>
#include <File.h>
#include <FindDirectory.h>
#include <Message.h>
#include <Path.h>

namespace {

constexpr const char* kFolder = "Qubo";
constexpr const char* kFile = "Qubo_Settings";
constexpr const char* kNewFile = "Qubo_Settings.new";
constexpr uint32 kSettings = 'QSet';

status_t
settings_folder(BPath* folder)
{
	status_t status = find_directory(B_USER_SETTINGS_DIRECTORY, folder);
	return status == B_OK ? folder->Append(kFolder) : status;
}

BMessage
load_settings(const BPath& folder)
{
	BMessage settings(kSettings);
	BMessage loaded;
	BFile file(BPath(folder.Path(), kFile).Path(), B_READ_ONLY);
	if (file.InitCheck() == B_OK && loaded.Unflatten(&file) == B_OK && loaded.what == kSettings)
		settings = loaded;
	return settings;
}

//! Beside the old one first: whatever happens, there is a whole file.
status_t
save_settings(const BPath& folder, const BMessage& settings)
{
	status_t status = create_directory(folder.Path(), 0755);
	if (status != B_OK)
		return status;
	BEntry entry(BPath(folder.Path(), kNewFile).Path());
	BFile file(&entry, B_WRITE_ONLY | B_CREATE_FILE | B_ERASE_FILE);
	status = file.InitCheck();
	if (status == B_OK)
		status = settings.Flatten(&file);
	file.Unset();
	return status == B_OK ? entry.Rename(kFile, true) : status;
}

} // namespace

int32
int_setting(const char* name, int32 otherwise)
{
	BPath folder;
	return settings_folder(&folder) == B_OK ? load_settings(folder).GetInt32(name, otherwise)
											: otherwise;
}

status_t
set_int_setting(const char* name, int32 value)
{
	BPath folder;
	status_t status = settings_folder(&folder);
	if (status != B_OK)
		return status;
	BMessage settings = load_settings(folder);
	settings.RemoveName(name);
	settings.AddInt32(name, value);
	return save_settings(folder, settings);
}
