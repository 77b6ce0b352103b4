#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace merion {

class TLLT;

/*!	The folder of language files beside an application. A language file is NAME.llt, UTF-8, with the header that
	TLLT::Load() asks for. Thread: any. */

struct language_file {
	std::string name;     // bare
	std::string language; // as it is shown: in the language itself
};

//! The folder "Language" beside the application's file, whether it is there or not; empty for an empty path.
std::string language_folder(std::string_view applicationPath);

/*!	The bytes of a folder's file; nothing when it cannot be read, is larger than any language, or `name` is not bare. */
std::optional<std::string> read_language_file(const std::string& folder, const std::string& name);

//! Loads such bytes over what the table has; false, and the table stays, when they are no language file.
bool load_language_text(const std::string& bytes, TLLT* table);

//! What of a folder are language files, by the languages' names; those that are none are left out.
std::vector<language_file> list_languages(const std::string& folder);

//! The file for the first of the desktop's languages that has one in the list; empty without one.
std::string desktop_language(const std::vector<language_file>& languages);

} // namespace merion
