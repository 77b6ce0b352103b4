#pragma once

#include "BusThread.h"
#include "FollowClock.h"

#include <functional>
#include <string>

class PlayState;
struct sd_bus_message;

/*!	Keeps the position of a PlayState that of a followed player: it asks the player some times after each change, and then every few
	seconds. Never more than one question is under way.
	Thread: the bus thread only. Times in µs. */
class PositionReader {
public:
	//! `changed` is called when IsFixed() or Hangs() has become another.
	PositionReader(BusThread& bus, PlayState& state, std::function<void()> changed);

	//! Asks the player of that unique name from now on; "": nobody. Its position is unknown, and it counts as paused.
	void Follow(const std::string& player);
	//! 0: it is paused.
	void SetRate(double rate);
	//! Another track plays, from its start.
	void TrackStarted();
	//! Its position is not what was known.
	void PositionChanged();
	//! It is there now, by its own word.
	void Seeked(bigtime_t position);

	//! The player does not tell where it is.
	bool IsFixed() const { return fFixed; }
	//! It does not answer.
	bool Hangs() const { return fHangs; }

private:
	void AnswerReceived(sd_bus_message* message);
	void BeginReading();
	void Ask();
	void AskAt(bigtime_t when);
	bigtime_t NextInterval(bigtime_t now) const;
	void Tell(bigtime_t now);
	void TellTrouble(bool fixed, bool hangs);

	BusThread& fBus;
	PlayState& fState;
	const std::function<void()> fChanged;
	FollowClock fClock;
	std::string fPlayer;
	BusSlot fQuestion;
	BusThread::TimerId fTimer = 0;
	double fRate = 0;
	bigtime_t fBegin = 0;  // of this reading
	int32 fReadings = 0;   // since then
	int32 fMovingOnes = 0; // of these
	bool fFixed = false;
	bool fHangs = false;
};
