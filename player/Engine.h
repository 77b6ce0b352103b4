#pragma once

#include "Transport.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include <OS.h>

class MpvPlayer;
struct mpv_event;
struct mpv_event_property;

/*!	Plays the songs of a PlayState and keeps its position true. All of the player library is used on one thread, the
	engine's own; the library is loaded when the first song is to be played.
	Thread: the public calls may come from any thread and never wait: they only queue what is to be done. The listener is
	called on the engine's thread, with no lock held. */
class Engine : public Transport {
public:
	class Listener {
	public:
		virtual ~Listener() = default;
		//! Another song, a pause, a length, a volume: whatever a window shows has changed.
		virtual void PlayingChanged() = 0;
		//! The position has gone elsewhere in the song.
		virtual void Sought() { }
		virtual void SongFailed(int32 index, const std::string& reason) = 0;
		//! There is no sound output; it plays on in silence. Told once.
		virtual void NoSoundOutput() = 0;
		//! The last song has ended or nothing could be played: `any` tells whether a song has played since the start.
		virtual void PlayingEnded(bool any) = 0;
		virtual void EngineFailed(const std::string& reason) = 0;
	};

	Engine(PlayState& state, Listener& listener);
	//! Ends the sound and the thread.
	~Engine() override;

	/*!	Tells a song as the one that plays, standing at `position`, before the player library is loaded; later it does nothing. */
	void Announce(int32 index, bigtime_t position = 0);
	const PlayState& State() const override { return fState; }
	void Play(int32 index, bool fade = false, bigtime_t position = 0) override;
	void Resume() override;
	void Pause() override;
	void TogglePause() override;
	//! Back to the song's start when it has played for 3 s.
	void Previous() override;
	void Next() override;
	void SeekTo(bigtime_t position) override;
	void SeekBy(bigtime_t offset) override;
	void SetVolume(int32 percent) override;
	//! There may be new songs in the list, to be played after the one that plays.
	void ListChanged();
	//! The last one that was set. Any thread.
	int32 Volume() const { return fVolume; }
	void Stop() override;

private:
	enum Action {
		kAnnounce,
		kPlay,
		kResume,
		kPause,
		kTogglePause,
		kPrevious,
		kNext,
		kSeekTo,
		kSeekBy,
		kVolume,
		kListChanged,
		kStop,
		kQuit
	};
	struct Command {
		Action action;
		bigtime_t value = 0;
		int32 index = 0;
		bool fade = false;
	};
	//! A song that is loaded, while the sound before it is still heard.
	struct Loaded {
		int32 index;
		SongTags tags;
		bigtime_t start; // where it was told to begin
	};
	struct Fade {
		Command next;
		bigtime_t start;
	};

	void Post(const Command& command);
	static status_t ThreadEntry(void* self);
	void Run();
	std::deque<Command> TakeCommands();
	bool Execute(const Command& command); // false: the end

	// what the commands do
	void AnnounceRequested(const Command& command);
	void PlayRequested(const Command& command);
	void ResumeRequested();
	void PauseRequested(bool pause);
	void StepRequested(int32 step);
	void SeekRequested(bigtime_t position);
	void SeekInSongBefore(bigtime_t position);
	void VolumeRequested(int32 percent);

	bool StartPlayer();
	void Withdraw();
	bool IsStopped() const;
	void PlayNow(const Command& command);
	void Open(int32 index, bigtime_t position);
	void AppendSongs();
	void PrepareNext();
	void ResetList();
	int32 IndexOf(int64_t id) const; // -1 if it is none of ours

	// what the player tells
	void HandleWaitingEvents();
	void HandleEvent(const mpv_event& event);
	void FileStarted(int64_t id);
	void FileLoaded();
	SongTags LoadedTags();
	void FileEnded(const mpv_event& event);
	void SongFailed(int32 index, const std::string& reason);
	void PlaybackRestarted();
	void Idle();
	void PropertyChanged(const mpv_event_property& property);

	// time
	bigtime_t NextDeadline() const;
	void Tick();
	void StepFade(bigtime_t now);
	void EndFade();
	void Sample();
	void LoadedSongWaits(bigtime_t start);
	void BeginLoadedSong(bigtime_t position);

	PlayState& fState;
	Listener& fListener;
	thread_id fThread;

	std::mutex fLock; // of the three below
	std::condition_variable fPosted;
	std::deque<Command> fCommands;
	MpvPlayer* fWakeable = nullptr;

	// the engine's thread only
	std::unique_ptr<MpvPlayer> fPlayer;
	std::vector<int64_t> fIds; // of our songs in the player's list, in the same order
	std::unique_ptr<Loaded> fLoaded;
	std::unique_ptr<Fade> fFade;
	int32 fStarting = -1;             // the song that is being opened
	std::atomic<int32> fVolume = 100; // set here, read by all
	int32 fQuickSamples = 0;
	bigtime_t fNextSample;
	bigtime_t fLoadedStart;
	bool fPaused = false;
	bool fPauseWanted = false; // what the next toggle ends; the player tells later
	bool fStopped = false;     // on request: no end of the list
	int32 fAsked = -1;         // the song that was asked for and has no sound yet; -1: none
	bool fSilent = true;       // no sound output, as far as is known
	bool fRestarted = false;   // the opened file's sound is on its way
	bool fSongEnded = false;   // the song that is told is over but for what the output holds
	bigtime_t fStart = 0;      // where the song that is wanted begins
	bool fWanted = false;      // a song was asked for and is not opened yet
	std::optional<bigtime_t> fLateSeek; // came when the player was leaving the song that is told
	bool fPlaced = false;               // by a seek or an opening, and not heard from there yet
	bool fOpened = false;               // a file was opened since the list was idle
	bool fAnnounced = false;            // a song is told that has no sound yet
	bool fAnyPlayed = false;
	bool fToldSilence = false;
};
