#pragma once

#include <SupportDefs.h>

/*!	The messages between the parts of the player. */

// code                                             from -> to: fields
constexpr uint32 kMsgPlayingChanged = 'QPch'; // engine, tag reader -> window; engine -> application
constexpr uint32 kMsgListChanged = 'QPlc';    // window -> application
constexpr uint32 kMsgFindFiles = 'QFfi';      // window -> file finder: see below
constexpr uint32 kMsgFilesFound = 'QFfd';     // file finder -> window, its answer: see below
constexpr uint32 kMsgSought = 'QPso';         // engine -> window, application
constexpr uint32 kMsgSetVolume = 'QPvo';      // player server -> window: "volume" (int32, percent)
constexpr uint32 kMsgProblem = 'QPpr';        // any part -> window: "text" (string)
constexpr uint32 kMsgPlayingEnded = 'QPen';   // engine -> application: "any" (bool) song played
constexpr uint32 kMsgAddOnsLoaded = 'QAld';   // add-on host -> application -> window: see below
constexpr uint32 kMsgAddOnsGone = 'QAgn';     // add-on host -> application
constexpr uint32 kMsgFinishWatch = 'QWfn';    // application -> lyrics watch
constexpr uint32 kMsgWatchFinished = 'QWfd';  // lyrics watch -> application: "ok" (bool)
constexpr uint32 kMsgWatchGone = 'QWgn'; // lyrics watch -> application: it asks nothing any more
constexpr uint32 kMsgExplain
	= 'QEex'; // application -> lyrics explainer: "index" (int32, 0 without it); and see below
constexpr uint32 kMsgStartPlaying = 'QAst';     // application -> itself
constexpr uint32 kMsgSettled = 'QAse';          // application -> itself: a song plays steadily
constexpr uint32 kMsgShowAddOn = 'QAsh';        // window -> application: kAddOnField
constexpr uint32 kMsgAddOnPreferences = 'QApr'; // window -> application: kAddOnField
constexpr uint32 kMsgAboutAddOn = 'QAab';       // window -> application: kAddOnField

constexpr uint32 kMsgFollow = 'QAfo';           // window -> application: see below
constexpr uint32 kMsgFollowingChanged = 'QFch'; // follower -> application -> window: see below

// kMsgFindFiles: "path" (string; each file or folder, absolute). Its answer has "first" (int32), the list's first new song, if any, and
// "missing" (string), each path at which there is nothing. Both have "at once" (bool), whether to play them whatever does now, and
// "start" (int64, µs), from where.

// kMsgFollow: "on" (bool); "player" (string) that alone is followed, if any; off: "play" (int32), the song of the
// list to play then, if any, from "start" (int64, µs).
// To the window kMsgFollowingChanged has "on" and "seeks" (bool), "pinned" and "text" (string), and for each player "player" (string).

// kMsgAddOnsLoaded has, for each add-on, "name" (string), "about" and "prefs" (bool): has it these?

/*!	Of another process, through the session's port (SessionInstance):
	kMsgPlayFiles, which goes on to the application and the window: "path" (string; each file or folder, absolute), "start" (int64,
	µs), "volume" (int32, percent) and "shift" (int32, ms), these two if wanted; "player" (string) if it shall follow: that one, ""
	any. Reply: B_REPLY.
	kMsgExplain. Reply: B_REPLY, "text" (string), "ok" (bool: there is a lyrics view that knows). */
constexpr uint32 kMsgPlayFiles = 'QPfi';

constexpr const char* kAddOnField = "add-on"; // int32, the index that the add-on host gave it
