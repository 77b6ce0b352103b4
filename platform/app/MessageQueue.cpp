#include <MessageQueue.h>

#include <Autolock.h>
#include <Message.h>

BMessageQueue::~BMessageQueue()
{
	while (BMessage* message = NextMessage())
		delete message;
}

void
BMessageQueue::AddMessage(BMessage* message)
{
	if (message == NULL)
		return;
	BAutolock lock(fLock);
	message->fNext = NULL;
	if (fTail != NULL)
		fTail->fNext = message;
	else
		fHead = message;
	fTail = message;
	fCount++;
}

void
BMessageQueue::RemoveMessage(BMessage* message)
{
	BAutolock lock(fLock);
	BMessage* previous = NULL;
	for (BMessage* at = fHead; at != NULL; previous = at, at = at->fNext) {
		if (at != message)
			continue;
		if (previous != NULL)
			previous->fNext = at->fNext;
		else
			fHead = at->fNext;
		if (fTail == at)
			fTail = previous;
		at->fNext = NULL;
		fCount--;
		return;
	}
}

int32
BMessageQueue::CountMessages() const
{
	return fCount.load(std::memory_order_relaxed);
}

bool
BMessageQueue::IsEmpty() const
{
	return CountMessages() == 0;
}

BMessage*
BMessageQueue::FindMessage(int32 index) const
{
	BAutolock lock(fLock);
	BMessage* at = index >= 0 ? fHead : NULL;
	for (; at != NULL && index > 0; index--)
		at = at->fNext;
	return at;
}

BMessage*
BMessageQueue::FindMessage(uint32 what, int32 index) const
{
	BAutolock lock(fLock);
	for (BMessage* at = index >= 0 ? fHead : NULL; at != NULL; at = at->fNext) {
		if (at->what == what && index-- == 0)
			return at;
	}
	return NULL;
}

bool
BMessageQueue::Lock()
{
	return fLock.Lock();
}

void
BMessageQueue::Unlock()
{
	fLock.Unlock();
}

bool
BMessageQueue::IsLocked() const
{
	return fLock.IsLocked();
}

BMessage*
BMessageQueue::NextMessage()
{
	if (IsEmpty())
		return NULL;
	BAutolock lock(fLock);
	BMessage* message = fHead;
	if (message == NULL)
		return NULL;
	fHead = message->fNext;
	if (fHead == NULL)
		fTail = NULL;
	message->fNext = NULL;
	fCount--;
	return message;
}

bool
BMessageQueue::IsNextMessage(const BMessage* message) const
{
	BAutolock lock(fLock);
	return message != NULL && fHead == message;
}
