#pragma once

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include <SupportDefs.h>

/*!	What a file says about its song. */
struct SongTags {
	std::string artist;
	std::string title;
	bigtime_t length = 0; // µs, 0: unknown
};

/*!	One song of the playlist. */
struct PlaylistEntry {
	std::string path;   // absolute
	SongTags tags;      // empty until they are read
	std::string name;   // by tags or file, see song_title.h
	std::string title;  // the name, cut, and numbered so that it is unique in its playlist
	int32 lengthMs = 0; // 0 until it is known
	bool played = false;
	bool failed = false; // it could not be played
};

//! µs in the protocol's unit: ms, not below 0.
int32 to_ms(bigtime_t time);

/*!	The songs in their order, under titles of which no two are equal. Plain data: PlayState guards it. */
class Playlist {
public:
	//! Appends a song under its file's name; returns its index.
	int32 Add(const std::string& path);
	//! Leaves this song alone in the list, under a title that is not the first one's before.
	void Replace(const std::string& path, const SongTags& tags);

	int32 CountEntries() const { return static_cast<int32>(fEntries.size()); }
	//! NULL if there is no such index. Good until the next Add().
	const PlaylistEntry* EntryAt(int32 index) const;

	/*!	Names the song by its tags, numbered if another song has the name; without tags by its file's name. The length is set as well. */
	void SetTags(int32 index, const SongTags& tags);
	void SetLength(int32 index, bigtime_t length);
	void SetPlayed(int32 index, bool played = true);
	void SetFailed(int32 index, bool failed);

	//! The next index from `index` on in steps of `step` whose song has not failed; -1 if there is none.
	int32 NextPlayable(int32 index, int32 step) const;

private:
	bool IsValid(int32 index) const { return index >= 0 && index < CountEntries(); }
	std::string UniqueTitle(const std::string& name);

	std::vector<PlaylistEntry> fEntries;
	std::unordered_set<std::string> fTitles;
	std::unordered_map<std::string, int> fNextNumbers; // of a name that was taken: what to try next
};
