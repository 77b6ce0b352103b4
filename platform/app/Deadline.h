#pragma once

#include <OS.h>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace BPrivate {

//! The point in time `timeout` µs from now; B_INFINITE_TIMEOUT stays that.
inline bigtime_t
deadline_after(bigtime_t timeout)
{
	const bigtime_t now = system_time();
	return timeout > B_INFINITE_TIMEOUT - now ? B_INFINITE_TIMEOUT : now + timeout;
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
