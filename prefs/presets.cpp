#include "prefs/presets.h"

#include <algorithm>

#include <DataIO.h>
#include <Directory.h>
#include <Entry.h>
#include <Message.h>

#include "framework/TNameIndex.h"
#include "framework/file_utils.h"
#include "prefs/TPref.h"

namespace {

constexpr const char* kFolder = "Shared/Presets";
constexpr size_t kMaxPresetSize = 64 * 1024; // bytes; a path and a few numbers

status_t
check_name(const std::string& name)
{
	if (name.empty() || name[0] == '.' || name.find_first_of(std::string("/\0", 2)) != name.npos)
		return B_BAD_VALUE;
	return name.size() < B_FILE_NAME_LENGTH ? B_OK : B_NAME_TOO_LONG;
}

status_t
get_preset_entry(const std::string& name, BEntry* entry)
{
	const status_t status = check_name(name);
	if (status != B_OK)
		return status;
	return merion::get_entry(name.c_str(), entry, merion::kEntryBaseUserSettings, kFolder);
}

//! The entry of a preset that is there: never a link, which could lead out of the folder.
status_t
find_preset(const std::string& name, BEntry* entry)
{
	const status_t status = get_preset_entry(name, entry);
	if (status != B_OK)
		return status;
	return entry->IsFile() ? B_OK : B_ENTRY_NOT_FOUND;
}

status_t
read_preset(const BEntry& entry, BMessage* preset)
{
	std::string bytes;
	const status_t status = merion::read_file(entry, kMaxPresetSize, &bytes);
	if (status != B_OK)
		return status == B_FILE_TOO_LARGE ? B_BAD_DATA : status;
	BMemoryIO stream(bytes.data(), bytes.size());
	TPref whole;
	if (preset->Unflatten(&stream) != B_OK || !whole.UnarchiveAppearance(*preset))
		return B_BAD_DATA;
	return B_OK;
}

bool
goes_before(const std::string& a, const std::string& b)
{
	const int order = merion::compare_names(a, b);
	return order != 0 ? order < 0 : a < b;
}

} // namespace

status_t
get_preset_folder(BEntry* folder)
{
	BEntry entry;
	const status_t status = get_preset_entry("any", &entry);
	return status == B_OK ? entry.GetParent(folder) : status;
}

std::vector<std::string>
list_presets()
{
	std::vector<std::string> names;
	BEntry folder;
	if (get_preset_folder(&folder) != B_OK)
		return names;
	BDirectory directory(&folder);
	entry_ref ref;
	while (directory.GetNextRef(&ref) == B_OK) {
		const BEntry entry(&ref);
		BMessage preset;
		if (check_name(ref.name) == B_OK && entry.IsFile() && read_preset(entry, &preset) == B_OK)
			names.push_back(ref.name);
	}
	std::sort(names.begin(), names.end(), goes_before);
	return names;
}

status_t
load_preset(const std::string& name, TPref* pref)
{
	BEntry entry;
	BMessage preset;
	status_t status = find_preset(name, &entry);
	if (status == B_OK)
		status = read_preset(entry, &preset);
	if (status != B_OK)
		return status;
	return pref->UnarchiveAppearance(preset) ? B_OK : B_BAD_DATA;
}

status_t
save_preset(const std::string& name, const TPref& pref)
{
	BEntry entry;
	const status_t status = get_preset_entry(name, &entry);
	if (status != B_OK)
		return status;
	BMessage preset(static_cast<uint32>(0));
	return pref.ArchiveAppearance(&preset) ? merion::save_message(preset, entry) : B_NO_MEMORY;
}

status_t
delete_preset(const std::string& name)
{
	BEntry entry;
	const status_t status = find_preset(name, &entry);
	return status == B_OK ? entry.Remove() : status;
}

status_t
delete_all_presets()
{
	status_t status = B_OK;
	for (const std::string& name : list_presets()) {
		const status_t result = delete_preset(name);
		if (status == B_OK)
			status = result;
	}
	return status;
}
