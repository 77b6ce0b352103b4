#pragma once

#include <string>
#include <vector>

#include <SupportDefs.h>

/*!	What the user asked for on the command line. Times in µs from the start of the song. */
struct CommandLine {
	std::vector<std::string> files; // as written
	std::string addOns;             // folder; "": the usual one
	std::string snapshot;           // PNG file; "": none
	bigtime_t snapshotTime = -1;    // -1: when playing ends
	bigtime_t start = 0;            // of the first song
	int32 volume = 100;             // percent
	bool headless = false;
	bool print = false;
	bool help = false;
	bool version = false;

	/*!	Reads the arguments (without the program's name). False, and what is wrong with which argument in `error`, if they
		cannot be followed. */
	[[nodiscard]] bool Parse(const std::vector<std::string>& arguments, std::string& error);

	static const char* HelpText();
};
