#pragma once

#include <SupportDefs.h>

/*!	The messages between the parts of the player. */

// code                                      from -> to                          fields
constexpr uint32 kMsgPlayingChanged = 'QPch'; // engine -> window                 none
constexpr uint32 kMsgProblem = 'QPpr';        // engine, add-on host -> window    "text" (string)
constexpr uint32 kMsgPlayingEnded
	= 'QPen'; // engine -> application            "any" (bool): has a song played at all?
constexpr uint32 kMsgAddOnsLoaded
	= 'QAld'; // add-on host -> application, window  per add-on "name" (string), "about", "prefs" (bool)
constexpr uint32 kMsgAddOnsGone = 'QAgn';  // add-on host -> application       none
constexpr uint32 kMsgFinishWatch = 'QWfn'; // application -> lyrics watch      none
constexpr uint32 kMsgWatchFinished
	= 'QWfd'; // lyrics watch -> application      "ok" (bool): what was wanted is written
constexpr uint32 kMsgStartPlaying = 'QAst';     // application -> itself            none
constexpr uint32 kMsgShowAddOn = 'QAsh';        // window -> application             kAddOnField
constexpr uint32 kMsgAddOnPreferences = 'QApr'; // window -> application             kAddOnField
constexpr uint32 kMsgAboutAddOn = 'QAab';       // window -> application             kAddOnField

constexpr const char* kAddOnField = "add-on"; // int32, the index that the add-on host gave it
