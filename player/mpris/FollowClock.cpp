#include "FollowClock.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

constexpr bigtime_t kSecond = 1000000;
constexpr bigtime_t kFar = kSecond;       // so far from what was told: of the time before
constexpr bigtime_t kTimeBefore = 400000; // so long there may be such
constexpr bigtime_t kPatience = 1200000; // longer than whole seconds, in which some players tell it
constexpr bigtime_t kElsewhere = 2 * kSecond; // no position lags as much
constexpr bigtime_t kStalled = kSecond;       // not even one in whole seconds stays so long

} // namespace

void
FollowClock::Restart(bigtime_t now)
{
	fBase = Position(now);
	fBaseTime = now;
	fChanged = now;
	fLast = -1;
	fTold = false;
	fMoving = false;
}

void
FollowClock::RestartAt(bigtime_t position, bigtime_t now)
{
	Restart(now);
	fBase = position;
	fTold = true;
}

void
FollowClock::SetRate(double rate, bigtime_t now)
{
	fBase = Position(now);
	fBaseTime = now;
	fRate = rate;
}

bool
FollowClock::Read(bigtime_t position, bigtime_t now)
{
	if (IsOfTheTimeBefore(position, now))
		return false;
	if (fRate == 0) { // it does not move and does not lag
		fBase = position;
		fBaseTime = now;
		return false;
	}
	const bool first = fLast < 0;
	const bool moved = !first && position != fLast;
	const bool stalled = fMoving && !moved && now - fLastTime > kStalled;
	const bool elsewhere = fMoving && moved && Carried(now) - position > kElsewhere;
	if (stalled || elsewhere)
		Restart(now);
	if (stalled || elsewhere || (first && !fMoving && !fTold) || (moved && !fMoving)
		|| (moved && position > Carried(now))) {
		fBase = position;
		fBaseTime = now;
	}
	if (moved && !elsewhere)
		fMoving = fEverMoved = true;
	fLast = position;
	fLastTime = now;
	return stalled || elsewhere;
}

bigtime_t
FollowClock::Position(bigtime_t now) const
{
	return Runs(now) ? Carried(now) : fBase;
}

//! A player may tell a seek before it has done it.
bool
FollowClock::IsOfTheTimeBefore(bigtime_t position, bigtime_t now) const
{
	return fTold && now - fChanged < kTimeBefore && std::abs(position - Carried(now)) > kFar;
}

//! One that has moved on this track is waited for; sound that has to be loaded takes its time.
bool
FollowClock::IsImpatient(bigtime_t now) const
{
	return !fMoving && !fEverMoved && now - fChanged >= kPatience;
}

bigtime_t
FollowClock::Carried(bigtime_t now) const
{
	return fBase + std::llround(static_cast<double>(now - fBaseTime) * fRate);
}
