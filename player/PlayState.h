#pragma once

#include "Playlist.h"
#include "PositionClock.h"

#include "host/QuboProtocol.h"

#include <mutex>

#include <OS.h>

/*!	What is there to play, what plays, and where it is: the one truth that the engine writes and the protocol and the
	window read. Every call is one snapshot: song, title and position always belong together.
	Thread: any. The lock is held for copying only, nobody waits for the player with it. Times are system_time(). */
class PlayState {
public:
	enum State { kStopped = 0, kPlaying = 1, kPaused = 2 };

	// the playlist
	int32 Add(const std::string& path);
	int32 CountEntries() const;
	//! False, `entry` untouched, if there is no such index.
	[[nodiscard]] bool GetEntry(int32 index, PlaylistEntry& entry) const;
	/*!	Names a song that is still to be played. False, and nothing done, for the one that plays: its title stays what add-ons
		have been told. */
	bool Describe(int32 index, const SongTags& tags);
	//! See Playlist.
	int32 NextPlayable(int32 index, int32 step) const;
	int32 CurrentIndex() const; // -1 before the first song

	// the engine's side
	//! `index` will play, from `position` on: it is told already, standing still, while the player is being started.
	void Announce(int32 index, const SongTags& tags, bigtime_t position);
	//! It will not after all.
	void Withdraw();
	//! From here on `index` is what plays, from `position`, named by its tags.
	void StartSong(int32 index, const SongTags& tags, bigtime_t position);
	void SetFailed(int32 index, bool failed);
	void SetLength(bigtime_t length);
	void SetPaused(bool paused);
	//! After a seek: the position may go back. It stands until the next Sample().
	void Jump(bigtime_t position);
	//! The sound stands still (a seek, an empty buffer) though nothing is paused.
	void Freeze();
	void Sample(bigtime_t position, bigtime_t when);
	//! The player has left the song, whose sound ends at `end` (of system_time()): a clock that stands, after a seek, goes on by that.
	void EndAt(bigtime_t end);
	//! The end of the last song; what played stays, with its position.
	void Stop();

	// the follower's side, beside Jump(), Sample() and Stop()
	/*!	What a followed player plays is all that is in the playlist: `path`, from its start. Its title is another than the one before,
		so that nobody takes it for that. */
	void StartFollowed(const std::string& path, const SongTags& tags);
	//! More is known of it.
	void DescribeFollowed(const SongTags& tags);
	void SetState(State state);
	void SetRate(double rate);
	//! Like Sample(), of sound that is seen to stand still.
	void Stand(bigtime_t position, bigtime_t when);
	//! Nothing plays, and the playlist is empty.
	void Clear();

	// what is told
	QuboInfo Info() const { return InfoAt(system_time()); }
	QuboInfo InfoAt(bigtime_t when) const;
	bigtime_t Position() const;

private:
	void MakeCurrent(int32 index, const SongTags& tags, bigtime_t position);

	mutable std::mutex fLock;
	Playlist fPlaylist;
	mutable PositionClock fClock;
	int32 fCurrent = -1;
	bigtime_t fLength = 0;
	State fState = kStopped;
	bool fPaused = false;
	bool fAnnounced = false; // what is current has no sound yet
};
