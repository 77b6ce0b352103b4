#include "PlayState.h"

#include "song_title.h"

#include <cstring>

static_assert(kSongTitleBytes + 1 == sizeof(QuboInfo::title));

int32
PlayState::Add(const std::string& path)
{
	std::lock_guard lock(fLock);
	return fPlaylist.Add(path);
}

int32
PlayState::CountEntries() const
{
	std::lock_guard lock(fLock);
	return fPlaylist.CountEntries();
}

bool
PlayState::GetEntry(int32 index, PlaylistEntry& entry) const
{
	std::lock_guard lock(fLock);
	const PlaylistEntry* found = fPlaylist.EntryAt(index);
	if (found == nullptr)
		return false;
	entry = *found;
	return true;
}

int32
PlayState::NextPlayable(int32 index, int32 step) const
{
	std::lock_guard lock(fLock);
	return fPlaylist.NextPlayable(index, step);
}

int32
PlayState::CurrentIndex() const
{
	std::lock_guard lock(fLock);
	return fCurrent;
}

//! With the lock held.
void
PlayState::MakeCurrent(int32 index, const SongTags& tags, bigtime_t position)
{
	fPlaylist.SetTags(index, tags);
	fPlaylist.SetPlayed(index);
	fCurrent = index;
	fLength = tags.length;
	fClock.SetLength(tags.length);
	fClock.Jump(position);
}

void
PlayState::Announce(int32 index, const SongTags& tags, bigtime_t position)
{
	std::lock_guard lock(fLock);
	fAnnounced = true;
	fState = kPlaying;
	fClock.SetRunning(false, system_time());
	MakeCurrent(index, tags, position);
}

void
PlayState::Withdraw()
{
	std::lock_guard lock(fLock);
	fPlaylist.SetPlayed(fCurrent, false);
	fCurrent = -1;
	fAnnounced = false;
	fLength = 0;
	fState = kStopped;
	fClock.Jump(0);
}

void
PlayState::StartSong(int32 index, const SongTags& tags, bigtime_t position)
{
	std::lock_guard lock(fLock);
	fAnnounced = false;
	fState = fPaused ? kPaused : kPlaying;
	MakeCurrent(index, tags, position);
}

bool
PlayState::Describe(int32 index, const SongTags& tags)
{
	std::lock_guard lock(fLock);
	if (index == fCurrent)
		return false;
	fPlaylist.SetTags(index, tags);
	return true;
}

void
PlayState::SetFailed(int32 index, bool failed)
{
	std::lock_guard lock(fLock);
	fPlaylist.SetFailed(index, failed);
}

void
PlayState::SetLength(bigtime_t length)
{
	std::lock_guard lock(fLock);
	fLength = length;
	fPlaylist.SetLength(fCurrent, length);
	fClock.SetLength(length);
}

void
PlayState::SetPaused(bool paused)
{
	std::lock_guard lock(fLock);
	fPaused = paused;
	if (fState == kStopped)
		return;
	fState = paused ? kPaused : kPlaying;
	fClock.SetRunning(!paused && !fAnnounced, system_time());
}

void
PlayState::Jump(bigtime_t position)
{
	std::lock_guard lock(fLock);
	fClock.Jump(position);
}

void
PlayState::Freeze()
{
	std::lock_guard lock(fLock);
	fClock.SetRunning(false, system_time());
}

void
PlayState::Sample(bigtime_t position, bigtime_t when)
{
	std::lock_guard lock(fLock);
	fClock.SetRunning(fState == kPlaying, when);
	fClock.Sample(position, when);
}

void
PlayState::EndAt(bigtime_t end)
{
	std::lock_guard lock(fLock);
	if (fClock.IsRunning() || fState != kPlaying)
		return;
	const bigtime_t now = system_time();
	fClock.SetRunning(true, now);
	if (fLength > 0)
		fClock.Sample(fLength - (end - now), now);
}

void
PlayState::Stop()
{
	std::lock_guard lock(fLock);
	fClock.SetRunning(false, system_time());
	fState = kStopped;
}

void
PlayState::StartFollowed(const std::string& path, const SongTags& tags)
{
	std::lock_guard lock(fLock);
	fPlaylist.Replace(path, tags);
	fClock.SetRunning(false, system_time());
	MakeCurrent(0, tags, 0);
}

void
PlayState::DescribeFollowed(const SongTags& tags)
{
	std::lock_guard lock(fLock);
	fPlaylist.SetTags(fCurrent, tags);
	fLength = tags.length;
	fClock.SetLength(tags.length);
}

void
PlayState::SetState(State state)
{
	std::lock_guard lock(fLock);
	fState = state;
	fPaused = state == kPaused;
	if (state != kPlaying)
		fClock.SetRunning(false, system_time());
}

void
PlayState::SetRate(double rate)
{
	std::lock_guard lock(fLock);
	fClock.SetRate(rate, system_time());
}

void
PlayState::Stand(bigtime_t position, bigtime_t when)
{
	std::lock_guard lock(fLock);
	fClock.SetRunning(false, when);
	fClock.Sample(position, when);
}

void
PlayState::Clear()
{
	std::lock_guard lock(fLock);
	fPlaylist = {};
	fCurrent = -1;
	fLength = 0;
	fState = kStopped;
	fClock.SetRunning(false, system_time());
	fClock.SetLength(0);
	fClock.Jump(0);
}

QuboInfo
PlayState::InfoAt(bigtime_t when) const
{
	QuboInfo info = {};
	std::lock_guard lock(fLock);
	info.state = fState;
	info.positionMs = to_ms(fClock.Position(when));
	info.lengthMs = to_ms(fLength);
	if (const PlaylistEntry* entry = fPlaylist.EntryAt(fCurrent))
		memcpy(info.title, entry->title.c_str(), entry->title.size() + 1);
	return info;
}

bigtime_t
PlayState::Position() const
{
	std::lock_guard lock(fLock);
	return fClock.Position(system_time());
}
