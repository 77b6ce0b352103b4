#pragma once

#include "PlayState.h"

#include <Looper.h>
#include <Messenger.h>

class Deck;

/*!	Explains the lyrics of every song of the list, one after the other, on standard output: each is told as the one that plays, but
	none is played. It stands in for LyricsWatch and talks to its listener in the same way.
	Thread: its own looper, which may wait for windows, with time-outs; nobody waits for it. Owner: itself. */
class LyricsExplainer : public BLooper {
public:
	//! `deck` is about `list`.
	LyricsExplainer(PlayState& list, const Deck& deck, const BMessenger& listener);

	//! kMsgExplain starts it, once the add-ons are there.
	void MessageReceived(BMessage* message) override;
	bool QuitRequested() override;

private:
	void ExplainRqtd(int32 index);
	void Tell(int32 index);

	PlayState& fList;
	const Deck& fDeck;
	BMessenger fListener;
	bool fOk = true;
};
