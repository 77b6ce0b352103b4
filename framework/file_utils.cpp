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

static status_t
write_message(const BMessage& message, const BEntry& entry)
{
	BFile file(&entry, B_WRITE_ONLY | B_CREATE_FILE | B_ERASE_FILE);
	status_t status = file.InitCheck();
	if (status == B_OK)
		status = message.Flatten(&file);
	return status == B_OK ? file.Sync() : status;
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
	char name[B_FILE_NAME_LENGTH];
	BDirectory folder;
	status_t status = entry.GetName(name);
	if (status == B_OK)
		status = entry.GetParent(&folder);
	if (status != B_OK)
		return status;

	BEntry aside(&folder, aside_name().c_str());
	status = write_message(message, aside);
	if (status == B_OK)
		status = aside.Rename(name, true);
	if (status != B_OK)
		aside.Remove();
	return status;
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
