#pragma once

#include <Message.h>

namespace merion {

/*!	The file with the preferences that all of the maker's applications share: one flattened message in the user's
	settings, "Shared/MERION_Common_Prefs.arc". An application keeps what the others have put into it. Thread: any. */

//! What the file holds; an empty message when there is no such file or it is damaged.
BMessage load_common_prefs();

/*!	Puts `name` of the message into the file, in place of what it holds under that name. The file is written aside and
	renamed: nobody reads half of it, and after an error it is as it was. Of two applications that save at the very same
	time one may write back the other's old value; whichever saves next puts its own right. */
[[nodiscard]] status_t save_common_pref(const BMessage& values, const char* name);

} // namespace merion
