#pragma once

#include "Transport.h"

#include <atomic>

/*!	Which transport is on: whoever shows or tells what plays, or passes a command on, asks here each time. And how the position that
	is told differs from the sound's, whichever is on.
	Thread: any. The transports outlive it. */
class Deck {
public:
	explicit Deck(Transport& transport) : fOn(&transport) { }

	Transport& On() const { return *fOn; }
	const PlayState& State() const { return On().State(); }
	void Switch(Transport& transport) { fOn = &transport; }

	// The shift, in ms: with more of it lyrics come earlier, so that it makes up for the way from here to the screen; below 0 for
	// sound that is heard late.
	static constexpr int32 kUsualShift = 38; // the display's own delay, see docs/performance.md
	static constexpr int32 kLargestShift = 10000; // in both directions
	int32 Shift() const { return fShift; }
	//! Cut to the largest.
	void SetShift(int32 ms);
	//! What add-ons are told: what plays, with the shifted position, which stays within the song.
	QuboInfo ShiftedInfo() const;

private:
	std::atomic<int32> fShift = kUsualShift;
	std::atomic<Transport*> fOn;
};
