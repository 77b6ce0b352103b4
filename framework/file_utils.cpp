#include "framework/file_utils.h"

#include <Directory.h>
#include <Entry.h>
#include <File.h>
#include <FindDirectory.h>
#include <Message.h>
#include <OS.h>
#include <Path.h>

namespace merion {

//! A name that nobody else writes to just now; what a crash leaves of it is replaced some day.
static std::string
aside_name()
{
	thread_info self = {};
	get_thread_info(find_thread(NULL), &self);
	return ".Aside-" + std::to_string(self.team) + "-" + std::to_string(self.thread);
}

//! `write` fills a file of its own, which then takes the entry's place.
template<typename Function>
static status_t
save_aside(const BEntry& entry, bool mayReplace, Function write)
{
	char name[B_FILE_NAME_LENGTH];
	BDirectory folder;
	status_t status = entry.GetName(name);
	if (status == B_OK)
		status = entry.GetParent(&folder);
	if (status != B_OK)
		return status;

	BEntry aside(&folder, aside_name().c_str());
	BFile file(&aside, B_WRITE_ONLY | B_CREATE_FILE | B_ERASE_FILE);
	status = file.InitCheck();
	if (status == B_OK)
		status = write(&file);
	if (status == B_OK)
		status = file.Sync();
	file.Unset();
	if (status == B_OK)
		status = aside.Rename(name, mayReplace);
	if (status != B_OK)
		aside.Remove();
	return status;
}

status_t
get_entry(const char* name, BEntry* entry, entry_base base, const char* folder)
{
	if (base != kEntryBaseUserSettings)
		return B_BAD_VALUE;

	BPath path;
	status_t status = find_directory(B_USER_SETTINGS_DIRECTORY, &path, true);
	if (status == B_OK)
		status = path.Append("MERION");
	if (status == B_OK)
		status = path.Append(folder);
	if (status == B_OK)
		status = create_directory(path.Path(), 0777);
	if (status == B_OK)
		status = path.Append(name);
	return status == B_OK ? entry->SetTo(path.Path()) : status;
}

status_t
read_file(const BEntry& entry, size_t maxSize, std::string* bytes)
{
	BFile file(&entry, B_READ_ONLY);
	off_t size = 0;
	status_t status = file.InitCheck();
	if (status == B_OK)
		status = file.GetSize(&size);
	if (status != B_OK)
		return status;
	if (size > static_cast<off_t>(maxSize))
		return B_FILE_TOO_LARGE;

	std::string contents(static_cast<size_t>(size), '\0');
	const ssize_t read = file.Read(contents.data(), contents.size());
	if (read < 0)
		return static_cast<status_t>(read);
	contents.resize(static_cast<size_t>(read));
	bytes->swap(contents);
	return B_OK;
}

status_t
save_message(const BMessage& message, const BEntry& entry)
{
	return save_aside(entry, true, [&](BFile* file) { return message.Flatten(file); });
}

status_t
save_bytes(std::string_view bytes, const BEntry& entry, bool mayReplace)
{
	return save_aside(entry, mayReplace, [&](BFile* file) -> status_t {
		const ssize_t written = file->Write(bytes.data(), bytes.size());
		if (written < 0)
			return static_cast<status_t>(written);
		return static_cast<size_t>(written) == bytes.size() ? B_OK : B_DEVICE_FULL;
	});
}

std::string
path_of(const entry_ref& ref)
{
	const BPath path(&ref);
	return path.InitCheck() == B_OK ? path.Path() : ref.name;
}

std::string
reext(std::string_view path, std::string_view extension)
{
	const size_t dot = path.rfind('.');
	const size_t slash = path.rfind('/');
	const bool hasExtension
		= dot != std::string_view::npos && (slash == std::string_view::npos || dot > slash);

	std::string result(hasExtension ? path.substr(0, dot + 1) : path);
	if (!hasExtension)
		result += '.';
	return result.append(extension);
}

} // namespace merion
