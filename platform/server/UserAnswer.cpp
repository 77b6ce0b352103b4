#include "server/UserAnswer.h"

#include "app/LooperAccess.h"
#include "server/ServerLink.h"

#include <AppDefs.h>
#include <Debug.h>
#include <MessageQueue.h>
#include <chrono>

namespace BPrivate {

static constexpr std::chrono::milliseconds kLookAgain(50);

static bool
must_quit(BLooper* looper)
{
	BMessageQueue* queue = looper->MessageQueue();
	LooperAccess::Port(looper)->Drain(*queue);
	return queue->FindMessage(uint32(B_QUIT_REQUESTED)) != NULL
		|| queue->FindMessage(uint32(_QUIT_)) != NULL;
}

void
UserAnswer::Give(int64 answer)
{
	std::lock_guard lock(fMutex);
	if (!fAnswer)
		fAnswer = answer;
	fGiven.notify_all();
}

std::optional<int64>
UserAnswer::Wait(const std::function<void()>& meanwhile)
{
	ASSERT(!on_server_thread());
	BLooper* looper = LooperAccess::OfThisThread();
	std::unique_lock lock(fMutex);
	while (!fGiven.wait_for(lock, kLookAgain, [this] { return fAnswer.has_value(); })) {
		lock.unlock();
		const bool isOver = looper != NULL && must_quit(looper);
		if (!isOver && meanwhile)
			meanwhile();
		lock.lock();
		if (isOver)
			break;
	}
	return fAnswer;
}

} // namespace BPrivate
