#include <Looper.h>

#include "app/MessageAccess.h"
#include "app/MessagePort.h"
#include "app/TokenTable.h"
#include <List.h>
#include <Message.h>
#include <MessageFilter.h>
#include <MessageQueue.h>
#include <PropertyInfo.h>
#include <string.h>

using namespace BPrivate;

static const property_info sProperties[] = {
	{"Handler", {}, {B_INDEX_SPECIFIER, B_REVERSE_INDEX_SPECIFIER}, NULL, 0, {}},
	{"Handlers", {B_GET_PROPERTY}, {B_DIRECT_SPECIFIER}, NULL, 0, {B_MESSENGER_TYPE}},
	{"Handler", {B_COUNT_PROPERTIES}, {B_DIRECT_SPECIFIER}, NULL, 0, {B_INT32_TYPE}},
	{NULL, {}, {}, NULL, 0, {}},
};

// Within a looper's own turn: all of this is called with the looper locked.

void
BLooper::Dispatch(BMessage* message)
{
	BHandler* handler = TargetOf(message);
	if (handler != NULL && message->HasSpecifiers()) {
		int32 index = -1;
		if (message->GetCurrentSpecifier(&index) == B_OK)
			handler = ResolveSpecifiers(handler, message);
	}
	if (handler != NULL)
		handler = ApplyTopLevelFilters(message, handler);
	if (handler != NULL && handler->Looper() == this)
		DispatchMessage(message, handler);
}

BHandler*
BLooper::TargetOf(BMessage* message)
{
	const int32 token = MessageAccess::Target(*message);
	if (token < 0)
		return fPreferred != nullptr ? fPreferred : this;
	BHandler* handler = NULL;
	BLooper* looper = NULL;
	// one that is gone, or was moved to another looper, gets nothing here
	return TokenTable::Find(token, &handler, &looper) && looper == this ? handler : NULL;
}

void
BLooper::DispatchMessage(BMessage* message, BHandler* handler)
{
	if (handler == this && message->what == _QUIT_)
		fTerminating = true;
	else if (handler == this && message->what == B_QUIT_REQUESTED)
		AnswerQuitRequest(message);
	else
		handler->MessageReceived(message);
}

void
BLooper::AnswerQuitRequest(BMessage* message)
{
	const bool quits = QuitRequested();
	BMessage reply(B_REPLY);
	reply.AddBool("result", quits);
	reply.AddInt32("thread", Thread());
	if (message->IsSourceWaiting())
		message->SendReply(&reply);
	if (!quits)
		return;
	fInQuitRequest = true;
	Quit();
	fInQuitRequest = false;
}

void
BLooper::MessageReceived(BMessage* message)
{
	if (!AnswerHandlerCount(message))
		BHandler::MessageReceived(message);
}

bool
BLooper::AnswerHandlerCount(BMessage* message)
{
	BMessage specifier;
	const char* property;
	int32 form;
	if (!message->HasSpecifiers()
		|| message->GetCurrentSpecifier(NULL, &specifier, &form, &property) != B_OK
		|| form != B_DIRECT_SPECIFIER)
		return false;
	BMessage reply(B_REPLY);
	if (message->what == B_COUNT_PROPERTIES && strcmp(property, "Handler") == 0)
		reply.AddInt32("result", CountHandlers());
	else if (message->what == B_GET_PROPERTY && strcmp(property, "Handlers") == 0) {
		for (BHandler* handler : fHandlers)
			reply.AddMessenger("result", BMessenger(handler, this));
	} else
		return false;
	reply.AddInt32("error", B_OK);
	message->SendReply(&reply);
	return true;
}

BMessage*
BLooper::CurrentMessage() const
{
	return fCurrentMessage;
}

BMessage*
BLooper::DetachCurrentMessage()
{
	AssertLocked();
	BMessage* message = fCurrentMessage;
	fCurrentMessage = nullptr;
	return message;
}

BMessageQueue*
BLooper::MessageQueue() const
{
	return fQueue.get();
}

bool
BLooper::IsMessageWaiting() const
{
	return fPort->HasArrivals() || !fQueue->IsEmpty();
}

// Filters

BHandler*
BLooper::ApplyTopLevelFilters(BMessage* message, BHandler* target)
{
	target = ApplyFilters(fCommonFilters, message, target);
	return target != NULL ? ApplyHandlerFilters(message, target) : NULL;
}

//! A filter may name another handler, whose filters are then asked, until one is content with itself.
BHandler*
BLooper::ApplyHandlerFilters(BMessage* message, BHandler* target)
{
	BHandler* previous = NULL;
	while (target != NULL && target != previous) {
		previous = target;
		target = ApplyFilters(target->FilterList(), message, target);
	}
	return target;
}

BHandler*
BLooper::ApplyFilters(BList* filters, BMessage* message, BHandler* target)
{
	// a filter may take itself off the list
	for (int32 i = 0; filters != NULL && i < filters->CountItems(); i++) {
		BMessageFilter* filter = static_cast<BMessageFilter*>(filters->ItemAt(i));
		if (!filter->Fits(message))
			continue;
		if (filter->Ask(message, &target) == B_SKIP_MESSAGE || target == NULL)
			return NULL;
		if (target->Looper() != this)
			return NULL;
		if (filters->ItemAt(i) != filter)
			i--;
	}
	return target;
}

// Scripting

BHandler*
BLooper::ResolveSpecifiers(BHandler* target, BMessage* message)
{
	for (;;) {
		int32 index, form;
		BMessage specifier;
		const char* property;
		status_t error = message->GetCurrentSpecifier(&index, &specifier, &form, &property);
		if (error != B_OK) {
			BMessage reply(B_MESSAGE_NOT_UNDERSTOOD);
			reply.AddInt32("error", error);
			message->SendReply(&reply);
			return NULL;
		}
		BHandler* next = target->ResolveSpecifier(message, index, &specifier, form, property);
		// compared only: it may belong to another looper
		if (next == NULL || IndexOf(next) < 0)
			return NULL;
		if (next == target || message->GetCurrentSpecifier(&index) != B_OK || index < 0)
			return next;
		target = next;
	}
}

BHandler*
BLooper::ResolveSpecifier(
	BMessage* message, int32 index, BMessage* specifier, int32 form, const char* property)
{
	const BPropertyInfo known(sProperties);
	const int32 match = known.FindMatch(message, index, specifier, form, property);
	if (match < 0)
		return BHandler::ResolveSpecifier(message, index, specifier, form, property);
	if (match > 0)
		return this;
	int32 which;
	status_t error = specifier->FindInt32("index", &which);
	if (error == B_OK && form == B_REVERSE_INDEX_SPECIFIER)
		which = CountHandlers() - which;
	BHandler* handler = error == B_OK ? HandlerAt(which) : NULL;
	if (handler != NULL) {
		message->PopSpecifier();
		return handler;
	}
	BMessage reply(B_MESSAGE_NOT_UNDERSTOOD);
	reply.AddInt32("error", error == B_OK ? B_BAD_INDEX : error);
	reply.AddString("message", "handler index out of range");
	message->SendReply(&reply);
	return NULL;
}

status_t
BLooper::GetSupportedSuites(BMessage* data)
{
	if (data == NULL)
		return B_BAD_VALUE;
	status_t error = data->AddString("suites", "suite/vnd.Be-looper");
	const BPropertyInfo known(sProperties);
	if (error == B_OK)
		error = data->AddFlat("messages", &known);
	return error == B_OK ? BHandler::GetSupportedSuites(data) : error;
}
