#pragma once

#include <Messenger.h>

/*!	The add-on's lyrics view, looked at from outside by the platform's scripting only. Thread: any that may wait for windows; the calls
	wait at most a second for each. */

constexpr const char* kCurrentLineProperty = "CurrentLine"; // string
constexpr const char* kLyricsProperty = "Lyrics";           // message: what it shows, see its suite

//! Looks through the application's windows; false if there is none (yet).
[[nodiscard]] bool find_lyrics_view(BMessenger& view);
//! Its answer, with the property as "result"; false without one.
[[nodiscard]] bool get_property(const BMessenger& view, const char* property, BMessage& reply);
