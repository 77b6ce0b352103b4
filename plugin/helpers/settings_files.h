#pragma once

/*!	The settings files and their records gPref and gExitState, which must exist. While the user holds Shift, Command,
	Control and Option together nothing is saved, and starting sets the preferences back. Thread: any. */

/*!	Loads the exit state from that file of the folder `shortName`, and the preferences; true when both were whole. What
	was missing keeps its default. With the four keys held, the preferences file is written anew with what the record
	holds, nothing is loaded, and the answer is false. */
bool load_global(const char* shortName, const char* exitStateName);

//! Saves the exit state to that file of the folder `shortName`; false when it was not saved.
bool save_exit_state(const char* shortName, const char* exitStateName);

//! Saves the preferences; `force`: whatever keys are held. False when they were not saved.
bool save_pref(bool force);
