#pragma once

#include <atomic>
#include <string>
#include <vector>

//! Compares names as people sort them: letters in any case, "Track 2" before "Track 10".
bool natural_less(const std::string& a, const std::string& b);

//! Whether a file of this name is taken from a folder: known by the extensions of sound files.
bool has_media_extension(const std::string& name);

/*!	The files that `path` stands for, as absolute paths, appended to `files`: a file itself, whatever its name, or what
	has_media_extension() in a folder and the folders in it, each sorted by natural_less(). Hidden names are left out,
	a folder that is reached twice by links is read once.
	Returns false, and appends nothing, if there is nothing at `path`.
	A folder may take minutes: when another thread sets `stop`, what was found by then is all. */
[[nodiscard]] bool collect_media_files(
	const std::string& path, std::vector<std::string>& files, const std::atomic<bool>& stop);
