#include "Engine.h"

#include "MpvPlayer.h"
#include "song_tags.h"

#include <algorithm>
#include <utility>

namespace {

constexpr bigtime_t kMillisecond = 1000;
constexpr bigtime_t kSecond = 1000000;
constexpr bigtime_t kRestartTime = 3 * kSecond; // from here on "previous" means this song's start

} // namespace

Engine::Engine(PlayState& state, Listener& listener)
	: fState(state),
	  fListener(listener),
	  fNextSample(B_INFINITE_TIMEOUT),
	  fLoadedStart(B_INFINITE_TIMEOUT)
{
	fThread = spawn_thread(ThreadEntry, "Qubo engine", B_NORMAL_PRIORITY, this);
	resume_thread(fThread);
}

Engine::~Engine()
{
	Post({kQuit});
	status_t result;
	wait_for_thread(fThread, &result);
}

void
Engine::Announce(int32 index, bigtime_t position)
{
	Post({kAnnounce, position, index});
}

void
Engine::Play(int32 index, bool fade, bigtime_t position)
{
	Post({kPlay, position, index, fade});
}

void
Engine::Resume()
{
	Post({kResume});
}

void
Engine::Pause()
{
	Post({kPause});
}

void
Engine::TogglePause()
{
	Post({kTogglePause});
}

void
Engine::Previous()
{
	Post({kPrevious});
}

void
Engine::Next()
{
	Post({kNext});
}

void
Engine::SeekTo(bigtime_t position)
{
	Post({kSeekTo, position});
}

void
Engine::SeekBy(bigtime_t offset)
{
	Post({kSeekBy, offset});
}

void
Engine::SetVolume(int32 percent)
{
	Post({kVolume, std::clamp<int32>(percent, 0, 100)});
}

void
Engine::ListChanged()
{
	Post({kListChanged});
}

void
Engine::Stop()
{
	Post({kStop});
}

// #pragma mark - thread

void
Engine::Post(const Command& command)
{
	std::lock_guard lock(fLock);
	fCommands.push_back(command);
	fPosted.notify_one();
	if (fWakeable != nullptr)
		fWakeable->Wakeup();
}

status_t
Engine::ThreadEntry(void* self)
{
	static_cast<Engine*>(self)->Run();
	return 0;
}

void
Engine::Run()
{
	bool running = true;
	while (running) {
		for (const Command& command : TakeCommands())
			running = running && Execute(command);
		if (!running || fPlayer == nullptr)
			continue;
		bigtime_t wait = std::max<bigtime_t>(NextDeadline() - system_time(), 0);
		HandleEvent(
			*fPlayer->WaitEvent(static_cast<double>(std::min(wait, 3600 * kSecond)) / kSecond));
		Tick();
	}
	std::unique_lock lock(fLock);
	fWakeable = nullptr;
	lock.unlock();
	fPlayer.reset();
}

std::deque<Engine::Command>
Engine::TakeCommands()
{
	std::unique_lock lock(fLock);
	if (fPlayer == nullptr)
		fPosted.wait(lock, [this] { return !fCommands.empty(); });
	return std::exchange(fCommands, {});
}

bool
Engine::Execute(const Command& command)
{
	switch (command.action) {
		case kAnnounce:
			AnnounceRequested(command);
			break;
		case kPlay:
			PlayRequested(command);
			break;
		case kResume:
			ResumeRequested();
			break;
		case kPause:
			PauseRequested(true);
			break;
		case kTogglePause:
			if (IsStopped() || fPauseWanted)
				ResumeRequested();
			else
				PauseRequested(true);
			break;
		case kPrevious:
			StepRequested(-1);
			break;
		case kNext:
			StepRequested(1);
			break;
		case kSeekTo:
			SeekRequested(command.value);
			break;
		case kSeekBy:
			SeekRequested(fState.Position() + command.value);
			break;
		case kVolume:
			VolumeRequested(static_cast<int32>(command.value));
			break;
		case kListChanged:
			if (fPlayer != nullptr && !IsStopped())
				PrepareNext();
			break;
		case kStop:
			fFade.reset();
			fWanted = false;
			fStopped = true;
			fAsked = -1;
			Withdraw();
			if (fPlayer != nullptr)
				fPlayer->Command({"stop", "keep-playlist"});
			break;
		case kQuit:
			return false;
	}
	return true;
}

// #pragma mark - requests

void
Engine::AnnounceRequested(const Command& command)
{
	PlaylistEntry entry;
	SongTags tags;
	if (fPlayer != nullptr || !fState.GetEntry(command.index, entry)
		|| !read_song_tags(entry.path, tags))
		return;
	fAnnounced = true;
	fState.Announce(command.index, tags, command.value);
	fListener.PlayingChanged();
}

void
Engine::PlayRequested(const Command& command)
{
	PlaylistEntry entry;
	if (!fState.GetEntry(command.index, entry))
		return;
	AnnounceRequested(command);
	if (!StartPlayer())
		return;
	if (command.fade && !IsStopped() && !fPaused) {
		bigtime_t start = fFade != nullptr ? fFade->start : system_time();
		fFade.reset(new Fade{command, start});
	} else
		PlayNow(command);
}

void
Engine::ResumeRequested()
{
	if (IsStopped())
		PlayRequested({kPlay, 0, std::max<int32>(fState.CurrentIndex(), 0)});
	else
		PauseRequested(false);
}

void
Engine::PauseRequested(bool pause)
{
	EndFade();
	if (fPlayer == nullptr)
		return;
	fPlayer->SetFlag("pause", pause);
	fPauseWanted = pause;
}

void
Engine::StepRequested(int32 step)
{
	// From the song that is being opened: quick steps go as far as as many slow ones.
	const bool isOpening = fAsked >= 0;
	int32 current = isOpening ? fAsked : fState.CurrentIndex();
	if (step < 0 && !isOpening && !IsStopped() && fState.Position() >= kRestartTime) {
		SeekRequested(0);
		return;
	}
	int32 index = fState.NextPlayable(current + step, step);
	if (index >= 0)
		PlayRequested({kPlay, 0, index});
	else if (step < 0)
		SeekRequested(0);
}

void
Engine::SeekRequested(bigtime_t position)
{
	if (IsStopped())
		return;
	EndFade();
	position = std::max<bigtime_t>(position, 0);
	HandleWaitingEvents(); // the player may have gone on to the next song
	if (IsStopped())
		return;
	if (fSongEnded) {
		SeekInSongBefore(position);
		return;
	}
	if (fWanted || fStarting >= 0 || fLoaded != nullptr) // no sound yet to seek in
		return;
	// beyond the end: the player itself finds the end, and goes on to the next song
	std::string seconds = std::to_string(position / kSecond) + "."
		+ std::to_string(kSecond + position % kSecond).substr(1);
	if (fPlayer->Command({"seek", seconds.c_str(), "absolute+exact"})) {
		fPlaced = true;
		fState.Jump(position);
		fListener.Sought();
	} else
		fLateSeek = position; // the player is leaving the song, and will tell
}

//!	The player has done with the song that is still heard: it is opened anew, or the next one begins at once.
void
Engine::SeekInSongBefore(bigtime_t position)
{
	int32 current = fState.CurrentIndex();
	if (position >= fState.Info().lengthMs * kMillisecond) {
		if (int32 next = fState.NextPlayable(current + 1, 1); next >= 0)
			Open(next, 0);
	} else {
		Open(current, position);
		fState.Jump(position);
		fListener.Sought();
	}
}

void
Engine::VolumeRequested(int32 percent)
{
	fVolume = percent;
	fListener.PlayingChanged();
	if (fPlayer != nullptr && fFade == nullptr)
		fPlayer->SetNumber("volume", fVolume);
}

// #pragma mark - the player's list

bool
Engine::StartPlayer()
{
	if (fPlayer != nullptr)
		return true;
	std::string error;
	fPlayer = MpvPlayer::Create(error);
	if (fPlayer == nullptr) {
		Withdraw();
		fListener.EngineFailed(error);
		return false;
	}
	fPlayer->SetNumber("volume", fVolume);
	fPlayer->Observe("pause", MPV_FORMAT_FLAG);
	fPlayer->Observe("paused-for-cache", MPV_FORMAT_FLAG);
	fPlayer->Observe("duration", MPV_FORMAT_DOUBLE);
	fPlayer->Observe("current-ao", MPV_FORMAT_STRING);
	std::lock_guard lock(fLock);
	fWakeable = fPlayer.get();
	return true;
}

void
Engine::Withdraw()
{
	if (std::exchange(fAnnounced, false))
		fState.Withdraw();
}

bool
Engine::IsStopped() const
{
	return !fOpened && !fWanted;
}

void
Engine::PlayNow(const Command& command)
{
	fFade.reset();
	AppendSongs();
	fPlayer->SetFlag("pause", false);
	fPauseWanted = false;
	Open(command.index, command.value);
}

void
Engine::Open(int32 index, bigtime_t position)
{
	fPlayer->SetText("gapless-audio", "no"); // until its beginning is heard
	fStart = position;
	std::string start = fStart > 0 ? std::to_string(fStart / 1e6) : "none";
	fPlayer->SetText("start", start.c_str());
	fState.SetFailed(index, false);
	fWanted = fPlayer->Command({"playlist-play-index", std::to_string(index).c_str()});
	fAsked = fWanted ? index : -1;
	fStopped = false;
	fRestarted = fRestarted && !fWanted; // the position is soon the new song's
	fSongEnded = false;                  // what was heard is cut off
	fPlaced = true;
	fLateSeek.reset();
}

void
Engine::AppendSongs()
{
	PlaylistEntry entry;
	while (fState.GetEntry(static_cast<int32>(fIds.size()), entry))
		fIds.push_back(fPlayer->AppendFile(entry.path));
}

/*!	A gapless player opens the next file while the output still holds the end of this one, and throws that end away if the file cannot
	be played. So it goes on gaplessly only to what is surely sound, and too much of it to be done with before it is heard; before
	anything else it waits for the end to be heard. */
void
Engine::PrepareNext()
{
	AppendSongs();
	if (fLoaded != nullptr)
		return;
	PlaylistEntry next;
	SongTags tags;
	const bigtime_t ahead = fSilent ? MpvPlayer::kSilenceAhead : MpvPlayer::kSoundAhead;
	const bool isSound = fState.GetEntry(fState.CurrentIndex() + 1, next)
		&& read_song_tags(next.path, tags) && tags.length > ahead;
	fPlayer->SetText("gapless-audio", isSound ? "yes" : "no");
}

int32
Engine::IndexOf(int64_t id) const
{
	auto found = std::find(fIds.begin(), fIds.end(), id);
	return found != fIds.end() ? static_cast<int32>(found - fIds.begin()) : -1;
}

/*!	The player has put other files into its list (a file turned out to be a list of files): makes it ours again. */
void
Engine::ResetList()
{
	fPlayer->Command({"stop"});
	fIds.clear();
	AppendSongs();
}
