#pragma once

#include <string>
#include <string_view>

#include <SupportDefs.h>

class BEntry;
class BMessage;
struct entry_ref;

namespace merion {

//! The folder that get_entry() starts from. The numbers are shared with the maker's other applications.
enum entry_base : int32 {
	kEntryBaseUserSettings = 2, // "MERION" in the user's settings directory
};

/*!	Makes `entry` name the file `name` in the sub-folder `folder` of the base, creating the folders on the way; the
	file itself need not be there. An error when there is no such directory and none can be made. */
[[nodiscard]] status_t get_entry(
	const char* name, BEntry* entry, entry_base base, const char* folder);

/*!	All bytes of a file that has at most `maxSize`; else B_FILE_TOO_LARGE. On failure `bytes` is left alone. */
[[nodiscard]] status_t read_file(const BEntry& entry, size_t maxSize, std::string* bytes);

/*!	Makes the flattened message the whole of a file. It is written aside, into a file of the same folder whose name begins
	with a dot, and renamed: nobody reads half of it, and after an error the file is as it was. */
[[nodiscard]] status_t save_message(const BMessage& message, const BEntry& entry);

/*!	The same with plain bytes. Without `mayReplace`, B_FILE_EXISTS when something of the name is there. */
[[nodiscard]] status_t save_bytes(std::string_view bytes, const BEntry& entry, bool mayReplace);

//! The path of a ref; its name alone where no path can be had.
std::string path_of(const entry_ref& ref);

/*!	The path with `extension` (without its dot) in place of what follows the last dot of the file's name; a name
	without a dot gets one. */
std::string reext(std::string_view path, std::string_view extension);

} // namespace merion
