#pragma once

#include "Playlist.h"

/*!	Reads what a file says about its song; false, `tags` untouched, if it is of none of the formats that are known here: some that
	can be played are not. Opens regular files only. Any thread. */
[[nodiscard]] bool read_song_tags(const std::string& path, SongTags& tags);
