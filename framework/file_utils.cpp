#include "framework/file_utils.h"

#include <Directory.h>
#include <Entry.h>
#include <FindDirectory.h>
#include <Path.h>

namespace merion {

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
