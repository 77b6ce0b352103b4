#include "lyrics/TTimeTable.h"

#include <algorithm>

void
TTimeTable::Complete()
{
	const auto isEarlier = [](const Entry& a, const Entry& b) { return a.time < b.time; };
	// stable: of one time the last added stays last
	if (!std::is_sorted(fEntries.begin(), fEntries.end(), isEarlier))
		std::stable_sort(fEntries.begin(), fEntries.end(), isEarlier);
	// Walked backwards, so that the last of each time is the one that is kept.
	const auto kept = std::unique(fEntries.rbegin(), fEntries.rend(),
		[](const Entry& a, const Entry& b) { return a.time == b.time; });
	fEntries.erase(fEntries.begin(), kept.base());
}

int32
TTimeTable::LineAt(int32 time, int32 before) const
{
	const auto next = FirstAfter(time);
	return next == fEntries.begin() ? before : (next - 1)->line;
}

int32
TTimeTable::LineAfter(int32 time, int32 none) const
{
	const auto next = FirstAfter(time);
	return next == fEntries.end() ? none : next->line;
}

std::vector<TTimeTable::Entry>::const_iterator
TTimeTable::FirstAfter(int32 time) const
{
	return std::upper_bound(fEntries.begin(), fEntries.end(), time,
		[](int32 value, const Entry& entry) { return value < entry.time; });
}
