#pragma once

#include <Message.h>
#include <memory>

namespace BPrivate {

//! Flags of the native message header.
enum {
	kMessageValid = 0x0001,
	kMessageReplyRequired = 0x0002, // a source waits
	kMessageReplyDone = 0x0004,
	kMessageIsReply = 0x0008,
	kMessageWasDelivered = 0x0010,
	kMessageHasSpecifiers = 0x0020,
	kMessageWasDropped = 0x0040,
	kMessageInArea = 0x0080,
};

//! Tokens of a message's target that name no handler.
enum { kNullToken = -1, kPreferredToken = -2 };

//! What the kits may do with a message beyond its public functions.
class MessageAccess {
public:
	using Header = BMessage::Header;

	static Header FreshHeader();
	static Header& HeaderOf(BMessage& message) { return message.fHeader; }
	static const MessageBody* BodyOf(const BMessage& message) { return message.fBody; }
	//! Takes the caller's reference.
	static void SetBody(BMessage& message, MessageBody* body) { message.SetBody(body); }

	static int32 Target(const BMessage& message) { return message.fHeader.target; }
	static void SetTarget(BMessage& message, int32 token) { message.fHeader.target = token; }
	//! For messages that the user drops.
	static void SetDropped(BMessage& message, BPoint where, BPoint offset);

	/*!	A copy as it arrives at the target. Without `replyTo` the reply goes where that of `message` goes, and with it the duty to answer
		a waiting source, which HandOver() completes. */
	static std::unique_ptr<BMessage> CopyForDelivery(
		const BMessage& message, int32 target, const BMessenger& replyTo);
	//! After the copy was taken on: `message` itself owes no reply any more.
	static void HandOver(BMessage& message);
	//! The copy was not taken on: nobody is to be answered when it is deleted.
	static void Disown(BMessage& copy);
	static void RequireReply(BMessage& copy);
	//! Everything, the duty to reply too.
	static void Move(BMessage& from, BMessage& to);
};

//! A messenger by its numbers.
class MessengerAccess {
public:
	static BMessenger Make(int32 port, int32 token);
	static BMessenger Make(int32 port, int32 token, team_id team);
	static int32 Port(const BMessenger& messenger) { return messenger.fPort; }
	static int32 Token(const BMessenger& messenger) { return messenger.fHandlerToken; }
	static team_id Team(const BMessenger& messenger) { return messenger.fTeam; }
	static int32 TokenOf(const BHandler* handler);
};

//! This process.
team_id current_team();

} // namespace BPrivate
