#pragma once

#include "PlayState.h"

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

#include <OS.h>

class MpvPlayer;

/*!	Reads title and length of the songs that have not played yet, one after the other, with a silent player of its own that is
	there only while there is something to read.
	Thread: the public calls may come from any thread; `changed` is called on the reader's own, with no lock held. */
class TagReader {
public:
	TagReader(PlayState& state, std::function<void()> changed);
	//! Waits for the song that is being read, 0.1 s at most.
	~TagReader();

	//! There may be new songs in the list.
	void Wake();

private:
	static status_t ThreadEntry(void* self);
	void Run();
	bool WaitForWork();
	void ReadAll();
	bool Read(MpvPlayer& player, int32 index, const PlaylistEntry& entry);
	bool IsEnding() const;

	PlayState& fState;
	std::function<void()> fChanged;
	thread_id fThread;

	mutable std::mutex fLock; // of the three below
	std::condition_variable fWoken;
	bool fWork = false;
	bool fEnd = false;

	int32 fNext = 0; // the reader's thread only
};
