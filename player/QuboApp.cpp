#include "QuboApp.h"

#include "FileFinder.h"
#include "LyricsExplainer.h"
#include "LyricsWatch.h"
#include "PlayerWindow.h"
#include "Texts.h"
#include "explanation.h"
#include "media_files.h"
#include "memory_use.h"
#include "player_messages.h"
#include "settings.h"

#include "mpris/track_path.h"

#include "host/QuboProtocol.h"

#include <Message.h>
#include <MessageRunner.h>

#include <clocale>
#include <cstdio>
#include <utility>

namespace {

constexpr int32 kFullVolume = 100;
constexpr bigtime_t kRequestTime = 1000000;   // for this looper to take another process's files
constexpr bigtime_t kExplainTime = 500000;    // for the lyrics window to know what plays
constexpr bigtime_t kAddOnPatience = 1000000; // then it plays without waiting for add-ons any more
// To load the player library keeps other libraries from being loaded, such as text converters: lyrics that are on their way come first.
constexpr bigtime_t kLookTime = 200000;    // for an add-on to ask what plays
constexpr bigtime_t kShowTime = 30000;     // for it to show that
constexpr bigtime_t kSettleTime = 3000000; // from the start of a song to steady playing

} // namespace

QuboApp::QuboApp(const CommandLine& line)
	: BApplication(kQuboSignature),
	  fLine(line),
	  fTags(fState, [this] { Window().SendMessage(kMsgPlayingChanged); }),
	  fEngine(fState, *this),
	  fDeck(fEngine),
	  fFrontEnd(fDeck),
	  fMayFollow(line.files.empty() && !line.follow && !line.noFollow)
{
	// The toolkit below takes over the user's locale; the player library insists on its numbers being C's.
	setlocale(LC_NUMERIC, "C");
	AddHandler(&fFrontEnd);
	fEngine.SetVolume(fLine.volume.value_or(kFullVolume));
	fDeck.SetShift(fLine.shift ? *fLine.shift : int_setting(kShiftSetting, Deck::kUsualShift));
}

QuboApp::~QuboApp() = default;

void
QuboApp::ReadyToRun()
{
	AddFiles();
	const bool nothing = !fLine.files.empty() && fState.CountEntries() == 0;
	if (nothing || fEnding) {
		fExitCode = fEnding ? 0 : 1;
		BeginQuit(); // before any request that came meanwhile is looked at
		return;
	}
	MakeFollower();
	OpenWindow();
	StartWatch();
	MakeServer();
	LoadAddOns();
}

void
QuboApp::RefsReceived(BMessage* message)
{
	Window().SendMessage(message);
}

void
QuboApp::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kMsgAddOnsLoaded:
			AddOnsLoadedRqtd(message);
			break;
		case kMsgStartPlaying:
			StartPlaying();
			break;
		case kMsgListChanged:
			fEngine.ListChanged();
			if (fServer != nullptr)
				fServer->PlayingChanged();
			fTags.Wake();
			break;
		case kMsgPlayingChanged:
			if (fServer != nullptr)
				fServer->PlayingChanged();
			break;
		case kMsgSought:
			if (fServer != nullptr)
				fServer->Sought();
			break;
		case kMsgSettled:
			release_start_memory();
			break;
		case kMsgFollow:
			FollowRqtd(message);
			break;
		case kMsgFollowingChanged:
			FollowingChangedRqtd();
			break;
		case kMsgShowAddOn:
		case kMsgAddOnPreferences:
		case kMsgAboutAddOn:
			AddOnRqtd(message);
			break;
		case kMsgPlayingEnded:
			PlayingEndedRqtd(message);
			break;
		case kMsgPlayFiles:
			PlayFilesRqtd(message);
			break;
		case kMsgWatchFinished:
			WatchFinishedRqtd(message);
			break;
		case kMsgAddOnsGone:
			PartGone(fAddOnsGone);
			break;
		case kMsgWatchGone:
			PartGone(fWatchGone);
			break;
		default:
			if (FrontEndServer::Knows(message))
				fFrontEnd.MessageReceived(message);
			else
				BApplication::MessageReceived(message);
	}
}

BHandler*
QuboApp::ResolveSpecifier(
	BMessage* message, int32 index, BMessage* specifier, int32 form, const char* property)
{
	if (!FrontEndServer::IsPlaylist(form, property))
		return BApplication::ResolveSpecifier(message, index, specifier, form, property);
	message->PopSpecifier();
	if (message->what == kQuboGetEntry && !std::exchange(fLookedAt, true))
		StartPlayingIn(kShowTime);
	return &fFrontEnd;
}

bool
QuboApp::QuitRequested()
{
	if (fAddOnsGone && fWatchGone)
		return BApplication::QuitRequested();
	BeginQuit();
	return false;
}

// #pragma mark - start

void
QuboApp::AddFiles()
{
	for (const std::string& name : fLine.files) {
		std::vector<std::string> paths;
		if (!collect_media_files(name, paths, fEnding)) {
			Report(text(kTextCannotPlay, name, text(kTextReasonNotThere)));
			if (fLine.explain) // which asks about each
				fExitCode = 1;
		}
		for (const std::string& path : paths)
			fState.Add(path);
	}
}

void
QuboApp::MakeFollower()
{
	const std::string folder
		= fLine.lyricsFolder.empty() ? default_lyrics_folder() : fLine.lyricsFolder;
	fFollower.reset(new Follower(fBus, {fLine.players, fLine.ignored, folder}, *this));
	if (fLine.follow)
		SetFollowing(true);
}

void
QuboApp::OpenWindow()
{
	auto finder = new FileFinder(fState, fEnding);
	fFinder = BMessenger(finder);
	finder->Run();
	auto window = new PlayerWindow(fDeck, fState, fLine.volume.value_or(kFullVolume), fFinder);
	{
		std::lock_guard lock(fWindowLock);
		fWindow = BMessenger(window);
	}
	window->Show();
}

BMessenger
QuboApp::Window() const
{
	std::lock_guard lock(fWindowLock);
	return fWindow;
}

void
QuboApp::StartWatch()
{
	if (fLine.explain) {
		auto explainer = new LyricsExplainer(fState, fDeck, BMessenger(this));
		fWatch = BMessenger(explainer);
		explainer->Run();
	}
	if (!fLine.print && fLine.snapshot.empty())
		return;
	LyricsWatch::Wish wish = {fLine.print, fLine.snapshot, fLine.snapshotTime};
	auto watch = new LyricsWatch(fDeck, wish, BMessenger(this));
	fWatch = BMessenger(watch);
	watch->Run();
}

void
QuboApp::MakeServer()
{
	fServer.reset(new PlayerServer(fBus, fState, fEngine, *this));
	UpdateServer();
}

/*!	On the bus only as what it is: not while it follows, or may do so at once. And programs that play unseen, of which there may be
	many, are none that a media key could mean. */
void
QuboApp::UpdateServer()
{
	const bool isFollowing = fMayFollow || &fDeck.On() != static_cast<Transport*>(&fEngine);
	if (fServer != nullptr)
		fServer->SetOn(!isFollowing && !fLine.headless && !fQuitting);
}

//! After the window is there, whose frame add-ons ask for.
void
QuboApp::LoadAddOns()
{
	std::string folder = fLine.addOns.empty() ? AddOnHost::DefaultFolder() : fLine.addOns;
	fAddOns.reset(new AddOnHost(folder, *this));
	StartPlayingIn(kAddOnPatience);
}

void
QuboApp::AddOnsLoadedRqtd(BMessage* message)
{
	Window().SendMessage(message);
	if (fLine.explain) {
		fWatch.SendMessage(kMsgExplain);
		return;
	}
	if (!message->HasString("name")) {
		StartPlaying();
		return;
	}
	if (!fStarted && !fQuitting)
		fEngine.Announce(0, fLine.start);
	StartPlayingIn(kLookTime);
}

void
QuboApp::StartPlayingIn(bigtime_t delay)
{
	BMessage message(kMsgStartPlaying);
	BMessageRunner::StartSending(BMessenger(this), &message, delay, 1);
}

void
QuboApp::StartPlaying()
{
	if (fLine.explain)
		return;
	if (!std::exchange(fStarted, true) && !fQuitting && fState.CountEntries() > 0)
		fEngine.Play(0, false, fLine.start);
}

// #pragma mark - while it plays

void
QuboApp::AddOnRqtd(BMessage* message)
{
	int32 index;
	if (fAddOns == nullptr || message->FindInt32(kAddOnField, &index) != B_OK)
		return;
	if (message->what == kMsgShowAddOn)
		fAddOns->Show(index);
	else if (message->what == kMsgAddOnPreferences)
		fAddOns->ShowPreferences(index);
	else
		fAddOns->ShowAbout(index);
}

//! Unanswered while it ends: the other process looks again, and may be the first one then.
void
QuboApp::PlayFilesRqtd(BMessage* message)
{
	if (fQuitting)
		return;
	// Before it goes on, and the reply with it. Who waits no more asks again, or has played them itself.
	if (message->IsSourceWaiting() && message->SendReply(B_REPLY) != B_OK)
		return;
	if (message->HasString("path")) {
		fStarted = true; // the new files rather than the first ones
		fMayFollow = false;
		UpdateServer();
	}
	if (int32 volume; message->FindInt32("volume", &volume) == B_OK)
		fEngine.SetVolume(
			volume); // the window sets that of what plays now, which may be another player
	if (const char* player; message->FindString("player", &player) == B_OK) {
		SetFollowing(true);
		fFollower->Pin(player);
	}
	Window().SendMessage(message);
}

bool
QuboApp::AnswerSession(const BMessage& request, BMessage& reply)
{
	if (request.what == kMsgExplain) {
		std::string explanation;
		const bool isWhole = explain_lyrics(
			fDeck, system_time() + kExplainTime, [this] { return fEnding.load(); }, explanation);
		reply = BMessage(B_REPLY);
		reply.AddString("text", explanation.c_str());
		reply.AddBool("ok", isWhole);
		return true;
	}
	BMessage copy(request);
	return request.what == kMsgPlayFiles
		&& BMessenger(this).SendMessage(&copy, &reply, kRequestTime, kRequestTime) == B_OK
		&& reply.what == B_REPLY;
}

void
QuboApp::PlayingChanged()
{
	Window().SendMessage(kMsgPlayingChanged);
	PostMessage(kMsgPlayingChanged);
	fTags.Wake();
	const int32 song = fState.CurrentIndex();
	if (std::exchange(fSettling, song) != song)
		Settle();
}

void
QuboApp::Settle()
{
	BMessage settled(kMsgSettled);
	BMessageRunner::StartSending(BMessenger(this), &settled, kSettleTime, 1);
}

void
QuboApp::SetFollowing(bool on)
{
	fMayFollow = false;
	if (on) {
		fStarted = true; // what was to play first does not
		fEngine.Stop();
		fDeck.Switch(*fFollower);
	} else
		fDeck.Switch(fEngine);
	fFollower->SetOn(on);
	UpdateServer();
	Window().SendMessage(kMsgPlayingChanged);
}

void
QuboApp::FollowRqtd(BMessage* message)
{
	const bool on = message->GetBool("on", false);
	int32 index;
	SetFollowing(on);
	fFollower->Pin(message->GetString("player", ""));
	if (!on && message->FindInt32("play", &index) == B_OK)
		fEngine.Play(index, false, message->GetInt64("start", 0));
}

void
QuboApp::FollowingChanged()
{
	PostMessage(kMsgFollowingChanged);
}

void
QuboApp::FollowingChangedRqtd()
{
	const Follower::Report report = fFollower->Tell();
	if (fMayFollow && report.looked) {
		fMayFollow = false;
		if (!report.players.empty())
			SetFollowing(true);
		UpdateServer();
	}
	const std::string title = fFollower->State().Info().title;
	if (std::exchange(fFollowedTitle, title) != title)
		Settle();
	BMessage message(kMsgFollowingChanged);
	message.AddBool("on", report.on);
	message.AddBool("seeks", report.seeks);
	message.AddString("pinned", report.pinned.c_str());
	message.AddString("text", report.text.c_str());
	for (const std::string& player : report.players)
		message.AddString("player", player.c_str());
	Window().SendMessage(&message);
	if (report.on)
		Window().SendMessage(kMsgPlayingChanged);
}

void
QuboApp::Sought()
{
	Window().SendMessage(kMsgSought);
	PostMessage(kMsgSought);
}

void
QuboApp::RaiseAsked()
{
	Window().SendMessage(kMsgPlayFiles); // of which there are none
}

void
QuboApp::QuitAsked()
{
	AskToEnd();
}

void
QuboApp::OpenAsked(const std::string& file)
{
	BMessage message(kMsgPlayFiles);
	message.AddString("path", file.c_str());
	PostMessage(&message);
}

void
QuboApp::VolumeAsked(int32 percent)
{
	BMessage message(kMsgSetVolume);
	message.AddInt32("volume", percent);
	Window().SendMessage(&message);
}

void
QuboApp::SongFailed(int32 index, const std::string& reason)
{
	PlaylistEntry entry;
	if (fState.GetEntry(index, entry))
		Report(text(kTextCannotPlay, entry.path, reason));
}

void
QuboApp::NoSoundOutput()
{
	Report(text(kTextNoSound));
}

void
QuboApp::EngineFailed(const std::string& reason)
{
	Report(text(kTextNoPlayer, reason));
	PlayingEnded(false);
}

void
QuboApp::PlayingEnded(bool any)
{
	BMessage message(kMsgPlayingEnded);
	message.AddBool("any", any);
	PostMessage(&message);
}

//! On whichever thread: to the terminal and, if there is one, the window.
void
QuboApp::Report(const std::string& problem)
{
	fprintf(stderr, "qubo: %s\n", problem.c_str());
	BMessage message(kMsgProblem);
	message.AddString("text", problem.c_str());
	Window().SendMessage(&message);
}

void
QuboApp::AddOnsLoaded(const std::vector<AddOnHost::Info>& addOns)
{
	BMessage message(kMsgAddOnsLoaded);
	for (const AddOnHost::Info& addOn : addOns) {
		message.AddString("name", addOn.name.c_str());
		message.AddBool("about", addOn.hasAbout);
		message.AddBool("prefs", addOn.hasPreferences);
	}
	PostMessage(&message);
}

void
QuboApp::AddOnFailed(const std::string& path, const std::string& reason)
{
	Report(text(kTextAddOnFailed, path, reason));
}

// #pragma mark - the end

void
QuboApp::AskToEnd()
{
	fEnding = true;
	PostMessage(B_QUIT_REQUESTED);
}

void
QuboApp::PlayingEndedRqtd(BMessage* message)
{
	if (fQuitting)
		return;
	bool nothing = !message->GetBool("any", false) && !fLine.files.empty();
	if (nothing)
		fExitCode = 1;
	if (!nothing && !fLine.snapshot.empty() && fWatch.IsValid())
		fWatch.SendMessage(kMsgFinishWatch);
	else if (nothing || fLine.headless)
		PostMessage(B_QUIT_REQUESTED);
}

void
QuboApp::WatchFinishedRqtd(BMessage* message)
{
	if (!message->GetBool("ok", false))
		fExitCode = 1;
	if (fLine.headless)
		PostMessage(B_QUIT_REQUESTED);
}

void
QuboApp::BeginQuit()
{
	if (std::exchange(fQuitting, true))
		return;
	fEnding = true;
	fFinder.SendMessage(B_QUIT_REQUESTED);
	fEngine.Stop();
	UpdateServer();
	if (fWatch.SendMessage(B_QUIT_REQUESTED) != B_OK)
		PostMessage(kMsgWatchGone);
	if (fAddOns != nullptr)
		fAddOns->Quit();
	else
		AddOnsGone();
}

void
QuboApp::AddOnsGone()
{
	PostMessage(kMsgAddOnsGone);
}

void
QuboApp::PartGone(bool& gone)
{
	gone = true;
	if (fAddOnsGone && fWatchGone)
		PostMessage(B_QUIT_REQUESTED);
}
