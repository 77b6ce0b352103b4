#pragma once

#include <iosfwd>
#include <string>

#include <GraphicsDefs.h>

class TPref;
struct entry_ref;

/*!	Lyrics colours out of a skin of the player: a folder or a ZIP archive with the file PLEDIT.TXT. Its section "[Text]"
	has words like Normal=#00FF80. Thread: any. */

/*!	Whether this may be a skin, fast enough to ask while something is dragged: a folder with the colour file, or a file
	that begins as a ZIP archive does, whatever its name. */
bool is_skin(const entry_ref& ref);

/*!	Takes the colours of a skin into the preferences: those of lyrics and background, and both of the current line. What
	the skin does not tell keeps its value, and so does everything after an error.
	B_ENTRY_NOT_FOUND: there is no colour file; B_NO_TRANSLATOR: no translator takes this as an archive; B_FILE_TOO_LARGE:
	the colour file has more than 1 MB; B_ILLEGAL_DATA and others: it cannot be read. */
[[nodiscard]] status_t import_skin_colors(const entry_ref& skin, TPref* pref);

//! The same from the colour file's text, read to at most ten words after "[Text]".
void read_skin_colors(std::istream& text, TPref* pref);

/*!	Red, green and blue out of the six digits after `key`, in the first of the words that has it. When none has it, or fewer
	than six characters follow, the colour stays. Digits are not checked: see hex_to_int(). */
void get_skin_color(const std::string* words, int32 count, const char* key, rgb_color* color);

//! A hexadecimal digit's value; a number without meaning for another character.
int hex_to_int(char digit);
