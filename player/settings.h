#pragma once

#include <SupportDefs.h>

/*!	What the player keeps from one run to the next: one flattened message, "Qubo_Settings" in the folder "Qubo" of the user's
	settings. A file that is missing or damaged is as good as an empty one.
	Thread: any; of two that write at once one wins, and what the other wrote is lost. */

int32 int_setting(const char* name, int32 otherwise);
/*!	Stored at once, the other settings as they are. On an error the file keeps what it had. */
status_t set_int_setting(const char* name, int32 value);

constexpr const char* kShiftSetting = "LyricsShift"; // ms, see Deck::SetShift()
