#pragma once

#include <SupportDefs.h>

struct entry_ref;

/*!	Opens a lyrics file with the application that the user prefers for it. Where there is no such file the user is asked
	whether to make an empty one; what fails is told. `acceleratorFormat`: see merge_accelerator_key().
	Thread: any looper's; waits for the user. */
void open_lyrics_file(const entry_ref& ref, int32 acceleratorFormat);
