#pragma once

#include <string>

/*!	The texts of the player that its user sees, in the language of the desktop where there is a file for it, else in English.
	Thread: any. */
enum TextKey {
	kTextFileMenu,
	kTextOpen,
	kTextQuit,
	kTextPlaybackMenu,
	kTextPlayItem,
	kTextPreviousItem,
	kTextNextItem,
	kTextBack,
	kTextForward,
	kTextToStart,
	kTextSofter,
	kTextLouder,
	kTextTimingMenu,
	kTextLyricsEarlier,
	kTextLyricsLater,
	kTextUsualTiming,
	kTextFollowMenu,
	kTextFollowNone,
	kTextFollowAny,
	kTextAddOnsMenu,
	kTextNoAddOns,
	kTextShow,
	kTextPreferences,
	kTextAbout,
	kTextPlay,
	kTextPause,
	kTextPrevious,
	kTextNext,
	kTextVolume,        // the percentage
	kTextTiming,        // the ms
	kTextTimingNotKept, // the ms
	kTextDropHere,
	kTextNoSound,
	kTextCannotPlay,  // the file, the reason
	kTextNoPlayer,    // the reason
	kTextAddOnFailed, // the file, the reason
	kTextFollowing,   // the player
	kTextNoBus,
	kTextNoneRunning,
	kTextNotRunning,   // the player
	kTextNoAnswer,     // the player
	kTextPlaysNothing, // the player
	kTextPlaysUnnamed, // the player
	kTextNoPosition,   // the player
	kTextNoFile,       // the player, the lyrics' file
	kTextReasonNotThere,
	kTextReasonList,
	kTextReasonNoStart,
	kTextReasonNotLoaded,
	kTextReasonOtherVersion,
	kTextReasonNoFactory,
	kTextReasonNoPlugIn,
	kTextTitle,           // the title
	kTextEntry,           // its number, the file
	kTextLyricsFile,      // the file
	kTextEncodingGuessed, // its name
	kTextEncodingChosen,  // its name
	kTextLines,           // how many, with how many times
	kTextNoTimes,
	kTextMisspelt, // the file
	kTextNoLyrics, // the reason
	kTextReasonNoSong,
	kTextReasonNoEntry,
	kTextReasonNeither,    // the two files
	kTextReasonUnreadable, // the file, the reason
	kTextReasonFolder,
	kTextReasonNotAllowed,
	kTextReasonError, // its number
	kTextReasonNoView,
	kTextCount
};

//! UTF-8, good for ever.
const char* text(TextKey key);
//! With these in place of its "%1" and "%2".
std::string text(TextKey key, const std::string& first, const std::string& second = "");
