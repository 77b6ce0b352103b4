#include <gtest/gtest.h>

#include "framework/file_utils.h"
#include "lyrics/lyrics_fname.h"
#include "support/temp_folder.h"

namespace {

std::string
lyrics_of(const std::string& song)
{
	QuboSongEntry entry;
	entry.filename = QuboSongEntry::CopyOf(song.c_str());
	return lyrics_fname(entry);
}

} // namespace

TEST(FileNames, GetAnotherExtension)
{
	struct Case {
		const char* path;
		const char* result;
	};
	const Case cases[] = {
		{"/music/a/song.mp3", "/music/a/song.lrc"},
		{"/music/a/song", "/music/a/song.lrc"},
		{"/music/my.album/song", "/music/my.album/song.lrc"},
		{"/music/a/.mp3", "/music/a/.lrc"},
		{"a.b.mp3", "a.b.lrc"},
		{"song.", "song.lrc"},
		{"dir./", "dir./.lrc"},
		{"", ".lrc"},
		{"/", "/.lrc"},
		{".", ".lrc"},
		{"..", "..lrc"},
	};
	for (const Case& c : cases)
		EXPECT_EQ(merion::reext(c.path, "lrc"), c.result) << c.path;
}

TEST(LyricsFile, IsTheLrcIfThereIsOneElseTheTxt)
{
	TempFolder folder;
	folder.Write("both.lrc", "");
	folder.Write("both.txt", "");
	folder.Write("text.txt", "");
	folder.Write("a.b.lrc", "");
	std::filesystem::create_directory(folder / "folder.lrc");
	std::filesystem::create_symlink(folder / "nowhere", folder / "link.lrc");

	EXPECT_EQ(lyrics_of(folder / "both.mp3"), folder / "both.lrc");
	EXPECT_EQ(lyrics_of(folder / "text.mp3"), folder / "text.txt");
	EXPECT_EQ(lyrics_of(folder / "none.mp3"), folder / "none.txt");
	EXPECT_EQ(lyrics_of(folder / "a.b.mp3"), folder / "a.b.lrc");
	EXPECT_EQ(lyrics_of(folder / "folder.mp3"), folder / "folder.lrc");
	EXPECT_EQ(lyrics_of(folder / "link.mp3"), folder / "link.lrc");
	EXPECT_EQ(lyrics_fname(QuboSongEntry()), ".txt");
}

TEST(SongEntry, CopiesItsTexts)
{
	QuboSongEntry entry;
	entry.filename = QuboSongEntry::CopyOf("/a");
	entry.title = QuboSongEntry::CopyOf("A");
	entry.nr = 3;
	QuboSongEntry copy;
	copy = entry;
	entry = QuboSongEntry();
	EXPECT_STREQ(copy.Filename(), "/a");
	EXPECT_STREQ(copy.Title(), "A");
	EXPECT_EQ(copy.nr, 3);
	EXPECT_STREQ(entry.Title(), "");
	EXPECT_EQ(QuboSongEntry(entry).title, nullptr);
}
