#pragma once

#include <memory>

#include <SupportDefs.h>

/*!	An entry of the host's playlist; all zero when there is none.
	Copying copies the texts; both may be null. Thread: one at a time. */
struct QuboSongEntry {
	std::unique_ptr<char[]> filename; // path as the host gives it
	std::unique_ptr<char[]> title;
	int32 time = 0; // s
	int32 nr = 0;   // in the playlist, from 0
	bool played = false;

	QuboSongEntry() = default;
	QuboSongEntry(const QuboSongEntry& other);
	QuboSongEntry(QuboSongEntry&&) = default;
	QuboSongEntry& operator=(const QuboSongEntry& other);
	QuboSongEntry& operator=(QuboSongEntry&&) = default;

	//! The texts, empty for null.
	const char* Filename() const { return filename != nullptr ? filename.get() : ""; }
	const char* Title() const { return title != nullptr ? title.get() : ""; }

	//! A heap copy of a text; null gives null.
	static std::unique_ptr<char[]> CopyOf(const char* text);
};
