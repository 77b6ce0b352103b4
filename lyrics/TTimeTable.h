#pragma once

#include <vector>

#include <SupportDefs.h>

/*!	Which line begins at which time: an ordered map with unique times, made for being filled once and asked often.
	Times in ms, lines as indices. Thread: one at a time. */
class TTimeTable {
public:
	void Clear() { fEntries.clear(); }
	bool IsEmpty() const { return fEntries.empty(); }
	int32 CountTimes() const { return static_cast<int32>(fEntries.size()); }
	//! Of several lines of one time the last added stays. Complete() must follow before the table is asked.
	void Add(int32 time, int32 line) { fEntries.push_back({time, line}); }
	void Complete();

	//! The line of the latest time that is not after `time`; `before` when all are after it.
	int32 LineAt(int32 time, int32 before) const;
	//! The line of the first time after `time`; `none` when there is none.
	int32 LineAfter(int32 time, int32 none) const;

private:
	struct Entry {
		int32 time;
		int32 line;
	};

	std::vector<Entry>::const_iterator FirstAfter(int32 time) const;

	std::vector<Entry> fEntries;
};
