#pragma once

#include <SupportDefs.h>

/*!	The messages of the lyrics window and its view. */

// code                                 from -> to                                fields                         reply
constexpr uint32 kPollingQuboInfo
	= 'pcir'; // the view's message runner -> view  none                           none

// The popup menu and its accelerators.
constexpr uint32 kStayOnTopItemClicked
	= 'mstp'; // menu -> window                          none                           none
constexpr uint32 kPositionItemClicked
	= 'mpos'; // menu -> window                          kItemNumber (merion::side)     none
constexpr uint32 kSizeItemClicked
	= 'msiz'; // menu -> window                          kItemNumber (lines)            none
constexpr uint32 kHideItemClicked
	= 'mhid'; // menu -> window                          none                           none
constexpr uint32 kAcceleratorPressed
	= 'macc'; // shortcuts -> window                     "Key" (int8)                   none
constexpr const char* kItemNumber = "Number"; // int32
constexpr int32 kHostWidth = 0; // instead of a number of lines: as wide as the host's window

/*!	A file that was dropped on the view is to be copied as a song's lyrics. View, and the box with its question -> view.
	"refs" (the file), "Target" (string: the path), "Asked" (int32: what was asked before); from the box "which" (int32: the
	button, 0 to go on). */
constexpr uint32 kCopyLyrics = 'cply';

/*!	What others may watch the view for (BHandler::StartWatching()): another line has become the current one, or its text
	has changed. The notice, a B_OBSERVER_NOTICE_CHANGE, holds "CurrentLine" (string, UTF-8, without its tag; empty when no
	lyrics are shown) and "Index" (int32, from 0). */
constexpr uint32 kCurrentLineChanged = 'CLch';

// The properties of the view that scripts may get.
constexpr const char* kCurrentLineProperty = "CurrentLine"; // a string, as in the notice
/*!	Where the lyrics come from, or why there are none: a message with "Title" (string: the playing song's, empty for none), "Song"
	(string: the path of the playlist's entry of that title; left out when there is none) and then "File" (string: the path of the
	lyrics file, there or not), "Error" (int32: B_OK, or why it cannot be read). With B_OK also "Encoding" (string: the name),
	"Guessed" (bool: the encoding was taken from the text), "Lines" and "Times" (int32: how many of them). */
constexpr const char* kLyricsProperty = "Lyrics";
