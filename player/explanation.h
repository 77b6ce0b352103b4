#pragma once

#include <functional>
#include <string>

#include <SupportDefs.h>

class BMessage;
class Deck;

/*!	Why the lyrics window shows what it shows, in lines for a reader: title, playlist entry, lyrics file, encoding, or what is missing.
	Waits until the lyrics view knows the song that is told, until `end` (system_time()) or until `isAskedToStop` says so; false, with
	the reason in `explanation` too, when there was no such view by then. Thread: any that may wait for windows. */
[[nodiscard]] bool explain_lyrics(const Deck& deck, bigtime_t end,
	const std::function<bool()>& isAskedToStop, std::string& explanation);
