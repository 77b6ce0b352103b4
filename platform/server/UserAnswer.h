#pragma once

#include <SupportDefs.h>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>

namespace BPrivate {

/*!	What a looper waits for while the user looks at a menu. Give() may come from any thread.
	Who waits holds what it has locked, so the wait ends by itself when the looper is asked to quit. */
class UserAnswer {
public:
	//! The first one counts.
	void Give(int64 answer);
	//! Nothing when the looper of the calling thread finds a B_QUIT_REQUESTED, or its end, in its queue.
	//! `meanwhile`, if any, is called now and then.
	std::optional<int64> Wait(const std::function<void()>& meanwhile = nullptr);

private:
	std::mutex fMutex;
	std::condition_variable fGiven;
	std::optional<int64> fAnswer;
};

} // namespace BPrivate
