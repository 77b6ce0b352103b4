#include <Locker.h>

BLocker::BLocker() : BLocker("some BLocker") { }

BLocker::BLocker(const char* name) : fSemaphore(create_sem(1, name)) { }

BLocker::BLocker(bool) : BLocker() { }

BLocker::BLocker(const char* name, bool) : BLocker(name) { }

BLocker::~BLocker()
{
	delete_sem(fSemaphore);
}

status_t
BLocker::InitCheck() const
{
	return fSemaphore < 0 ? fSemaphore : B_OK;
}

bool
BLocker::Lock()
{
	return LockWithTimeout(B_INFINITE_TIMEOUT) == B_OK;
}

status_t
BLocker::LockWithTimeout(bigtime_t timeout)
{
	if (!IsLocked()) {
		// when this fails the locker may be gone
		const status_t error = acquire_sem_etc(fSemaphore, 1, B_RELATIVE_TIMEOUT, timeout);
		if (error != B_OK)
			return error;
		fOwner.store(find_thread(nullptr), std::memory_order_relaxed);
	}
	fLocks.fetch_add(1, std::memory_order_relaxed);
	return B_OK;
}

void
BLocker::Unlock()
{
	if (!IsLocked() || fLocks.fetch_sub(1, std::memory_order_relaxed) > 1)
		return;
	fOwner.store(-1, std::memory_order_relaxed);
	release_sem(fSemaphore);
}

thread_id
BLocker::LockingThread() const
{
	return fOwner.load(std::memory_order_relaxed);
}

bool
BLocker::IsLocked() const
{
	return LockingThread() == find_thread(nullptr);
}

int32
BLocker::CountLocks() const
{
	return fLocks.load(std::memory_order_relaxed);
}
