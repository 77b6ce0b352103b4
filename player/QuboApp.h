#pragma once

#include "AddOnHost.h"
#include "CommandLine.h"
#include "Engine.h"
#include "FrontEndServer.h"
#include "PlayState.h"
#include "TagReader.h"

#include <Application.h>
#include <Messenger.h>

#include <memory>

/*!	The player: makes its parts, tells one what another has done, and ends them in order.
	The end, however it is asked for: the sound stops, the plug-in objects are put away on their thread while this looper goes on
	answering the front-end protocol, and only when the last one and the lyrics watch are gone do the window and this looper quit.
	Thread: its looper waits for nobody; the listener's calls come from the engine's and the add-ons' threads and only post. */
class QuboApp : public BApplication, private Engine::Listener, private AddOnHost::Listener {
public:
	explicit QuboApp(const CommandLine& line);
	~QuboApp() override;

	//! After Run(): 0, or 1 when nothing could be played or what was wanted could not be written.
	int ExitCode() const { return fExitCode; }

	void ReadyToRun() override;
	void RefsReceived(BMessage* message) override;
	void MessageReceived(BMessage* message) override;
	BHandler* ResolveSpecifier(BMessage* message, int32 index, BMessage* specifier, int32 form,
		const char* property) override;
	bool QuitRequested() override;

private:
	// of the engine
	void PlayingChanged() override;
	void SongFailed(int32 index, const std::string& reason) override;
	void NoSoundOutput() override;
	void PlayingEnded(bool any) override;
	void EngineFailed(const std::string& reason) override;

	// of the add-on host
	void AddOnsLoaded(const std::vector<AddOnHost::Info>& addOns) override;
	void AddOnFailed(const std::string& path, const std::string& reason) override;
	void AddOnsGone() override;

	void AddFiles();
	void OpenWindow();
	void StartWatch();
	void LoadAddOns();
	void StartPlaying();
	void StartPlayingIn(bigtime_t delay);
	void AddOnsLoadedRqtd(BMessage* message);
	void AddOnRqtd(BMessage* message);
	void PlayingEndedRqtd(BMessage* message);
	void WatchFinishedRqtd(BMessage* message);
	void BeginQuit();
	void PartGone(bool& gone);

	void Report(const std::string& problem);

	const CommandLine fLine;
	PlayState fState;
	BMessenger fWindow;
	BMessenger fWatch;
	Engine fEngine;
	TagReader fTags;
	FrontEndServer fFrontEnd;
	std::unique_ptr<AddOnHost> fAddOns;
	int fExitCode = 0;
	int32 fSettling = -1;   // the engine's thread only: the song whose start is being got over
	bool fLookedAt = false; // an add-on has asked what plays
	bool fStarted = false;
	bool fQuitting = false;
	bool fAddOnsGone = false;
	bool fWatchGone = false;
};
