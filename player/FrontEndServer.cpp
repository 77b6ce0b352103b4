#include "FrontEndServer.h"

#include "Deck.h"

#include "host/QuboProtocol.h"

#include <Message.h>
#include <Messenger.h>

#include <cstring>

namespace {

constexpr const char* kPlaylist = "Playlist";
constexpr const char* kEntry = "Entry";
constexpr int32 kNoEntry = -1;

/*!	Is the request about the entries, or one of them? `entry` is its number, kNoEntry if it names none. */
bool
is_about_entries(BMessage* message, int32* entry)
{
	int32 index;
	int32 form;
	BMessage specifier;
	const char* property;
	if (message->GetCurrentSpecifier(&index, &specifier, &form, &property) != B_OK
		|| strcmp(property, kEntry) != 0)
		return false;
	if (form != B_INDEX_SPECIFIER || specifier.FindInt32("index", entry) != B_OK)
		*entry = kNoEntry;
	return true;
}

//! A full mailbox loses the answer; its owner asks again. The application's looper waits for nobody.
void
answer(BMessage* request, BMessage* reply)
{
	request->SendReply(reply, static_cast<BHandler*>(nullptr), 0);
}

void
answer_error(BMessage* request, status_t error)
{
	BMessage reply(B_MESSAGE_NOT_UNDERSTOOD);
	reply.AddInt32("error", error);
	answer(request, &reply);
}

} // namespace

FrontEndServer::FrontEndServer(const Deck& deck) : BHandler("Qubo FrontEnd Server"), fDeck(deck) { }

bool
FrontEndServer::Knows(const BMessage* message)
{
	return message->what == kQuboHello || message->what == kQuboInfo;
}

bool
FrontEndServer::IsPlaylist(int32 form, const char* property)
{
	return form == B_DIRECT_SPECIFIER && strcmp(property, kPlaylist) == 0;
}

BHandler*
FrontEndServer::ResolveSpecifier(
	BMessage* message, int32 index, BMessage* specifier, int32 form, const char* property)
{
	if (strcmp(property, kEntry) == 0)
		return this;
	return BHandler::ResolveSpecifier(message, index, specifier, form, property);
}

void
FrontEndServer::MessageReceived(BMessage* message)
{
	int32 entry;
	if (message->HasSpecifiers() && is_about_entries(message, &entry)) {
		PlaylistRqtd(message, entry);
		return;
	}
	switch (message->what) {
		case kQuboHello:
			HelloRqtd(message);
			break;
		case kQuboInfo:
			InfoRqtd(message);
			break;
		default:
			BHandler::MessageReceived(message);
	}
}

//! These codes are the platform's scripting commands too; here they are about entries.
void
FrontEndServer::PlaylistRqtd(BMessage* message, int32 entry)
{
	switch (message->what) {
		case kQuboCountEntries:
			CountEntriesRqtd(message);
			break;
		case kQuboGetEntry:
			GetEntryRqtd(message, entry);
			break;
		case kQuboPlayEntry:
			PlayEntryRqtd(message, entry);
			break;
		default:
			BHandler::MessageReceived(message);
	}
}

void
FrontEndServer::HelloRqtd(BMessage* message)
{
	BMessage reply(kQuboHello);
	reply.AddMessenger("Msgr", BMessenger(this));
	answer(message, &reply);
}

void
FrontEndServer::InfoRqtd(BMessage* message)
{
	QuboInfo info = fDeck.ShiftedInfo();
	BMessage reply(kQuboInfo);
	reply.AddData("Info", B_STRING_TYPE, &info, sizeof(info));
	answer(message, &reply);
}

void
FrontEndServer::CountEntriesRqtd(BMessage* message)
{
	BMessage reply(B_REPLY);
	reply.AddInt32("result", fDeck.State().CountEntries());
	answer(message, &reply);
}

void
FrontEndServer::GetEntryRqtd(BMessage* message, int32 index)
{
	PlaylistEntry entry;
	if (!fDeck.State().GetEntry(index, entry)) {
		answer_error(message, B_BAD_INDEX);
		return;
	}
	BMessage reply(B_REPLY);
	reply.AddString("filename", entry.path.c_str());
	reply.AddString("title", entry.title.c_str());
	reply.AddInt32("time", entry.lengthMs / 1000);
	reply.AddBool("played", entry.played);
	reply.AddInt32("nr", index);
	answer(message, &reply);
}

void
FrontEndServer::PlayEntryRqtd(BMessage* message, int32 index)
{
	if (index < 0 || index >= fDeck.State().CountEntries()) {
		answer_error(message, B_BAD_INDEX);
		return;
	}
	bool fade = false;
	message->FindBool("Fade", &fade); // without it: no fade
	fDeck.On().Play(index, fade);
}
