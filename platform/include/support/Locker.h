#pragma once

#include <OS.h>
#include <atomic>

/*!	A lock that its owner may take several times.
	Thread: any. Deleting a locker fails those that wait for it: their Lock() answers false. */
class BLocker {
public:
	BLocker();
	BLocker(const char* name);
	//! `benaphoreStyle` is only a hint.
	BLocker(bool benaphoreStyle);
	BLocker(const char* name, bool benaphoreStyle);
	virtual ~BLocker();
	BLocker(const BLocker&) = delete;
	BLocker& operator=(const BLocker&) = delete;

	status_t InitCheck() const;
	bool Lock();
	//! `timeout` in µs from now. B_OK, B_TIMED_OUT (B_WOULD_BLOCK when it is 0) or B_BAD_SEM_ID.
	status_t LockWithTimeout(bigtime_t timeout);
	//! Does nothing unless the caller is the owner.
	void Unlock();

	//! The owner, or a negative number.
	thread_id LockingThread() const;
	//! Is the caller the owner?
	bool IsLocked() const;
	//! How many times the owner has it.
	int32 CountLocks() const;

private:
	sem_id fSemaphore;
	std::atomic<thread_id> fOwner{-1};
	std::atomic<int32> fLocks{0};
};
