#include "Engine.h"

#include "MpvPlayer.h"
#include "Texts.h"
#include "song_tags.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr bigtime_t kSecond = 1000000;
constexpr bigtime_t kFadeTime = 500000;
constexpr bigtime_t kFadeStep = 20000;
// A sound output settles in its first two seconds; later the two clocks drift by less than 0.1 ms a second.
constexpr bigtime_t kQuickSampleInterval = 250000;
constexpr bigtime_t kSampleInterval = kSecond;
constexpr int32 kQuickSamples = 8;
constexpr bigtime_t kSlowAnswer = 10000;
constexpr bigtime_t kRetryInterval = 50000;

bigtime_t
to_microseconds(double seconds)
{
	return std::llround(seconds * kSecond);
}

} // namespace

//! All that the player has told by now.
void
Engine::HandleWaitingEvents()
{
	while (true) {
		const mpv_event& event = *fPlayer->WaitEvent(0);
		if (event.event_id == MPV_EVENT_NONE)
			break;
		HandleEvent(event);
	}
	fPlayer->Wakeup(); // one that came meanwhile was taken along
}

void
Engine::HandleEvent(const mpv_event& event)
{
	switch (event.event_id) {
		case MPV_EVENT_START_FILE:
			FileStarted(static_cast<mpv_event_start_file*>(event.data)->playlist_entry_id);
			break;
		case MPV_EVENT_FILE_LOADED:
			FileLoaded();
			break;
		case MPV_EVENT_END_FILE:
			FileEnded(event);
			break;
		case MPV_EVENT_SEEK:
			fState.Freeze();
			break;
		case MPV_EVENT_PLAYBACK_RESTART:
			PlaybackRestarted();
			break;
		case MPV_EVENT_IDLE:
			Idle();
			break;
		case MPV_EVENT_PROPERTY_CHANGE:
			PropertyChanged(*static_cast<mpv_event_property*>(event.data));
			break;
		default:
			break;
	}
}

void
Engine::FileStarted(int64_t id)
{
	fStarting = IndexOf(id);
	fRestarted = false;
	fOpened = true;
	fPlaced = fPlaced && fWanted;
	if (fStarting >= 0) // else it is of a list of files that was given up
		fWanted = false;
	if (fFade == nullptr)
		fPlayer->SetNumber("volume", fVolume); // only now is a faded song silent for good
}

void
Engine::FileLoaded()
{
	if (fStarting < 0)
		return;
	fLoaded.reset(new Loaded{fStarting, LoadedTags(), fStart});
	fLoadedStart = B_INFINITE_TIMEOUT;
	fStarting = -1;
}

/*!	Of two readings of one file the list's own holds, so that no song changes its name when it begins. */
SongTags
Engine::LoadedTags()
{
	PlaylistEntry entry;
	SongTags tags = fPlayer->Tags();
	SongTags own;
	if (fState.GetEntry(fStarting, entry) && read_song_tags(entry.path, own) && !own.title.empty())
		return {own.artist, own.title, tags.length};
	return tags;
}

void
Engine::FileEnded(const mpv_event& event)
{
	auto& end = *static_cast<mpv_event_end_file*>(event.data);
	int32 index = IndexOf(end.playlist_entry_id);
	fStarting = -1;
	switch (end.reason) {
		case MPV_END_FILE_REASON_EOF:
			if (fLoaded != nullptr) // there was nothing to be heard, or less than its tags tell
				BeginLoadedSong(fLoaded->start);
			fSongEnded = !fWanted; // the one that is asked for cuts it off
			if (auto late = std::exchange(fLateSeek, {}); late && fSongEnded)
				SeekInSongBefore(*late);
			return;
		case MPV_END_FILE_REASON_ERROR:
			SongFailed(index, fPlayer->ErrorText(end.error));
			if (index == fAsked) // it goes on to the next one by itself
				fAsked = -1;
			break;
		case MPV_END_FILE_REASON_REDIRECT:
			SongFailed(index, text(kTextReasonList));
			ResetList();
			if (int32 next = fState.NextPlayable(index + 1, 1); next >= 0)
				PlayNow({kPlay, 0, next});
			break;
		default:
			break;
	}
	fSongEnded = false;
	fLateSeek.reset();
	fLoaded.reset();
	fState.Freeze();
}

void
Engine::SongFailed(int32 index, const std::string& reason)
{
	if (index < 0)
		return;
	Withdraw();
	fState.SetFailed(index, true);
	fListener.SongFailed(index, reason);
}

void
Engine::PlaybackRestarted()
{
	// Was meant for this song only. Not when the file is loaded: the player looks at it just after that.
	if (std::exchange(fStart, 0) > 0)
		fPlayer->SetText("start", "none");
	fQuickSamples = kQuickSamples;
	fRestarted = true;
	fPlaced = fPlaced && fPaused;
	Sample();
}

void
Engine::Idle()
{
	if (!fOpened
		|| fWanted) // of the time before the first song, or before the one that is on its way
		return;
	fOpened = false;
	fAsked = -1;
	fLoaded.reset();
	fNextSample = B_INFINITE_TIMEOUT;
	fState.Stop();
	if (!fStopped)
		fListener.PlayingEnded(fAnyPlayed);
	fListener.PlayingChanged();
}

void
Engine::PropertyChanged(const mpv_event_property& property)
{
	std::string name = property.name;
	if (name == "pause" && property.format == MPV_FORMAT_FLAG) {
		fPaused = *static_cast<int*>(property.data) != 0;
		fPauseWanted = fPaused;
		fState.SetPaused(fPaused);
		fPlaced = fPlaced && fPaused;
		Sample();
		fListener.PlayingChanged();
	} else if (name == "paused-for-cache" && property.format == MPV_FORMAT_FLAG) {
		if (*static_cast<int*>(property.data) != 0)
			fState.Freeze();
	} else if (name == "duration" && property.format == MPV_FORMAT_DOUBLE && fStarting < 0) {
		bigtime_t length = to_microseconds(*static_cast<double*>(property.data));
		if (fLoaded != nullptr)
			fLoaded->tags.length = length;
		else
			fState.SetLength(length);
		fListener.PlayingChanged();
	} else if (name == "current-ao" && property.format == MPV_FORMAT_STRING) {
		fSilent = std::string("null") == *static_cast<char**>(property.data);
		if (fSilent && MpvPlayer::WantedOutput() != "null" && !std::exchange(fToldSilence, true))
			fListener.NoSoundOutput();
		PrepareNext();
	}
}

// #pragma mark - time

bigtime_t
Engine::NextDeadline() const
{
	bigtime_t deadline = std::min(fNextSample, fLoadedStart);
	return fFade != nullptr ? std::min(deadline, system_time() + kFadeStep) : deadline;
}

void
Engine::Tick()
{
	bigtime_t now = system_time();
	if (fFade != nullptr)
		StepFade(now);
	if (now >= fNextSample || now >= fLoadedStart)
		Sample();
}

void
Engine::StepFade(bigtime_t now)
{
	bigtime_t left = kFadeTime - (now - fFade->start);
	if (left <= 0)
		EndFade();
	else
		fPlayer->SetNumber("volume", static_cast<double>(fVolume * left) / kFadeTime);
}

void
Engine::EndFade()
{
	if (fFade == nullptr)
		return;
	Command next = fFade->next;
	PlayNow(next);
}

/*!	Asks the player where its sound is. The song that is loaded begins when its own sound is heard: a gapless
	player opens it while the output still holds the end of the song before it, and gives a negative position then. */
void
Engine::Sample()
{
	fLoadedStart = B_INFINITE_TIMEOUT;
	fNextSample = B_INFINITE_TIMEOUT;
	if (!fOpened || !fRestarted) // between two songs the player's position belongs to neither
		return;
	// After a seek in a pause the player takes its full buffer for sound that is still to be heard; what was sought holds.
	const bool holds = fPaused && fPlaced;
	if (holds && fLoaded == nullptr)
		return;
	bigtime_t before = system_time();
	std::optional<double> seconds = fPlayer->Number("audio-pts");
	bigtime_t now = system_time();
	fNextSample = now + (fQuickSamples > 0 ? kQuickSampleInterval : kSampleInterval);
	fQuickSamples = std::max<int32>(fQuickSamples - 1, 0);
	if (!seconds) // the last sound of the last song is under way
		return;
	bigtime_t position = to_microseconds(*seconds);
	if (fLoaded != nullptr && (position >= 0 || holds))
		BeginLoadedSong(holds ? fLoaded->start : position);
	else if (fLoaded != nullptr)
		LoadedSongWaits(now - position);
	else if (now - before > kSlowAnswer // of when is it? The clock knows better
		|| position < 0)                // not heard yet, or of a song that is yet to be told
		fNextSample = now + kRetryInterval;
	else
		fState.Sample(position, (before + now) / 2);
}

//! Until `start`, for its own sound.
void
Engine::LoadedSongWaits(bigtime_t start)
{
	if (fPaused)
		return;
	fLoadedStart = start;
	if (fSongEnded)
		fState.EndAt(start);
}

void
Engine::BeginLoadedSong(bigtime_t position)
{
	fAnnounced = false;
	fAsked = -1;
	fState.StartSong(fLoaded->index, fLoaded->tags, position);
	fState.Sample(position, system_time());
	fLoaded.reset();
	fSongEnded = false;
	fAnyPlayed = true;
	fListener.PlayingChanged();
	PrepareNext();
}
