#pragma once

#include "AddOnHost.h"
#include "CommandLine.h"
#include "Deck.h"
#include "Engine.h"
#include "FrontEndServer.h"
#include "PlayState.h"
#include "TagReader.h"
#include "mpris/BusThread.h"
#include "mpris/Follower.h"
#include "mpris/PlayerServer.h"

#include <Application.h>
#include <Messenger.h>

#include <atomic>
#include <memory>
#include <mutex>

/*!	The player: makes its parts, tells one what another has done, and ends them in order.
	The end, however it is asked for: the sound stops, the plug-in objects are put away on their thread while this looper goes on
	answering the front-end protocol, and only when the last one and the lyrics watch are gone do the window and this looper quit.
	Thread: its looper waits for nobody; the listeners' calls come from the engine's, the bus's and the add-ons' threads and only post. */
class QuboApp : public BApplication,
				private Engine::Listener,
				private Follower::Listener,
				private PlayerServer::Listener,
				private AddOnHost::Listener {
public:
	explicit QuboApp(const CommandLine& line);
	~QuboApp() override;

	/*!	Answers another process's request (player_messages.h); false while the program is ending. Waits for the application and, to
		explain, the lyrics window: on a thread of its own. */
	bool AnswerSession(const BMessage& request, BMessage& reply);

	//! Ends the program in order, soon whatever it does. Any thread.
	void AskToEnd();

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
	void Sought() override;
	void SongFailed(int32 index, const std::string& reason) override;
	void NoSoundOutput() override;
	void PlayingEnded(bool any) override;
	void EngineFailed(const std::string& reason) override;

	// of the follower
	void FollowingChanged() override;

	// of the player server
	void RaiseAsked() override;
	void QuitAsked() override;
	void OpenAsked(const std::string& file) override;
	void VolumeAsked(int32 percent) override;

	// of the add-on host
	void AddOnsLoaded(const std::vector<AddOnHost::Info>& addOns) override;
	void AddOnFailed(const std::string& path, const std::string& reason) override;
	void AddOnsGone() override;

	void AddFiles();
	void MakeFollower();
	void OpenWindow();
	void StartWatch();
	void MakeServer();
	void UpdateServer();
	void LoadAddOns();
	void StartPlaying();
	void StartPlayingIn(bigtime_t delay);
	void AddOnsLoadedRqtd(BMessage* message);
	void SetFollowing(bool on);
	void FollowRqtd(BMessage* message);
	void FollowingChangedRqtd();
	void Settle();
	void AddOnRqtd(BMessage* message);
	void PlayingEndedRqtd(BMessage* message);
	void PlayFilesRqtd(BMessage* message);
	void WatchFinishedRqtd(BMessage* message);
	void BeginQuit();
	void PartGone(bool& gone);

	void Report(const std::string& problem);
	//! Where the window takes messages; nowhere before it is open. Any thread.
	BMessenger Window() const;

	const CommandLine fLine;
	PlayState fState;
	mutable std::mutex fWindowLock; // other threads tell the window too, from before it is there
	BMessenger fWindow;
	BMessenger fFinder;
	BMessenger fWatch;
	TagReader fTags;
	Engine fEngine; // its thread wakes the tag reader to its end
	Deck fDeck;
	FrontEndServer fFrontEnd;
	BusThread fBus;
	std::unique_ptr<Follower> fFollower;   // made when this looper runs, whom it tells
	std::unique_ptr<PlayerServer> fServer; // told on this looper only
	std::unique_ptr<AddOnHost> fAddOns;
	int fExitCode = 0;
	int32 fSettling = -1; // the engine's thread only: the song whose start is being got over
	std::string fFollowedTitle;
	bool fMayFollow;        // a player that is running already
	bool fLookedAt = false; // an add-on has asked what plays
	bool fStarted = false;
	std::atomic<bool> fEnding{false}; // asked for on any thread: what takes long is left
	bool fQuitting = false;
	bool fAddOnsGone = false;
	bool fWatchGone = false;
};
