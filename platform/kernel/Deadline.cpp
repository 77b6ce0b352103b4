#include "kernel/Deadline.h"

#include <algorithm>
#include <chrono>

namespace BPrivate {

// further away than any machine runs; steady_clock counts in nanoseconds, which must not overflow
static constexpr bigtime_t kForever = 100LL * 365 * 24 * 3600 * 1000000;

Deadline::Deadline(uint32 flags, bigtime_t timeout)
{
	if ((flags & B_RELATIVE_TIMEOUT) != 0) {
		fMustNotWait = timeout <= 0;
		if (timeout < kForever)
			fWhen = system_time() + std::max<bigtime_t>(timeout, 0);
	} else if ((flags & B_ABSOLUTE_TIMEOUT) != 0 && timeout < kForever) {
		fWhen = timeout;
	}
}

bigtime_t
Deadline::Remaining() const
{
	if (IsInfinite())
		return B_INFINITE_TIMEOUT;
	return std::max<bigtime_t>(fWhen - system_time(), 0);
}

bool
Deadline::Wait(std::condition_variable& condition, std::unique_lock<std::mutex>& lock) const
{
	if (IsInfinite()) {
		condition.wait(lock);
		return true;
	}
	// system_time() and the steady clock are the same clock
	const std::chrono::steady_clock::time_point when{
		std::chrono::microseconds(std::max<bigtime_t>(fWhen, 0))};
	return condition.wait_until(lock, when) == std::cv_status::no_timeout;
}

} // namespace BPrivate
