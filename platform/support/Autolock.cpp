#include <Autolock.h>

#include <Looper.h>

BAutolock::BAutolock(BLooper* looper) : fLooper(looper), fLocked(looper->Lock()) { }

void
BAutolock::Unlock()
{
	if (!fLocked)
		return;
	fLocked = false;
	if (fLocker != nullptr)
		fLocker->Unlock();
	else
		fLooper->Unlock();
}
