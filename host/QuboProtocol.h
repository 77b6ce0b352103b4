#pragma once

#include <SupportDefs.h>

/*!	The host's front-end message protocol: the codes, fields and sizes that the host and an add-on
	share. Requests go from the add-on to the host. "Entry" and "Playlist" are specifiers. */

constexpr const char* kQuboSignature = "application/x-vnd.Vasko-Qubo";
//! The host's window is the one whose title begins so.
constexpr const char* kQuboWindowTitle = "Qubo";

//! Hello, no fields. The host answers with the same code and "Msgr", its messenger.
constexpr uint32 kQuboHello = 'QUBm';
//! No fields. The host answers with the same code and "Info" ('CSTR', a QuboInfo).
constexpr uint32 kQuboInfo = 'QUBi';
//! "Entry" of "Playlist". Reply: "result" (int32).
constexpr uint32 kQuboCountEntries = 'PCNT';
//! "Entry" [index] of "Playlist". Reply: "filename", "title" (string), "time", "nr" (int32),
//! "played" (bool); seconds, and the number from 0.
constexpr uint32 kQuboGetEntry = 'PGET';
//! "Entry" [index] of "Playlist", "Fade" (bool). No reply.
constexpr uint32 kQuboPlayEntry = 'PEXE';

/*!	The host's state, sent as it lies in memory. */
struct QuboInfo {
	int32 state;      // 0 stopped, 1 playing, 2 paused
	int32 positionMs; // of the playing song
	int32 lengthMs;   // of the playing song, 0 when unknown
	char title[112];  // of the playing song, NUL-terminated
};
static_assert(sizeof(QuboInfo) == 124);
