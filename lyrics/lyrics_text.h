#pragma once

#include <string>
#include <string_view>

#include <SupportDefs.h>

#include "lyrics/TLineList.h"

struct entry_ref;

/*!	Lyrics files and the time tags at the beginnings of their lines. Times: ms from the start of the song. Thread: any.
	Encoding numbers and line-end types are those of the settings file (TPref.h, text_detection.h). */

/*!	Reads a lyrics file, as UTF-8, into lines. The encoding is the preferences' one, or guessed when they say so; a text
	that cannot be converted comes undecoded. What was found goes into the last two.
	False, with all three untouched, when the file cannot be read. */
[[nodiscard]] bool load_lyrics(
	const entry_ref& ref, TLineList* lines, int32* crType, int32* encoding);

//! The same for the bytes of a file: `raw` has room for one byte behind `size`, and `readEncoding` is the preferences' one.
void bytes_to_lines(std::unique_ptr<char[]> raw, size_t size, int32 readEncoding, TLineList* lines,
	int32* crType, int32* encoding);

//! Cuts a text that ends with a NUL into lines; always 0.
int32 text_to_lines(const char* text, TLineList* lines);

/*!	Reads the time tag that a line begins with, "[mm:ss" or "[mm:ss:hh": only the bracket and the first digits are looked
	at, and what is no digit counts as 0. False, with the rest untouched, when the line has no tag. */
bool time_tag_to_time(std::string_view line, int32* time, bool* hasHundredths);

//! Writes a tag, "[mm:ss]" or "[mm:ss:hh]", of a time that is limited to 0 .. 99:59.99; always true.
bool time_to_time_tag(int32 time, std::string* tag, bool withHundredths);

//! An encoding number as a conversion of UTF8.h; B_UNICODE_CONVERSION stands for UTF-8, B_ISO1_CONVERSION for unknown numbers.
uint32 cvt_enum_ec_to_bconv(int32 encoding);
//! And back; 0 for every other conversion.
int32 cvt_enum_bconv_to_ec(uint32 conversion);
//! A line-end type as the code for writing, which has the same numbers; 0 for unknown types.
int32 cvt_enum_cr_type_to_ct(int32 crType);
