#pragma once

#include <Looper.h>
#include <Messenger.h>

#include <memory>
#include <string>

class BMessageRunner;
class Deck;
struct QuboInfo;

/*!	Looks at the add-on's lyrics from outside, by the platform's scripting only: it finds the view, writes each line that becomes
	current to standard output, and takes a picture of the window.
	Thread: its own looper, which may wait for windows, with time-outs; nobody waits for it. Owner: itself. */
class LyricsWatch : public BLooper {
public:
	struct Wish {
		bool print = false;
		std::string snapshot;        // PNG file, "": none
		bigtime_t snapshotTime = -1; // of the song, µs; -1: at kMsgFinishWatch
	};

	//! kMsgWatchFinished goes to `listener`.
	LyricsWatch(const Deck& deck, const Wish& wish, const BMessenger& listener);
	~LyricsWatch() override;

	thread_id Run() override;
	void MessageReceived(BMessage* message) override;
	//! Yes; the listener gets kMsgWatchGone.
	bool QuitRequested() override;

private:
	void PulseReceived();
	void FindView();
	void WatchView(const BMessenger& view);
	void LineChanged(BMessage* notice);
	void PrintLine(const std::string& line, int32 index, const QuboInfo& when);
	void FinishRqtd();
	void TakeSnapshot();

	const Deck& fDeck;
	Wish fWish;
	BMessenger fListener;
	BMessenger fView;
	std::unique_ptr<BMessageRunner> fPulse;
	std::string fPrinted; // the last line
	std::string fPrintedSong;
	int32 fPrintedIndex = -1; // -1: the first line that was found
	bool fOk = true;
};
