#pragma once

#include <string>

#include "host/QuboSongEntry.h"

/*!	The path of a song's lyrics file: the song's with the extension "lrc" when something of that name is there, else with
	"txt", whether that is there or not. */
std::string lyrics_fname(QuboSongEntry entry);
