#include "app/LooperLock.h"

#include "kernel/Deadline.h"

namespace BPrivate {

static thread_local bool tForbidden = false;

void
forbid_looper_locks(bool forbid)
{
	tForbidden = forbid;
}

void
LooperLock::Take(thread_id thread)
{
	fOwner.store(thread, std::memory_order_relaxed);
	fDepth.store(thread >= 0 ? 1 : 0, std::memory_order_relaxed);
}

status_t
LooperLock::Lock(bigtime_t timeout)
{
	if (tForbidden)
		debugger("the display server's thread must not lock a looper");
	const thread_id self = find_thread(NULL);
	if (Owner() == self) {
		fDepth.store(CountLocks() + 1, std::memory_order_relaxed);
		return B_OK;
	}
	std::unique_lock lock(fMutex);
	if (fDead)
		return B_BAD_VALUE;
	if (Owner() < 0) {
		Take(self);
		return B_OK;
	}
	return timeout > 0 ? WaitFor(lock, self, timeout) : B_WOULD_BLOCK;
}

status_t
LooperLock::WaitFor(std::unique_lock<std::mutex>& lock, thread_id self, bigtime_t timeout)
{
	Waiter waiter{self, {}};
	const auto place = fWaiters.insert(fWaiters.end(), &waiter);
	const bool done = wait_until(
		waiter.granted, lock, deadline_after(timeout), [&] { return fDead || Owner() == self; });
	if (done && Owner() == self)
		return B_OK; // Unlock() has taken us off the list
	fWaiters.erase(place);
	return fDead ? B_BAD_VALUE : B_TIMED_OUT;
}

void
LooperLock::Unlock()
{
	if (!IsHeldByCaller())
		return;
	if (CountLocks() > 1) {
		fDepth.store(CountLocks() - 1, std::memory_order_relaxed);
		return;
	}
	std::lock_guard lock(fMutex);
	if (fWaiters.empty()) {
		Take(-1);
		return;
	}
	Waiter* next = fWaiters.front();
	fWaiters.pop_front();
	Take(next->thread);
	next->granted.notify_one(); // under the mutex: it is on the waiter's stack
}

void
LooperLock::Kill()
{
	std::lock_guard lock(fMutex);
	fDead = true;
	Take(-1);
	for (Waiter* waiter : fWaiters)
		waiter->granted.notify_one();
}

int32
LooperLock::CountRequests() const
{
	std::lock_guard lock(fMutex);
	return int32(fWaiters.size()) + (Owner() >= 0 ? 1 : 0);
}

} // namespace BPrivate
