#pragma once

#include <Looper.h>

#include <atomic>

class PlayState;

/*!	Puts files, and what folders hold, into the list: by kMsgFindFiles, which it answers (player_messages.h). A folder on a slow disk
	takes long, and no window and no song waits for it meanwhile.
	Thread: its own looper. Owner: itself; it quits when it is asked to, soon after another thread has set `ending`. */
class FileFinder : public BLooper {
public:
	//! Both outlive it.
	FileFinder(PlayState& list, const std::atomic<bool>& ending);

	void MessageReceived(BMessage* message) override;

private:
	void FindFilesRqtd(BMessage* message);
	void AddFiles(const BMessage& message, BMessage& found);

	PlayState& fList;
	const std::atomic<bool>& fEnding;
};
