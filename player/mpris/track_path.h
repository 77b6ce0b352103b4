#pragma once

#include "../Playlist.h"

/*!	The file of this machine that a player's url means: "file:" with %XX or without, or a path. "" if it means none. */
std::string file_of_url(const std::string& url);

/*!	What stands for a track that has no file: "Artist - Title" in `folder`, "/" replaced, with an extension, so that lyrics of that
	name are found beside it whatever dots are in the title. There is no such file. The tags have a title. */
std::string entry_of_track(const std::string& folder, const SongTags& tags);

//! The last part of a url, readable.
std::string name_of_url(const std::string& url);

//! "Lyrics" in the user's music folder.
std::string default_lyrics_folder();
