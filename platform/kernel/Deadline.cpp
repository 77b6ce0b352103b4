#include "kernel/Deadline.h"

#include <algorithm>

namespace BPrivate {

Deadline::Deadline(uint32 flags, bigtime_t timeout)
{
	if ((flags & B_RELATIVE_TIMEOUT) != 0) {
		fMustNotWait = timeout <= 0;
		fWhen = deadline_after(std::max<bigtime_t>(timeout, 0));
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
	return wait_until(condition, lock, std::max<bigtime_t>(fWhen, 0));
}

} // namespace BPrivate
