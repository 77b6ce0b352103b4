#include "Deck.h"

#include <algorithm>
#include <limits>

void
Deck::SetShift(int32 ms)
{
	fShift = std::clamp(ms, -kLargestShift, kLargestShift);
}

QuboInfo
Deck::ShiftedInfo() const
{
	QuboInfo info = State().Info();
	if (info.title[0] == '\0')
		return info;
	const int64 end = info.lengthMs > 0 ? info.lengthMs : std::numeric_limits<int32>::max();
	const int64 position = int64(info.positionMs) + Shift();
	info.positionMs = static_cast<int32>(std::clamp<int64>(position, 0, end));
	return info;
}
