#include "TagReader.h"

#include "song_tags.h"

// Each telling makes the window look through its whole list.
static constexpr bigtime_t kTellingInterval = 200000;

TagReader::TagReader(PlayState& state, std::function<void()> changed)
	: fState(state),
	  fChanged(std::move(changed))
{
	fThread = spawn_thread(ThreadEntry, "Qubo tag reader", B_LOW_PRIORITY, this);
	resume_thread(fThread);
}

TagReader::~TagReader()
{
	{
		std::lock_guard lock(fLock);
		fEnd = true;
		fWoken.notify_one();
	}
	status_t result;
	wait_for_thread(fThread, &result);
}

void
TagReader::Wake()
{
	std::lock_guard lock(fLock);
	fWork = true;
	fWoken.notify_one();
}

status_t
TagReader::ThreadEntry(void* self)
{
	static_cast<TagReader*>(self)->Run();
	return B_OK;
}

void
TagReader::Run()
{
	while (WaitForWork())
		ReadAll();
}

bool
TagReader::WaitForWork()
{
	std::unique_lock lock(fLock);
	fWoken.wait(lock, [this] { return fWork || fEnd; });
	fWork = false;
	return !fEnd;
}

bool
TagReader::IsEnding() const
{
	std::lock_guard lock(fLock);
	return fEnd;
}

void
TagReader::ReadAll()
{
	PlaylistEntry entry;
	bool isUntold = false;
	bigtime_t nextTelling = 0; // the first name at once
	for (; fState.GetEntry(fNext, entry) && !IsEnding(); fNext++) {
		SongTags tags;
		if (!entry.played && !entry.failed && read_song_tags(entry.path, tags)
			&& fState.Describe(fNext, tags))
			isUntold = true;
		if (isUntold && system_time() >= nextTelling) {
			fChanged();
			isUntold = false;
			nextTelling = system_time() + kTellingInterval;
		}
	}
	if (isUntold)
		fChanged();
}
