#pragma once

#include <optional>
#include <string>
#include <vector>

#include <SupportDefs.h>

/*!	What the user asked for on the command line. Times in µs from the start of the song. */
struct CommandLine {
	std::vector<std::string> files;   // as written
	std::string addOns;               // folder; "": the usual one
	std::string snapshot;             // PNG file; "": none
	bigtime_t snapshotTime = -1;      // -1: when playing ends
	bigtime_t start = 0;              // of the first song
	std::optional<int32> volume;      // percent; none: 100
	std::optional<int32> shift;       // ms; none: the saved one
	std::vector<std::string> players; // the only ones to follow, none: all
	std::vector<std::string> ignored; // players not to follow
	std::string lyricsFolder;         // for followed tracks without a file; "": the usual one
	bool follow = false;
	bool noFollow = false; // not even without files
	bool headless = false;
	bool explain = false; // the files, else what a running player plays
	bool print = false;
	bool help = false;
	bool version = false;

	/*!	Reads the arguments (without the program's name). False, and what is wrong with which argument in `error`, if they
		cannot be followed. */
	[[nodiscard]] bool Parse(const std::vector<std::string>& arguments, std::string& error);

	static const char* HelpText();
};
