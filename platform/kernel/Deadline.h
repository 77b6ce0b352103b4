#pragma once

#include <OS.h>
#include <condition_variable>
#include <mutex>

namespace BPrivate {

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
