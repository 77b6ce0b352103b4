#pragma once

#include <Handler.h>

class Deck;

/*!	The host's side of the front-end protocol (host/QuboProtocol.h): tells add-ons what plays, lists the playlist and starts
	songs of it. Everything is answered from a PlayState at once, nothing waits for the player.
	Thread: the application's looper, which it is added to. It is the target of 'QUBi', and of requests for the "Playlist". */
class FrontEndServer : public BHandler {
public:
	explicit FrontEndServer(const Deck& deck);

	//! Is it for this handler, even when it was sent to the application?
	static bool Knows(const BMessage* message);
	//! Does the specifier name the playlist, which this handler stands for?
	static bool IsPlaylist(int32 form, const char* property);

	BHandler* ResolveSpecifier(BMessage* message, int32 index, BMessage* specifier, int32 form,
		const char* property) override;
	void MessageReceived(BMessage* message) override;

private:
	void HelloRqtd(BMessage* message);
	void InfoRqtd(BMessage* message);
	void PlaylistRqtd(BMessage* message, int32 entry);
	void CountEntriesRqtd(BMessage* message);
	void GetEntryRqtd(BMessage* message, int32 index);
	void PlayEntryRqtd(BMessage* message, int32 index);

	const Deck& fDeck;
};
