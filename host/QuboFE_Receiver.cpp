#include "host/QuboFE_Receiver.h"

#include <cstring>

#include <Message.h>
#include <Roster.h>

namespace {

constexpr int32 kPriority = 15;
constexpr int32 kPortCapacity = 100;
constexpr bigtime_t kHelloTime = 20000; // µs that the host gets to answer a greeting

} // namespace

QuboFE_Receiver::QuboFE_Receiver()
	: BLooper("Qubo FrontEnd Mailbox", kPriority, kPortCapacity),
	  fSem(create_sem(1, "FrontEnd Mailbox")),
	  fSemIsValid(fSem >= 0)
{ }

QuboFE_Receiver::~QuboFE_Receiver()
{
	if (fSemIsValid)
		delete_sem(fSem);
}

void
QuboFE_Receiver::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kQuboInfo:
			InfoReceived(message);
			break;
		case kQuboHello:
			HelloReceived(message);
			break;
		default:
			BLooper::MessageReceived(message);
	}
}

void
QuboFE_Receiver::InfoReceived(BMessage* message)
{
	const void* data;
	ssize_t size;
	if (message->FindData("Info", B_STRING_TYPE, &data, &size) != B_OK
		|| size < static_cast<ssize_t>(sizeof(fInfo)) || !Lock())
		return;
	memcpy(&fInfo, data, sizeof(fInfo));
	fHasNewInfo = true;
	Unlock();
}

void
QuboFE_Receiver::HelloReceived(BMessage* message)
{
	if (!Lock())
		return;
	if (message->FindMessenger("Msgr", &fHostMessenger) == B_OK)
		fHasHostMessenger = true;
	Unlock();
}

void
QuboFE_Receiver::StartQubo()
{
	LaunchIfWanted();
	Greet();
}

void
QuboFE_Receiver::LaunchIfWanted()
{
	fHostIsRunning = be_roster->IsRunning(kQuboSignature);
	if (fLaunch && !fHostIsRunning)
		be_roster->Launch(kQuboSignature);
}

bool
QuboFE_Receiver::Greet()
{
	const BMessenger host(kQuboSignature);
	BMessage hello(kQuboHello);
	return host.IsValid() && host.SendMessage(&hello, this) == B_OK;
}

void
QuboFE_Receiver::SendMsg(BMessage* message)
{
	BMessenger host;
	if (!GetHostMessenger(&host)) {
		LaunchIfWanted();
		if (Greet())
			snooze(kHelloTime);
		if (!GetHostMessenger(&host))
			return;
	}
	host.SendMessage(message, this);
}

bool
QuboFE_Receiver::GetHostMessenger(BMessenger* messenger)
{
	if (!Lock())
		return false;
	// Test and mark under one lock: an answer that comes in between would be lost for good.
	const bool isValid = fHostMessenger.IsValid();
	if (isValid)
		*messenger = fHostMessenger;
	else
		fHasHostMessenger = false;
	Unlock();
	return isValid;
}

bool
QuboFE_Receiver::TakeInfo(QuboInfo* info)
{
	if (!Lock())
		return false;
	*info = fInfo;
	fHasNewInfo = false;
	Unlock();
	return true;
}

bool
QuboFE_Receiver::Lock()
{
	return acquire_sem(fSem) == B_OK;
}

void
QuboFE_Receiver::Unlock()
{
	release_sem(fSem);
}
