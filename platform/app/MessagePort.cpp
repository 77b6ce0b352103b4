#include "app/MessagePort.h"

#include "app/MessageAccess.h"
#include "app/TokenTable.h"
#include "kernel/Deadline.h"
#include <Looper.h>
#include <MessageQueue.h>
#include <algorithm>
#include <shared_mutex>
#include <unordered_map>
#include <utility>

namespace BPrivate {

namespace {

struct PortTable {
	std::shared_mutex lock;
	std::unordered_map<int32, std::shared_ptr<MessagePort>> ports;
	int32 next = 1;
};

PortTable&
port_table()
{
	static PortTable& sTable = *new PortTable; // loopers may outlive main()
	return sTable;
}

} // namespace

std::shared_ptr<MessagePort>
MessagePort::Create(int32 capacity)
{
	PortTable& table = port_table();
	std::unique_lock lock(table.lock);
	const int32 id = table.next++;
	std::shared_ptr<MessagePort> port(new MessagePort(id, capacity));
	table.ports[id] = port;
	return port;
}

std::shared_ptr<MessagePort>
MessagePort::Find(int32 id)
{
	PortTable& table = port_table();
	std::shared_lock lock(table.lock);
	const auto found = table.ports.find(id);
	return found != table.ports.end() ? found->second : nullptr;
}

MessagePort::MessagePort(int32 id, int32 capacity)
	: fId(id),
	  fCapacity(size_t(capacity > 0 ? capacity : B_LOOPER_PORT_DEFAULT_CAPACITY))
{ }

MessagePort::~MessagePort() = default;

/*	After something was added. Woken without the lock, the reader need not wait for it at once; so the caller must own a share of
	the port: the message may be the reader's last. */
void
MessagePort::Arrived(std::unique_lock<std::mutex>& lock)
{
	fCount.store(int32(fArrivals.size()), std::memory_order_relaxed);
	const bool wake = std::exchange(fWaiting, false);
	lock.unlock();
	if (wake)
		fArrival.notify_one();
}

status_t
MessagePort::Post(std::unique_ptr<BMessage>& message, bigtime_t timeout)
{
	std::unique_lock lock(fLock);
	const auto hasRoom = [this] { return fClosed || fArrivals.size() < fCapacity; };
	if (!hasRoom()) {
		if (timeout <= 0)
			return B_WOULD_BLOCK;
		if (!wait_until(fSpace, lock, deadline_after(timeout), hasRoom))
			return B_TIMED_OUT;
	}
	if (fClosed)
		return B_BAD_PORT_ID;
	fArrivals.push_back(std::move(message));
	Arrived(lock);
	return B_OK;
}

void
MessagePort::PostEvent(BMessage&& message, int32 target, bool coalesce)
{
	std::unique_ptr<BMessage> copy = MessageAccess::CopyForDelivery(message, target, BMessenger());
	std::unique_lock lock(fLock);
	if (fClosed)
		return;
	if (coalesce && !fArrivals.empty() && fArrivals.back()->what == copy->what
		&& MessageAccess::Target(*fArrivals.back()) == target) {
		fArrivals.back().swap(copy);
		return;
	}
	fArrivals.push_back(std::move(copy));
	Arrived(lock);
}

void
MessagePort::PostQuit()
{
	PostEvent(BMessage(_QUIT_), fLooperToken.load(std::memory_order_relaxed));
}

void
MessagePort::Close()
{
	{
		PortTable& table = port_table();
		std::unique_lock lock(table.lock);
		table.ports.erase(fId);
	}
	// Deleted without the lock: a message may answer its sender, and a runner's owner may look.
	std::vector<std::unique_ptr<BMessage>> unread;
	std::vector<std::shared_ptr<RunnerState>> runners;
	std::lock_guard lock(fLock);
	fClosed = true;
	unread.swap(fArrivals);
	runners.swap(fRunners);
	fCount.store(0, std::memory_order_relaxed);
	fNextBeat.store(B_INFINITE_TIMEOUT, std::memory_order_relaxed);
	fSpace.notify_all();
}

void
MessagePort::Drain(BMessageQueue& queue)
{
	if (!HasArrivals())
		return;
	{
		std::lock_guard lock(fLock);
		fDrained.swap(fArrivals);
		fCount.store(0, std::memory_order_relaxed);
		if (fDrained.size() >= fCapacity)
			fSpace.notify_all();
	}
	for (std::unique_ptr<BMessage>& message : fDrained)
		queue.AddMessage(message.release());
	fDrained.clear();
}

void
MessagePort::Wait()
{
	std::unique_lock lock(fLock);
	while (fArrivals.empty() && !fClosed) {
		fWaiting = true;
		const bigtime_t beat = fNextBeat.load(std::memory_order_relaxed);
		if (beat <= system_time())
			break;
		wait_until(fArrival, lock, beat);
	}
	fWaiting = false;
}

// Runners

bool
MessagePort::IsBeatDue() const
{
	const bigtime_t next = fNextBeat.load(std::memory_order_relaxed);
	return next != B_INFINITE_TIMEOUT && next <= system_time();
}

BMessage*
MessagePort::NextBeat()
{
	if (!IsBeatDue())
		return NULL;
	const bigtime_t now = system_time();
	std::shared_ptr<RunnerState> due;
	{
		std::lock_guard lock(fLock);
		const auto first = std::min_element(fRunners.begin(), fRunners.end(),
			[](const auto& a, const auto& b) { return a->next < b->next; });
		if (first == fRunners.end() || (*first)->next > now)
			return NULL;
		due = *first;
		const bool targetGone = due->token >= 0 && !TokenTable::Find(due->token, nullptr, nullptr);
		if (targetGone || due->count == 1)
			fRunners.erase(first);
		else {
			// the beat keeps its time; what was missed is skipped
			due->next += (1 + (now - due->next) / due->interval) * due->interval;
			due->count -= due->count > 0 ? 1 : 0;
		}
		FindNextBeat();
		if (targetGone)
			return NULL;
	}
	return MessageAccess::CopyForDelivery(due->message, due->token, due->replyTo).release();
}

void
MessagePort::FindNextBeat()
{
	bigtime_t next = B_INFINITE_TIMEOUT;
	for (const std::shared_ptr<RunnerState>& runner : fRunners)
		next = std::min(next, runner->next);
	const bigtime_t before = fNextBeat.exchange(next, std::memory_order_relaxed);
	if (fWaiting && next < before)
		fArrival.notify_one();
}

bool
MessagePort::HasRunner(const RunnerState* runner) const
{
	return std::any_of(fRunners.begin(), fRunners.end(),
		[runner](const auto& other) { return other.get() == runner; });
}

status_t
MessagePort::AddRunner(const std::shared_ptr<RunnerState>& runner)
{
	std::lock_guard lock(fLock);
	if (fClosed)
		return B_BAD_PORT_ID;
	runner->next = deadline_after(runner->interval);
	fRunners.push_back(runner);
	FindNextBeat();
	return B_OK;
}

void
MessagePort::RemoveRunner(const std::shared_ptr<RunnerState>& runner)
{
	std::lock_guard lock(fLock);
	std::erase(fRunners, runner);
	FindNextBeat();
}

status_t
MessagePort::SetInterval(RunnerState* runner, bigtime_t interval)
{
	std::lock_guard lock(fLock);
	if (!HasRunner(runner))
		return B_BAD_VALUE;
	runner->interval = interval;
	runner->next = deadline_after(interval);
	FindNextBeat();
	return B_OK;
}

status_t
MessagePort::SetCount(RunnerState* runner, int32 count)
{
	std::lock_guard lock(fLock);
	if (!HasRunner(runner))
		return B_BAD_VALUE;
	runner->count = count;
	return B_OK;
}

status_t
MessagePort::GetRunner(const RunnerState* runner, bigtime_t* interval, int32* count) const
{
	std::lock_guard lock(fLock);
	if (!HasRunner(runner))
		return B_BAD_VALUE;
	if (interval != NULL)
		*interval = runner->interval;
	if (count != NULL)
		*count = runner->count;
	return B_OK;
}

} // namespace BPrivate
