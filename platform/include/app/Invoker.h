#pragma once

#include <AppDefs.h>
#include <Messenger.h>

/*!	Something that can be made to send a message: a control, a file panel.
	Owner of its message. Thread: its user's, one at a time. */
class BInvoker {
public:
	BInvoker();
	BInvoker(BMessage* message, const BHandler* handler, const BLooper* looper = NULL);
	BInvoker(BMessage* message, BMessenger target);
	virtual ~BInvoker();
	BInvoker(const BInvoker&) = delete;
	BInvoker& operator=(const BInvoker&) = delete;

	//! Deletes the old one. NULL: none.
	virtual status_t SetMessage(BMessage* message);
	BMessage* Message() const;
	//! what of the message, 0 without one.
	uint32 Command() const;

	virtual status_t SetTarget(const BHandler* handler, const BLooper* looper = NULL);
	virtual status_t SetTarget(BMessenger messenger);
	bool IsTargetLocal() const;
	BHandler* Target(BLooper** looper = NULL) const;
	BMessenger Messenger() const;

	//! Who gets the replies. NULL: the application.
	virtual status_t SetHandlerForReply(BHandler* handler);
	BHandler* HandlerForReply() const;

	/*!	Sends a copy of `message` (NULL: of its own), with "when" (int64, system_time()) and "source" (pointer to this).
		B_BAD_VALUE without one, else as BMessenger::SendMessage(). */
	virtual status_t Invoke(BMessage* message = NULL);
	/*!	Invoke() with another kind, which InvokeKind() then tells. */
	status_t InvokeNotify(BMessage* message, uint32 kind = B_CONTROL_INVOKED);
	//! How long Invoke() may wait for the target's queue, µs.
	status_t SetTimeout(bigtime_t timeout);
	bigtime_t Timeout() const;

protected:
	//! Within Invoke(): which kind; `notify` (may be NULL): does it come from InvokeNotify()?
	uint32 InvokeKind(bool* notify = NULL);
	void BeginInvokeNotify(uint32 kind = B_CONTROL_INVOKED);
	void EndInvokeNotify();

private:
	BMessage* fMessage = nullptr;
	BMessenger fMessenger;
	BMessenger fReplyTo;
	bigtime_t fTimeout;
	uint32 fNotifyKind = 0; // 0: not within InvokeNotify()
};
