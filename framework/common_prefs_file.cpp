#include "framework/common_prefs_file.h"

#include <string>

#include <Entry.h>
#include <File.h>
#include <OS.h>

#include "framework/file_utils.h"

namespace merion {

namespace {

constexpr const char* kFolder = "Shared";
constexpr const char* kName = "MERION_Common_Prefs.arc";

//! A name that nobody else writes to just now; what a crash leaves of it is replaced some day.
std::string
aside_name()
{
	thread_info self = {};
	get_thread_info(find_thread(NULL), &self);
	return std::string(kName) + "." + std::to_string(self.team) + "-" + std::to_string(self.thread);
}

status_t
write_message(const BMessage& message, const BEntry& entry)
{
	BFile file(&entry, B_WRITE_ONLY | B_CREATE_FILE | B_ERASE_FILE);
	status_t status = file.InitCheck();
	if (status == B_OK)
		status = message.Flatten(&file);
	return status == B_OK ? file.Sync() : status;
}

status_t
replace_value(BMessage* message, const BMessage& values, const char* name)
{
	type_code type;
	const void* data;
	ssize_t size;
	status_t status = values.GetInfo(name, &type);
	if (status == B_OK)
		status = values.FindData(name, type, &data, &size);
	if (status != B_OK)
		return status;
	message->RemoveName(name);
	return message->AddData(name, type, data, size);
}

} // namespace

BMessage
load_common_prefs()
{
	BEntry entry;
	BMessage stored;
	if (get_entry(kName, &entry, kEntryBaseUserSettings, kFolder) != B_OK)
		return BMessage();
	BFile file(&entry, B_READ_ONLY);
	if (file.InitCheck() != B_OK || stored.Unflatten(&file) != B_OK)
		return BMessage();
	return stored;
}

status_t
save_common_pref(const BMessage& values, const char* name)
{
	BMessage stored = load_common_prefs();
	status_t status = replace_value(&stored, values, name);
	BEntry aside;
	if (status == B_OK)
		status = get_entry(aside_name().c_str(), &aside, kEntryBaseUserSettings, kFolder);
	if (status != B_OK)
		return status;
	status = write_message(stored, aside);
	if (status == B_OK)
		status = aside.Rename(kName, true);
	if (status != B_OK)
		aside.Remove();
	return status;
}

} // namespace merion
