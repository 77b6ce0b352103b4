#pragma once

#include <SupportDefs.h>

class BPath;

// The platform's folders that a desktop has, too. A variable that is no absolute path is ignored.
enum directory_which {
	B_SYSTEM_TEMP_DIRECTORY = 1015,   // $TMPDIR, else /tmp
	B_USER_DIRECTORY = 3000,          // $HOME, else as the user data base says
	B_USER_CONFIG_DIRECTORY = 3001,   // $XDG_CONFIG_HOME, else .config in the home folder
	B_USER_SETTINGS_DIRECTORY = 3006, // the same
	B_USER_CACHE_DIRECTORY = 3012     // $XDG_CACHE_HOME, else .cache in the home folder
};

/*!	Where one of the folders is, whether it exists or not; createIt makes what is missing of it.
	B_BAD_VALUE: NULL or no such folder; B_ENTRY_NOT_FOUND: the user has no home folder;
	an error of making it. On failure the path is unset. */
status_t find_directory(directory_which which, BPath* path, bool createIt = false);
