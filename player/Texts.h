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
	kTextAddOnsMenu,
	kTextNoAddOns,
	kTextShow,
	kTextPreferences,
	kTextAbout,
	kTextPlay,
	kTextPause,
	kTextPrevious,
	kTextNext,
	kTextVolume, // the percentage
	kTextDropHere,
	kTextNoSound,
	kTextCannotPlay,  // the file, the reason
	kTextNoPlayer,    // the reason
	kTextAddOnFailed, // the file, the reason
	kTextReasonNotThere,
	kTextReasonList,
	kTextReasonNoStart,
	kTextReasonNotLoaded,
	kTextReasonOtherVersion,
	kTextReasonNoFactory,
	kTextReasonNoPlugIn,
	kTextCount
};

//! UTF-8, good for ever.
const char* text(TextKey key);
//! With these in place of its "%1" and "%2".
std::string text(TextKey key, const std::string& first, const std::string& second = "");
