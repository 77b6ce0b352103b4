#include "FakePlayer.h"
#include "PrivateBus.h"

#include "player/Texts.h"
#include "player/mpris/FollowClock.h"
#include "player/mpris/Follower.h"
#include "player/mpris/track_path.h"
#include "support/temp_folder.h"
#include "support/wait_until.h"

#include <gmock/gmock.h>

using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;

namespace {

constexpr bigtime_t kMs = 1000;
constexpr bigtime_t kSecond = 1000 * kMs;

// #pragma mark - the clock

TEST(FollowClock, TakesTheLargestOfReadingsThatLag)
{
	FollowClock clock;
	clock.Restart(0);
	// at 0 the sound is at 10 s; the player renews its position every 50 ms
	bigtime_t last = 0;
	for (bigtime_t now = 0; now < 120 * kMs; now += 7 * kMs) {
		clock.Read((10 * kSecond + now) / (50 * kMs) * (50 * kMs), now);
		EXPECT_LE(clock.Position(now), 10 * kSecond + now);
		EXPECT_GE(clock.Position(now), last);
		last = clock.Position(now);
	}
	EXPECT_GE(clock.Position(kSecond), 11 * kSecond - 7 * kMs);
	clock.Read(14 * kSecond - 40 * kMs, 4 * kSecond); // lags more: not believed
	EXPECT_GE(clock.Position(4 * kSecond), 14 * kSecond - 7 * kMs);
	clock.Read(18 * kSecond - kMs, 8 * kSecond); // less: is
	EXPECT_EQ(clock.Position(9 * kSecond), 19 * kSecond - kMs);
	clock.SetRate(0, 9 * kSecond);
	clock.Restart(9 * kSecond);
	clock.Read(19 * kSecond - 20 * kMs, 9 * kSecond + kMs); // what stands does not lag
	EXPECT_EQ(clock.Position(30 * kSecond), 19 * kSecond - 20 * kMs);
}

TEST(FollowClock, StandsUntilThePositionMoves)
{
	FollowClock clock;
	clock.RestartAt(60 * kSecond, 0);
	clock.Read(10 * kSecond, 7 * kMs); // of before the seek
	clock.Read(60 * kSecond, 14 * kMs);
	clock.Read(60 * kSecond, 900 * kMs); // is loading
	EXPECT_EQ(clock.Position(900 * kMs), 60 * kSecond);
	clock.Read(60 * kSecond + 5 * kMs, 907 * kMs);
	EXPECT_EQ(clock.Position(907 * kMs + kSecond), 61 * kSecond + 5 * kMs);
}

TEST(FollowClock, CountsForAPlayerThatTellsNoPosition)
{
	FollowClock clock;
	clock.RestartAt(0, kSecond);
	for (bigtime_t now = kSecond; now < 10 * kSecond; now += 40 * kMs)
		clock.Read(0, now);
	EXPECT_TRUE(clock.IsFixed(10 * kSecond));
	EXPECT_EQ(clock.Position(10 * kSecond), 9 * kSecond);
	clock.RestartAt(30 * kSecond, 10 * kSecond); // it tells its seeks at least
	clock.Read(0, 10 * kSecond + 7 * kMs);
	EXPECT_EQ(clock.Position(14 * kSecond), 34 * kSecond);
}

TEST(FollowClock, FollowsSeeksAndStallsThatWereNotTold)
{
	FollowClock clock;
	clock.Restart(0);
	clock.Read(50 * kSecond, 0);
	clock.Read(50 * kSecond + 7 * kMs, 7 * kMs);
	EXPECT_FALSE(clock.Read(53 * kSecond, 3 * kSecond));
	EXPECT_TRUE(clock.Read(20 * kSecond, 6 * kSecond));
	clock.Read(20 * kSecond + 10 * kMs, 6 * kSecond + 10 * kMs);
	EXPECT_EQ(clock.Position(7 * kSecond), 21 * kSecond);
	EXPECT_FALSE(clock.Read(23 * kSecond, 9 * kSecond));
	EXPECT_TRUE(clock.Read(23 * kSecond, 12 * kSecond)); // an empty buffer
	EXPECT_EQ(clock.Position(20 * kSecond), 23 * kSecond);
}

// #pragma mark - names of files

TEST(TrackPath, FindsTheFileOfAUrl)
{
	TempFolder folder;
	const std::string odd = folder.Write("100%41.ogg", "");
	const struct {
		std::string url;
		std::string file;
	} kCases[] = {
		{"file:///music/a%20b.ogg", "/music/a b.ogg"},
		{"file:///music/a b.ogg", "/music/a b.ogg"},
		{"FILE://localhost/music/a.ogg", "/music/a.ogg"},
		{"file:/music/a.ogg", "/music/a.ogg"},
		{"/music/a.ogg", "/music/a.ogg"},
		{"file:///music/%E6%A1%9C%23%3f.ogg", "/music/桜#?.ogg"},
		{"file:///music/桜 #1? yes.ogg", "/music/桜 #1? yes.ogg"},
		{"file:///music/100%.ogg", "/music/100%.ogg"},
		{"file:///music/50%zz%4", "/music/50%zz%4"},
		{"file://" + odd, odd}, // as the file is named, not decoded
		{"file://otherhost/music/a.ogg", ""},
		{"file://", ""},
		{"file:music/a.ogg", ""},
		{"http://radio/a.ogg", ""},
		{"music/a.ogg", ""},
		{"", ""},
	};
	for (const auto& each : kCases)
		EXPECT_EQ(file_of_url(each.url), each.file) << each.url;
	EXPECT_EQ(file_of_url("file:///a%00b"), "/a%00b");
	EXPECT_EQ(name_of_url("http://radio/live%20now/?id=3#x"), "live now");
	EXPECT_EQ(name_of_url("///"), "///");
}

TEST(TrackPath, NamesATrackWithoutAFile)
{
	EXPECT_EQ(entry_of_track("/l", {"AC/DC", "T.N.T.", 0}), "/l/AC_DC - T.N.T..track");
	EXPECT_EQ(entry_of_track("/l", {"", "../../x\n", 0}), "/l/.._.._x.track");
	EXPECT_LE(entry_of_track("", {"", std::string(400, 'x'), 0}).size(), 256u);
}

// #pragma mark - the follower

class FollowTest : public testing::Test, private Follower::Listener {
protected:
	Follower& Follow(const Follower::Wish& wish = {{}, {}, "/lyrics"})
	{
		fFollower.reset(new Follower(fBus, wish, *this));
		fFollower->SetOn(true);
		return *fFollower;
	}
	FakePlayer::Script Plays(const std::string& url, const std::string& title = "")
	{
		FakePlayer::Script script;
		script.metadata = FakePlayer::Track(url, title);
		return script;
	}

	std::string Title() const { return fFollower->State().Info().title; }
	std::string File() const
	{
		PlaylistEntry entry;
		return fFollower->State().GetEntry(0, entry) ? entry.path : "";
	}
	[[nodiscard]] bool Shows(const std::string& title)
	{
		return wait_until([&] { return Title() == title; });
	}
	[[nodiscard]] bool Says(TextKey key, const std::string& player)
	{
		return wait_until([&] { return fFollower->Tell().text == text(key, player); });
	}
	//! It settles on what is, at most, `late` behind the player's sound, and never before it.
	[[nodiscard]] bool KeepsTime(FakePlayer& player, bigtime_t late = 60 * kMs)
	{
		return wait_until([&] {
			const bigtime_t told = fFollower->State().Position();
			const bigtime_t sound = player.Position();
			return told <= sound && sound - told < late;
		});
	}

	void TearDown() override { fFollower.reset(); } // it tells this object no more

	PrivateBus fDaemon;
	BusThread fBus{fDaemon.Address()};
	std::unique_ptr<Follower> fFollower;

private:
	void FollowingChanged() override { }
};

TEST_F(FollowTest, ShowsWhatThePlayerPlaysWhereItIs)
{
	FakePlayer player(fDaemon.Address(), "fake", Plays("file:///m/One%20%23.ogg"));
	Follow();
	ASSERT_TRUE(Shows("One #.ogg"));
	EXPECT_EQ(File(), "/m/One #.ogg");
	EXPECT_TRUE(KeepsTime(player));
	EXPECT_TRUE(Says(kTextFollowing, "fake"));

	player.Seek(100 * kSecond);
	ASSERT_TRUE(wait_until([&] { return fFollower->State().Position() >= 100 * kSecond; }));
	EXPECT_TRUE(KeepsTime(player));
	player.Seek(40 * kSecond, false); // untold
	ASSERT_TRUE(wait_until([&] { return fFollower->State().Position() < 60 * kSecond; }));
	EXPECT_TRUE(KeepsTime(player));

	player.Change([](auto& script) { script.rate = 2; });
	snooze(100 * kMs); // at the wrong rate it would be 100 ms behind
	EXPECT_TRUE(KeepsTime(player));
	player.Change([](auto& script) { script.status = "Paused"; });
	ASSERT_TRUE(wait_until([&] { return fFollower->State().Info().state == PlayState::kPaused; }));
	const int32 stands = fFollower->State().Info().positionMs;
	snooze(200 * kMs);
	EXPECT_NEAR(fFollower->State().Info().positionMs, stands, 100); // running, it would be 400 on
	player.Change([](auto& script) { script.status = "Playing"; }, true, false);
	EXPECT_TRUE(KeepsTime(player)); // though it was only said that something changed
}

TEST_F(FollowTest, TakesTheNextTrackAtOnce)
{
	FakePlayer player(fDaemon.Address(), "fake", Plays("file:///m/1.ogg", "Same"));
	Follow();
	ASSERT_TRUE(Shows("Same"));
	player.Seek(100 * kSecond);
	ASSERT_TRUE(wait_until([&] { return fFollower->State().Position() >= 100 * kSecond; }));
	player.StartTrack(FakePlayer::Track("file:///m/2.ogg", "Same"));
	ASSERT_TRUE(Shows("Same (2)")); // titles tell songs apart
	EXPECT_EQ(File(), "/m/2.ogg");
	EXPECT_LT(fFollower->State().Position(), 20 * kSecond);
	EXPECT_TRUE(KeepsTime(player));
	// more is known of it: the same song under its name
	player.Change([](auto& script) {
		script.metadata = FakePlayer::Track("file:///m/2.ogg", "Two", "Band", 90 * kSecond);
	});
	ASSERT_TRUE(Shows("Band - Two"));
	EXPECT_EQ(fFollower->State().Info().lengthMs, 90000);
	// a stream has no file, and its songs change under one url
	player.StartTrack(FakePlayer::Track("http://radio/", "A/B v1.0", "Band"));
	ASSERT_TRUE(Shows("Band - A/B v1.0"));
	EXPECT_EQ(File(), "/lyrics/Band - A_B v1.0.track");
	const std::string told = text(kTextNoFile, "fake", "/lyrics/Band - A_B v1.0.lrc");
	EXPECT_TRUE(wait_until([&] { return fFollower->Tell().text == told; }));
	player.Change([](auto& script) { script.metadata = nullptr; });
	EXPECT_TRUE(Shows(""));
	EXPECT_EQ(fFollower->State().CountEntries(), 0);
	EXPECT_TRUE(Says(kTextPlaysUnnamed, "fake"));
}

TEST_F(FollowTest, FollowsTheOneThatBeganLastOrIsPinned)
{
	FakePlayer::Script paused = Plays("file:///m/b.ogg");
	paused.status = "Paused";
	FakePlayer first(fDaemon.Address(), "first", Plays("file:///m/a.ogg"));
	FakePlayer second(fDaemon.Address(), "second.instance7", paused);
	FakePlayer proxy(fDaemon.Address(), "playerctld", Plays("file:///m/proxy.ogg"));
	FakePlayer unwanted(fDaemon.Address(), "Unwanted.x", Plays("file:///m/unwanted.ogg"));
	FakePlayer twin(
		fDaemon.Address(), "first.instance9", Plays("file:///m/twin.ogg")); // of one process
	fBus.Post([this] {
		sd_bus_request_name_async(
			fBus.Bus(), nullptr, "org.mpris.MediaPlayer2.self", 0, nullptr, nullptr);
	});
	Follow({{}, {"unwanted"}, ""});
	ASSERT_TRUE(Shows("a.ogg"));
	const std::vector<std::string> both = {"first", "second.instance7"};
	EXPECT_TRUE(wait_until([&] { return fFollower->Tell().players == both; }));
	second.Change([](auto& script) { script.status = "Playing"; });
	ASSERT_TRUE(Shows("b.ogg"));
	fFollower->Pin("first");
	ASSERT_TRUE(Shows("a.ogg"));
	fFollower->Pin("second.instance3"); // it came again under another number
	ASSERT_TRUE(Shows("b.ogg"));
	fFollower->Pin("third");
	EXPECT_TRUE(Says(kTextNotRunning, "third"));
	EXPECT_TRUE(Shows(""));
	fFollower->Pin("");
	ASSERT_TRUE(Shows("b.ogg"));
	second.Change([](auto& script) { script.status = "Stopped"; });
	EXPECT_TRUE(Shows("a.ogg"));
	fFollower->SetOn(false);
	EXPECT_TRUE(Shows(""));
	EXPECT_TRUE(wait_until([&] { return fFollower->Tell().text.empty(); }));
}

TEST_F(FollowTest, PlayersComeGoCrashAndHang)
{
	Follow({{"fake"}, {}, ""});
	EXPECT_TRUE(Says(kTextNotRunning, "fake"));
	{
		FakePlayer player(fDaemon.Address(), "fake", Plays("file:///m/1.ogg"));
		FakePlayer other(fDaemon.Address(), "fakes", Plays("file:///m/other.ogg"));
		EXPECT_TRUE(Shows("1.ogg"));
	} // both are gone without a word
	EXPECT_TRUE(Shows(""));
	EXPECT_TRUE(Says(kTextNotRunning, "fake"));
	FakePlayer::Script hangs = Plays("file:///m/2.ogg");
	hangs.hangs = true;
	FakePlayer player(fDaemon.Address(), "fake.instance2", hangs);
	EXPECT_TRUE(Says(kTextNoAnswer, "fake"));
	player.Change([](auto& script) { script.hangs = false; }, false);
	EXPECT_TRUE(Shows("2.ogg")); // it is asked again
	player.Change([](auto& script) { script.hangs = true; }, false);
	EXPECT_TRUE(Says(kTextNoAnswer, "fake")); // and while it plays
	EXPECT_EQ(Title(), "2.ogg");
	fDaemon.End();
	EXPECT_TRUE(Says(kTextNoBus, ""));
	EXPECT_TRUE(Shows(""));
}

TEST_F(FollowTest, TakesWhatBadPlayersSay)
{
	FakePlayer::Script bad;
	bad.fixed = true;
	bad.metadata = [](sd_bus_message* m) {
		const std::string title = "Line\nbreak " + std::string(200, 'x');
		sd_bus_message_append(m, "v", "a{sv}", 6, "mpris:trackid", "u", 7, "mpris:length", "s",
			"long", "xesam:url", "as", 1, "file:///m/1.ogg", "xesam:title", "s", title.c_str(),
			"xesam:artist", "s", "One", "xesam:genre", "(sa{sv})", "odd", 0);
	};
	bad.more = [](sd_bus_message* m) { sd_bus_message_append(m, "{sv}", "CanSeek", "s", "yes"); };
	FakePlayer player(fDaemon.Address(), "fake", bad);
	Follow();
	ASSERT_TRUE(Shows(("One - Line break " + std::string(200, 'x')).substr(0, 111)));
	EXPECT_EQ(File(), "/m/1.ogg"); // a list of one
	EXPECT_EQ(fFollower->State().Info().lengthMs, 0);
	EXPECT_TRUE(Says(kTextNoPosition, "fake"));
	EXPECT_TRUE(wait_until([&] { return fFollower->State().Position() > 1500 * kMs; }));

	player.Change([](auto& script) {
		script.noPosition = true;
		script.rate = -3;
		script.metadata = [](sd_bus_message* m) { sd_bus_message_append(m, "v", "s", "nothing"); };
	});
	player.StartTrack([](sd_bus_message* m) {
		sd_bus_message_append(m, "v", "a{sv}", 3, "mpris:length", "t", uint64_t(-1), "xesam:title",
			"s", "\x01", "xesam:url", "s", "ftp://x/y.z");
	});
	ASSERT_TRUE(Shows("y.z"));
	EXPECT_EQ(File(), "/lyrics/y.z.track");
	EXPECT_GT(fFollower->State().Info().lengthMs, 0);
}

TEST_F(FollowTest, PassesCommandsOn)
{
	FakePlayer::Script script;
	script.metadata = FakePlayer::Track("file:///m/1.ogg", "", "", 100 * kSecond, "/id/1");
	FakePlayer player(fDaemon.Address(), "fake", script);
	Follower& follower = Follow();
	ASSERT_TRUE(Shows("1.ogg"));
	follower.TogglePause();
	follower.Next();
	follower.Previous();
	follower.SeekTo(30 * kSecond);
	ASSERT_TRUE(wait_until([&] { return player.Commands().size() == 4; }));
	EXPECT_THAT(player.Commands(),
		ElementsAre("PlayPause", "Next", "Previous", "SetPosition /id/1 30000000"));
	follower.SeekBy(200 * kSecond);
	EXPECT_TRUE(
		wait_until([&] { return player.Commands().back() == "SetPosition /id/1 100000000"; }));
	player.StartTrack(FakePlayer::Track("file:///m/2.ogg", "", "", 0, ""));
	ASSERT_TRUE(Shows("2.ogg"));
	follower.SeekTo(50 * kSecond); // by how far: no id says which track would be meant
	ASSERT_TRUE(wait_until([&] { return player.Commands().size() == 6; }));
	EXPECT_NEAR(std::stod(player.Commands().back().substr(5)), 50e6, 10e6);
	player.Change([](auto& changed) {
		changed.more
			= [](sd_bus_message* m) { sd_bus_message_append(m, "{sv}", "CanSeek", "b", 0); };
	});
	ASSERT_TRUE(wait_until([&] { return !follower.Tell().seeks; }));
	follower.SeekTo(70 * kSecond);
	follower.Pause();
	ASSERT_TRUE(wait_until([&] { return player.Commands().size() == 7; }));
	EXPECT_EQ(player.Commands().back(), "Pause");
}

TEST_F(FollowTest, AsksSeldomWhenNothingChanges)
{
	FakePlayer player(fDaemon.Address(), "fake", Plays("file:///m/1.ogg"));
	Follow();
	ASSERT_TRUE(Shows("1.ogg"));
	ASSERT_TRUE(KeepsTime(player));
	snooze(2500 * kMs); // it has settled then
	const int before = player.Questions();
	snooze(2 * kSecond);
	EXPECT_LE(player.Questions() - before, 4);
}

} // namespace
