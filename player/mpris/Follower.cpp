#include "Follower.h"

#include "../Texts.h"
#include "mpris_names.h"
#include "track_path.h"

#include <algorithm>
#include <set>
#include <strings.h>
#include <tuple>
#include <utility>

namespace {

constexpr const char* kProxies[] = {"playerctld"}; // which repeat what other players say

//! "vlc" stands for "vlc.instance7" too; names on the bus differ in case between versions of a player.
bool
stands_for(const std::string& pattern, const std::string& name)
{
	return strncasecmp(pattern.c_str(), name.c_str(), pattern.size()) == 0
		&& (name.size() == pattern.size() || name[pattern.size()] == '.');
}

bool
any_stands_for(const std::vector<std::string>& patterns, const std::string& name)
{
	return std::any_of(patterns.begin(), patterns.end(),
		[&](const std::string& pattern) { return stands_for(pattern, name); });
}

//! Without the number of the instance.
std::string
short_name(const std::string& name)
{
	return name.substr(0, name.find(".instance"));
}

} // namespace

Follower::Follower(BusThread& bus, const Wish& wish, Listener& listener)
	: fBus(bus),
	  fWish(wish),
	  fListener(listener),
	  fNames(bus, [this] { Reconcile(); }),
	  fReader(bus, fState, [this] { Refresh(); })
{
	fBus.Add(*this);
}

Follower::~Follower()
{
	fBus.Remove(*this, [this] { DropAll(); });
}

void
Follower::SetOn(bool on)
{
	fBus.Post([this, on] {
		fOn = on;
		Reconcile();
	});
}

void
Follower::Pin(const std::string& name)
{
	fBus.Post([this, name] {
		fPinned = name;
		Refresh();
	});
}

Follower::Report
Follower::Tell() const
{
	std::lock_guard lock(fLock);
	return fReport;
}

// #pragma mark - who is there

void
Follower::BusConnected()
{
	fNames.Begin();
}

void
Follower::BusLost()
{
	DropAll();
	fNoBus = true;
	Reconcile();
}

bool
Follower::IsAllowed(const std::string& name, const std::string& owner) const
{
	if (owner == fBus.UniqueName() || any_stands_for(fWish.ignored, name))
		return false;
	if (!fWish.names.empty())
		return any_stands_for(fWish.names, name);
	return std::none_of(std::begin(kProxies), std::end(kProxies),
		[&](const char* proxy) { return stands_for(proxy, name); });
}

//! Some players are on the bus twice, with the number of the instance and without.
bool
Follower::IsSecondName(const std::string& name, uint32 process) const
{
	const auto plain = fNames.Owners().find(short_name(name));
	return plain != fNames.Owners().end() && plain->first != name && process != 0
		&& plain->second.process == process;
}

//! Makes the players fit the names. One that has two names is one player.
void
Follower::Reconcile()
{
	std::map<std::string, std::string> wanted;
	std::set<std::string> owners;
	for (const auto& [name, owner] : fNames.Owners()) {
		if (IsAllowed(name, owner.name) && !IsSecondName(name, owner.process)
			&& owners.insert(owner.name).second)
			wanted[name] = owner.name;
	}
	std::vector<std::string> names;
	for (const auto& [name, owner] : wanted)
		names.push_back(name);
	{
		std::lock_guard lock(fLock);
		fReport.players = names;
	}
	if (!fOn)
		wanted.clear();
	std::erase_if(fPlayers, [&](const auto& each) {
		const auto found = wanted.find(each.first);
		return found == wanted.end() || found->second != each.second->Owner();
	});
	for (const auto& [name, owner] : wanted) {
		if (!fPlayers.contains(name))
			fPlayers[name].reset(new RemotePlayer(fBus, name, owner, *this));
	}
	Refresh();
}

//! With all that hangs on the connection.
void
Follower::DropAll()
{
	fNames.End();
	fPlayers.clear();
	fReader.Follow("");
}

// #pragma mark - what plays

void
Follower::PlayerChanged(RemotePlayer&)
{
	Refresh();
}

void
Follower::PlayerSeeked(RemotePlayer& player, bigtime_t position)
{
	if (player.Owner() != fFollowed)
		return;
	fReader.Seeked(position);
	fListener.FollowingChanged();
}

//! A player of this kind that came again has another number; the very same one comes first.
bool
Follower::IsPinned(const std::string& name) const
{
	if (fPinned.empty() || name == fPinned)
		return true;
	return !fPlayers.contains(fPinned) && short_name(name) == short_name(fPinned);
}

//! What has stopped comes last; of the others the one that began last. NULL: there is none.
RemotePlayer*
Follower::Chosen() const
{
	const auto rank = [](const RemotePlayer& player) {
		return std::make_tuple(
			player.IsKnown(), player.Status() != PlayState::kStopped, player.BeganAt());
	};
	RemotePlayer* best = nullptr;
	for (const auto& [name, player] : fPlayers) {
		if (IsPinned(name) && (best == nullptr || rank(*player) > rank(*best)))
			best = player.get();
	}
	return best;
}

void
Follower::Refresh()
{
	const RemotePlayer* player = Chosen();
	const std::string owner = player != nullptr ? player->Owner() : "";
	if (owner != fFollowed) {
		ShowNothing();
		fFollowed = owner;
	}
	if (player != nullptr && player->Track().IsAny()) {
		if (!fTrack.IsAny())
			fReader.Follow(fFollowed);
		ShowStatus(*player);
		ShowTrack(player->Track());
	} else
		ShowNothing();
	TellReport(player);
	fListener.FollowingChanged();
}

void
Follower::ShowNothing()
{
	if (!fTrack.IsAny())
		return;
	fTrack = {};
	fStatus = PlayState::kStopped;
	fRate = 0;
	fState.Clear();
	fReader.Follow("");
}

void
Follower::ShowStatus(const RemotePlayer& player)
{
	const double rate = player.Status() == PlayState::kPlaying ? player.Rate() : 0;
	if (player.Status() != fStatus)
		fState.SetState(player.Status());
	fStatus = player.Status();
	if (rate != std::exchange(fRate, rate))
		fReader.SetRate(rate);
}

/*!	At once, so that nobody is shown the old lyrics with the new song, though more of it may be told in a moment. */
void
Follower::ShowTrack(const RemoteTrack& track)
{
	const RemoteTrack before = std::exchange(fTrack, track);
	const bool sameFile = !fFile.empty() && track.url == before.url;
	if (before.IsAny() && (sameFile || track.IsSameAs(before))) {
		if (!track.IsSameAs(before) || track.tags.length != before.tags.length)
			fState.DescribeFollowed(Tags(track));
		if (track.id != before.id)
			fReader.PositionChanged();
		return;
	}
	fFile = file_of_url(track.url);
	const SongTags tags = Tags(track);
	fState.StartFollowed(fFile.empty() ? entry_of_track(fWish.lyricsFolder, tags) : fFile, tags);
	if (before.IsAny()) // else it may be anywhere in it
		fReader.TrackStarted();
}

//! A track without a file is named after its url, if by nothing else.
SongTags
Follower::Tags(const RemoteTrack& track) const
{
	SongTags tags = track.tags;
	if (fFile.empty() && tags.title.empty())
		tags.title = name_of_url(track.url);
	return tags;
}

// #pragma mark - the report

void
Follower::TellReport(const RemotePlayer* player)
{
	std::lock_guard lock(fLock);
	fReport.on = fOn;
	fReport.looked = fNoBus || fNames.AreKnown();
	fReport.seeks = player != nullptr && player->CanSeek();
	fReport.pinned = fPinned;
	fReport.text = fOn ? Text(player) : "";
}

std::string
Follower::Text(const RemotePlayer* player) const
{
	if (player != nullptr)
		return TextOf(*player);
	if (fNoBus)
		return text(kTextNoBus);
	if (!fNames.AreKnown())
		return {};
	if (!fPinned.empty())
		return text(kTextNotRunning, short_name(fPinned));
	return fWish.names.empty() ? text(kTextNoneRunning)
							   : text(kTextNotRunning, fWish.names.front());
}

std::string
Follower::TextOf(const RemotePlayer& player) const
{
	const std::string name = short_name(player.Name());
	if (player.Hangs() || fReader.Hangs())
		return text(kTextNoAnswer, name);
	if (!player.IsKnown())
		return {};
	if (!fTrack.IsAny())
		return text(
			player.Status() == PlayState::kStopped ? kTextPlaysNothing : kTextPlaysUnnamed, name);
	if (fReader.IsFixed())
		return text(kTextNoPosition, name);
	PlaylistEntry entry;
	if (fFile.empty() && fState.GetEntry(0, entry))
		return text(kTextNoFile, name, entry.path.substr(0, entry.path.rfind('.')) + ".lrc");
	return text(kTextFollowing, name);
}

// #pragma mark - commands

void
Follower::Do(const char* method)
{
	fBus.Post([this, method] {
		if (RemotePlayer* player = Chosen())
			player->Command(method);
	});
}

void
Follower::Play(int32, bool, bigtime_t)
{
	Resume(); // its list has one song, which is on already
}

void
Follower::Resume()
{
	Do("Play");
}

void
Follower::Pause()
{
	Do("Pause");
}

void
Follower::TogglePause()
{
	Do("PlayPause");
}

void
Follower::Previous()
{
	Do("Previous");
}

void
Follower::Next()
{
	Do("Next");
}

void
Follower::Stop()
{
	Do("Stop");
}

void
Follower::SeekTo(bigtime_t position)
{
	fBus.Post([this, position] { SeekNow(position); });
}

void
Follower::SeekBy(bigtime_t offset)
{
	fBus.Post([this, offset] { SeekNow(fState.Position() + offset); });
}

//! Shown at once; what the player makes of it is read then.
void
Follower::SeekNow(bigtime_t position)
{
	RemotePlayer* player = Chosen();
	if (player == nullptr || !fTrack.IsAny() || !player->CanSeek())
		return;
	position = std::max<bigtime_t>(position, 0);
	if (const bigtime_t length = fTrack.tags.length; length > 0)
		position = std::min(position, length);
	player->SeekTo(position, fState.Position());
	fReader.Seeked(position);
	fListener.FollowingChanged();
}
