#pragma once

#include <string>
#include <string_view>

#include <SupportDefs.h>

class BEntry;

namespace merion {

//! The folder that get_entry() starts from. The numbers are shared with the maker's other applications.
enum entry_base : int32 {
	kEntryBaseUserSettings = 2, // "MERION" in the user's settings directory
};

/*!	Makes `entry` name the file `name` in the sub-folder `folder` of the base, creating the folders on the way; the
	file itself need not be there. An error when there is no such directory and none can be made. */
[[nodiscard]] status_t get_entry(
	const char* name, BEntry* entry, entry_base base, const char* folder);

/*!	The path with `extension` (without its dot) in place of what follows the last dot of the file's name; a name
	without a dot gets one. */
std::string reext(std::string_view path, std::string_view extension);

} // namespace merion
