#include "host/Qubo_FrontEnd.h"

#include <cstring>

#include <Message.h>
#include <Messenger.h>

#include "host/QuboFE_Receiver.h"

namespace {

/*!	A request about the playlist, or about the entry of that index in it. */
class PlaylistRequest : public BMessage {
public:
	explicit PlaylistRequest(uint32 what) : BMessage(what)
	{
		AddSpecifier("Entry");
		AddSpecifier("Playlist");
	}

	PlaylistRequest(uint32 what, int32 index) : BMessage(what)
	{
		AddSpecifier("Entry", index);
		AddSpecifier("Playlist");
	}

	status_t Ask(BMessage* reply)
	{
		return BMessenger(kQuboSignature)
			.SendMessage(this, reply, B_INFINITE_TIMEOUT, B_INFINITE_TIMEOUT);
	}
};

} // namespace

Qubo_FrontEnd::Qubo_FrontEnd(bool autoInfo, bigtime_t interval)
	: fReceiver(new QuboFE_Receiver),
	  fDataSem(create_sem(1, "FrontEnd_data")),
	  fInterval(interval),
	  fAutoInfo(autoInfo),
	  fIsValid(fDataSem >= 0 || fReceiver->IsValid())
{
	fReceiver->Run();
}

Qubo_FrontEnd::~Qubo_FrontEnd()
{
	AskToQuit();
	if (fDataSem >= 0) {
		delete_sem(fDataSem);
		fDataSem = -1;
	}
	WaitUntilDone();
	// The receiver's own Lock() is the mailbox's.
	if (fReceiver->BLooper::Lock())
		fReceiver->Quit();
}

status_t
Qubo_FrontEnd::StartPolling(int32 priority)
{
	fReceiver->SetLaunch(true);
	fPriority = priority;
	return Start("Qubo FrontEnd", priority);
}

int32
Qubo_FrontEnd::Main()
{
	const thread_id receiverThread = fReceiver->Thread();
	fReceiver->StartQubo();
	if (receiverThread >= 0)
		set_thread_priority(receiverThread, fPriority);

	while (!IsQuitting()) {
		if (fAutoInfo)
			SendInfoRequest();
		snooze(fInterval);
	}
	ThreadCleanUp();
	return 0;
}

void
Qubo_FrontEnd::SendInfoRequest()
{
	BMessage request(kQuboInfo);
	fReceiver->SendMsg(&request);
}

void
Qubo_FrontEnd::UpdateInfo()
{
	if (fReceiver->HasNewInfo())
		fReceiver->TakeInfo(&fInfo);
}

std::string_view
Qubo_FrontEnd::InfoTitle() const
{
	return std::string_view(fInfo.title, strnlen(fInfo.title, sizeof(fInfo.title)));
}

int32
Qubo_FrontEnd::CountEntries() const
{
	BMessage reply;
	int32 count;
	if (PlaylistRequest(kQuboCountEntries).Ask(&reply) != B_OK
		|| reply.FindInt32("result", &count) != B_OK)
		return -1;
	return count;
}

bool
Qubo_FrontEnd::GetEntry(QuboSongEntry* entry, int32 index) const
{
	BMessage reply;
	if (PlaylistRequest(kQuboGetEntry, index).Ask(&reply) != B_OK)
		return false;

	const char* filename;
	const char* title;
	int32 time;
	int32 nr;
	bool played;
	if (reply.FindString("filename", &filename) != B_OK || reply.FindString("title", &title) != B_OK
		|| reply.FindInt32("time", &time) != B_OK || reply.FindBool("played", &played) != B_OK
		|| reply.FindInt32("nr", &nr) != B_OK)
		return false;
	entry->filename = QuboSongEntry::CopyOf(filename);
	entry->title = QuboSongEntry::CopyOf(title);
	entry->time = time;
	entry->nr = nr;
	entry->played = played;
	return true;
}

void
Qubo_FrontEnd::PlayThis(int32 index, bool fade) const
{
	PlaylistRequest request(kQuboPlayEntry, index);
	request.AddBool("Fade", fade);
	BMessenger(kQuboSignature).SendMessage(&request);
}

bool
get_current_song_entry(const Qubo_FrontEnd* frontEnd, QuboSongEntry* out)
{
	if (frontEnd->CountEntries() == 0)
		return false;

	QuboSongEntry entry;
	bool isFound = false;
	int32 index = 0;
	while (!isFound && frontEnd->GetEntry(&entry, index)) {
		isFound = entry.Title() == frontEnd->InfoTitle();
		if (!isFound)
			index++;
	}
	// What was the last entry may be gone by now. A host that does not say how many it has is believed.
	if (!isFound || index == frontEnd->CountEntries())
		return false;
	*out = std::move(entry);
	return true;
}
