#include "PositionClock.h"

#include <algorithm>
#include <cmath>

namespace {

//! Sound that is merely late is less behind than this; more means that the player is elsewhere in the song.
constexpr bigtime_t kElsewhere = 1000000;

} // namespace

void
PositionClock::Jump(bigtime_t position)
{
	if (fLength > 0)
		position = std::min(position, fLength);
	fBase = position;
	fTold = std::max<bigtime_t>(position, 0);
	fRunning = false;
}

void
PositionClock::SetRunning(bool running, bigtime_t now)
{
	if (running == fRunning)
		return;
	fBase = Extrapolated(now);
	fBaseTime = now;
	fRunning = running;
}

void
PositionClock::SetRate(double rate, bigtime_t now)
{
	fBase = Extrapolated(now);
	fBaseTime = now;
	fRate = rate;
}

void
PositionClock::Sample(bigtime_t position, bigtime_t now)
{
	fBase = position;
	fBaseTime = now;
	if (fTold - position > kElsewhere)
		fTold = std::max<bigtime_t>(position, 0);
}

bigtime_t
PositionClock::Position(bigtime_t now)
{
	bigtime_t position = Extrapolated(now);
	if (fLength > 0)
		position = std::min(position, fLength);
	fTold = std::max(fTold, position);
	return fTold;
}

bigtime_t
PositionClock::Extrapolated(bigtime_t now) const
{
	if (!fRunning)
		return fBase;
	return fBase + std::llround(static_cast<double>(now - fBaseTime) * fRate);
}
