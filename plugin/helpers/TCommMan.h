#pragma once

#include <memory>
#include <string>

#include <Looper.h>
#include <Messenger.h>

class BWindow;

/*!	Base of the maker's communication managers: a looper that finds the manager of a sibling add-on in the same
	application, by its thread's name, and talks to it.
	Thread: its own looper, or whoever holds its lock. Owner: itself once it runs; lock it and Quit() it. */
class TCommMan : public BLooper {
public:
	TCommMan(const char* name, const char* partnerName);
	~TCommMan() override;

	void MessageReceived(BMessage* message) override;
	//! Also looks for the partner. Thread: any, without locks.
	thread_id Run() override;

	//! Sends to the partner without waiting; -1 when none is connected.
	status_t SendMessage(BMessage* message);
	//! Sends to the partner and waits for its reply, however long that takes; -1 when none is connected.
	status_t SendMessage(BMessage* message, BMessage* reply);

protected:
	/*!	Looks for the partner's looper and greets it; 0, or -1 when there is none yet: then it greets this one when
		it starts. */
	status_t Connect();
	//! Takes the greeting of a partner, unless there is one.
	void CommManConnected(BMessage* message);
	//! Quits a window and forgets it; nothing when there is none or it is gone by itself.
	static void CloseWindow(BWindow** window);

private:
	std::string fPartnerName; // empty once connected
	std::unique_ptr<BMessenger> fPartner;
};
