#pragma once

#include <SupportDefs.h>

/*!	The play position between two looks at the player: the last sample, carried on by the monotonic clock.
	It never runs beyond the song's length, and never backwards but by Jump(): where a sample is behind what has been
	told, the position waits for it; only one that is a second or more behind shows that the player is elsewhere.
	Plain data: PlayState guards it. All times in µs, `now` is system_time(). */
class PositionClock {
public:
	//! Another song or a seek: the position is `position` and stands still.
	void Jump(bigtime_t position);
	//! 0: unknown, without end.
	void SetLength(bigtime_t length) { fLength = length; }
	void SetRunning(bool running, bigtime_t now);
	//! Seconds of the song in a second; 1 at first.
	void SetRate(double rate, bigtime_t now);
	//! What the player said at `now`. A negative position is sound that is still to come.
	void Sample(bigtime_t position, bigtime_t now);

	bigtime_t Position(bigtime_t now);
	bool IsRunning() const { return fRunning; }

private:
	bigtime_t Extrapolated(bigtime_t now) const;

	bigtime_t fBase = 0; // the position at fBaseTime
	bigtime_t fBaseTime = 0;
	bigtime_t fTold = 0; // the largest position that was told
	bigtime_t fLength = 0;
	double fRate = 1;
	bool fRunning = false;
};
