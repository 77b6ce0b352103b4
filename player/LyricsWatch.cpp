#include "LyricsWatch.h"

#include "Deck.h"
#include "lyrics_view.h"
#include "player_messages.h"

#include "server/WindowPicture.h"

#include <Application.h>
#include <Message.h>
#include <MessageRunner.h>
#include <Window.h>

#include <cstdio>
#include <utility>

namespace {

constexpr uint32 kMsgPulse = 'QWpl';
constexpr bigtime_t kPulse = 20000;
// The display looks every 25 ms and then draws.
constexpr bigtime_t kDrawingTime = 80000;

std::string
current_line(const BMessenger& view)
{
	BMessage reply;
	return get_property(view, kCurrentLineProperty, reply) ? reply.GetString("result", "") : "";
}

} // namespace

LyricsWatch::LyricsWatch(const Deck& deck, const Wish& wish, const BMessenger& listener)
	: BLooper("Qubo lyrics watch"),
	  fDeck(deck),
	  fWish(wish),
	  fListener(listener)
{ }

LyricsWatch::~LyricsWatch() = default;

thread_id
LyricsWatch::Run()
{
	fPulse.reset(new BMessageRunner(BMessenger(this), BMessage(kMsgPulse), kPulse));
	return BLooper::Run();
}

void
LyricsWatch::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kMsgPulse:
			PulseReceived();
			break;
		case B_OBSERVER_NOTICE_CHANGE:
			LineChanged(message);
			break;
		case kMsgFinishWatch:
			FinishRqtd();
			break;
		default:
			BLooper::MessageReceived(message);
	}
}

bool
LyricsWatch::QuitRequested()
{
	if (!fOk) { // which is told only at the end of a song else
		BMessage failed(kMsgWatchFinished);
		failed.AddBool("ok", false);
		fListener.SendMessage(&failed);
	}
	fListener.SendMessage(kMsgWatchGone);
	return true;
}

void
LyricsWatch::PulseReceived()
{
	if (!fView.IsValid())
		FindView();
	if (fWish.snapshot.empty() || fWish.snapshotTime < 0)
		return;
	QuboInfo info = fDeck.State().Info();
	if (info.title[0] != '\0' && fDeck.State().Position() >= fWish.snapshotTime + kDrawingTime)
		TakeSnapshot();
}

void
LyricsWatch::FindView()
{
	BMessenger view;
	if (find_lyrics_view(view))
		WatchView(view);
}

void
LyricsWatch::WatchView(const BMessenger& view)
{
	fView = view;
	if (!fWish.print)
		return;
	StartWatchingAll(view);
	QuboInfo now = fDeck.ShiftedInfo();
	PrintLine(current_line(view), -1, now);
}

void
LyricsWatch::LineChanged(BMessage* notice)
{
	QuboInfo now = fDeck.ShiftedInfo();
	const char* line;
	int32 index = -1; // a view that does not number its lines
	if (notice->FindString(kCurrentLineProperty, &line) != B_OK)
		return;
	notice->FindInt32("Index", &index);
	PrintLine(line, index, now);
}

/*!	Prints the line unless it is the one printed last: a notice comes as well when the lyrics were read again, and for what
	the view showed when it was found. */
void
LyricsWatch::PrintLine(const std::string& line, int32 index, const QuboInfo& when)
{
	bool same = line == fPrinted && fPrintedSong == when.title
		&& (index == fPrintedIndex || fPrintedIndex < 0);
	fPrinted = line;
	fPrintedSong = when.title;
	fPrintedIndex = index;
	if (same || line.empty())
		return;
	int32 hundredths = when.positionMs / 10;
	printf("[%02d:%02d.%02d] %s\n", static_cast<int>(hundredths / 6000),
		static_cast<int>(hundredths / 100 % 60), static_cast<int>(hundredths % 100), line.c_str());
	if (fflush(stdout) != 0) // nobody reads on
		be_app->PostMessage(B_QUIT_REQUESTED);
}

void
LyricsWatch::FinishRqtd()
{
	if (!fWish.snapshot.empty())
		TakeSnapshot();
	BMessage done(kMsgWatchFinished);
	done.AddBool("ok", fOk);
	fListener.SendMessage(&done);
}

//! Only once: the wish is forgotten then.
void
LyricsWatch::TakeSnapshot()
{
	std::string file = std::exchange(fWish.snapshot, "");
	if (!fView.IsValid())
		FindView();
	if (!fView.LockTarget()) {
		fprintf(stderr, "qubo: there is no lyrics window to take a picture of\n");
		fOk = false;
		return;
	}
	BLooper* looper;
	fView.Target(&looper);
	if (BPrivate::save_window_picture(dynamic_cast<BWindow*>(looper), file.c_str()) != B_OK) {
		fprintf(stderr, "qubo: the picture %s cannot be written\n", file.c_str());
		fOk = false;
	}
	looper->Unlock();
}
