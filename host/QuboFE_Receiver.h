#pragma once

#include <atomic>

#include <Looper.h>
#include <Messenger.h>
#include <OS.h>

#include "host/QuboProtocol.h"

/*!	Receives the host's answers and keeps the newest player information and the messenger for further requests.
	Thread: its own looper. Lock() and Unlock() are those of the mailbox, not the looper's: they guard the
	information and the messenger, and are never held while something is waited for. The flags are atomic.
	Owner: the front-end, which quits it. */
class QuboFE_Receiver : public BLooper {
public:
	QuboFE_Receiver();
	~QuboFE_Receiver() override;

	void MessageReceived(BMessage* message) override;

	//! Greets the host, launching it first when that is wanted and needed.
	void StartQubo();
	/*!	Sends a request, to be answered to this looper. Without the host's messenger it greets the host and waits
		20 ms for it; a request is dropped when there is none then. Thread: any but the looper's own. */
	void SendMsg(BMessage* message);

	//! Whether the mailbox is locked now: false once it is gone.
	[[nodiscard]] bool Lock();
	void Unlock();

	bool IsValid() const { return fSemIsValid; }
	void SetLaunch(bool launch) { fLaunch = launch; }
	bool HasNewInfo() const { return fHasNewInfo; }
	bool HasHostMessenger() const { return fHasHostMessenger; }
	bool IsHostRunning() const { return fHostIsRunning; }

	/*!	Hands out the newest information and clears the mark of new information; false, with `info` untouched, when
		the mailbox is gone. */
	bool TakeInfo(QuboInfo* info);

private:
	void InfoReceived(BMessage* message);
	void HelloReceived(BMessage* message);
	void LaunchIfWanted();
	bool Greet();
	//! Hands out a copy of the host's messenger; one whose host is gone is forgotten, and the answer false.
	bool GetHostMessenger(BMessenger* messenger);

	BMessenger fHostMessenger; // mailbox
	QuboInfo fInfo{};          // mailbox
	sem_id fSem;
	std::atomic<bool> fHasNewInfo{false};
	std::atomic<bool> fHasHostMessenger{false};
	const bool fSemIsValid;
	std::atomic<bool> fLaunch{false};
	std::atomic<bool> fHostIsRunning{false};
};
