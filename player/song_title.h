#pragma once

#include <string>

/*!	The titles by which the front-end protocol knows songs: UTF-8 without control characters, at most
	kSongTitleBytes long, so that they fit the information block with their NUL. */
constexpr size_t kSongTitleBytes = 111;

/*!	"Artist - Title"; the title alone without an artist; the file's name without a title.
	Control characters become blanks, ill-formed bytes U+FFFD, blanks at the ends go. Not cut yet. */
std::string song_title(
	const std::string& artist, const std::string& title, const std::string& fileName);

//! Cut to `limit` bytes at a character's edge. `text` is well-formed UTF-8.
std::string cut_utf8(const std::string& text, size_t limit);

/*!	`base` cut to kSongTitleBytes, with " (`number`)" at its end; the number takes its room from the base.
	Number 1 is not written. */
std::string numbered_title(const std::string& base, int number);
