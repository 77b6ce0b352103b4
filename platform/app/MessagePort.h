#pragma once

#include <Message.h>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

class BMessageQueue;

namespace BPrivate {

//! A message runner, as its target's port keeps it. All but the first three are the port's, under its lock.
struct RunnerState {
	BMessage message;
	int32 token; // of the target handler
	BMessenger replyTo;
	bigtime_t interval;
	bigtime_t next; // beat
	int32 count;    // beats to come, negative: for ever
};

/*!	Where messages for a looper arrive, and its message runners. It outlives its looper, then closed. Others than the looper
	find it by number or keep a weak pointer.
	Thread: posting and runners any; Drain(), NextBeat() and Wait() the looper's. Nothing here takes the looper's lock. */
class MessagePort {
public:
	static std::shared_ptr<MessagePort> Create(int32 capacity);
	//! NULL when there is none, or no more.
	static std::shared_ptr<MessagePort> Find(int32 id);
	~MessagePort();

	int32 Id() const { return fId; }
	int32 Capacity() const { return int32(fCapacity); }
	//! The looper's thread, negative until it runs.
	thread_id Thread() const { return fThread.load(std::memory_order_relaxed); }
	//! The looper as a handler, for PostQuit().
	void SetLooperToken(int32 token) { fLooperToken.store(token, std::memory_order_relaxed); }
	void SetThread(thread_id thread) { fThread.store(thread, std::memory_order_relaxed); }

	/*!	Takes the message on B_OK. Waits while the queue is full. B_BAD_PORT_ID: closed; B_WOULD_BLOCK (timeout 0 or less), B_TIMED_OUT. */
	status_t Post(std::unique_ptr<BMessage>& message, bigtime_t timeout);
	/*!	For the display server: never waits, whatever the capacity, and never fails but when the port is closed. `coalesce`: it takes the place
		of a message of the same code and target, when that is the last one and not yet taken.
		`target`: a handler's token, or kPreferredToken for the looper's preferred handler. */
	void PostEvent(BMessage&& message, int32 target, bool coalesce = false);
	//! Ends the looper once it has dispatched what came before; known to the port, so that a dead looper need not be asked.
	void PostQuit();
	//! No more posts, no more beats. Senders that wait for a reply get B_NO_REPLY.
	void Close();

	//! Moves all that has arrived to the end of the queue. Cheap when nothing has.
	void Drain(BMessageQueue& queue);
	bool IsBeatDue() const;
	//! A runner's message whose time has come, or NULL. Cheap when none has.
	BMessage* NextBeat();
	//! Until a message arrives or a beat is due.
	void Wait();
	bool HasArrivals() const { return fCount.load(std::memory_order_relaxed) > 0; }

	//! The first beat comes after the interval. B_BAD_PORT_ID.
	status_t AddRunner(const std::shared_ptr<RunnerState>& runner);
	void RemoveRunner(const std::shared_ptr<RunnerState>& runner);
	//! The next three: B_BAD_VALUE when the runner has ended.
	status_t SetInterval(RunnerState* runner, bigtime_t interval);
	status_t SetCount(RunnerState* runner, int32 count);
	status_t GetRunner(const RunnerState* runner, bigtime_t* interval, int32* count) const;

private:
	explicit MessagePort(int32 id, int32 capacity);
	void Arrived(std::unique_lock<std::mutex>& lock);
	bool HasRunner(const RunnerState* runner) const;
	void FindNextBeat();

	const int32 fId;
	const size_t fCapacity;
	std::atomic<thread_id> fThread{-1};
	std::atomic<int32> fLooperToken{-1};
	mutable std::mutex fLock;
	std::condition_variable fArrival;
	std::condition_variable fSpace;
	std::vector<std::unique_ptr<BMessage>> fArrivals;
	std::vector<std::unique_ptr<BMessage>> fDrained; // the looper's; kept for its room
	std::atomic<int32> fCount{0};
	bool fWaiting = false; // the looper sleeps
	bool fClosed = false;
	std::vector<std::shared_ptr<RunnerState>> fRunners;
	std::atomic<bigtime_t> fNextBeat{B_INFINITE_TIMEOUT};
};

} // namespace BPrivate
