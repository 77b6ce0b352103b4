#pragma once

#include <Handler.h>
#include <memory>
#include <vector>

class BMessageQueue;
class BWindow;

namespace BPrivate {
class LooperAccess;
class LooperLock;
class MessagePort;
} // namespace BPrivate

//! Messages that may wait for a looper before senders have to.
#define B_LOOPER_PORT_DEFAULT_CAPACITY 200

/*!	A thread that takes messages off a queue and hands them to its handlers, one at a time and locked.
	Thread: needs its lock, except for what is said otherwise, posting, and the locking functions, which may be called for a looper that
	is gone: they answer false then. A new looper is locked by its maker until Run().
	Owner: itself once it runs; Quit() deletes it. It deletes no handlers. Allocate it with new.

	For the kits above: the looper empties its queue in batches. After the last message of a batch, and every 16 ms of one that is longer, it calls
	_BatchDone(), locked: the place to draw once what the batch has changed. Right before it sleeps it calls
	_AboutToWait(), not locked. Neither is called for a looper that ends. */
class BLooper : public BHandler {
public:
	explicit BLooper(const char* name = NULL, int32 priority = B_NORMAL_PRIORITY,
		int32 portCapacity = B_LOOPER_PORT_DEFAULT_CAPACITY);
	//! From an archive: "_prio", "_port_cap".
	explicit BLooper(BMessage* data);
	//! Messages that wait are deleted: who waits for their replies gets B_NO_REPLY. Only for a looper that never ran.
	~BLooper() override;

	static BArchivable* Instantiate(BMessage* data);
	status_t Archive(BMessage* data, bool deep = true) const override;

	/*!	Posts a copy, to this looper itself or to `handler` (NULL: the preferred one, else this looper). Any thread, without the lock.
		Never waits: B_WOULD_BLOCK when the queue is full. B_MISMATCHED_VALUES if the handler belongs to another looper. */
	status_t PostMessage(uint32 command);
	status_t PostMessage(BMessage* message);
	status_t PostMessage(uint32 command, BHandler* handler, BHandler* replyTo = NULL);
	status_t PostMessage(BMessage* message, BHandler* handler, BHandler* replyTo = NULL);

	/*!	Hook: hands the message to the handler's MessageReceived(); B_QUIT_REQUESTED for the looper itself asks QuitRequested()
		and answers "result" (bool). */
	virtual void DispatchMessage(BMessage* message, BHandler* handler);
	void MessageReceived(BMessage* message) override;
	//! The message being dispatched, NULL between messages. Owner: the looper.
	BMessage* CurrentMessage() const;
	//! The caller owns the current message from now on, and its reply.
	BMessage* DetachCurrentMessage();
	//! Messages that were taken from the senders but not yet dispatched.
	BMessageQueue* MessageQueue() const;
	bool IsMessageWaiting() const;

	//! The handler must be in no looper; its next handler becomes this looper.
	void AddHandler(BHandler* handler);
	bool RemoveHandler(BHandler* handler);
	int32 CountHandlers() const;
	//! The first one is the looper itself.
	BHandler* HandlerAt(int32 index) const;
	int32 IndexOf(BHandler* handler) const;
	//! NULL, or the handler that messages without one are for.
	BHandler* PreferredHandler() const;
	void SetPreferredHandler(BHandler* handler);

	//! Starts the thread and gives the lock back. Once only. The thread's id or an error.
	virtual thread_id Run();
	/*!	Ends the looper and deletes it. From its own thread: does not return (it leaves the thread by an exception, so a catch (...) around it
		must throw it on). From another one: what was posted before is dispatched first, QuitRequested() is not asked, and
		it returns when the thread has ended; the caller's locks are given back. */
	virtual void Quit();
	//! Hook: may the looper quit? Asked for B_QUIT_REQUESTED.
	virtual bool QuitRequested();

	//! Waits for the lock, which its owner may take several times; first come, first served. False: the looper is gone.
	bool Lock();
	//! Does nothing unless the caller has the lock.
	void Unlock();
	//! By the calling thread?
	bool IsLocked() const;
	//! B_OK, B_TIMED_OUT (B_WOULD_BLOCK for 0), B_BAD_VALUE when it is gone.
	status_t LockWithTimeout(bigtime_t timeout);
	//! Negative until Run().
	thread_id Thread() const;
	team_id Team() const;
	static BLooper* LooperForThread(thread_id thread);
	//! Negative when nobody has it.
	thread_id LockingThread() const;
	int32 CountLocks() const;
	//! Those who have it or wait for it.
	int32 CountLockRequests() const;

	BHandler* ResolveSpecifier(BMessage* message, int32 index, BMessage* specifier, int32 form,
		const char* property) override;
	status_t GetSupportedSuites(BMessage* data) override;

	//! Filters for all messages of the looper, asked before the handlers' own. Owned as a handler's filters are.
	virtual void AddCommonFilter(BMessageFilter* filter);
	virtual bool RemoveCommonFilter(BMessageFilter* filter);
	virtual void SetCommonFilterList(BList* filters);
	BList* CommonFilterList() const;

protected:
	//! Stops the program unless the caller has the lock.
	bool AssertLocked() const;

	virtual void _BatchDone();
	virtual void _AboutToWait();
	/*!	For a window's constructor, and with NULL at the beginning of its destructor: who this looper is in BApplication's
		list of windows. */
	void _SetWindow(BWindow* window);

private:
	friend class BHandler;
	friend class BApplication;
	friend class BPrivate::LooperAccess;

	static status_t ThreadEntry(void* looper);
	void Init(int32 portCapacity);
	thread_id StartThread(status_t (*entry)(void*), const char* name);
	void Loop();
	void WaitForMessage();
	BMessage* TakeMessage();
	void EndBatch();
	void Dispatch(BMessage* message);
	BHandler* TargetOf(BMessage* message);
	BHandler* ResolveSpecifiers(BHandler* target, BMessage* message);
	BHandler* ApplyTopLevelFilters(BMessage* message, BHandler* target);
	BHandler* ApplyHandlerFilters(BMessage* message, BHandler* target);
	BHandler* ApplyFilters(BList* filters, BMessage* message, BHandler* target);
	void AnswerQuitRequest(BMessage* message);
	bool AnswerHandlerCount(BMessage* message);
	void RemoveAllHandlers();

	std::shared_ptr<BPrivate::LooperLock> fLock;
	std::shared_ptr<BPrivate::MessagePort> fPort;
	std::unique_ptr<BMessageQueue> fQueue;
	BMessage* fCurrentMessage = nullptr;
	BHandler* fPreferred = nullptr;
	BList* fCommonFilters = nullptr;
	std::vector<BHandler*> fHandlers;
	int32 fPriority;
	std::atomic<thread_id> fThread{-1};
	bool fRunCalled = false;
	bool fTerminating = false;
	bool fDeletedByLoop = true; // a BApplication is its maker's
	bool fInQuitRequest = false;
	bool fTickLast = false;
	bool fBatchOpen = false;
	bigtime_t fBatchStart = 0;
};
