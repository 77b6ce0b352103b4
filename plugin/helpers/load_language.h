#pragma once

/*!	What the add-on loads at its start, and again when a language file changes. The records and tables that are loaded
	into must exist: gPref, gExitState, gAppPrivacy, gLLT. */

namespace merion {
class TNodeMonitorHandler;
}

/*!	Loads the exit state from that file of the folder `shortName`, and the preferences; true when both were whole. What
	was missing keeps its default. With the four keys held (settings_files.h), the preferences file is written anew with
	what the record holds, nothing is loaded, and the answer is false. Thread: any. */
bool load_global(const char* shortName, const char* exitStateName);

/*!	Replaces all texts of gLLT at once: by the built-in ones of the add-on's file, and over them those of the chosen
	language file beside it. When there is no preferences file, the first call chooses the desktop's language if there
	is a file for it. False when the built-in texts stand in for the chosen file. Thread: any, one at a time. */
bool load_language(const char* addOnPath);

/*!	From now on the watcher tells when a language file is changed, added or removed, also when what was loaded is
	out of date already. To be called again whenever it has told so, before anything is read, since a file that was
	replaced is another one to watch. Thread: with the watcher's looper locked. */
void set_node_monitor_language(const char* addOnPath, merion::TNodeMonitorHandler* watcher);
