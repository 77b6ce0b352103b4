#pragma once

#include <string>

#include <SupportDefs.h>

struct entry_ref;

/*!	What a file is good for that is dropped on the lyrics. Thread: any. */
enum class dropped_file {
	kOther,
	kImage,  // of a format that is common for pictures
	kSkin,   // a folder with a skin's colours, or an archive, which may be one
	kLyrics, // by its name: .lrc or .txt
};

//! Fast enough to be asked while it is dragged: reads the beginning at most, and no damaged file is found out.
dropped_file classify_dropped_file(const entry_ref& ref);

//! "lrc" or "txt" when the name ends so, in any case; else empty.
std::string lyrics_extension(const char* name);

//! Whether the path leads to the same file, over links and under another name too.
bool is_same_file(const entry_ref& ref, const std::string& path);

/*!	Copies lyrics to a path. Nobody sees half of them, and after an error what was there is as it was.
	B_FILE_EXISTS when something is there that must not be replaced; B_FILE_TOO_LARGE above 16 MB. */
[[nodiscard]] status_t copy_lyrics(
	const entry_ref& source, const std::string& target, bool mayReplace);
