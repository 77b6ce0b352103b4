#include "Playlist.h"

#include "song_title.h"

namespace {

std::string
file_name(const std::string& path)
{
	return path.substr(path.rfind('/') + 1);
}

} // namespace

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

const PlaylistEntry*
Playlist::EntryAt(int32 index) const
{
	return IsValid(index) ? &fEntries[index] : nullptr;
}

void
Playlist::SetTags(int32 index, const std::string& artist, const std::string& title)
{
	if (!IsValid(index))
		return;
	PlaylistEntry& entry = fEntries[index];
	std::string name = song_title(artist, title, file_name(entry.path));
	if (name == entry.name) // played again, it keeps its number
		return;
	fTitles.erase(entry.title);
	entry.name = name;
	entry.title = UniqueTitle(name);
}

void
Playlist::SetLength(int32 index, int32 lengthMs)
{
	if (IsValid(index))
		fEntries[index].lengthMs = lengthMs;
}

void
Playlist::SetPlayed(int32 index)
{
	if (IsValid(index))
		fEntries[index].played = true;
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
