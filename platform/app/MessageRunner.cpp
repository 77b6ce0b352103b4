#include <MessageRunner.h>

#include "app/MessageAccess.h"
#include "app/MessagePort.h"

using namespace BPrivate;

BMessageRunner::BMessageRunner(
	BMessenger target, const BMessage* message, bigtime_t interval, int32 count)
{
	Init(target, message, interval, count, BMessenger());
}

BMessageRunner::BMessageRunner(
	BMessenger target, const BMessage& message, bigtime_t interval, int32 count)
{
	Init(target, &message, interval, count, BMessenger());
}

BMessageRunner::BMessageRunner(
	BMessenger target, const BMessage* message, bigtime_t interval, int32 count, BMessenger replyTo)
{
	Init(target, message, interval, count, replyTo);
}

BMessageRunner::BMessageRunner(
	BMessenger target, const BMessage& message, bigtime_t interval, int32 count, BMessenger replyTo)
{
	Init(target, &message, interval, count, replyTo);
}

BMessageRunner::~BMessageRunner()
{
	if (fPort != nullptr)
		fPort->RemoveRunner(fState);
}

void
BMessageRunner::Init(
	BMessenger target, const BMessage* message, bigtime_t interval, int32 count, BMessenger replyTo)
{
	fInitStatus = Start(target, message, interval, count, replyTo, &fPort, &fState);
}

status_t
BMessageRunner::Start(BMessenger target, const BMessage* message, bigtime_t interval, int32 count,
	BMessenger replyTo, std::shared_ptr<MessagePort>* startedPort,
	std::shared_ptr<RunnerState>* startedState)
{
	if (message == NULL || interval <= 0 || !target.IsTargetLocal())
		return B_BAD_VALUE;
	if (count == 0)
		return B_ERROR;
	std::shared_ptr<MessagePort> port = MessagePort::Find(MessengerAccess::Port(target));
	if (port == nullptr)
		return B_BAD_VALUE;
	auto state = std::make_shared<RunnerState>(
		RunnerState{*message, MessengerAccess::Token(target), replyTo, interval, 0, count});
	if (port->AddRunner(state) != B_OK)
		return B_BAD_VALUE;
	*startedPort = std::move(port);
	*startedState = std::move(state);
	return B_OK;
}

status_t
BMessageRunner::InitCheck() const
{
	return fInitStatus;
}

status_t
BMessageRunner::SetInterval(bigtime_t interval)
{
	if (fInitStatus != B_OK)
		return fInitStatus;
	return interval > 0 ? fPort->SetInterval(fState.get(), interval) : B_BAD_VALUE;
}

status_t
BMessageRunner::SetCount(int32 count)
{
	if (fInitStatus != B_OK)
		return fInitStatus;
	return count != 0 ? fPort->SetCount(fState.get(), count) : B_BAD_VALUE;
}

status_t
BMessageRunner::GetInfo(bigtime_t* interval, int32* count) const
{
	if (fInitStatus != B_OK)
		return fInitStatus;
	return fPort->GetRunner(fState.get(), interval, count);
}

status_t
BMessageRunner::StartSending(
	BMessenger target, const BMessage* message, bigtime_t interval, int32 count)
{
	return StartSending(target, message, interval, count, BMessenger());
}

status_t
BMessageRunner::StartSending(
	BMessenger target, const BMessage* message, bigtime_t interval, int32 count, BMessenger replyTo)
{
	std::shared_ptr<MessagePort> port;
	std::shared_ptr<RunnerState> state;
	return Start(target, message, interval, count, replyTo, &port, &state);
}
