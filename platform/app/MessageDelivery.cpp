#include <Message.h>

#include "app/ApplicationRegistry.h"
#include "app/MessageAccess.h"
#include <String.h>

using namespace BPrivate;

static const char* const kSpecifierEntry = "specifiers";
static const char* const kPropertyEntry = "property";
static const char* const kDropPointEntry = "_drop_point_";
static const char* const kDropOffsetEntry = "_drop_offset_";

bool
BMessage::IsReply() const
{
	return (fHeader.flags & kMessageIsReply) != 0;
}

bool
BMessage::WasDelivered() const
{
	return (fHeader.flags & kMessageWasDelivered) != 0;
}

//! Does a thread of this process wait? The flags of a message out of a file say nothing about that.
bool
BMessage::ReplyMatters() const
{
	return fDelivered
		&& (fHeader.flags & (kMessageReplyRequired | kMessageReplyDone)) == kMessageReplyRequired;
}

bool
BMessage::IsSourceWaiting() const
{
	return ReplyMatters();
}

bool
BMessage::IsSourceRemote() const
{
	return WasDelivered() && fHeader.replyTeam != current_team();
}

BMessenger
BMessage::ReturnAddress() const
{
	if (!WasDelivered() || !fDelivered)
		return BMessenger();
	return MessengerAccess::Make(fHeader.replyPort, fHeader.replyTarget, fHeader.replyTeam);
}

const BMessage*
BMessage::Previous() const
{
	return fPrevious.get();
}

bool
BMessage::WasDropped() const
{
	return (fHeader.flags & kMessageWasDropped) != 0;
}

BPoint
BMessage::DropPoint(BPoint* offset) const
{
	if (offset != NULL)
		*offset = GetPoint(kDropOffsetEntry, BPoint());
	return GetPoint(kDropPointEntry, BPoint());
}

// Replies

/*	A waiting source gets exactly one reply; otherwise anyone may answer a delivered message any number of times. */
template<typename Send>
status_t
BMessage::Reply(BMessage* reply, Send send)
{
	if (reply == NULL)
		return B_BAD_VALUE;
	if (fDelivered && (fHeader.flags & kMessageReplyRequired)) {
		if (fHeader.flags & kMessageReplyDone)
			return B_DUPLICATE_REPLY;
		fHeader.flags |= kMessageReplyDone;
	} else if (!fDelivered || !WasDelivered())
		return B_BAD_REPLY;

	const BMessenger target
		= MessengerAccess::Make(fHeader.replyPort, fHeader.replyTarget, fHeader.replyTeam);
	reply->fHeader.flags |= kMessageIsReply;
	if (reply->what != B_NO_REPLY)
		reply->fPrevious = std::make_shared<const BMessage>(*this);
	const status_t error = send(target);
	reply->fHeader.flags &= ~kMessageIsReply;
	reply->fPrevious.reset();
	return error;
}

status_t
BMessage::SendReply(uint32 command, BHandler* replyTo)
{
	BMessage reply(command);
	return SendReply(&reply, replyTo);
}

status_t
BMessage::SendReply(BMessage* reply, BHandler* replyTo, bigtime_t timeout)
{
	return SendReply(reply, BMessenger(replyTo), timeout);
}

status_t
BMessage::SendReply(BMessage* reply, BMessenger replyTo, bigtime_t timeout)
{
	return Reply(reply,
		[&](const BMessenger& target) { return target.SendMessage(reply, replyTo, timeout); });
}

status_t
BMessage::SendReply(uint32 command, BMessage* replyToReply)
{
	BMessage reply(command);
	return SendReply(&reply, replyToReply);
}

status_t
BMessage::SendReply(
	BMessage* reply, BMessage* replyToReply, bigtime_t sendTimeout, bigtime_t replyTimeout)
{
	return Reply(reply, [&](const BMessenger& target) {
		return target.SendMessage(reply, replyToReply, sendTimeout, replyTimeout);
	});
}

// Specifiers

status_t
BMessage::AddSpecifier(const char* property)
{
	BMessage specifier(B_DIRECT_SPECIFIER);
	const status_t error = specifier.AddString(kPropertyEntry, property);
	return error == B_OK ? AddSpecifier(&specifier) : error;
}

status_t
BMessage::AddSpecifier(const char* property, int32 index)
{
	BMessage specifier(B_INDEX_SPECIFIER);
	const status_t error = specifier.AddString(kPropertyEntry, property);
	specifier.AddInt32("index", index);
	return error == B_OK ? AddSpecifier(&specifier) : error;
}

status_t
BMessage::AddSpecifier(const char* property, int32 index, int32 range)
{
	if (range < 0)
		return B_BAD_VALUE;
	BMessage specifier(B_RANGE_SPECIFIER);
	const status_t error = specifier.AddString(kPropertyEntry, property);
	specifier.AddInt32("index", index);
	specifier.AddInt32("range", range);
	return error == B_OK ? AddSpecifier(&specifier) : error;
}

status_t
BMessage::AddSpecifier(const char* property, const char* name)
{
	BMessage specifier(B_NAME_SPECIFIER);
	status_t error = specifier.AddString(kPropertyEntry, property);
	if (error == B_OK)
		error = specifier.AddString("name", name);
	return error == B_OK ? AddSpecifier(&specifier) : error;
}

status_t
BMessage::AddSpecifier(const BMessage* specifier)
{
	const status_t error = AddMessage(kSpecifierEntry, specifier);
	if (error == B_OK) {
		fHeader.currentSpecifier++;
		fHeader.flags |= kMessageHasSpecifiers;
	}
	return error;
}

status_t
BMessage::SetCurrentSpecifier(int32 index)
{
	int32 count = 0;
	type_code type;
	GetInfo(kSpecifierEntry, &type, &count);
	if (index < 0 || index >= count)
		return B_BAD_INDEX;
	fHeader.currentSpecifier = index;
	return B_OK;
}

status_t
BMessage::GetCurrentSpecifier(
	int32* index, BMessage* specifier, int32* form, const char** property) const
{
	if (index != NULL)
		*index = fHeader.currentSpecifier;
	if (fHeader.currentSpecifier < 0 || !WasDelivered())
		return B_BAD_SCRIPT_SYNTAX;
	if (specifier == NULL)
		return B_OK;
	if (FindMessage(kSpecifierEntry, fHeader.currentSpecifier, specifier) != B_OK)
		return B_BAD_SCRIPT_SYNTAX;
	if (form != NULL)
		*form = int32(specifier->what);
	if (property != NULL && specifier->FindString(kPropertyEntry, property) != B_OK)
		return B_BAD_SCRIPT_SYNTAX;
	return B_OK;
}

bool
BMessage::HasSpecifiers() const
{
	return (fHeader.flags & kMessageHasSpecifiers) != 0;
}

status_t
BMessage::PopSpecifier()
{
	if (fHeader.currentSpecifier < 0 || !WasDelivered())
		return B_BAD_VALUE;
	fHeader.currentSpecifier--;
	return B_OK;
}

// What the kits do with messages

MessageAccess::Header
MessageAccess::FreshHeader()
{
	return {kMessageValid, kNullToken, -1, -1, -1, -1};
}

void
MessageAccess::SetDropped(BMessage& message, BPoint where, BPoint offset)
{
	message.fHeader.flags |= kMessageWasDropped;
	message.RemoveName(kDropPointEntry);
	message.RemoveName(kDropOffsetEntry);
	message.AddPoint(kDropPointEntry, where);
	message.AddPoint(kDropOffsetEntry, offset);
}

std::unique_ptr<BMessage>
MessageAccess::CopyForDelivery(const BMessage& message, int32 target, const BMessenger& replyTo)
{
	auto copy = std::make_unique<BMessage>(message);
	Header& header = copy->fHeader;
	header.flags |= kMessageWasDelivered | (message.fHeader.flags & kMessageIsReply);
	header.target = target;
	copy->fPrevious = message.fPrevious;

	BMessenger address = replyTo;
	if (MessengerAccess::Port(address) < 0) {
		if (message.ReplyMatters())
			header.flags |= kMessageReplyRequired;
		if (!message.fDelivered || header.replyPort < 0)
			address = application_messenger();
	}
	if (MessengerAccess::Port(address) >= 0) {
		header.replyPort = MessengerAccess::Port(address);
		header.replyTarget = MessengerAccess::Token(address);
		header.replyTeam = MessengerAccess::Team(address);
	} else if (!message.fDelivered) {
		header.replyPort = header.replyTarget = -1;
		header.replyTeam = current_team();
	}
	copy->fDelivered = true;
	return copy;
}

void
MessageAccess::HandOver(BMessage& message)
{
	if (message.ReplyMatters())
		message.fHeader.flags |= kMessageReplyDone;
}

void
MessageAccess::Disown(BMessage& copy)
{
	copy.fDelivered = false;
}

void
MessageAccess::RequireReply(BMessage& copy)
{
	copy.fHeader.flags |= kMessageReplyRequired;
}

void
MessageAccess::Move(BMessage& from, BMessage& to)
{
	if (to.ReplyMatters())
		to.SendReply(B_NO_REPLY);
	to.what = from.what;
	to.fHeader = from.fHeader;
	to.fDelivered = from.fDelivered;
	to.fPrevious = std::move(from.fPrevious);
	from.fDelivered = false;
	MessageBody* body = from.fBody;
	from.fBody = nullptr;
	to.SetBody(body);
}
