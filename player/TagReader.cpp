#include "TagReader.h"

#include "MpvPlayer.h"

#include <cmath>

namespace {

constexpr bigtime_t kPatience
	= 5000000;                // for a file on a slow disk; then it is named when it plays
constexpr double kLook = 0.1; // seconds, between two looks at whether to end

} // namespace

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
	std::unique_ptr<MpvPlayer> player;
	PlaylistEntry entry;
	for (; fState.GetEntry(fNext, entry) && !IsEnding(); fNext++) {
		if (entry.played || entry.failed)
			continue;
		std::string error;
		if (player == nullptr)
			player = MpvPlayer::Create(MpvPlayer::kForReading, error);
		if (player == nullptr)
			return; // the engine tells why
		if (Read(*player, fNext, entry))
			fChanged();
	}
}

bool
TagReader::Read(MpvPlayer& player, int32 index, const PlaylistEntry& entry)
{
	if (!player.Command({"loadfile", entry.path.c_str()}))
		return false;
	bigtime_t end = system_time() + kPatience;
	bool started = false;
	while (!IsEnding() && system_time() < end) {
		mpv_event_id event = player.WaitEvent(kLook)->event_id;
		started = started || event == MPV_EVENT_START_FILE;
		if (event == MPV_EVENT_END_FILE && started) // the one before this ends first
			return false;
		if (event == MPV_EVENT_FILE_LOADED && started)
			return fState.Describe(index, player.Tags());
	}
	return false;
}
