#pragma once

#include <string>
#include <vector>

#include <SupportDefs.h>

class BEntry;
class TPref;

/*!	Appearance presets: the twelve appearance fields of the preferences under a name. Each is a file of that name with one
	flattened message, in the user's settings, "Shared/Presets". Thread: any; of two who save one name the last wins.

	A name is a file's name, UTF-8. B_BAD_VALUE: it is empty, begins with a dot (so do files that are being written) or has
	a slash or a NUL in it; B_NAME_TOO_LONG: it has more than 255 bytes. */

//! The folder of the presets, made when it is not there: where a panel opens.
[[nodiscard]] status_t get_preset_folder(BEntry* folder);

//! The names of all presets, sorted; what in the folder is no plain file or holds no preset is left out.
std::vector<std::string> list_presets();

/*!	Takes a preset's appearance; the other preferences stay, and after an error all do.
	B_ENTRY_NOT_FOUND: there is none; B_BAD_DATA: the file holds none, or it is damaged. */
[[nodiscard]] status_t load_preset(const std::string& name, TPref* pref);

//! Saves the appearance, over a preset of that name without asking. After an error that one is as it was.
[[nodiscard]] status_t save_preset(const std::string& name, const TPref& pref);

//! B_ENTRY_NOT_FOUND: there is no plain file of that name. A damaged preset can be deleted.
[[nodiscard]] status_t delete_preset(const std::string& name);

//! Deletes what list_presets() lists, as much of it as can be; the first error.
[[nodiscard]] status_t delete_all_presets();
