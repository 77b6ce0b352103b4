#pragma once

#include <Locker.h>

class BLooper;

/*!	Holds a lock for the length of a block. Ask IsLocked(): the lock may have failed. */
class BAutolock {
public:
	explicit BAutolock(BLocker* locker) : fLocker(locker), fLocked(locker->Lock()) { }
	explicit BAutolock(BLocker& locker) : BAutolock(&locker) { }
	explicit BAutolock(BLooper* looper);
	~BAutolock() { Unlock(); }
	BAutolock(const BAutolock&) = delete;
	BAutolock& operator=(const BAutolock&) = delete;

	bool IsLocked() const { return fLocked; }
	//! Earlier than the end of the block.
	void Unlock();

private:
	BLocker* fLocker = nullptr;
	BLooper* fLooper = nullptr;
	bool fLocked;
};
