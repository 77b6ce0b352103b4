#include "lyrics/TTavoraDView.h"

#include <algorithm>

#include <Bitmap.h>
#include <Directory.h>
#include <Entry.h>
#include <Looper.h>
#include <Message.h>
#include <Messenger.h>
#include <NodeMonitor.h>

#include "framework/TLLT.h"
#include "framework/file_utils.h"
#include "lyrics/TDisplayMenu.h"
#include "lyrics/TTavoraDWin.h"
#include "lyrics/lyrics_codes.h"
#include "lyrics/lyrics_fname.h"
#include "lyrics/lyrics_text.h"
#include "prefs/TPref.h"
#include "prefs/app_info.h"

namespace {

constexpr bigtime_t kFrontEndInterval = 100000;   // µs
constexpr bigtime_t kPausedInterval = 100000000;  // µs; longer than any tick takes
constexpr bigtime_t kDefaultTickInterval = 25000; // µs
constexpr uint32 kWatchFlags = B_WATCH_NAME | B_WATCH_STAT | B_WATCH_ATTR | B_WATCH_DIRECTORY;

// The runner takes no interval that is not above 0, and a settings file may hold anything.
bigtime_t
tick_interval()
{
	const bigtime_t interval = gPref->fMonitoringInterval;
	return interval > 0 ? interval : kDefaultTickInterval;
}

// The part of a line that is shown.
std::string_view
without_tag(std::string_view line)
{
	const size_t bracket = line.find(']');
	return bracket == std::string_view::npos ? line : line.substr(bracket + 1);
}

std::string
leaf_of(const std::string& path)
{
	return path.substr(path.rfind('/') + 1);
}

} // namespace

TTavoraDView::TTavoraDView(BRect frame)
	: TMERView(frame, "TavoraDisplayerView", B_FOLLOW_ALL_SIDES, B_WILL_DRAW | B_FRAME_EVENTS),
	  fFrontEnd(false, kFrontEndInterval)
{
	fFrontEnd.StartPolling(B_NORMAL_PRIORITY);
	LoadPluginInfo();
}

TTavoraDView::~TTavoraDView() = default;

void
TTavoraDView::AttachedToWindow()
{
	TMERView::AttachedToWindow();
	MakeMenu();
	if (gPref->fDoubleBuffering)
		CreateOffScreen();
	SetAppearance(true, false);
	const BMessage tick(kPollingQuboInfo);
	fRunner = std::make_unique<BMessageRunner>(BMessenger(this), &tick, tick_interval());
}

void
TTavoraDView::DetachedFromWindow()
{
	ClearLyricsNodeWatching();
	fRunner.reset();
	fMenu.reset();
	fQuestion.Close();
	DestroyOffScreen();
	TMERView::DetachedFromWindow();
}

void
TTavoraDView::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kPollingQuboInfo:
			PollingQuboInfoRqtd();
			break;
		case B_NODE_MONITOR:
			NodeMonitor();
			break;
		case B_SIMPLE_DATA:
			FileDropped(message);
			break;
		case kCopyLyrics:
			CopyLyricsRqtd(message);
			break;
		case B_GET_PROPERTY:
			if (!PropertyRequested(message))
				TMERView::MessageReceived(message);
			break;
		default:
			TMERView::MessageReceived(message);
	}
}

void
TTavoraDView::PollingQuboInfoRqtd()
{
	// No tick is queued while this one runs, however long a reload takes.
	fRunner->SetInterval(kPausedInterval);
	fFrontEnd.UpdateInfo();
	if (!fFrontEnd.IsAutoInfo())
		fFrontEnd.SendInfoRequest();

	if (fFrontEnd.InfoTitle() != fSong.Title())
		SongChanged();
	else if (CalcDispLyrics()) {
		Invalidate();
		CurrentLineChanged();
	}
	fRunner->SetInterval(tick_interval());
}

void
TTavoraDView::SongChanged()
{
	ClearLyricsNodeWatching();
	PrepareLyrics();
	Invalidate();
	SetLyricsNodeWatching();
	// A change between the reading and the watching was reported by nobody.
	Looper()->PostMessage(B_NODE_MONITOR, this);
	TellWindowSong();
}

void
TTavoraDView::PrepareLyrics()
{
	const std::string lineBefore = CurrentLineText();
	fTimeTable.Clear();
	fDispLines.clear();
	fCurrentLine = 0;
	fLastDrawnLine = -1;
	fPreRenderedLine = -1;
	fSong = QuboSongEntry();
	fModificationTime = 0;
	fShowsLyrics = LoadLyrics();
	if (!fShowsLyrics)
		LoadPluginInfo();
	if (CurrentLineText() != lineBefore)
		CurrentLineChanged();
}

bool
TTavoraDView::LoadLyrics()
{
	if (!get_current_song_entry(&fFrontEnd, &fSong))
		return false;
	// Before the reading: a change during it is then seen as one.
	fModificationTime = LyricsModificationTime();
	entry_ref ref;
	int32 crType;
	fIsEncodingGuessed = gPref->fReadEncoding == kEncodingAuto;
	if (get_ref_for_path(LyricsFName().c_str(), &ref) != B_OK
		|| !load_lyrics(ref, &fLyrics, &crType, &fEncoding))
		return false;

	fDispLines.reserve(fLyrics.CountLines());
	for (size_t i = 0; i < fLyrics.CountLines(); i++) {
		const std::string_view line = fLyrics[i];
		int32 time;
		bool hasHundredths;
		if (time_tag_to_time(line, &time, &hasHundredths))
			fTimeTable.Add(time, i);
		fDispLines.push_back(without_tag(line));
	}
	fTimeTable.Complete();
	return true;
}

void
TTavoraDView::LoadPluginInfo()
{
	const std::string_view title = fFrontEnd.InfoTitle();
	std::string text(gAppName);
	text.append("\n\n").append(title.empty() ? gLLT->Text("Info_No_Song") : title);
	if (fSong.filename != nullptr) {
		text.append("\n\n").append(gLLT->Text("Info_No_Lyrics"));
		for (const char* extension : {"lrc", "txt"})
			text.append("\n    ").append(leaf_of(merion::reext(fSong.Filename(), extension)));
	}
	fLyrics.SetTo(text);
	for (size_t i = 0; i < fLyrics.CountLines(); i++)
		fDispLines.push_back(fLyrics[i]);
}

bool
TTavoraDView::CalcDispLyrics()
{
	if (fTimeTable.IsEmpty())
		return false;
	// Before the first tag it is the first line of the file, tagged or not.
	const int32 line = fTimeTable.LineAt(fFrontEnd.Info().positionMs, 0);
	const bool hasChanged = line != fCurrentLine;
	fCurrentLine = line;
	return hasChanged;
}

void
TTavoraDView::TellWindowSong()
{
	if (TTavoraDWin* window = dynamic_cast<TTavoraDWin*>(Window()))
		window->SetSongTitle(fFrontEnd.InfoTitle());
}

std::string
TTavoraDView::LyricsFName() const
{
	return lyrics_fname(fSong);
}

int32
TTavoraDView::LyricsModificationTime() const
{
	if (fSong.filename == nullptr)
		return 0;
	const BEntry entry(LyricsFName().c_str(), true);
	time_t time;
	return entry.GetModificationTime(&time) == B_OK ? static_cast<int32>(time) : 0;
}

void
TTavoraDView::SetLyricsNodeWatching()
{
	if (fSong.filename == nullptr)
		return;
	const std::string path = LyricsFName();
	BDirectory folder;
	node_ref node;
	if (BEntry(path.c_str(), true).GetNodeRef(&node) == B_OK)
		watch_node(&node, kWatchFlags, this);
	// Where there is no lyrics file yet, the folder tells of it.
	if (BEntry(path.c_str()).GetParent(&folder) == B_OK && folder.GetNodeRef(&node) == B_OK)
		watch_node(&node, kWatchFlags, this);
}

void
TTavoraDView::ClearLyricsNodeWatching()
{
	stop_watching(this);
}

void
TTavoraDView::NodeMonitor()
{
	if (LyricsModificationTime() != fModificationTime)
		SongChanged();
}
