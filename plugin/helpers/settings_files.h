#pragma once

/*!	The settings files and their records gPref and gExitState, which must exist. While the user holds Shift, Command,
	Control and Option together nothing is saved, and starting sets the preferences back. Thread: any. */

//! Whether those four keys are held now.
bool are_reset_keys_held();
//! Whether preferences were ever saved.
bool has_pref_file();

//! False when the file was not there or not whole; what was missing keeps its value.
bool load_exit_state(const char* shortName, const char* exitStateName);
bool load_pref();

//! Saves the exit state to that file of the folder `shortName`; false when it was not saved.
bool save_exit_state(const char* shortName, const char* exitStateName);

//! Saves the preferences; `force`: whatever keys are held. False when they were not saved.
bool save_pref(bool force);
