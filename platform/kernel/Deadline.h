#pragma once

#include <OS.h>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace BPrivate {

//! Further away than any machine runs; the steady clock counts in nanoseconds, which must not overflow.
constexpr bigtime_t kForever = 100LL * 365 * 24 * 3600 * 1000000;

//! The point in time `timeout` µs from now; B_INFINITE_TIMEOUT for one that never comes.
inline bigtime_t
deadline_after(bigtime_t timeout)
{
	return timeout >= kForever ? B_INFINITE_TIMEOUT : system_time() + timeout;
}

//! Until something may have changed; false when `deadline` (of system_time()) is over.
inline bool
wait_until(
	std::condition_variable& condition, std::unique_lock<std::mutex>& lock, bigtime_t deadline)
{
	if (deadline == B_INFINITE_TIMEOUT) {
		condition.wait(lock);
		return true;
	}
	// system_time() is the steady clock's
	const std::chrono::steady_clock::time_point point{std::chrono::microseconds(deadline)};
	return condition.wait_until(lock, point) == std::cv_status::no_timeout;
}

//! Until `done()` is true, or the deadline is over: what `done()` answers in the end.
template<typename Predicate>
bool
wait_until(std::condition_variable& condition, std::unique_lock<std::mutex>& lock,
	bigtime_t deadline, Predicate done)
{
	while (!done()) {
		if (!wait_until(condition, lock, deadline) && system_time() >= deadline)
			return done();
	}
	return true;
}

/*!	When a wait ends, by the flags and the timeout of an ..._etc() call. */
class Deadline {
public:
	Deadline(uint32 flags, bigtime_t timeout);

	bool IsInfinite() const { return fWhen == B_INFINITE_TIMEOUT; }
	//! The caller asked for what is there at once.
	bool MustNotWait() const { return fMustNotWait; }
	//! µs from now, 0 when it is over.
	bigtime_t Remaining() const;
	//! What the call answers when it got nothing.
	status_t Failure() const { return fMustNotWait ? B_WOULD_BLOCK : B_TIMED_OUT; }
	//! Waits for a notification (or none at all); false when the time is over.
	bool Wait(std::condition_variable& condition, std::unique_lock<std::mutex>& lock) const;

private:
	bigtime_t fWhen = B_INFINITE_TIMEOUT;
	bool fMustNotWait = false;
};

} // namespace BPrivate
