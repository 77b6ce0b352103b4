#pragma once

#include <Messenger.h>
#include <memory>

namespace BPrivate {
class MessagePort;
struct RunnerState;
} // namespace BPrivate

/*!	Sends a message again and again: every `interval` µs, `count` times (negative: for ever).
	It is a deadline in the target looper's own wait: no thread, and nothing is queued before the looper can take it. A beat is counted from the last
	beat; what the looper was too busy for is skipped. Any interval above 0 is taken. A runner whose target is gone stops.
	Thread: any. Owner: its maker; deleting it stops it. */
class BMessageRunner {
public:
	//! Copies the message. See InitCheck().
	BMessageRunner(
		BMessenger target, const BMessage* message, bigtime_t interval, int32 count = -1);
	BMessageRunner(
		BMessenger target, const BMessage& message, bigtime_t interval, int32 count = -1);
	BMessageRunner(BMessenger target, const BMessage* message, bigtime_t interval, int32 count,
		BMessenger replyTo);
	BMessageRunner(BMessenger target, const BMessage& message, bigtime_t interval, int32 count,
		BMessenger replyTo);
	virtual ~BMessageRunner();
	BMessageRunner(const BMessageRunner&) = delete;
	BMessageRunner& operator=(const BMessageRunner&) = delete;

	//! B_OK; B_BAD_VALUE: no message, an interval of 0 or less, a target that is not valid; B_ERROR: a count of 0.
	status_t InitCheck() const;
	/*!	The next beat comes `interval` µs from now. Cheap, most of all on the target's own thread.
		B_BAD_VALUE: 0 or less, or the runner has ended. */
	status_t SetInterval(bigtime_t interval);
	//! How many beats are to come. B_BAD_VALUE: 0, or the runner has ended.
	status_t SetCount(int32 count);
	//! B_BAD_VALUE: the runner has ended.
	status_t GetInfo(bigtime_t* interval, int32* count) const;

	//! A runner without an object, for as long as `count` and the target last.
	static status_t StartSending(
		BMessenger target, const BMessage* message, bigtime_t interval, int32 count);
	static status_t StartSending(BMessenger target, const BMessage* message, bigtime_t interval,
		int32 count, BMessenger replyTo);

private:
	void Init(BMessenger target, const BMessage* message, bigtime_t interval, int32 count,
		BMessenger replyTo);
	static status_t Start(BMessenger target, const BMessage* message, bigtime_t interval,
		int32 count, BMessenger replyTo, std::shared_ptr<BPrivate::MessagePort>* port,
		std::shared_ptr<BPrivate::RunnerState>* state);

	std::shared_ptr<BPrivate::MessagePort> fPort;
	std::shared_ptr<BPrivate::RunnerState> fState;
	status_t fInitStatus;
};
