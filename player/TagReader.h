#pragma once

#include "PlayState.h"

#include <condition_variable>
#include <functional>
#include <mutex>

#include <OS.h>

/*!	Reads title and length of the songs that have not played yet, one after the other.
	Thread: the public calls may come from any thread; `changed` is called on the reader's own, with no lock held, after the first
	name and then a few times a second at most. */
class TagReader {
public:
	TagReader(PlayState& state, std::function<void()> changed);
	//! Waits for the song that is being read.
	~TagReader();

	//! There may be new songs in the list.
	void Wake();

private:
	static status_t ThreadEntry(void* self);
	void Run();
	bool WaitForWork();
	void ReadAll();
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
