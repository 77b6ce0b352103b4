#include <Application.h>

#include "app/LooperList.h"
#include <Message.h>
#include <PropertyInfo.h>
#include <string.h>

using namespace BPrivate;

//! In the order of the table.
enum { kWindow, kLooper, kCountWindows, kCountLoopers, kName };

static const property_info sProperties[] = {
	{"Window", {}, {B_INDEX_SPECIFIER, B_REVERSE_INDEX_SPECIFIER, B_NAME_SPECIFIER}, NULL, kWindow,
		{}},
	{"Looper", {}, {B_INDEX_SPECIFIER, B_REVERSE_INDEX_SPECIFIER, B_NAME_SPECIFIER}, NULL, kLooper,
		{}},
	{"Window", {B_COUNT_PROPERTIES}, {B_DIRECT_SPECIFIER}, NULL, kCountWindows, {B_INT32_TYPE}},
	{"Looper", {B_COUNT_PROPERTIES}, {B_DIRECT_SPECIFIER}, NULL, kCountLoopers, {B_INT32_TYPE}},
	{"Name", {B_GET_PROPERTY}, {B_DIRECT_SPECIFIER}, NULL, kName, {B_STRING_TYPE}},
	{NULL, {}, {}, NULL, 0, {}},
};

BLooper*
BApplication::FindLooper(BMessage* specifier, int32 form, bool windows, status_t* error)
{
	BLooper* found = NULL;
	if (form == B_NAME_SPECIFIER) {
		const char* name;
		*error = specifier->FindString("name", &name);
		if (*error == B_OK)
			found = LooperList::Named(name, windows);
		if (*error == B_OK && found == NULL)
			*error = B_NAME_NOT_FOUND;
		return found;
	}
	int32 index;
	*error = specifier->FindInt32("index", &index);
	if (*error != B_OK)
		return NULL;
	const std::vector<LooperList::Item> items
		= windows ? LooperList::Windows() : LooperList::Loopers();
	const int64 place = form == B_REVERSE_INDEX_SPECIFIER ? int64(items.size()) - index : index;
	if (place >= 0 && place < int64(items.size()))
		return items[size_t(place)].looper;
	*error = B_BAD_INDEX;
	return NULL;
}

BHandler*
BApplication::ResolveSpecifier(
	BMessage* message, int32 index, BMessage* specifier, int32 form, const char* property)
{
	const BPropertyInfo known(sProperties);
	uint32 which;
	if (known.FindMatch(message, index, specifier, form, property, &which) < 0)
		return BLooper::ResolveSpecifier(message, index, specifier, form, property);
	if (which != kWindow && which != kLooper)
		return this;

	status_t error;
	BLooper* looper = FindLooper(specifier, form, which == kWindow, &error);
	if (looper == this) {
		message->PopSpecifier();
		return this;
	}
	if (looper != NULL) {
		// the rest is that looper's, the reply too
		message->PopSpecifier();
		error = BMessenger(NULL, looper).SendMessage(message, BMessenger(), 0);
		if (error == B_OK)
			return NULL;
	}
	BMessage reply(B_MESSAGE_NOT_UNDERSTOOD);
	reply.AddInt32("error", error);
	reply.AddString("message",
		which == kWindow ? "the application has no such window" : "there is no such looper");
	message->SendReply(&reply);
	return NULL;
}

void
BApplication::MessageReceived(BMessage* message)
{
	BMessage specifier;
	const char* property;
	int32 index, form;
	uint32 which = kWindow;
	const BPropertyInfo known(sProperties);
	if (!message->HasSpecifiers()
		|| message->GetCurrentSpecifier(&index, &specifier, &form, &property) != B_OK
		|| known.FindMatch(message, index, &specifier, form, property, &which) < 0) {
		BLooper::MessageReceived(message);
		return;
	}
	BMessage reply(B_REPLY);
	switch (which) {
		case kCountWindows:
			reply.AddInt32("result", CountWindows());
			break;
		case kCountLoopers:
			reply.AddInt32("result", CountLoopers());
			break;
		case kName:
			reply.AddString("result", Name());
			break;
		default:
			BLooper::MessageReceived(message);
			return;
	}
	reply.AddInt32("error", B_OK);
	message->SendReply(&reply);
}

status_t
BApplication::GetSupportedSuites(BMessage* data)
{
	if (data == NULL)
		return B_BAD_VALUE;
	status_t error = data->AddString("suites", "suite/vnd.Be-application");
	const BPropertyInfo known(sProperties);
	if (error == B_OK)
		error = data->AddFlat("messages", &known);
	return error == B_OK ? BLooper::GetSupportedSuites(data) : error;
}
