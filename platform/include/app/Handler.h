#pragma once

#include <Archivable.h>
#include <Messenger.h>
#include <atomic>
#include <memory>

class BList;
class BLooper;
class BMessage;
class BMessageFilter;

namespace BPrivate {
class ObserverList;
}

//! Fields of a B_OBSERVER_NOTICE_CHANGE.
inline constexpr const char* B_OBSERVE_WHAT_CHANGE
	= "be:observe_change_what"; // int32, see SendNotices()
inline constexpr const char* B_OBSERVE_ORIGINAL_WHAT
	= "be:observe_orig_what"; // int32, what of the notice
//! Watches everything.
inline constexpr uint32 B_OBSERVER_OBSERVE_ALL = 0xffffffff;

/*!	Handles messages that a looper hands it. It belongs to at most one looper, which calls it on its thread and locked.
	Thread: with its looper locked, unless said otherwise; without a looper any one. Owner: its maker (a looper does not
	delete its handlers). Deleting it takes it out of its looper, for which that is locked. */
class BHandler : public BArchivable {
public:
	explicit BHandler(const char* name = NULL);
	//! From an archive: "_name".
	explicit BHandler(BMessage* data);
	~BHandler() override;
	BHandler(const BHandler&) = delete;
	BHandler& operator=(const BHandler&) = delete;

	static BArchivable* Instantiate(BMessage* data);
	status_t Archive(BMessage* data, bool deep = true) const override;

	/*!	Hook: a message for this handler. What a class does not know it gives to its base's; this one answers the scripting properties
		"Suites", "Messenger" and "InternalName", takes watchers on, and hands the rest to NextHandler(). At the end of the
		chain a scripting message is answered with B_MESSAGE_NOT_UNDERSTOOD. */
	virtual void MessageReceived(BMessage* message);

	//! Any thread; but only one that holds the looper's lock knows how long that is true.
	BLooper* Looper() const;
	void SetName(const char* name);
	//! NULL if none was set.
	const char* Name() const;
	//! Both must belong to one looper. The looper itself has none.
	virtual void SetNextHandler(BHandler* handler);
	BHandler* NextHandler() const;

	//! The handler owns its filters: it deletes them in the end, or when it gets another list. They are asked in order.
	virtual void AddFilter(BMessageFilter* filter);
	//! The caller owns it from now on. False if it is not there.
	virtual bool RemoveFilter(BMessageFilter* filter);
	virtual void SetFilterList(BList* filters);
	//! NULL if none was ever added.
	BList* FilterList();

	//! Locks the looper that the handler belongs to, any thread. False if there is none, or it is gone.
	bool LockLooper();
	//! B_OK, B_BAD_VALUE (no looper), B_TIMED_OUT, B_WOULD_BLOCK; B_MISMATCHED_VALUES: it changed its looper meanwhile.
	status_t LockLooperWithTimeout(bigtime_t timeout);
	void UnlockLooper();

	/*!	Hook: who has the object that the message's current specifier names? This handler for itself, or another of this looper to go on
		with (after PopSpecifier() for a part); NULL when the message was answered or sent on. */
	virtual BHandler* ResolveSpecifier(
		BMessage* message, int32 index, BMessage* specifier, int32 form, const char* property);
	//! Adds "suites" (strings) and "messages" (property infos); call the base's as well.
	virtual status_t GetSupportedSuites(BMessage* data);

	/*!	With a messenger: this handler watches the target, which is asked by a message, so its answer may take a while.
		With a handler: that one watches this handler. `what`: as in SendNotices(), or B_OBSERVER_OBSERVE_ALL. */
	status_t StartWatching(BMessenger target, uint32 what);
	status_t StartWatchingAll(BMessenger target);
	status_t StopWatching(BMessenger target, uint32 what);
	status_t StopWatchingAll(BMessenger target);
	status_t StartWatching(BHandler* observer, uint32 what);
	status_t StartWatchingAll(BHandler* observer);
	//! B_BAD_HANDLER if it did not watch that.
	status_t StopWatching(BHandler* observer, uint32 what);
	status_t StopWatchingAll(BHandler* observer);
	/*!	Sends B_OBSERVER_NOTICE_CHANGE to those who watch `what` or all: a copy of `notice`, with `what` in B_OBSERVE_WHAT_CHANGE and the notice's
		own code in B_OBSERVE_ORIGINAL_WHAT. Never waits: a watcher whose queue is full misses it. */
	virtual void SendNotices(uint32 what, const BMessage* notice = NULL);
	bool IsWatched() const;

private:
	friend class BLooper;
	friend class BMessenger;
	friend class BPrivate::MessengerAccess;

	void SetLooper(BLooper* looper);
	BPrivate::ObserverList& Observers();
	bool AnswerProperty(BMessage* message);
	void Watch(BMessage* message);
	void PassOn(BMessage* message);

	int32 fToken;
	std::atomic<BLooper*> fLooper{nullptr};
	BHandler* fNextHandler = nullptr;
	char* fName = nullptr;
	BList* fFilters = nullptr;
	std::unique_ptr<BPrivate::ObserverList> fObservers;
};
