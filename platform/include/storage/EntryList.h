#pragma once

#include <SupportDefs.h>

class BEntry;
struct entry_ref;

//!	A list of entries with a position. At its end the answer is B_ENTRY_NOT_FOUND.
class BEntryList {
public:
	virtual ~BEntryList();

	virtual status_t GetNextEntry(BEntry* entry, bool traverse = false) = 0;
	virtual status_t GetNextRef(entry_ref* ref) = 0;
	virtual status_t Rewind() = 0;
	virtual int32 CountEntries() = 0; // rewinds; an error below 0
};
