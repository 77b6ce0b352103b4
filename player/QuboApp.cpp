#include "QuboApp.h"

#include "LyricsWatch.h"
#include "PlayerWindow.h"
#include "Texts.h"
#include "media_files.h"
#include "memory_use.h"
#include "player_messages.h"

#include "host/QuboProtocol.h"

#include <Message.h>
#include <MessageRunner.h>

#include <clocale>
#include <cstdio>
#include <utility>

namespace {

constexpr bigtime_t kAddOnPatience = 1000000; // then it plays without waiting for add-ons any more
// To load the player library keeps other libraries from being loaded, such as text converters: lyrics that are on their way come first.
constexpr bigtime_t kLookTime = 200000;    // for an add-on to ask what plays
constexpr bigtime_t kShowTime = 30000;     // for it to show that
constexpr bigtime_t kSettleTime = 3000000; // from the start of a song to steady playing

} // namespace

QuboApp::QuboApp(const CommandLine& line)
	: BApplication(kQuboSignature),
	  fLine(line),
	  fEngine(fState, *this),
	  fTags(fState, [this] { fWindow.SendMessage(kMsgPlayingChanged); }),
	  fFrontEnd(fState, fEngine)
{
	// The toolkit below takes over the user's locale; the player library insists on its numbers being C's.
	setlocale(LC_NUMERIC, "C");
	AddHandler(&fFrontEnd);
	fEngine.SetVolume(fLine.volume);
}

QuboApp::~QuboApp() = default;

void
QuboApp::ReadyToRun()
{
	AddFiles();
	if (!fLine.files.empty() && fState.CountEntries() == 0) {
		fExitCode = 1;
		PostMessage(B_QUIT_REQUESTED);
		return;
	}
	OpenWindow();
	StartWatch();
	LoadAddOns();
}

void
QuboApp::RefsReceived(BMessage* message)
{
	fWindow.SendMessage(message); // folders are read on its thread
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
		case kMsgSettled:
			release_start_memory();
			break;
		case kMsgShowAddOn:
		case kMsgAddOnPreferences:
		case kMsgAboutAddOn:
			AddOnRqtd(message);
			break;
		case kMsgPlayingEnded:
			PlayingEndedRqtd(message);
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
		if (!collect_media_files(name, paths))
			Report(text(kTextCannotPlay, name, text(kTextReasonNotThere)));
		for (const std::string& path : paths)
			fState.Add(path);
	}
}

void
QuboApp::OpenWindow()
{
	auto window = new PlayerWindow(fState, fEngine, fLine.volume);
	fWindow = BMessenger(window);
	window->Show();
}

void
QuboApp::StartWatch()
{
	if (!fLine.print && fLine.snapshot.empty())
		return;
	LyricsWatch::Wish wish = {fLine.print, fLine.snapshot, fLine.snapshotTime};
	auto watch = new LyricsWatch(fState, wish, BMessenger(this));
	fWatch = BMessenger(watch);
	watch->Run();
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
	fWindow.SendMessage(message);
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

void
QuboApp::PlayingChanged()
{
	fWindow.SendMessage(kMsgPlayingChanged);
	fTags.Wake();
	const int32 song = fState.CurrentIndex();
	if (std::exchange(fSettling, song) == song)
		return;
	BMessage settled(kMsgSettled);
	BMessageRunner::StartSending(BMessenger(this), &settled, kSettleTime, 1);
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
	fWindow.SendMessage(&message);
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
	fEngine.Stop();
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
