#include "Playlist.h"

#include "song_title.h"

#include <algorithm>
#include <limits>

namespace {

std::string
file_name(const std::string& path)
{
	return path.substr(path.rfind('/') + 1);
}

} // namespace

int32
to_ms(bigtime_t time)
{
	constexpr bigtime_t kLast = std::numeric_limits<int32>::max();
	return static_cast<int32>(std::clamp<bigtime_t>(time / 1000, 0, kLast));
}

int32
Playlist::Add(const std::string& path)
{
	PlaylistEntry entry;
	entry.path = path;
	entry.name = song_title("", "", file_name(path));
	entry.title = UniqueTitle(entry.name);
	fEntries.push_back(entry);
	return CountEntries() - 1;
}

void
Playlist::Replace(const std::string& path, const SongTags& tags)
{
	const std::string before = fEntries.empty() ? "" : fEntries.front().title;
	*this = {};
	fTitles.insert(before);
	Add(path);
	SetTags(0, tags);
}

const PlaylistEntry*
Playlist::EntryAt(int32 index) const
{
	return IsValid(index) ? &fEntries[index] : nullptr;
}

void
Playlist::SetTags(int32 index, const SongTags& tags)
{
	if (!IsValid(index))
		return;
	SetLength(index, tags.length);
	PlaylistEntry& entry = fEntries[index];
	entry.tags = tags;
	std::string name = song_title(tags.artist, tags.title, file_name(entry.path));
	if (name == entry.name) // played again, it keeps its number
		return;
	fTitles.erase(entry.title);
	entry.name = name;
	entry.title = UniqueTitle(name);
}

void
Playlist::SetLength(int32 index, bigtime_t length)
{
	if (IsValid(index))
		fEntries[index].lengthMs = to_ms(length);
}

void
Playlist::SetPlayed(int32 index, bool played)
{
	if (IsValid(index))
		fEntries[index].played = played;
}

void
Playlist::SetFailed(int32 index, bool failed)
{
	if (IsValid(index))
		fEntries[index].failed = failed;
}

int32
Playlist::NextPlayable(int32 index, int32 step) const
{
	while (IsValid(index) && fEntries[index].failed)
		index += step;
	return IsValid(index) ? index : -1;
}

std::string
Playlist::UniqueTitle(const std::string& name)
{
	int& number = fNextNumbers.try_emplace(name, 1).first->second;
	std::string title = numbered_title(name, number);
	while (!fTitles.insert(title).second)
		title = numbered_title(name, ++number);
	return title;
}
