#include <Handler.h>

#include "app/LooperList.h"
#include "app/MessageAccess.h"
#include "app/Observers.h"
#include "app/TokenTable.h"
#include <List.h>
#include <Looper.h>
#include <Message.h>
#include <MessageFilter.h>
#include <PropertyInfo.h>
#include <stdlib.h>
#include <string.h>

using namespace BPrivate;

// code                    from -> to                    fields                                          reply
static const uint32 kStartWatching
	= '_OBS'; // watcher -> watched  "be:observe_target" (messenger), B_OBSERVE_WHAT_CHANGE  none
static const uint32 kStopWatching = '_OBQ'; // the same
static const char* const kObserveTarget = "be:observe_target";

static const property_info sProperties[] = {
	{"Suites", {B_GET_PROPERTY}, {B_DIRECT_SPECIFIER}, NULL, 0, {}},
	{"Messenger", {B_GET_PROPERTY}, {B_DIRECT_SPECIFIER}, NULL, 0, {B_MESSENGER_TYPE}},
	{"InternalName", {B_GET_PROPERTY}, {B_DIRECT_SPECIFIER}, NULL, 0, {B_STRING_TYPE}},
	{NULL, {}, {}, NULL, 0, {}},
};

BHandler::BHandler(const char* name) : fToken(TokenTable::Add(this))
{
	SetName(name);
}

BHandler::BHandler(BMessage* data) : BArchivable(data), fToken(TokenTable::Add(this))
{
	SetName(data != NULL ? data->GetString("_name") : NULL);
}

BHandler::~BHandler()
{
	if (LockLooper()) {
		BLooper* looper = Looper();
		looper->RemoveHandler(this);
		looper->Unlock();
	}
	BHandler::SetFilterList(NULL);
	free(fName);
	TokenTable::Remove(fToken);
}

BArchivable*
BHandler::Instantiate(BMessage* data)
{
	return validate_instantiation(data, "BHandler") ? new BHandler(data) : NULL;
}

status_t
BHandler::Archive(BMessage* data, bool deep) const
{
	const status_t error = BArchivable::Archive(data, deep);
	if (error != B_OK || fName == NULL)
		return error;
	return data->AddString("_name", fName);
}

BLooper*
BHandler::Looper() const
{
	return fLooper.load(std::memory_order_acquire);
}

void
BHandler::SetLooper(BLooper* looper)
{
	fLooper.store(looper, std::memory_order_release);
	TokenTable::SetLooper(fToken, looper);
	for (int32 i = 0; fFilters != NULL && i < fFilters->CountItems(); i++)
		static_cast<BMessageFilter*>(fFilters->ItemAt(i))->SetLooper(looper);
}

void
BHandler::SetName(const char* name)
{
	char* copy = name != NULL ? strdup(name) : NULL;
	free(fName);
	fName = copy;
	BLooper* looper = Looper();
	if (looper == this)
		LooperList::SetName(looper, name);
}

const char*
BHandler::Name() const
{
	return fName;
}

void
BHandler::SetNextHandler(BHandler* handler)
{
	BLooper* looper = Looper();
	if (looper != NULL && !looper->IsLocked())
		debugger("a handler's looper must be locked to change its next handler");
	if (handler != NULL && (looper == NULL || handler->Looper() != looper))
		debugger("a handler and its next one must belong to one looper");
	fNextHandler = handler;
}

BHandler*
BHandler::NextHandler() const
{
	return fNextHandler;
}

// Filters

void
BHandler::AddFilter(BMessageFilter* filter)
{
	BLooper* looper = Looper();
	if (looper != NULL && !looper->IsLocked())
		debugger("a handler's looper must be locked to change its filters");
	if (filter == NULL)
		return;
	if (fFilters == NULL)
		fFilters = new BList;
	filter->SetLooper(looper);
	fFilters->AddItem(filter);
}

bool
BHandler::RemoveFilter(BMessageFilter* filter)
{
	BLooper* looper = Looper();
	if (looper != NULL && !looper->IsLocked())
		debugger("a handler's looper must be locked to change its filters");
	if (fFilters == NULL || !fFilters->RemoveItem(static_cast<void*>(filter)))
		return false;
	filter->SetLooper(NULL);
	return true;
}

void
BHandler::SetFilterList(BList* filters)
{
	BLooper* looper = Looper();
	if (looper != NULL && !looper->IsLocked())
		debugger("a handler's looper must be locked to change its filters");
	if (fFilters == filters)
		return;
	for (int32 i = 0; fFilters != NULL && i < fFilters->CountItems(); i++)
		delete static_cast<BMessageFilter*>(fFilters->ItemAt(i));
	delete fFilters;
	fFilters = filters;
	for (int32 i = 0; fFilters != NULL && i < fFilters->CountItems(); i++)
		static_cast<BMessageFilter*>(fFilters->ItemAt(i))->SetLooper(looper);
}

BList*
BHandler::FilterList()
{
	return fFilters;
}

// Locking

bool
BHandler::LockLooper()
{
	return LockLooperWithTimeout(B_INFINITE_TIMEOUT) == B_OK;
}

status_t
BHandler::LockLooperWithTimeout(bigtime_t timeout)
{
	BLooper* looper = Looper();
	if (looper == NULL)
		return B_BAD_VALUE;
	const status_t error = looper->LockWithTimeout(timeout);
	if (error != B_OK)
		return error;
	if (Looper() == looper)
		return B_OK;
	looper->Unlock();
	return B_MISMATCHED_VALUES;
}

void
BHandler::UnlockLooper()
{
	BLooper* looper = Looper();
	if (looper != NULL)
		looper->Unlock();
}

// Messages

void
BHandler::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kStartWatching:
		case kStopWatching:
			Watch(message);
			return;
		case B_GET_PROPERTY:
		case B_GET_SUPPORTED_SUITES:
			if (AnswerProperty(message))
				return;
			break;
	}
	PassOn(message);
}

bool
BHandler::AnswerProperty(BMessage* message)
{
	BMessage reply(B_REPLY);
	BMessage specifier;
	int32 index;
	const char* property = "Suites";
	const bool forMe = message->GetCurrentSpecifier(&index, &specifier, NULL, &property) == B_OK;
	if (!forMe && message->what == B_GET_PROPERTY)
		return false;
	if (strcmp(property, "Suites") == 0 || message->what == B_GET_SUPPORTED_SUITES)
		reply.AddInt32("error", GetSupportedSuites(&reply));
	else if (strcmp(property, "Messenger") == 0)
		reply.AddInt32("error", reply.AddMessenger("result", BMessenger(this)));
	else if (strcmp(property, "InternalName") == 0)
		reply.AddInt32("error", reply.AddString("result", Name() != NULL ? Name() : ""));
	else
		return false;
	message->SendReply(&reply);
	return true;
}

void
BHandler::PassOn(BMessage* message)
{
	if (fNextHandler != NULL) {
		BHandler* target = Looper()->ApplyHandlerFilters(message, fNextHandler);
		// a filter that sends it back would never let it out
		if (target != NULL && target != this)
			target->MessageReceived(message);
		return;
	}
	if (message->what == B_MESSAGE_NOT_UNDERSTOOD
		|| !(message->WasDropped() || message->HasSpecifiers()))
		return;
	BMessage reply(B_MESSAGE_NOT_UNDERSTOOD);
	reply.AddInt32("error", B_BAD_SCRIPT_SYNTAX);
	reply.AddString("message", "Didn't understand the specifier(s)");
	message->SendReply(&reply);
}

BHandler*
BHandler::ResolveSpecifier(
	BMessage* message, int32 index, BMessage* specifier, int32 form, const char* property)
{
	const BPropertyInfo known(sProperties);
	if (known.FindMatch(message, index, specifier, form, property) >= 0)
		return this;
	BMessage reply(B_MESSAGE_NOT_UNDERSTOOD);
	reply.AddInt32("error", B_BAD_SCRIPT_SYNTAX);
	reply.AddString("message", "Didn't understand the specifier(s)");
	message->SendReply(&reply);
	return NULL;
}

status_t
BHandler::GetSupportedSuites(BMessage* data)
{
	if (data == NULL)
		return B_BAD_VALUE;
	const status_t error = data->AddString("suites", "suite/vnd.Be-handler");
	const BPropertyInfo known(sProperties);
	return error == B_OK ? data->AddFlat("messages", &known) : error;
}

// Watching

ObserverList&
BHandler::Observers()
{
	if (fObservers == nullptr)
		fObservers = std::make_unique<ObserverList>();
	return *fObservers;
}

void
BHandler::Watch(BMessage* message)
{
	BMessenger observer;
	int32 what;
	if (message->FindMessenger(kObserveTarget, &observer) != B_OK
		|| message->FindInt32(B_OBSERVE_WHAT_CHANGE, &what) != B_OK)
		return;
	if (message->what == kStartWatching)
		Observers().Add(uint32(what), observer);
	else
		Observers().Remove(uint32(what), observer);
}

static status_t
ask_target(const BMessenger& target, uint32 command, BHandler* observer, uint32 what)
{
	BMessage message(command);
	message.AddMessenger(kObserveTarget, BMessenger(observer));
	message.AddInt32(B_OBSERVE_WHAT_CHANGE, int32(what));
	return target.SendMessage(&message);
}

status_t
BHandler::StartWatching(BMessenger target, uint32 what)
{
	return ask_target(target, kStartWatching, this, what);
}

status_t
BHandler::StartWatchingAll(BMessenger target)
{
	return StartWatching(target, B_OBSERVER_OBSERVE_ALL);
}

status_t
BHandler::StopWatching(BMessenger target, uint32 what)
{
	return ask_target(target, kStopWatching, this, what);
}

status_t
BHandler::StopWatchingAll(BMessenger target)
{
	return StopWatching(target, B_OBSERVER_OBSERVE_ALL);
}

status_t
BHandler::StartWatching(BHandler* observer, uint32 what)
{
	if (observer == NULL)
		return B_BAD_HANDLER;
	Observers().Add(what, observer_of(observer));
	return B_OK;
}

status_t
BHandler::StartWatchingAll(BHandler* observer)
{
	return StartWatching(observer, B_OBSERVER_OBSERVE_ALL);
}

status_t
BHandler::StopWatching(BHandler* observer, uint32 what)
{
	return observer != NULL ? Observers().Remove(what, observer_of(observer)) : B_BAD_HANDLER;
}

status_t
BHandler::StopWatchingAll(BHandler* observer)
{
	return StopWatching(observer, B_OBSERVER_OBSERVE_ALL);
}

void
BHandler::SendNotices(uint32 what, const BMessage* notice)
{
	if (!IsWatched())
		return;
	BMessage message(B_OBSERVER_NOTICE_CHANGE);
	if (notice != NULL) {
		message = *notice;
		message.what = B_OBSERVER_NOTICE_CHANGE;
		message.AddInt32(B_OBSERVE_ORIGINAL_WHAT, int32(notice->what));
	}
	message.AddInt32(B_OBSERVE_WHAT_CHANGE, int32(what));
	fObservers->Notify(what, &message);
	if (what != B_OBSERVER_OBSERVE_ALL)
		fObservers->Notify(B_OBSERVER_OBSERVE_ALL, &message);
}

bool
BHandler::IsWatched() const
{
	return fObservers != nullptr && !fObservers->IsEmpty();
}
