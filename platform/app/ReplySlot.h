#pragma once

#include <Messenger.h>
#include <condition_variable>
#include <memory>
#include <mutex>

namespace BPrivate {

/*!	Where a thread waits for the reply to a message. Each thread has one, used again and again; every use has a number of its own, so a
	reply that comes too late finds nobody. In a messenger it is a port above kFirstPort, with the number as its token.
	Thread: Arm(), Disarm() and Wait() its own, Deliver() any. */
class ReplySlot {
public:
	static constexpr int32 kFirstPort = 0x40000000;

	static bool IsSlot(const BMessenger& messenger);
	//! Does somebody wait there?
	static bool IsWaiting(const BMessenger& messenger);
	//! B_BAD_PORT_ID when nobody waits; then the message stays the caller's.
	static status_t Deliver(const BMessenger& target, std::unique_ptr<BMessage>& message);

	//! NULL when too many threads wait already.
	static ReplySlot* OfThisThread();
	//! The address of the reply that is waited for from now on.
	BMessenger Arm();
	void Disarm();
	//! Moves the reply into `reply`, or B_TIMED_OUT. Disarms.
	status_t Wait(bigtime_t timeout, BMessage* reply);

private:
	friend class ReplySlots;

	explicit ReplySlot(int32 port) : fPort(port) { }
	bool IsFor(int32 number) const { return fArmed && fNumber == number; }

	const int32 fPort;
	std::mutex fLock;
	std::condition_variable fArrived;
	int32 fNumber = 0;
	bool fArmed = false;
	std::unique_ptr<BMessage> fReply;
};

} // namespace BPrivate
