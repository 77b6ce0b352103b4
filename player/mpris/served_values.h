#pragma once

#include "../Playlist.h"

#include <string>
#include <vector>

struct sd_bus_message;

class Engine;
class PlayState;

/*!	What this player says of itself, at one moment; not its position, which is read when it is asked for. */
struct ServedValues {
	std::string status;  // "Playing", "Paused", "Stopped"
	std::string trackId; // "": nothing is current
	SongTags tags;       // the title is never empty then
	std::string url;
	double volume = 1;
	bool canGoNext = false;
	bool canGoPrevious = false;
	bool canPlay = false;
	bool canPause = false;
	bool canSeek = false;

	static ServedValues Of(const PlayState& state, const Engine& engine);
	//! The names of the properties that are not equal, NULL at the end.
	std::vector<const char*> DifferenceTo(const ServedValues& other) const;
};

//! A track's metadata, a{sv}; empty when nothing is current.
int append_metadata(sd_bus_message* message, const ServedValues& values);

//! "file:" and the path with everything but letters, digits and "-._~/" as %XX.
std::string url_of_file(const std::string& path);
