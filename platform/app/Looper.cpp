#include <Looper.h>

#include "app/LooperAccess.h"
#include "app/LooperList.h"
#include "app/MessageAccess.h"
#include "support/ArchiveFields.h"
#include <List.h>
#include <Message.h>
#include <MessageFilter.h>
#include <MessageQueue.h>
#include <algorithm>

using namespace BPrivate;

namespace {

//! A batch is ended after this long, so that a flood of messages does not keep a window from drawing.
constexpr bigtime_t kLongestBatch = 16000;

//! The looper of this thread, as long as it lives: its own lock and thread need not be looked up.
struct Running {
	BLooper* looper = nullptr;
	LooperLock* lock = nullptr;
};
thread_local Running tRunning;

} // namespace

BLooper*
LooperAccess::OfThisThread()
{
	return tRunning.looper;
}

BLooper::BLooper(const char* name, int32 priority, int32 portCapacity)
	: BHandler(name),
	  fLock(std::make_shared<LooperLock>()),
	  fQueue(std::make_unique<BMessageQueue>()),
	  fPriority(priority)
{
	Init(portCapacity);
}

BLooper::BLooper(BMessage* data)
	: BHandler(data),
	  fLock(std::make_shared<LooperLock>()),
	  fQueue(std::make_unique<BMessageQueue>()),
	  fPriority(archive_or_empty(data).GetInt32("_prio", B_NORMAL_PRIORITY))
{
	Init(archive_or_empty(data).GetInt32("_port_cap", B_LOOPER_PORT_DEFAULT_CAPACITY));
}

void
BLooper::Init(int32 portCapacity)
{
	fPort = MessagePort::Create(portCapacity);
	fPort->SetLooperToken(MessengerAccess::TokenOf(this));
	fLock->Lock(B_INFINITE_TIMEOUT); // before others can find it
	LooperList::Add(this, fLock, fPort);
	AddHandler(this);
	LooperList::SetName(this, Name());
}

BArchivable*
BLooper::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BLooper") ? new BLooper(data) : NULL;
}

status_t
BLooper::Archive(BMessage* data, bool deep) const
{
	ArchiveWriter writer(data, BHandler::Archive(data, deep));
	writer.Int32("_port_cap", fPort->Capacity());
	thread_info info;
	if (get_thread_info(fThread, &info) == B_OK)
		writer.Int32("_prio", info.priority);
	return writer.Status();
}

BLooper::~BLooper()
{
	Lock();
	fPort->Close();
	delete fCurrentMessage;
	fCurrentMessage = nullptr;
	while (BMessage* message = fQueue->NextMessage())
		delete message;
	BLooper::SetCommonFilterList(NULL);
	RemoveAllHandlers();
	LooperList::Remove(this);
	if (tRunning.looper == this)
		tRunning = Running();
	fLock->Kill();
}

void
BLooper::RemoveAllHandlers()
{
	fPreferred = nullptr;
	for (BHandler* handler : fHandlers) {
		handler->fNextHandler = nullptr;
		handler->SetLooper(NULL);
	}
	fHandlers.clear();
}

// Posting

status_t
BLooper::PostMessage(uint32 command)
{
	BMessage message(command);
	return PostMessage(&message);
}

status_t
BLooper::PostMessage(BMessage* message)
{
	return PostMessage(message, this, NULL);
}

status_t
BLooper::PostMessage(uint32 command, BHandler* handler, BHandler* replyTo)
{
	BMessage message(command);
	return PostMessage(&message, handler, replyTo);
}

status_t
BLooper::PostMessage(BMessage* message, BHandler* handler, BHandler* replyTo)
{
	if (message == NULL)
		return B_BAD_VALUE;
	if (handler != NULL && handler->Looper() != this)
		return B_MISMATCHED_VALUES;
	const BMessenger reply(replyTo);
	std::unique_ptr<BMessage> copy = MessageAccess::CopyForDelivery(*message,
		handler != NULL ? MessengerAccess::TokenOf(handler) : int32(kPreferredToken), reply);
	const std::shared_ptr<MessagePort> port = fPort; // the message may be what ends this looper
	const status_t error = port->Post(copy, 0);
	if (error != B_OK)
		MessageAccess::Disown(*copy);
	else if (MessengerAccess::Port(reply) < 0)
		MessageAccess::HandOver(*message);
	return error;
}

// Handlers

void
BLooper::AddHandler(BHandler* handler)
{
	AssertLocked();
	if (handler == NULL || handler->Looper() != NULL)
		return;
	fHandlers.push_back(handler);
	handler->SetLooper(this);
	if (handler != this)
		handler->SetNextHandler(this);
}

bool
BLooper::RemoveHandler(BHandler* handler)
{
	AssertLocked();
	const auto place = std::find(fHandlers.begin(), fHandlers.end(), handler);
	if (handler == NULL || place == fHandlers.end())
		return false;
	if (handler == fPreferred)
		fPreferred = nullptr;
	handler->SetNextHandler(NULL);
	handler->SetLooper(NULL);
	fHandlers.erase(place);
	return true;
}

int32
BLooper::CountHandlers() const
{
	AssertLocked();
	return int32(fHandlers.size());
}

BHandler*
BLooper::HandlerAt(int32 index) const
{
	AssertLocked();
	return index >= 0 && index < int32(fHandlers.size()) ? fHandlers[index] : NULL;
}

int32
BLooper::IndexOf(BHandler* handler) const
{
	AssertLocked();
	const auto place = std::find(fHandlers.begin(), fHandlers.end(), handler);
	return place != fHandlers.end() ? int32(place - fHandlers.begin()) : -1;
}

BHandler*
BLooper::PreferredHandler() const
{
	return fPreferred;
}

void
BLooper::SetPreferredHandler(BHandler* handler)
{
	fPreferred = handler != NULL && IndexOf(handler) >= 0 ? handler : nullptr;
}

// Filters

void
BLooper::AddCommonFilter(BMessageFilter* filter)
{
	AssertLocked();
	if (filter == NULL)
		return;
	if (fCommonFilters == nullptr)
		fCommonFilters = new BList;
	filter->SetLooper(this);
	fCommonFilters->AddItem(filter);
}

bool
BLooper::RemoveCommonFilter(BMessageFilter* filter)
{
	AssertLocked();
	if (fCommonFilters == nullptr || !fCommonFilters->RemoveItem(static_cast<void*>(filter)))
		return false;
	filter->SetLooper(NULL);
	return true;
}

void
BLooper::SetCommonFilterList(BList* filters)
{
	AssertLocked();
	if (fCommonFilters == filters)
		return;
	for (int32 i = 0; fCommonFilters != nullptr && i < fCommonFilters->CountItems(); i++)
		delete static_cast<BMessageFilter*>(fCommonFilters->ItemAt(i));
	delete fCommonFilters;
	fCommonFilters = filters;
	for (int32 i = 0; fCommonFilters != nullptr && i < fCommonFilters->CountItems(); i++)
		static_cast<BMessageFilter*>(fCommonFilters->ItemAt(i))->SetLooper(this);
}

BList*
BLooper::CommonFilterList() const
{
	return fCommonFilters;
}

// The thread

thread_id
BLooper::Run()
{
	const thread_id thread = StartThread(ThreadEntry, Name() != NULL ? Name() : "looper");
	if (thread < 0)
		return thread;
	// The looper may be gone as soon as its thread runs.
	const std::shared_ptr<LooperLock> lock = fLock;
	while (lock->IsHeldByCaller())
		lock->Unlock();
	const status_t error = resume_thread(thread);
	if (error == B_OK)
		return thread;
	LooperList::ThreadEnds(thread);
	return error;
}

thread_id
BLooper::StartThread(status_t (*entry)(void*), const char* name)
{
	AssertLocked();
	if (fRunCalled)
		debugger("a looper can be run only once");
	const thread_id thread = spawn_thread(entry, name, fPriority, this);
	if (thread < 0)
		return thread;
	fRunCalled = true;
	fThread = thread;
	fPort->SetThread(thread);
	LooperList::ThreadBegins(thread);
	return thread;
}

status_t
BLooper::ThreadEntry(void* data)
{
	const thread_id self = find_thread(NULL);
	BLooper* looper = static_cast<BLooper*>(data);
	try {
		looper->Loop();
		delete looper;
	} catch (const LooperEnded&) {
		// it has deleted itself already
	}
	LooperList::ThreadEnds(self);
	return B_OK;
}

/*	Ends with the looper locked. Nothing here may touch the looper when an exception passes: it is deleted then. */
void
BLooper::Loop()
{
	tRunning = {this, fLock.get()};
	while (!fTerminating) {
		WaitForMessage();
		Lock();
		// taken with the lock held: beats that pass while others have it are skipped
		if (BMessage* message = TakeMessage()) {
			fCurrentMessage = message;
			Dispatch(message);
			if (fTerminating)
				return;
		}
		BMessage* done = fCurrentMessage;
		fCurrentMessage = nullptr;
		Unlock();
		delete done;
		if (system_time() - fBatchStart >= kLongestBatch)
			EndBatch();
	}
}

void
BLooper::WaitForMessage()
{
	for (;;) {
		fPort->Drain(*fQueue);
		if (!fQueue->IsEmpty() || fPort->IsBeatDue())
			break;
		if (fBatchOpen) {
			EndBatch();
			continue;
		}
		_AboutToWait();
		fPort->Wait();
	}
	if (!fBatchOpen)
		fBatchStart = system_time();
	fBatchOpen = true;
}

/*	Runners and posted messages take turns when there are many of both. */
BMessage*
BLooper::TakeMessage()
{
	BMessage* message = fTickLast ? NULL : fPort->NextBeat();
	fTickLast = message != NULL;
	if (message == NULL)
		message = fQueue->NextMessage();
	if (message == NULL) {
		message = fPort->NextBeat();
		fTickLast = message != NULL;
	}
	return message;
}

void
BLooper::EndBatch()
{
	fBatchOpen = false;
	Lock();
	_BatchDone();
	Unlock();
}

void
BLooper::_BatchDone()
{ }

void
BLooper::_AboutToWait()
{ }

void
BLooper::_SetWindow(BWindow* window)
{
	LooperList::SetWindow(this, window);
}

void
BLooper::Quit()
{
	if (!Lock())
		return;
	if (!fRunCalled) {
		delete this;
		return;
	}
	if (tRunning.looper == this) {
		fTerminating = true;
		if (fInQuitRequest)
			return; // the loop ends by itself
		delete this;
		throw LooperEnded();
	}
	// What was posted before is dispatched first.
	const thread_id thread = fThread;
	const std::shared_ptr<LooperLock> lock = fLock;
	const std::shared_ptr<MessagePort> port = fPort;
	port->PostQuit();
	while (lock->IsHeldByCaller())
		lock->Unlock();
	wait_for_thread(thread, NULL);
}

bool
BLooper::QuitRequested()
{
	return true;
}

thread_id
BLooper::Thread() const
{
	return fThread;
}

team_id
BLooper::Team() const
{
	return current_team();
}

BLooper*
BLooper::LooperForThread(thread_id thread)
{
	return LooperList::OfThread(thread);
}

// Locking: `this` may be gone, so it is looked up before it is touched

static std::shared_ptr<LooperLock>
lock_of(const BLooper* looper)
{
	if (tRunning.looper == looper && looper != NULL)
		return std::shared_ptr<LooperLock>(std::shared_ptr<void>(), tRunning.lock);
	return LooperList::LockOf(looper);
}

bool
BLooper::Lock()
{
	return LockWithTimeout(B_INFINITE_TIMEOUT) == B_OK;
}

status_t
BLooper::LockWithTimeout(bigtime_t timeout)
{
	const std::shared_ptr<LooperLock> lock = lock_of(this);
	return lock != nullptr ? lock->Lock(timeout) : B_BAD_VALUE;
}

void
BLooper::Unlock()
{
	const std::shared_ptr<LooperLock> lock = lock_of(this);
	if (lock != nullptr)
		lock->Unlock();
}

bool
BLooper::IsLocked() const
{
	const std::shared_ptr<LooperLock> lock = lock_of(this);
	return lock != nullptr && lock->IsHeldByCaller();
}

thread_id
BLooper::LockingThread() const
{
	const std::shared_ptr<LooperLock> lock = lock_of(this);
	return lock != nullptr ? lock->Owner() : -1;
}

int32
BLooper::CountLocks() const
{
	const std::shared_ptr<LooperLock> lock = lock_of(this);
	return lock != nullptr ? lock->CountLocks() : 0;
}

int32
BLooper::CountLockRequests() const
{
	const std::shared_ptr<LooperLock> lock = lock_of(this);
	return lock != nullptr ? lock->CountRequests() : 0;
}

bool
BLooper::AssertLocked() const
{
	if (!IsLocked())
		debugger("looper must be locked before proceeding");
	return true;
}
