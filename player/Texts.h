#pragma once

/*!	The texts of the player that its user sees, in the language of the user. */
enum TextKey {
	kTextFileMenu,
	kTextOpen,
	kTextQuit,
	kTextPlaybackMenu,
	kTextPlay,
	kTextPause,
	kTextPrevious,
	kTextNext,
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
	kTextVolume, // the percentage
	kTextDropHere,
	kTextNoSound,
	kTextCannotPlay, // the file, the reason
	kTextNoPlayer,   // the reason
	kTextCount
};

//! UTF-8. Any thread; good for ever.
const char* text(TextKey key);
