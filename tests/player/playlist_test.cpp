#include "player/Playlist.h"
#include "player/media_files.h"
#include "player/song_title.h"

#include "support/temp_folder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>

using testing::ElementsAre;

namespace {

struct TitleCase {
	const char* name;
	const char* artist;
	const char* title;
	const char* expected;
};

const TitleCase kTitleCases[] = {
	{"both tags", "Band", "Song", "Band - Song"},
	{"no artist", "", "Song", "Song"},
	{"no title", "Band", "", "file.ogg"},
	{"nothing", "", "", "file.ogg"},
	{"blanks only", " \t", " \n ", "file.ogg"},
	{"blanks around", "  Band ", " Song  ", "Band - Song"},
	{"control characters", "Ba\x01nd", "So\nng\x7f!", "Ba nd - So ng !"},
	{"C1 controls and line separators", "", "a\xc2\x85z\xe2\x80\xa8y", "a z y"},
	{"no control: U+00A0", "", "a\xc2\xa0z", "a\xc2\xa0z"},
	{"Japanese", "童謡", "さくら", "童謡 - さくら"},
	{"Latin-1 bytes", "", "caf\xe9 noir", "caf\xef\xbf\xbd noir"},
	{"cut character at the end", "", "a\xe3\x81", "a\xef\xbf\xbd\xef\xbf\xbd"},
	{"overlong and surrogate", "", "\xc0\x80\xed\xa0\x80",
		"\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbd"},
	{"four bytes", "", "\xf0\x9f\x8e\xb5", "\xf0\x9f\x8e\xb5"},
};

std::string
repeated(const std::string& text, int count)
{
	std::string result;
	for (int i = 0; i < count; i++)
		result += text;
	return result;
}

TEST(SongTitle, IsMadeOfTagsOrTheFilesName)
{
	for (const TitleCase& row : kTitleCases)
		EXPECT_EQ(song_title(row.artist, row.title, "file.ogg"), row.expected) << row.name;
}

TEST(SongTitle, IsCutAtACharactersEdge)
{
	EXPECT_EQ(cut_utf8(std::string(111, 'x'), 111).size(), 111u);
	EXPECT_EQ(cut_utf8(std::string(112, 'x'), 111).size(), 111u);
	EXPECT_EQ(cut_utf8(repeated("さ", 37), 111), repeated("さ", 37)); // 111 bytes
	EXPECT_EQ(cut_utf8(repeated("さ", 38), 111), repeated("さ", 37));
	EXPECT_EQ(cut_utf8("x" + repeated("さ", 37), 111), "x" + repeated("さ", 36)); // 112 bytes
	EXPECT_EQ(cut_utf8(repeated("\xf0\x9f\x8e\xb5", 28), 111), repeated("\xf0\x9f\x8e\xb5", 27));
}

TEST(SongTitle, GivesItsNumberRoomByCuttingTheName)
{
	EXPECT_EQ(numbered_title("Song", 1), "Song");
	EXPECT_EQ(numbered_title("Song", 2), "Song (2)");
	EXPECT_EQ(numbered_title(std::string(200, 'x'), 12), std::string(106, 'x') + " (12)");
	std::string cut = numbered_title(repeated("さ", 40), 2); // 107 bytes left: 35 characters
	EXPECT_EQ(cut, repeated("さ", 35) + " (2)");
}

TEST(Playlist, NamesEachSongOnce)
{
	Playlist list;
	list.Add("/a/song.ogg");
	list.Add("/b/song.ogg");
	list.Add("/c/song.ogg (2)"); // a file that is really named so
	list.Add("/d/song.ogg");
	EXPECT_EQ(list.EntryAt(0)->title, "song.ogg");
	EXPECT_EQ(list.EntryAt(1)->title, "song.ogg (2)");
	EXPECT_EQ(list.EntryAt(2)->title, "song.ogg (2) (2)");
	EXPECT_EQ(list.EntryAt(3)->title, "song.ogg (3)");
	EXPECT_EQ(list.EntryAt(4), nullptr);
	EXPECT_EQ(list.EntryAt(-1), nullptr);
}

TEST(Playlist, KeepsTheNumberOfASongThatIsPlayedAgain)
{
	Playlist list;
	list.Add("/a.ogg");
	list.Add("/b.ogg");
	for (int32 round = 0; round < 3; round++) {
		list.SetTags(0, {"Band", "Song"});
		list.SetTags(1, {"Band", "Song"});
		EXPECT_EQ(list.EntryAt(0)->title, "Band - Song");
		EXPECT_EQ(list.EntryAt(1)->title, "Band - Song (2)");
	}
}

TEST(Playlist, TellsLongTitlesOfEqualBeginningsApart)
{
	Playlist list;
	std::string beginning = repeated("さ", 40);
	list.Add("/" + beginning + "1");
	list.Add("/" + beginning + "2");
	EXPECT_EQ(list.EntryAt(0)->title, repeated("さ", 37));
	EXPECT_EQ(list.EntryAt(1)->title, repeated("さ", 35) + " (2)");
}

TEST(Playlist, HasOnlyUniqueShortTitlesWhateverTheTags)
{
	const std::string names[] = {"Song", "Song (2)", "Song (3)", std::string(150, 'x'),
		std::string(150, 'x') + "y", repeated("さ", 50), ""};
	std::mt19937 random(1);
	Playlist list;
	for (int i = 0; i < 60; i++)
		list.Add("/" + names[random() % 6]);
	for (int i = 0; i < 500; i++)
		list.SetTags(static_cast<int32>(random() % 60), {"", names[random() % 7]});
	std::vector<std::string> titles;
	for (int32 i = 0; i < list.CountEntries(); i++) {
		titles.push_back(list.EntryAt(i)->title);
		EXPECT_LE(titles.back().size(), kSongTitleBytes);
	}
	std::sort(titles.begin(), titles.end());
	EXPECT_EQ(std::adjacent_find(titles.begin(), titles.end()), titles.end());
}

TEST(Playlist, PassesOverSongsThatFailed)
{
	Playlist list;
	for (const char* path : {"/a", "/b", "/c", "/d"})
		list.Add(path);
	list.SetFailed(1, true);
	list.SetFailed(3, true);
	EXPECT_EQ(list.NextPlayable(1, 1), 2);
	EXPECT_EQ(list.NextPlayable(1, -1), 0);
	EXPECT_EQ(list.NextPlayable(3, 1), -1);
	EXPECT_EQ(list.NextPlayable(-1, -1), -1);
	list.SetFailed(3, false);
	EXPECT_EQ(list.NextPlayable(3, 1), 3);
}

TEST(MediaFiles, AreSortedAsPeopleDo)
{
	std::vector<std::string> names
		= {"Track 10", "track 2", "Track 1", "b", "A", "a", "007", "7", "08", "Track"};
	std::sort(names.begin(), names.end(), natural_less);
	EXPECT_THAT(names,
		ElementsAre("007", "7", "08", "A", "a", "b", "Track", "Track 1", "track 2", "Track 10"));
	EXPECT_TRUE(natural_less("99999999999999999999998", "99999999999999999999999"));
	EXPECT_FALSE(natural_less("x", "x"));
}

class MediaFolder : public testing::Test {
protected:
	void Make(const std::string& path)
	{
		std::filesystem::path file = fDir.Path() + "/" + path;
		std::filesystem::create_directories(file.parent_path());
		std::ofstream(file) << "x";
	}

	//! Paths relative to the folder.
	std::vector<std::string> Collect(const std::string& path)
	{
		std::vector<std::string> files;
		EXPECT_TRUE(collect_media_files(fDir.Path() + path, files, fStop));
		for (std::string& file : files)
			file = file.substr(fDir.Path().size() + 1);
		return files;
	}

	TempFolder fDir;
	std::atomic<bool> fStop{false};
};

TEST_F(MediaFolder, GivesItsSoundFilesAndThoseOfItsFoldersInOrder)
{
	for (const char* path : {"10.ogg", "9.MP3", "cover.png", "9.lrc", "b/2.flac", "b/1.wav",
			 "B/c/x.opus", ".hidden/1.ogg", ".1.ogg", "ogg", "notes.txt"})
		Make(path);
	EXPECT_THAT(Collect(""), ElementsAre("9.MP3", "10.ogg", "B/c/x.opus", "b/1.wav", "b/2.flac"));
	EXPECT_THAT(Collect("/b/"), ElementsAre("b/1.wav", "b/2.flac"));
}

TEST_F(MediaFolder, IsReadOnceEvenIfLinksGoRoundAndUntilItIsStopped)
{
	Make("a/1.ogg");
	fStop = true;
	EXPECT_THAT(Collect(""), testing::IsEmpty());
	fStop = false;
	std::filesystem::create_directory_symlink(fDir.Path(), fDir.Path() + "/a/up");
	std::filesystem::create_directory_symlink(fDir.Path() + "/a", fDir.Path() + "/z");
	std::filesystem::create_symlink(fDir.Path() + "/nowhere", fDir.Path() + "/b.ogg");
	EXPECT_THAT(Collect(""), ElementsAre("a/1.ogg"));
}

TEST_F(MediaFolder, ANamedFileIsTakenWhateverItsName)
{
	Make("notes.txt");
	EXPECT_THAT(Collect("/notes.txt"), ElementsAre("notes.txt"));
	Make("b/1.ogg");
	EXPECT_THAT(Collect("/./b/../notes.txt"), ElementsAre("notes.txt"));
	std::filesystem::create_directories(fDir.Path() + "/c/d");
	std::filesystem::create_directory_symlink(fDir.Path() + "/c/d", fDir.Path() + "/link");
	Make("c/notes.txt"); // which another one of the same name does not stand for
	EXPECT_THAT(Collect("/link/../notes.txt"), ElementsAre("link/../notes.txt"));
	std::vector<std::string> files;
	EXPECT_FALSE(collect_media_files(fDir.Path() + "/nowhere.ogg", files, fStop));
	EXPECT_TRUE(files.empty());
}

} // namespace
