#pragma once

#include <Locker.h>

#include <atomic>

class BMessage;

/*!	A queue of messages, first in, first out. Owner of the messages in it.
	Thread: any; a look at several messages (FindMessage(), RemoveMessage()) is done with the queue locked. */
class BMessageQueue {
public:
	BMessageQueue() = default;
	virtual ~BMessageQueue();
	BMessageQueue(const BMessageQueue&) = delete;
	BMessageQueue& operator=(const BMessageQueue&) = delete;

	void AddMessage(BMessage* message);
	//! The caller owns it then. Nothing if it is not in the queue.
	void RemoveMessage(BMessage* message);
	//! Also while somebody has the queue locked.
	int32 CountMessages() const;
	bool IsEmpty() const;

	//! The `index`th message, counted from the oldest; of those with the code. NULL if there is none.
	BMessage* FindMessage(int32 index) const;
	BMessage* FindMessage(uint32 what, int32 index = 0) const;

	bool Lock();
	void Unlock();
	bool IsLocked() const;

	//! Takes the oldest one out, for the caller. NULL when empty.
	BMessage* NextMessage();
	bool IsNextMessage(const BMessage* message) const;

private:
	BMessage* fHead = nullptr;
	BMessage* fTail = nullptr;
	std::atomic<int32> fCount{0}; // changed with the lock held
	mutable BLocker fLock;
};
