#pragma once

#include <string>
#include <string_view>

#include <SupportDefs.h>

namespace merion {

//! How labels show the key that chooses them; the values of the preference "AccKeyFormat".
enum {
	kAccKeyHidden = 0,  // Label
	kAccKeyInBrackets,  // Label (K)
	kAccKeyWithModifier // Label  Alt+K
};

/*!	The label with its key in one of the formats above; without a key, and in an unknown format, the label alone. An ellipsis at the label's
	end stays last in "Label (K)…". `key` is shown as it is given. */
std::string merge_accelerator_key(std::string_view label, std::string_view key, int32 format);

} // namespace merion
