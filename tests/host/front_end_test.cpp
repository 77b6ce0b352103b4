#include <gtest/gtest.h>

#include <Window.h>

#include "host/QuboFE_Receiver.h"
#include "host/Qubo_FrontEnd.h"
#include "host/qubo_window.h"
#include "support/ScriptedHost.h"
#include "support/wait_until.h"

namespace {

class FrontEndTest : public testing::Test {
protected:
	void SetUp() override { host().Reset(); }

	//! Asks until an answer is there and taken over.
	[[nodiscard]] static bool AskForInfo(Qubo_FrontEnd& frontEnd)
	{
		return wait_until([&] {
			frontEnd.SendInfoRequest();
			const bool isNew = frontEnd.Receiver()->HasNewInfo();
			frontEnd.UpdateInfo();
			return isNew;
		});
	}

	//! Asks until the title that the host plays is there.
	[[nodiscard]] static bool AskForTitle(Qubo_FrontEnd& frontEnd, std::string_view title)
	{
		return wait_until([&] {
			frontEnd.SendInfoRequest();
			frontEnd.UpdateInfo();
			return frontEnd.InfoTitle() == title;
		});
	}
};

class Looker : public BWindow {
public:
	explicit Looker(const char* title) : BWindow(BRect(20, 40, 219, 139), title, B_TITLED_WINDOW, 0)
	{ }
};

//! A window on the screen for as long as the object is there.
class ShownWindow {
public:
	explicit ShownWindow(const char* title) : fWindow(new Looker(title)) { fWindow->Show(); }
	~ShownWindow()
	{
		if (fWindow->Lock())
			fWindow->Quit();
	}
	BWindow* Get() const { return fWindow; }

private:
	BWindow* fWindow;
};

} // namespace

TEST_F(FrontEndTest, FirstRequestGreetsAndIsAnswered)
{
	host().Play("Song", 1234);
	Qubo_FrontEnd frontEnd(false, 1000);
	EXPECT_TRUE(frontEnd.IsValid());
	EXPECT_EQ(frontEnd.InfoTitle(), "");
	frontEnd.SendInfoRequest();
	// which a host that is slow to answer the greeting does not get any more
	ASSERT_TRUE(wait_until([&] { return frontEnd.Receiver()->HasHostMessenger(); }));
	ASSERT_TRUE(AskForTitle(frontEnd, "Song"));
	EXPECT_EQ(frontEnd.Info().positionMs, 1234);
	EXPECT_EQ(host().CountOf(kQuboHello), 1) << "greeted again although the host had answered";
}

TEST_F(FrontEndTest, ThePollingThreadGreetsAndAsksOnlyWhenItShall)
{
	{
		Qubo_FrontEnd frontEnd(false, 1000);
		ASSERT_EQ(frontEnd.StartPolling(B_NORMAL_PRIORITY), B_OK);
		EXPECT_GE(find_thread("Qubo FrontEnd"), 0);
		EXPECT_GE(find_thread("Qubo FrontEnd Mailbox"), 0);
		ASSERT_TRUE(wait_until([&] { return frontEnd.Receiver()->HasHostMessenger(); }));
	}
	EXPECT_EQ(host().CountOf(kQuboInfo), 0);
	EXPECT_LT(find_thread("Qubo FrontEnd"), 0) << "the polling thread outlives its object";
	EXPECT_LT(find_thread("Qubo FrontEnd Mailbox"), 0);

	Qubo_FrontEnd automatic(true, 1000);
	ASSERT_EQ(automatic.StartPolling(B_NORMAL_PRIORITY), B_OK);
	EXPECT_TRUE(wait_until([] { return host().CountOf(kQuboInfo) > 3; }));
}

TEST_F(FrontEndTest, InfoThatIsTooShortIsIgnored)
{
	Qubo_FrontEnd frontEnd(false, 1000);
	host().Play("First", 1);
	ASSERT_TRUE(AskForTitle(frontEnd, "First"));
	for (const size_t size : {123, 0, 1}) { // what one leaves is seen after the next
		host().Play("Short", 2, size); // in one go: questions of before may still be on their way
		const int32 before = host().CountOf(kQuboInfo);
		frontEnd.SendInfoRequest();
		ASSERT_TRUE(wait_until([&] { return host().CountOf(kQuboInfo) > before; }));
		frontEnd.UpdateInfo();
		EXPECT_EQ(frontEnd.InfoTitle(), "First") << size;
	}
	for (const size_t size : {124, 4000}) {
		const std::string title = "Long " + std::to_string(size);
		host().Play(title, 3, size);
		EXPECT_TRUE(AskForTitle(frontEnd, title)) << size;
	}
}

TEST_F(FrontEndTest, ATitleOfAllItsBytesHasAnEnd)
{
	const std::string title(112, 't');
	host().Play(title, 0);
	Qubo_FrontEnd frontEnd(false, 1000);
	EXPECT_TRUE(AskForTitle(frontEnd, title));
}

TEST_F(FrontEndTest, AHostThatDoesNotAnswerIsNoObstacle)
{
	host().SetAnswersHello(false);
	host().Play("Song", 0);
	{
		Qubo_FrontEnd frontEnd(false, 1000);
		for (int i = 0; i < 3; i++)
			frontEnd.SendInfoRequest();
		EXPECT_FALSE(frontEnd.Receiver()->HasHostMessenger());
		EXPECT_EQ(host().CountOf(kQuboInfo), 0);
		host().SetAnswersHello(true);
		host().SetAnswersInfo(false);
		ASSERT_TRUE(wait_until([&] {
			frontEnd.SendInfoRequest();
			return host().CountOf(kQuboInfo) > 0;
		}));
		frontEnd.UpdateInfo();
		EXPECT_EQ(frontEnd.InfoTitle(), "");
	}
}

TEST_F(FrontEndTest, AHostThatComesBackIsGreetedAgain)
{
	host().Play("Before", 0);
	Qubo_FrontEnd frontEnd(false, 1000);
	ASSERT_TRUE(AskForTitle(frontEnd, "Before"));
	for (int round = 0; round < 20; round++) {
		host().GoAway();
		// greeted in vain; an answer of before that is still on its way holds only until the next request
		ASSERT_TRUE(wait_until([&] {
			frontEnd.SendInfoRequest();
			return !frontEnd.Receiver()->HasHostMessenger();
		})) << round;
		const std::string title = "After " + std::to_string(round);
		host().Play(title, 0);
		host().ComeBack();
		ASSERT_TRUE(AskForTitle(frontEnd, title)) << round;
	}
}

TEST_F(FrontEndTest, CountsAndGetsEntries)
{
	Qubo_FrontEnd frontEnd(false, 1000);
	EXPECT_EQ(frontEnd.CountEntries(), 0);
	host().SetPlaylist({{"/a", "A"}, {"/b", "B"}});
	EXPECT_EQ(frontEnd.CountEntries(), 2);
	host().SetCount(-1);
	EXPECT_EQ(frontEnd.CountEntries(), -1);

	QuboSongEntry entry;
	ASSERT_TRUE(frontEnd.GetEntry(&entry, 1));
	EXPECT_STREQ(entry.Filename(), "/b");
	EXPECT_STREQ(entry.Title(), "B");
	EXPECT_EQ(entry.time, 101);
	EXPECT_EQ(entry.nr, 1);
	EXPECT_TRUE(entry.played);
	EXPECT_FALSE(frontEnd.GetEntry(&entry, 2));
	EXPECT_STREQ(entry.Title(), "B") << "touched by an answer without an entry";
}

TEST_F(FrontEndTest, AnEntryThatLacksAFieldIsNone)
{
	Qubo_FrontEnd frontEnd(false, 1000);
	for (const char* field : {"filename", "title", "time", "nr", "played"}) {
		host().SetPlaylist({{"/a", "A", field}});
		QuboSongEntry entry;
		entry.nr = 77;
		EXPECT_FALSE(frontEnd.GetEntry(&entry, 0)) << field;
		EXPECT_EQ(entry.nr, 77) << field;
		EXPECT_EQ(entry.title, nullptr) << field;
	}
}

TEST_F(FrontEndTest, PlaysAnEntry)
{
	Qubo_FrontEnd frontEnd(false, 1000);
	frontEnd.PlayThis(5, true);
	ASSERT_TRUE(wait_until([] { return host().PlayedIndex() == 5; }));
	EXPECT_TRUE(host().PlayedWithFade());
	frontEnd.PlayThis(6, false);
	ASSERT_TRUE(wait_until([] { return host().PlayedIndex() == 6; }));
	EXPECT_FALSE(host().PlayedWithFade());
}

TEST_F(FrontEndTest, FindsThePlayingSongByItsTitle)
{
	Qubo_FrontEnd frontEnd(false, 1000);
	host().Play("B", 0);
	ASSERT_TRUE(AskForTitle(frontEnd, "B"));

	QuboSongEntry entry;
	EXPECT_FALSE(get_current_song_entry(&frontEnd, &entry)) << "in an empty playlist";
	EXPECT_EQ(host().CountOf(kQuboGetEntry), 0);

	host().SetPlaylist({{"/a", "A"}, {"/first", "B"}, {"/second", "B"}});
	ASSERT_TRUE(get_current_song_entry(&frontEnd, &entry));
	EXPECT_STREQ(entry.Filename(), "/first");
	EXPECT_EQ(entry.nr, 1);

	host().SetPlaylist({{"/a", "A"}, {"/c", "C"}});
	EXPECT_FALSE(get_current_song_entry(&frontEnd, &entry)) << "not in the playlist";
	EXPECT_STREQ(entry.Filename(), "/first");

	host().SetPlaylist({{"/a", "A"}, {"/b", "B"}});
	host().SetCount(-1);
	EXPECT_TRUE(get_current_song_entry(&frontEnd, &entry)) << "no answer is no empty playlist";
	EXPECT_STREQ(entry.Filename(), "/b");

	host().SetPlaylist({});
	EXPECT_FALSE(get_current_song_entry(&frontEnd, &entry)) << "no answers at all";
}

TEST_F(FrontEndTest, ASongThatLeavesThePlaylistMeanwhileIsNotFound)
{
	Qubo_FrontEnd frontEnd(false, 1000);
	host().Play("A", 0);
	ASSERT_TRUE(AskForTitle(frontEnd, "A"));
	host().SetPlaylist({{"/a", "A"}});
	host().EmptyPlaylistAtCount(2);
	QuboSongEntry entry;
	EXPECT_FALSE(get_current_song_entry(&frontEnd, &entry));
}

TEST_F(FrontEndTest, WaitsForALateAnswer)
{
	Qubo_FrontEnd frontEnd(false, 1000);
	host().SetPlaylist({{"/a", "A"}});
	host().HoldPlaylistAnswers(true);
	std::atomic<int32> count = -2;
	std::thread asking([&] { count = frontEnd.CountEntries(); });
	ASSERT_TRUE(wait_until([] { return host().CountHeld() == 1; }));
	EXPECT_EQ(count, -2) << "did not wait for the answer";
	host().HoldPlaylistAnswers(false);
	asking.join();
	EXPECT_EQ(count, 1);
}

TEST_F(FrontEndTest, EndsInTheMiddleOfAnything)
{
	host().Play("Song", 0);
	for (int round = 0; round < 50; round++) {
		Qubo_FrontEnd frontEnd(round % 2 == 0, 1000);
		frontEnd.StartPolling(B_NORMAL_PRIORITY);
		if (round % 3 == 0)
			frontEnd.SendInfoRequest();
		if (round % 5 == 0)
			host().GoAway();
		if (round % 5 == 1)
			host().ComeBack();
	}
}

TEST(QuboThreads, EndWhenTheyAreAsked)
{
	class Counting : public QuboThread {
	public:
		~Counting() override { Abort(); }
		int32 Main() override
		{
			while (!IsQuitting()) {
				fRounds++;
				snooze(100);
			}
			ThreadCleanUp();
			return 0;
		}
		std::atomic<int> fRounds{0};
	};
	for (int i = 0; i < 20; i++) {
		Counting thread;
		thread.Abort(); // nothing runs yet
		ASSERT_EQ(thread.Start("counting", B_NORMAL_PRIORITY), B_OK);
		ASSERT_TRUE(wait_until([&] { return thread.fRounds > 0; }));
	}
}

TEST(QuboWindow, IsTheOneWhoseTitleBeginsSo)
{
	BWindow* found = nullptr;
	BRect frame;
	EXPECT_EQ(get_qubo_window(&found), -1);
	EXPECT_EQ(get_qubo_win_frame(&frame), -1);
	EXPECT_EQ(found, nullptr);

	ShownWindow other("qubo in small letters");
	ShownWindow almost("Not Qubo");
	EXPECT_EQ(get_qubo_window(&found), -1);

	ShownWindow qubo("Qubo - playing");
	ShownWindow second("Qubo");
	ASSERT_EQ(get_qubo_window(&found), 0);
	EXPECT_EQ(found, qubo.Get());
	ASSERT_EQ(get_qubo_win_frame(&frame), 0);
	EXPECT_EQ(frame, BRect(20, 40, 219, 139));
}

TEST(QuboWindow, IsLookedForWhileWindowsComeAndGo)
{
	ShownWindow qubo("Qubo");
	std::atomic<bool> isDone = false;
	std::thread others([&] {
		for (int i = 0; i < 60; i++)
			ShownWindow passing("passing by");
		isDone = true;
	});
	int found = 0;
	while (!isDone) {
		BRect frame;
		found += get_qubo_win_frame(&frame) == 0;
	}
	others.join();
	EXPECT_GT(found, 0);
}

TEST(QuboWindow, IsFoundBesideOneThatWasNeverShown)
{
	// Such a window is locked by its maker.
	BWindow* hidden = new Looker("never shown");
	ShownWindow qubo("Qubo");
	BWindow* found = nullptr;
	std::thread looking([&] { EXPECT_EQ(get_qubo_window(&found), 0); });
	looking.join();
	EXPECT_EQ(found, qubo.Get());
	hidden->Quit();
}
