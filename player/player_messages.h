#pragma once

#include <SupportDefs.h>

/*!	The messages between the parts of the player. */

// code                                             from -> to: fields
constexpr uint32 kMsgPlayingChanged = 'QPch'; // engine, tag reader -> window
constexpr uint32 kMsgProblem = 'QPpr';        // any part -> window: "text" (string)
constexpr uint32 kMsgPlayingEnded = 'QPen';   // engine -> application: "any" (bool) song played
constexpr uint32 kMsgAddOnsLoaded = 'QAld';   // add-on host -> application -> window: see below
constexpr uint32 kMsgAddOnsGone = 'QAgn';     // add-on host -> application
constexpr uint32 kMsgFinishWatch = 'QWfn';    // application -> lyrics watch
constexpr uint32 kMsgWatchFinished = 'QWfd';  // lyrics watch -> application: "ok" (bool)
constexpr uint32 kMsgWatchGone = 'QWgn';    // lyrics watch -> application: it asks nothing any more
constexpr uint32 kMsgStartPlaying = 'QAst'; // application -> itself
constexpr uint32 kMsgSettled = 'QAse';      // application -> itself: a song plays steadily
constexpr uint32 kMsgShowAddOn = 'QAsh';    // window -> application: kAddOnField
constexpr uint32 kMsgAddOnPreferences = 'QApr'; // window -> application: kAddOnField
constexpr uint32 kMsgAboutAddOn = 'QAab';       // window -> application: kAddOnField

// kMsgAddOnsLoaded has, for each add-on, "name" (string), "about" and "prefs" (bool): has it these?

constexpr const char* kAddOnField = "add-on"; // int32, the index that the add-on host gave it
