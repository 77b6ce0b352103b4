#include <Message.h>
#include <Messenger.h>
#include <Window.h>
#include <functional>

#include "lyrics/TTavoraDView.h"
#include "lyrics/lyrics_codes.h"
#include "support/DisplayFixture.h"

namespace {

/*!	Collects what the view tells those who watch it. */
class Watcher : public BLooper {
public:
	Watcher() : BLooper("watcher") { }

	void MessageReceived(BMessage* message) override
	{
		if (message->what != B_OBSERVER_NOTICE_CHANGE)
			return BLooper::MessageReceived(message);
		std::lock_guard locker(fTextLock);
		fLines.emplace_back(message->GetString(kCurrentLineProperty, "nothing"));
	}

	std::vector<std::string> Lines()
	{
		std::lock_guard locker(fTextLock);
		return fLines;
	}

private:
	std::mutex fTextLock;
	std::vector<std::string> fLines;
};

class ViewTest : public DisplayFixture {
protected:
	ViewTest()
	{
		fWindow = new BWindow(BRect(10, 10, 309, 209), "view test", B_TITLED_WINDOW, 0);
		fView = new TTavoraDView(fWindow->Bounds());
		fWindow->AddChild(fView);
		fWindow->Show();
	}

	~ViewTest() override
	{
		if (fWindow->Lock())
			fWindow->Quit();
	}

	std::string Line()
	{
		if (!fWindow->Lock())
			return "the window is gone";
		const std::string line = fView->CurrentLineText();
		fWindow->Unlock();
		return line;
	}

	//! Lets the host be at that time; after some more looks at it the line must be, or become, this.
	void ExpectLine(const char* title, int32 positionMs, std::string_view line)
	{
		host().Play(title, positionMs);
		WaitForLooks(4);
		EXPECT_TRUE(wait_until([&] { return Line() == line; }))
			<< positionMs << " ms: " << Line() << " instead of " << line;
	}

	void WaitForLooks(int32 count)
	{
		const int32 before = host().CountOf(kQuboInfo);
		ASSERT_TRUE(wait_until([&] { return host().CountOf(kQuboInfo) >= before + count; }))
			<< "the view has stopped looking at the host";
	}

	BWindow* fWindow;
	TTavoraDView* fView;
};

} // namespace

TEST_F(ViewTest, TheLatestTagIsCurrent)
{
	Save("song.lrc", "title\n[00:10]ten\n[00:20]twenty\nuntagged\n[00:30.50]thirty");
	host().SetPlaylist({Song("song")});
	for (const auto& [time, line] : std::vector<std::pair<int32, const char*>>{{5000, "title"},
			 {10000, "ten"}, {9999, "title"}, {19999, "ten"}, {20000, "twenty"}, {30499, "twenty"},
			 {30500, "thirty"}, {INT32_MAX, "thirty"}, {-1, "title"}, {INT32_MIN, "title"}})
		ExpectLine("song", time, line);
}

TEST_F(ViewTest, OfEqualTagsTheLastIsCurrent)
{
	Save("song.lrc", "[00:10]first\n[00:10]second\n[00:05]early");
	host().SetPlaylist({Song("song")});
	ExpectLine("song", 12000, "second");
	ExpectLine("song", 5000, "early");
	ExpectLine("song", 0, "first");
}

TEST_F(ViewTest, ShowsWhatStandsBehindTheFirstBracket)
{
	Save("song.lrc", "a]b\n[00:10]c]d\n[00:20][00:30]e\n[00:40\n[00:50]");
	host().SetPlaylist({Song("song")});
	ExpectLine("song", 0, "b");
	ExpectLine("song", 10000, "c]d");
	ExpectLine("song", 20000, "[00:30]e");
	ExpectLine("song", 30000, "[00:30]e");
	ExpectLine("song", 40000, "[00:30]e");
	ExpectLine("song", 50000, "");
}

TEST_F(ViewTest, WithoutTagsTheFirstLineStays)
{
	Save("song.txt", "one\ntwo\n");
	host().SetPlaylist({Song("song")});
	ExpectLine("song", 100000, "one");
}

TEST_F(ViewTest, FollowsTheSongsOfThePlaylist)
{
	Save("a.lrc", "[00:00]of a");
	Save("b.txt", "[00:00]of b");
	std::filesystem::create_directory(fFolder / "c.lrc");
	host().SetPlaylist({Song("a"), Song("b"), Song("c"), Song("d")});
	ExpectLine("a", 0, "of a");
	ExpectLine("b", 0, "of b");
	ExpectLine("c", 0, "");
	ExpectLine("a", 0, "of a");
	ExpectLine("d", 0, "");
	ExpectLine("a", 0, "of a");
	ExpectLine("not in the playlist", 0, "");
	ExpectLine("a", 0, "of a");
	ExpectLine("", 0, "");
}

TEST_F(ViewTest, SeesEveryChangeOfTheFile)
{
	host().SetPlaylist({Song("song")});
	ExpectLine("song", 15000, "");
	Save("song.txt", "[00:10]created");
	EXPECT_TRUE(wait_until([&] { return Line() == "created"; }));
	Save("song.txt", "[00:10]saved\n[00:20]later");
	EXPECT_TRUE(wait_until([&] { return Line() == "saved"; }));
	SaveByRenaming("song.txt", "zero\n[00:10]renamed");
	EXPECT_TRUE(wait_until([&] { return Line() == "renamed"; }));
	Save("song.txt", "[00:10]saved after the renaming");
	EXPECT_TRUE(wait_until([&] { return Line() == "saved after the renaming"; }));
	Save("song.lrc", "[00:10]the better one");
	EXPECT_TRUE(wait_until([&] { return Line() == "the better one"; }));
	std::filesystem::remove(fFolder / "song.lrc");
	EXPECT_TRUE(wait_until([&] { return Line() == "saved after the renaming"; }));
	std::filesystem::remove(fFolder / "song.txt");
	EXPECT_TRUE(wait_until([&] { return Line() == ""; }));
	std::filesystem::rename(Save("other.txt", "[00:10]came back"), fFolder / "song.txt");
	EXPECT_TRUE(wait_until([&] { return Line() == "came back"; }));
	std::filesystem::rename(fFolder / "song.txt", fFolder / "other.txt");
	EXPECT_TRUE(wait_until([&] { return Line() == ""; }));
}

TEST_F(ViewTest, ShowsTheLastOfManySaves)
{
	Save("song.lrc", "[00:10]first");
	host().SetPlaylist({Song("song")});
	ExpectLine("song", 15000, "first");
	using SaveFunction = std::function<void(const std::string& text)>;
	const std::pair<const char*, SaveFunction> ways[] = {
		{"in place", [this](const std::string& text) { Save("song.lrc", text); }},
		{"renamed over it", [this](const std::string& text) { SaveByRenaming("song.lrc", text); }},
		{"cp",
			[this](const std::string& text) {
				const std::string copy = Save("copy", text);
				const std::string command = "cp -p '" + copy + "' '" + (fFolder / "song.lrc") + "'";
				EXPECT_EQ(system(command.c_str()), 0);
			}},
	};
	for (const auto& [way, save] : ways) {
		for (int i = 0; i < 200; i++) {
			const std::string line = std::string(way) + " " + std::to_string(i);
			save("[00:10]" + line);
			// Of every run of four only the last is waited for: the others are overtaken by the next.
			if (i % 4 == 3) {
				ASSERT_TRUE(wait_until([&] { return Line() == line; }))
					<< Line() << ", not " << line;
			}
		}
	}
}

TEST_F(ViewTest, IsAskedAndWatched)
{
	Save("song.lrc", "[00:10]ten\n[00:20]twenty\n[00:20]twenty again\n[00:30]ten");
	host().SetPlaylist({Song("song")});
	ExpectLine("song", 0, "ten");

	Watcher* watcher = new Watcher;
	watcher->Run();
	const BMessenger view(fView);
	ASSERT_TRUE(watcher->Lock());
	EXPECT_EQ(watcher->StartWatching(view, kCurrentLineChanged), B_OK);
	watcher->Unlock();
	ASSERT_TRUE(wait_until([&] {
		if (!fWindow->Lock())
			return false;
		const bool isWatched = fView->IsWatched();
		fWindow->Unlock();
		return isWatched;
	}));
	ExpectLine("song", 20000, "twenty again");

	BMessage request(B_GET_PROPERTY);
	request.AddSpecifier(kCurrentLineProperty);
	BMessage reply;
	ASSERT_EQ(view.SendMessage(&request, &reply), B_OK);
	EXPECT_STREQ(reply.GetString("result", "none"), "twenty again");

	ExpectLine("song", 31000, "ten");
	ExpectLine("", 0, "");
	EXPECT_TRUE(wait_until([&] { return watcher->Lines().size() >= 3; }));
	EXPECT_EQ(watcher->Lines(), (std::vector<std::string>{"twenty again", "ten", ""}));
	watcher->Lock();
	watcher->Quit();
}

TEST_F(ViewTest, TellsItsScriptingSuite)
{
	BMessage reply;
	const BMessenger view(fView);
	BMessage request(B_GET_SUPPORTED_SUITES);
	ASSERT_EQ(view.SendMessage(&request, &reply), B_OK);
	EXPECT_STREQ(reply.GetString("suites", ""), "suite/vnd.MERION-TavoraDisplayer");

	BMessage unknown(B_SET_PROPERTY);
	unknown.AddSpecifier(kCurrentLineProperty);
	ASSERT_EQ(view.SendMessage(&unknown, &reply), B_OK);
	EXPECT_EQ(reply.what, static_cast<uint32>(B_MESSAGE_NOT_UNDERSTOOD));
}

TEST_F(ViewTest, AnIntervalThatIsNoneDoesNotStopIt)
{
	gPref->fMonitoringInterval = -5;
	WaitForLooks(3);
	gPref->fMonitoringInterval = 0;
	WaitForLooks(3);
}

TEST_F(ViewTest, TakesHugeLyrics)
{
	std::string lines;
	for (int i = 0; i < 200000; i++)
		lines += "[00:10]line\n";
	Save("many.lrc", lines + "[00:20]last");
	Save("long.lrc", "[00:10]" + std::string(5 << 20, 'x') + "\n[00:20]short");
	host().SetPlaylist({Song("many"), Song("long")});
	ExpectLine("many", 20000, "last");
	ExpectLine("long", 20000, "short");
	ExpectLine("long", 10000, std::string(5 << 20, 'x'));
}

TEST_F(ViewTest, EndsWhileSongsChange)
{
	Save("a.lrc", "[00:00]of a");
	host().SetPlaylist({Song("a"), Song("b")});
	for (int i = 0; i < 40; i++) {
		BWindow* window = new BWindow(BRect(10, 10, 109, 59), "passing", B_TITLED_WINDOW, 0);
		window->AddChild(new TTavoraDView(window->Bounds()));
		window->Show();
		host().Play(i % 2 == 0 ? "a" : "b", i);
		if (i % 4 == 0)
			WaitForLooks(2);
		ASSERT_TRUE(window->Lock());
		window->Quit();
	}
}
