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

} // namespace BPrivate
