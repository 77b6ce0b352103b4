#pragma once

#include <OS.h>

class BHandler;
class BLooper;
class BMessage;

namespace BPrivate {
class MessengerAccess;
}

/*!	An address that messages are sent to: a handler of a looper of this process, or whichever handler a looper prefers.
	A value: it owns nothing, and a target that is gone is never mistaken for another. Any thread. */
class BMessenger {
public:
	//! Sends nowhere.
	BMessenger();
	/*!	The application with that signature; only this process's is known. `team` must be its team or negative.
		`result` (may be NULL): B_OK; B_BAD_VALUE without an application of that signature, B_BAD_TEAM_ID, B_MISMATCHED_VALUES. */
	BMessenger(const char* signature, team_id team = -1, status_t* result = NULL);
	/*!	`handler` of its looper, or (NULL) the preferred handler of `looper`. `result`: B_OK; B_BAD_VALUE when both are NULL or the looper is
		gone; B_MISMATCHED_VALUES when the handler belongs to no looper or to another one. */
	BMessenger(const BHandler* handler, const BLooper* looper = NULL, status_t* result = NULL);
	BMessenger(const BMessenger& other) = default;
	BMessenger& operator=(const BMessenger& other) = default;

	bool IsTargetLocal() const;
	//! The handler, NULL if it is gone or the looper's preferred one; `looper` (may be NULL) is set to its looper or NULL.
	BHandler* Target(BLooper** looper) const;
	//! Locks the target's looper; false when it is gone.
	bool LockTarget() const;
	//! B_OK, B_BAD_VALUE, B_BAD_PORT_ID when the looper is gone, B_TIMED_OUT or B_WOULD_BLOCK.
	status_t LockTargetWithTimeout(bigtime_t timeout) const;

	/*!	Sends a copy and returns at once, or when the target's queue has room: at most after `timeout` µs (then B_TIMED_OUT; B_WOULD_BLOCK for 0).
		Replies go to `replyTo`; without one to where those of a delivered `message` go (a waiting source then waits for the new target),
		else to the application. B_BAD_VALUE without a message, B_BAD_PORT_ID: the target is gone. */
	status_t SendMessage(uint32 command, BHandler* replyTo = NULL) const;
	status_t SendMessage(
		BMessage* message, BHandler* replyTo = NULL, bigtime_t timeout = B_INFINITE_TIMEOUT) const;
	status_t SendMessage(
		BMessage* message, BMessenger replyTo, bigtime_t timeout = B_INFINITE_TIMEOUT) const;
	/*!	Sends a copy and waits for the reply, which is written to `reply`. It is B_NO_REPLY when the target deletes the message unanswered,
		when it quits first, or when the handler is gone. B_TIMED_OUT: no reply within `replyTimeout` µs.
		B_MESSAGE_TO_SELF from the target looper's own thread, which would wait for itself. */
	status_t SendMessage(uint32 command, BMessage* reply) const;
	status_t SendMessage(BMessage* message, BMessage* reply,
		bigtime_t deliveryTimeout = B_INFINITE_TIMEOUT,
		bigtime_t replyTimeout = B_INFINITE_TIMEOUT) const;

	status_t SetTo(const char* signature, team_id team = -1);
	status_t SetTo(const BHandler* handler, const BLooper* looper = NULL);

	//! Is the target's looper still there? Its handler may be gone all the same.
	bool IsValid() const;
	team_id Team() const;

	bool operator==(const BMessenger& other) const;
	bool operator!=(const BMessenger& other) const { return !(*this == other); }

private:
	friend class BPrivate::MessengerAccess;
	friend bool operator<(const BMessenger& a, const BMessenger& b);

	status_t Send(BMessage* message, const BMessenger& replyTo, bigtime_t timeout) const;

	int32 fPort = -1;
	int32 fHandlerToken = -1;
	team_id fTeam = -1;
};

//! An order for maps, without a meaning.
bool operator<(const BMessenger& a, const BMessenger& b);
