#include <Messenger.h>

#include "app/ApplicationRegistry.h"
#include "app/LooperList.h"
#include "app/LooperLock.h"
#include "app/MessageAccess.h"
#include "app/MessagePort.h"
#include "app/ReplySlot.h"
#include "app/TokenTable.h"
#include <Handler.h>
#include <Looper.h>
#include <tuple>
#include <unistd.h>

using namespace BPrivate;

BMessenger::BMessenger() = default;

BMessenger::BMessenger(const char* signature, team_id team, status_t* result)
{
	const status_t error = SetTo(signature, team);
	if (result != NULL)
		*result = error;
}

BMessenger::BMessenger(const BHandler* handler, const BLooper* looper, status_t* result)
{
	const status_t error = SetTo(handler, looper);
	if (result != NULL)
		*result = error;
}

status_t
BMessenger::SetTo(const char* signature, team_id team)
{
	*this = BMessenger();
	if (team >= 0 && team != current_team())
		return B_BAD_TEAM_ID;
	if (signature == NULL && team < 0)
		return B_BAD_VALUE;
	if (signature != NULL && !is_application(signature))
		return team >= 0 ? B_MISMATCHED_VALUES : B_BAD_VALUE;
	*this = application_messenger();
	return IsValid() ? B_OK : B_BAD_VALUE;
}

status_t
BMessenger::SetTo(const BHandler* handler, const BLooper* looper)
{
	*this = BMessenger();
	if (handler == NULL && looper == NULL)
		return B_BAD_VALUE;
	if (handler != NULL) {
		const BLooper* own = handler->Looper();
		if (own == NULL || (looper != NULL && looper != own))
			return B_MISMATCHED_VALUES;
		looper = own;
	}
	const std::shared_ptr<MessagePort> port = LooperList::PortOf(looper);
	if (port == nullptr)
		return B_BAD_VALUE;
	*this = MessengerAccess::Make(
		port->Id(), handler != NULL ? MessengerAccess::TokenOf(handler) : kPreferredToken);
	return B_OK;
}

bool
BMessenger::IsTargetLocal() const
{
	return fTeam == current_team();
}

BHandler*
BMessenger::Target(BLooper** looper) const
{
	BHandler* handler = NULL;
	BLooper* reader = IsTargetLocal() ? LooperList::OfPort(fPort) : NULL;
	BLooper* own = NULL;
	if (reader == NULL || !TokenTable::Find(fHandlerToken, &handler, &own) || own != reader)
		handler = NULL;
	if (looper != NULL)
		*looper = reader;
	return handler;
}

bool
BMessenger::LockTarget() const
{
	return LockTargetWithTimeout(B_INFINITE_TIMEOUT) == B_OK;
}

status_t
BMessenger::LockTargetWithTimeout(bigtime_t timeout) const
{
	if (!IsTargetLocal())
		return B_BAD_VALUE;
	std::shared_ptr<LooperLock> lock;
	if (LooperList::OfPort(fPort, &lock) == NULL)
		return B_BAD_PORT_ID;
	const status_t error = lock->Lock(timeout);
	return error == B_BAD_VALUE ? B_BAD_PORT_ID : error;
}

//! Delivers a copy to a looper, or to a thread that waits for a reply.
status_t
BMessenger::Send(BMessage* message, const BMessenger& replyTo, bigtime_t timeout) const
{
	if (message == NULL)
		return B_BAD_VALUE;
	if (!IsTargetLocal())
		return B_BAD_PORT_ID;
	const std::shared_ptr<MessagePort> port = MessagePort::Find(fPort);
	if (port == nullptr && !ReplySlot::IsSlot(*this))
		return B_BAD_PORT_ID;

	std::unique_ptr<BMessage> copy
		= MessageAccess::CopyForDelivery(*message, fHandlerToken, replyTo);
	if (ReplySlot::IsSlot(replyTo))
		MessageAccess::RequireReply(*copy);
	const status_t error
		= port != nullptr ? port->Post(copy, timeout) : ReplySlot::Deliver(*this, copy);
	if (error != B_OK)
		MessageAccess::Disown(*copy);
	else if (replyTo.fPort < 0)
		MessageAccess::HandOver(*message);
	return error;
}

status_t
BMessenger::SendMessage(uint32 command, BHandler* replyTo) const
{
	BMessage message(command);
	return SendMessage(&message, replyTo);
}

status_t
BMessenger::SendMessage(BMessage* message, BHandler* replyTo, bigtime_t timeout) const
{
	return Send(message, BMessenger(replyTo), timeout);
}

status_t
BMessenger::SendMessage(BMessage* message, BMessenger replyTo, bigtime_t timeout) const
{
	return Send(message, replyTo, timeout);
}

status_t
BMessenger::SendMessage(uint32 command, BMessage* reply) const
{
	BMessage message(command);
	return SendMessage(&message, reply);
}

status_t
BMessenger::SendMessage(
	BMessage* message, BMessage* reply, bigtime_t deliveryTimeout, bigtime_t replyTimeout) const
{
	if (message == NULL || reply == NULL)
		return B_BAD_VALUE;
	const std::shared_ptr<MessagePort> port = MessagePort::Find(fPort);
	if (port != nullptr && port->Thread() == find_thread(NULL))
		return B_MESSAGE_TO_SELF;

	ReplySlot* slot = ReplySlot::OfThisThread();
	const status_t error = Send(message, slot->Arm(), deliveryTimeout);
	if (error != B_OK) {
		slot->Disarm();
		return error;
	}
	return slot->Wait(replyTimeout, reply);
}

bool
BMessenger::IsValid() const
{
	if (!IsTargetLocal())
		return false;
	return ReplySlot::IsSlot(*this) ? ReplySlot::IsWaiting(*this)
									: MessagePort::Find(fPort) != nullptr;
}

team_id
BMessenger::Team() const
{
	return fTeam;
}

bool
BMessenger::operator==(const BMessenger& other) const
{
	return fPort == other.fPort && fHandlerToken == other.fHandlerToken && fTeam == other.fTeam;
}

bool
operator<(const BMessenger& a, const BMessenger& b)
{
	return std::tie(a.fTeam, a.fPort, a.fHandlerToken)
		< std::tie(b.fTeam, b.fPort, b.fHandlerToken);
}

BMessenger
MessengerAccess::Make(int32 port, int32 token)
{
	return Make(port, token, current_team());
}

BMessenger
MessengerAccess::Make(int32 port, int32 token, team_id team)
{
	BMessenger messenger;
	messenger.fPort = port;
	messenger.fHandlerToken = token;
	messenger.fTeam = team;
	return messenger;
}

int32
MessengerAccess::TokenOf(const BHandler* handler)
{
	return handler->fToken;
}

team_id
BPrivate::current_team()
{
	// asked for with every message; nothing here runs in a forked child
	static const team_id sTeam = team_id(getpid());
	return sTeam;
}
