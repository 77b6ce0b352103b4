#include <Invoker.h>

#include <Message.h>

BInvoker::BInvoker() : fTimeout(B_INFINITE_TIMEOUT) { }

BInvoker::BInvoker(BMessage* message, const BHandler* handler, const BLooper* looper)
	: fMessage(message),
	  fMessenger(handler, looper),
	  fTimeout(B_INFINITE_TIMEOUT)
{ }

BInvoker::BInvoker(BMessage* message, BMessenger target)
	: fMessage(message),
	  fMessenger(target),
	  fTimeout(B_INFINITE_TIMEOUT)
{ }

BInvoker::~BInvoker()
{
	delete fMessage;
}

status_t
BInvoker::SetMessage(BMessage* message)
{
	if (message != fMessage)
		delete fMessage;
	fMessage = message;
	return B_OK;
}

BMessage*
BInvoker::Message() const
{
	return fMessage;
}

uint32
BInvoker::Command() const
{
	return fMessage != NULL ? fMessage->what : 0;
}

status_t
BInvoker::SetTarget(const BHandler* handler, const BLooper* looper)
{
	return fMessenger.SetTo(handler, looper);
}

status_t
BInvoker::SetTarget(BMessenger messenger)
{
	fMessenger = messenger;
	return B_OK;
}

bool
BInvoker::IsTargetLocal() const
{
	return fMessenger.IsTargetLocal();
}

BHandler*
BInvoker::Target(BLooper** looper) const
{
	return fMessenger.Target(looper);
}

BMessenger
BInvoker::Messenger() const
{
	return fMessenger;
}

status_t
BInvoker::SetHandlerForReply(BHandler* handler)
{
	fReplyTo = BMessenger(handler);
	return B_OK;
}

BHandler*
BInvoker::HandlerForReply() const
{
	return fReplyTo.Target(NULL);
}

status_t
BInvoker::Invoke(BMessage* message)
{
	if (message == NULL)
		message = fMessage;
	if (message == NULL)
		return B_BAD_VALUE;
	BMessage copy(*message);
	copy.AddInt64("when", system_time());
	copy.AddPointer("source", this);
	return fMessenger.SendMessage(&copy, fReplyTo, fTimeout);
}

status_t
BInvoker::InvokeNotify(BMessage* message, uint32 kind)
{
	BeginInvokeNotify(kind);
	const status_t error = Invoke(message);
	EndInvokeNotify();
	return error;
}

status_t
BInvoker::SetTimeout(bigtime_t timeout)
{
	fTimeout = timeout;
	return B_OK;
}

bigtime_t
BInvoker::Timeout() const
{
	return fTimeout;
}

uint32
BInvoker::InvokeKind(bool* notify)
{
	if (notify != NULL)
		*notify = fNotifyKind != 0;
	return fNotifyKind != 0 ? fNotifyKind : uint32(B_CONTROL_INVOKED);
}

void
BInvoker::BeginInvokeNotify(uint32 kind)
{
	fNotifyKind = kind;
}

void
BInvoker::EndInvokeNotify()
{
	fNotifyKind = 0;
}
