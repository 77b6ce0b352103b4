#include "app/ReplySlot.h"

#include "app/MessageAccess.h"
#include "kernel/Deadline.h"
#include <shared_mutex>
#include <vector>

namespace BPrivate {

//! All slots ever made, and those whose thread has ended. Never destroyed: threads may outlive main().
class ReplySlots {
public:
	static ReplySlots& All()
	{
		static ReplySlots& sSlots = *new ReplySlots;
		return sSlots;
	}

	ReplySlot* At(int32 port)
	{
		std::shared_lock lock(fLock);
		const uint32 index = uint32(port) - uint32(ReplySlot::kFirstPort);
		return index < fSlots.size() ? fSlots[index].get() : nullptr;
	}

	ReplySlot* Borrow()
	{
		std::unique_lock lock(fLock);
		if (fFree.empty()) {
			const int32 port = ReplySlot::kFirstPort + int32(fSlots.size());
			fSlots.push_back(std::unique_ptr<ReplySlot>(new ReplySlot(port)));
			return fSlots.back().get();
		}
		ReplySlot* slot = fFree.back();
		fFree.pop_back();
		return slot;
	}

	void GiveBack(ReplySlot* slot)
	{
		std::unique_lock lock(fLock);
		fFree.push_back(slot);
	}

private:
	std::shared_mutex fLock;
	std::vector<std::unique_ptr<ReplySlot>> fSlots;
	std::vector<ReplySlot*> fFree;
};

namespace {

struct ThreadSlot {
	ReplySlot* slot = nullptr;

	~ThreadSlot()
	{
		if (slot != nullptr)
			ReplySlots::All().GiveBack(slot);
	}
};

} // namespace

bool
ReplySlot::IsSlot(const BMessenger& messenger)
{
	return MessengerAccess::Port(messenger) >= kFirstPort;
}

bool
ReplySlot::IsWaiting(const BMessenger& messenger)
{
	ReplySlot* slot = ReplySlots::All().At(MessengerAccess::Port(messenger));
	if (slot == nullptr)
		return false;
	std::lock_guard lock(slot->fLock);
	return slot->IsFor(MessengerAccess::Token(messenger));
}

status_t
ReplySlot::Deliver(const BMessenger& target, std::unique_ptr<BMessage>& message)
{
	ReplySlot* slot = ReplySlots::All().At(MessengerAccess::Port(target));
	if (slot == nullptr)
		return B_BAD_PORT_ID;
	std::unique_lock lock(slot->fLock);
	if (!slot->IsFor(MessengerAccess::Token(target)) || slot->fReply != nullptr)
		return B_BAD_PORT_ID;
	slot->fReply = std::move(message);
	lock.unlock();
	slot->fArrived.notify_one();
	return B_OK;
}

ReplySlot*
ReplySlot::OfThisThread()
{
	thread_local ThreadSlot tSlot;
	if (tSlot.slot == nullptr)
		tSlot.slot = ReplySlots::All().Borrow();
	return tSlot.slot;
}

BMessenger
ReplySlot::Arm()
{
	std::lock_guard lock(fLock);
	fNumber = (fNumber + 1) & 0x7fffffff;
	fArmed = true;
	return MessengerAccess::Make(fPort, fNumber);
}

void
ReplySlot::Disarm()
{
	std::unique_ptr<BMessage> late;
	std::lock_guard lock(fLock);
	fArmed = false;
	late = std::move(fReply);
}

status_t
ReplySlot::Wait(bigtime_t timeout, BMessage* reply)
{
	std::unique_ptr<BMessage> arrived;
	{
		std::unique_lock lock(fLock);
		wait_until(fArrived, lock, deadline_after(timeout), [this] { return fReply != nullptr; });
		arrived = std::move(fReply);
		fArmed = false;
	}
	if (arrived == nullptr)
		return B_TIMED_OUT;
	MessageAccess::Move(*arrived, *reply);
	return B_OK;
}

} // namespace BPrivate
