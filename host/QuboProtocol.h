#pragma once

#include <SupportDefs.h>

/*!	The host's front-end message protocol: the codes, fields and sizes that the host and an add-on share. */

constexpr const char* kQuboSignature = "application/x-vnd.Vasko-Qubo";
//! The host's window is the one whose title begins so.
constexpr const char* kQuboWindowTitle = "Qubo";

// code                          from -> to            fields                                  reply
constexpr uint32 kQuboHello = 'QUBm';       // add-on -> host     none                          'QUBm' with "Msgr" (messenger)
constexpr uint32 kQuboInfo = 'QUBi';        // add-on -> host     none                          'QUBi' with "Info" ('CSTR', 124 bytes)
constexpr uint32 kQuboCountEntries = 'PCNT'; // add-on -> host    "Entry" of "Playlist"         "result" (int32)
constexpr uint32 kQuboGetEntry = 'PGET';    // add-on -> host     "Entry" [index] of "Playlist" "filename", "title" (string), "time", "nr" (int32), "played" (bool)
constexpr uint32 kQuboPlayEntry = 'PEXE';   // add-on -> host     the same, "Fade" (bool)       none

/*!	The host's state, sent as it lies in memory. */
struct QuboInfo {
	int32 state;      // 0 stopped, 1 playing, 2 paused
	int32 positionMs; // of the playing song
	int32 lengthMs;   // of the playing song, 0 when unknown
	char title[112];  // of the playing song, NUL-terminated
};
static_assert(sizeof(QuboInfo) == 124);
