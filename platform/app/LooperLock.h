#pragma once

#include <OS.h>
#include <atomic>
#include <condition_variable>
#include <list>
#include <mutex>

namespace BPrivate {

/*!	The lock of a looper, which outlives it: who still waits when the looper goes is told so.
	First come, first served, so that a looper with much to do cannot keep others out. */
class LooperLock {
public:
	//! B_OK; B_TIMED_OUT or (timeout 0 or less) B_WOULD_BLOCK; B_BAD_VALUE when the looper is gone.
	status_t Lock(bigtime_t timeout);
	//! Nothing unless the caller has it.
	void Unlock();
	//! The looper is gone. By its owner.
	void Kill();

	bool IsHeldByCaller() const { return Owner() == find_thread(NULL); }
	thread_id Owner() const { return fOwner.load(std::memory_order_relaxed); }
	int32 CountLocks() const { return fDepth.load(std::memory_order_relaxed); }
	int32 CountRequests() const;

private:
	struct Waiter {
		thread_id thread;
		std::condition_variable granted;
	};

	status_t WaitFor(std::unique_lock<std::mutex>& lock, thread_id self, bigtime_t timeout);
	void Take(thread_id thread);

	std::atomic<thread_id> fOwner{-1}; // a thread looks for itself only; the rest is under fMutex
	std::atomic<int32> fDepth{0};
	mutable std::mutex fMutex;
	std::list<Waiter*> fWaiters;
	bool fDead = false;
};

/*!	For the display server's thread, which must never wait for a looper: locking one from the calling thread stops the
	program from now on. */
void forbid_looper_locks(bool forbid);

} // namespace BPrivate
