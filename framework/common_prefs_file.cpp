#include "framework/common_prefs_file.h"

#include <Entry.h>
#include <File.h>

#include "framework/file_utils.h"

namespace merion {

namespace {

constexpr const char* kFolder = "Shared";
constexpr const char* kName = "MERION_Common_Prefs.arc";

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
	BEntry entry;
	if (status == B_OK)
		status = get_entry(kName, &entry, kEntryBaseUserSettings, kFolder);
	return status == B_OK ? save_message(stored, entry) : status;
}

} // namespace merion
