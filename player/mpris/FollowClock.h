#pragma once

#include <SupportDefs.h>

/*!	Where a followed player is, made of the positions that it tells now and then.
	A told position can only lag behind the sound: many players renew theirs a few times a second. So the largest of several readings is
	nearest, carried on by the rate; it is lowered only after a change that was told. And after a change the sound may take its time: the
	position stands until it is seen to move, and readings count from then on. For a player whose position is never seen to move it
	runs, after a while, from where it began.
	Plain data. All times in µs, `now` is system_time(). */
class FollowClock {
public:
	/*!	Something changed: the position is read anew, whatever was known. */
	void Restart(bigtime_t now);
	/*!	The same, and it was told to be at `position`. Readings far from it are of the time before, for a moment. */
	void RestartAt(bigtime_t position, bigtime_t now);
	//! Not below 0; 0: stands still.
	void SetRate(double rate, bigtime_t now);
	//! True if it is elsewhere in the track than all that was told: like a Restart(), which was done then.
	bool Read(bigtime_t position, bigtime_t now);

	bigtime_t Position(bigtime_t now) const;
	//! It goes on from Position() by itself.
	bool Runs(bigtime_t now) const { return fMoving || IsImpatient(now); }
	//! It has been seen to move since the last change.
	bool IsMoving() const { return fMoving; }
	//! The position was asked for long enough, and was never seen to move on this track.
	bool IsFixed(bigtime_t now) const { return !fEverMoved && IsImpatient(now); }
	//! Another track: whether its position moves is not known yet.
	void ForgetMoves() { fEverMoved = false; }

private:
	bool IsOfTheTimeBefore(bigtime_t position, bigtime_t now) const;
	bool IsImpatient(bigtime_t now) const;
	bigtime_t Carried(bigtime_t now) const;

	double fRate = 1;
	bigtime_t fBase = 0; // the position at fBaseTime
	bigtime_t fBaseTime = 0;
	bigtime_t fChanged = 0; // when the last change was
	bigtime_t fLast = -1;   // the last reading since then, -1: none
	bigtime_t fLastTime = 0;
	bool fTold = false;      // the change told its position
	bool fMoving = false;    // fBase is of a position that moved
	bool fEverMoved = false; // on this track
};
