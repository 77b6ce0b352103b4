#pragma once

#include <atomic>
#include <functional>
#include <string>

#include <OS.h>

class BMessage;

/*!	The one player of a user's session: the first claims the session, later ones send it their requests. Of a session are the
	processes of one user with one runtime folder and one display.
	The claim is a locked file, which the system gives back however a process ends; requests go through a named port, in
	parts when they are long, and answers through one of the sender's.
	Thread: one; requests are answered on a thread of this object's own. */
class SessionInstance {
public:
	//! Fills in the answer and returns true; false: not now (it is ending), the sender will look again.
	using Answer = std::function<bool(const BMessage& request, BMessage& reply)>;

	enum Role {
		kFirst,    // it has the claim
		kAnswered, // another has it, and has answered
		kAlone     // another has it and does not answer, or there is nowhere to claim anything
	};

	SessionInstance();
	~SessionInstance();

	//! Claims the session, or sends the request to who has it: within three seconds. Never waits to be the first one.
	Role ClaimOrSend(const BMessage& request, BMessage& reply);
	//! Only sends; false if nobody has answered.
	bool Send(const BMessage& request, BMessage& reply);
	//! For the first one: from now on requests are answered, also those that have come already.
	void Start(Answer answer);
	//! Waits for the answer that is under way; whoever else has asked is told to look again.
	void Stop();

private:
	bool Claim();
	bool SendOnce(const BMessage& request, BMessage& reply, bigtime_t end);
	static status_t ThreadEntry(void* self);
	void Run();

	std::string fSession;
	std::string fLockPath;
	int fLock = -1; // file
	bool fIsFirst = false;
	port_id fPort = -1;
	thread_id fThread = -1;
	Answer fAnswer;
	std::atomic<bool> fStopping = false;
};
