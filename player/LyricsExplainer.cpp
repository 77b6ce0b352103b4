#include "LyricsExplainer.h"

#include "explanation.h"
#include "player_messages.h"
#include "song_tags.h"

#include <Message.h>

#include <cstdio>

namespace {

constexpr bigtime_t kViewTime = 5000000; // for the add-on to show a song

} // namespace

LyricsExplainer::LyricsExplainer(PlayState& list, const Deck& deck, const BMessenger& listener)
	: BLooper("Qubo lyrics explainer"),
	  fList(list),
	  fDeck(deck),
	  fListener(listener)
{ }

void
LyricsExplainer::MessageReceived(BMessage* message)
{
	if (message->what == kMsgExplain)
		ExplainRqtd(message->GetInt32("index", 0));
	else
		BLooper::MessageReceived(message);
}

bool
LyricsExplainer::QuitRequested()
{
	fListener.SendMessage(kMsgWatchGone);
	return true;
}

//! One song a message, so that the end of the program is seen between two of them.
void
LyricsExplainer::ExplainRqtd(int32 index)
{
	std::string explanation;
	Tell(index);
	const auto isAskedToStop = [this] { return IsMessageWaiting(); }; // only the end is told here
	fOk = explain_lyrics(fDeck, system_time() + kViewTime, isAskedToStop, explanation) && fOk;
	if (isAskedToStop())
		return;
	printf("%s%s", index > 0 ? "\n" : "", explanation.c_str());
	const bool isRead = fflush(stdout) == 0;
	if (isRead && index + 1 < fList.CountEntries()) {
		BMessage next(kMsgExplain);
		next.AddInt32("index", index + 1);
		PostMessage(&next);
		return;
	}
	BMessage done(kMsgWatchFinished);
	done.AddBool("ok", fOk && isRead);
	fListener.SendMessage(&done);
}

void
LyricsExplainer::Tell(int32 index)
{
	PlaylistEntry entry;
	SongTags tags;
	if (fList.GetEntry(index, entry) && !read_song_tags(entry.path, tags))
		tags = {}; // it goes by its file's name
	fList.Announce(index, tags, 0);
}
