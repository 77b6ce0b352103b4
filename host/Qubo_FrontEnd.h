#pragma once

#include <string_view>

#include "host/QuboProtocol.h"
#include "host/QuboSongEntry.h"
#include "host/QuboThread.h"

class BMessage;
class QuboFE_Receiver;

/*!	An add-on's end of the host's front-end protocol.
	Thread: owned and called by one, the display window's; its own thread "Qubo FrontEnd" greets the host and, with
	automatic information, asks for the player information at each interval.
	CountEntries() and GetEntry() wait for the host's answer without time-out: never call them on a thread that the
	host may be waiting for. */
class Qubo_FrontEnd : public QuboThread {
public:
	//! `interval` in µs. No thread runs yet.
	Qubo_FrontEnd(bool autoInfo, bigtime_t interval);
	//! Ends the thread and quits the receiver; takes up to one interval.
	~Qubo_FrontEnd() override;

	int32 Main() override;
	//! Starts the thread, named "Qubo FrontEnd"; a host that is not running is launched.
	status_t StartPolling(int32 priority);

	bool IsValid() const { return fIsValid; }
	//! Whether the thread asks by itself, so that the owner need not.
	bool IsAutoInfo() const { return fAutoInfo; }
	QuboFE_Receiver* Receiver() const { return fReceiver; }

	//! Asks for the player information; the answer comes to the receiver.
	void SendInfoRequest();
	//! Takes the newest information over from the receiver, if there is any.
	void UpdateInfo();
	//! What the last UpdateInfo() took over.
	const QuboInfo& Info() const { return fInfo; }
	//! The playing song's title in Info(), also when its field holds no NUL.
	std::string_view InfoTitle() const;

	//! Entries of the playlist, -1 when the host does not say.
	int32 CountEntries() const;
	//! One entry, `index` from 0; false, with `entry` untouched, when the host does not give all of it.
	bool GetEntry(QuboSongEntry* entry, int32 index) const;
	//! Plays an entry, fading over from the one before when asked to.
	void PlayThis(int32 index, bool fade) const;

private:
	QuboFE_Receiver* fReceiver; // quit by the destructor, deletes itself
	sem_id fDataSem;
	bigtime_t fInterval; // µs
	int32 fPriority = B_NORMAL_PRIORITY;
	QuboInfo fInfo{};
	const bool fAutoInfo;
	bool fIsValid;
};

/*!	Finds the playing song in the playlist, by its title: the first entry that has it. False, with `out` untouched, when
	there is none. */
bool get_current_song_entry(const Qubo_FrontEnd* frontEnd, QuboSongEntry* out);
