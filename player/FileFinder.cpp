#include "FileFinder.h"

#include "PlayState.h"
#include "media_files.h"
#include "player_messages.h"

#include <Message.h>

#include <string>
#include <vector>

FileFinder::FileFinder(PlayState& list, const std::atomic<bool>& ending)
	: BLooper("Qubo file finder"),
	  fList(list),
	  fEnding(ending)
{ }

void
FileFinder::MessageReceived(BMessage* message)
{
	if (message->what == kMsgFindFiles)
		FindFilesRqtd(message);
	else
		BLooper::MessageReceived(message);
}

void
FileFinder::FindFilesRqtd(BMessage* message)
{
	const int32 first = fList.CountEntries();
	BMessage found(kMsgFilesFound);
	AddFiles(*message, found);
	if (fList.CountEntries() > first)
		found.AddInt32("first", first);
	found.AddBool("at once", message->GetBool("at once", false));
	found.AddInt64("start", message->GetInt64("start", 0));
	message->SendReply(&found);
}

void
FileFinder::AddFiles(const BMessage& message, BMessage& found)
{
	const char* path;
	for (int32 i = 0; message.FindString("path", i, &path) == B_OK; i++) {
		std::vector<std::string> files;
		if (!collect_media_files(path, files, fEnding))
			found.AddString("missing", path);
		for (const std::string& file : files)
			fList.Add(file);
	}
}
