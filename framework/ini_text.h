#pragma once

#include <string>
#include <string_view>

#include <GraphicsDefs.h>

namespace merion {

class TIniFileSection;

// The text form of TIniFile. Numbers are written and read the same way in every locale.

/*!	A line taken apart; the texts point into it. A line that is none of the others is a pair, without a "=" one with an
	empty key; a header without "]" has an empty name. */
struct ini_line {
	enum kind_type { kEmpty, kComment, kHeader, kPair } kind;
	std::string_view name;  // of a header, or the key
	std::string_view value; // of a pair, or the comment
};

ini_line parse_ini_line(std::string_view line);

//! Header (on demand), comments, pairs and an empty line. The comments are read from the section's first, all of them.
void append_ini_section(
	std::string* text, TIniFileSection* section, bool withHeader, int lineLength);

// A text that does not parse leaves the value; of a colour, what does not parse is 0.

void parse_ini_value(const std::string& text, bool* value);
void parse_ini_value(const std::string& text, long* value);
void parse_ini_value(const std::string& text, long long* value);
void parse_ini_value(const std::string& text, float* value);
void parse_ini_value(const std::string& text, rgb_color* value);

std::string ini_text_of(float value);
std::string ini_text_of(rgb_color value);

} // namespace merion
