#include "player/Engine.h"
#include "player/TagReader.h"

#include "WaveFile.h"
#include "support/temp_folder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <condition_variable>
#include <cstring>
#include <functional>
#include <random>

using testing::Contains;
using testing::ElementsAre;

namespace {

constexpr bigtime_t kSecond = 1000000;
constexpr bigtime_t kMs = 1000;
constexpr auto kPatience = std::chrono::seconds(20); // then a test fails

/*!	Keeps what the engine told, and lets a test wait for it. */
class Recorder : public Engine::Listener {
public:
	explicit Recorder(const PlayState& state) : fState(state) { }

	void PlayingChanged() override
	{
		const QuboInfo info = fState.Info();
		Note([&] {
			toldState = info.state;
			if (fTitles.empty() || fTitles.back() != info.title)
				fTitles.push_back(info.title);
		});
	}
	void SongFailed(int32 index, const std::string& reason) override
	{
		Note([&] { failed.push_back(index), reasons.push_back(reason); });
	}
	void NoSoundOutput() override
	{
		Note([&] { silences++; });
	}
	void PlayingEnded(bool any) override
	{
		Note([&] { ended++, anyPlayed = any; });
	}
	void EngineFailed(const std::string& reason) override
	{
		Note([&] { reasons.push_back(reason); });
	}

	[[nodiscard]] bool WaitFor(const std::function<bool()>& condition)
	{
		std::unique_lock lock(fLock);
		auto end = std::chrono::steady_clock::now() + kPatience;
		while (!condition()) { // a position is told by nobody: look again now and then
			fChanged.wait_for(lock, std::chrono::milliseconds(2));
			if (std::chrono::steady_clock::now() > end)
				return false;
		}
		return true;
	}
	[[nodiscard]] bool WaitForEnd()
	{
		return WaitFor([this] { return ended > 0; });
	}

	//! Each when it became another one.
	std::vector<std::string> Titles()
	{
		std::lock_guard lock(fLock);
		return fTitles;
	}

	int32 toldState = PlayState::kStopped;
	std::vector<int32> failed;
	std::vector<std::string> reasons;
	int32 silences = 0;
	int32 ended = 0;
	bool anyPlayed = false;

private:
	void Note(const std::function<void()>& write)
	{
		std::lock_guard lock(fLock);
		write();
		fChanged.notify_all();
	}

	const PlayState& fState;
	std::mutex fLock;
	std::condition_variable fChanged;
	std::vector<std::string> fTitles;
};

class EngineTest : public testing::Test {
protected:
	static void SetUpTestSuite() { setenv("QUBO_AO", "null", 1); }

	std::string Path(const std::string& name) const { return fDir / name; }

	int32 AddWave(const std::string& name, double seconds, const std::string& title = "",
		const std::string& artist = "")
	{
		write_wave(Path(name), seconds, title, artist);
		return fState.Add(Path(name));
	}

	int32 AddText(const std::string& name, const std::string& text)
	{
		return fState.Add(fDir.Write(name, text));
	}

	std::string Title() const { return fState.Info().title; }

	//! When the song began, by its position.
	bigtime_t Start() const
	{
		bigtime_t now = system_time();
		return now - fState.InfoAt(now).positionMs * kMs;
	}

	[[nodiscard]] bool WaitForPosition(int32 positionMs)
	{
		return fTold.WaitFor([=, this] { return fState.Info().positionMs >= positionMs; });
	}
	[[nodiscard]] bool WaitForTitle(const std::string& title)
	{
		return fTold.WaitFor([=, this] { return Title() == title; });
	}

	TempFolder fDir;
	PlayState fState;
	Recorder fTold{fState};
	Engine fEngine{fState, fTold};
};

TEST_F(EngineTest, PlaysTheListToItsEndUnderTheTitlesOfItsTags)
{
	AddWave("1.wav", 0.7, "Song", "Band");
	AddWave("2.wav", 0.7, "Song", "Band");
	AddWave("3.wav", 0.7);
	fEngine.Play(0);
	ASSERT_TRUE(WaitForTitle("Band - Song"));
	EXPECT_EQ(fState.Info().lengthMs, 700);
	EXPECT_EQ(fState.Info().state, PlayState::kPlaying);
	ASSERT_TRUE(fTold.WaitForEnd());
	EXPECT_THAT(fTold.Titles(), ElementsAre("Band - Song", "Band - Song (2)", "3.wav"));
	EXPECT_TRUE(fTold.anyPlayed);
	EXPECT_TRUE(fTold.failed.empty());
	EXPECT_EQ(fTold.silences, 0); // the null output was asked for
	EXPECT_EQ(fState.Info().state, PlayState::kStopped);
	EXPECT_EQ(fState.Info().positionMs, 700);
}

TEST_F(EngineTest, PositionKeepsTimeAndNeverRunsBack)
{
	AddWave("1.wav", 3);
	fEngine.Play(0);
	ASSERT_TRUE(WaitForPosition(1));
	bigtime_t start = Start();
	int32 last = 0;
	while (fState.Info().state == PlayState::kPlaying && last < 2900) {
		bigtime_t now = system_time();
		int32 position = fState.InfoAt(now).positionMs;
		ASSERT_GE(position, last);
		ASSERT_NEAR(position, static_cast<double>((now - start) / kMs), 60);
		last = position;
		snooze(1 * kMs);
	}
	EXPECT_GE(last, 2900);
}

TEST_F(EngineTest, ASongBeginsWhenItIsHeardNotWhenItIsOpened)
{
	AddWave("1.wav", 1.5);
	AddWave("2.wav", 5); // long enough to be opened before the end of the first is heard
	fEngine.Play(0);
	ASSERT_TRUE(WaitForPosition(1));
	bigtime_t start = Start();
	bigtime_t look = start;
	int32 last = 0; // then
	ASSERT_TRUE(fTold.WaitFor([&] {
		const bigtime_t now = system_time();
		QuboInfo info = fState.InfoAt(now);
		if (strcmp(info.title, "2.wav") == 0)
			return true;
		look = now;
		last = info.positionMs;
		return false;
	}));
	EXPECT_GE((system_time() - start) / kMs, 1400);
	EXPECT_NEAR(last, static_cast<double>(std::min((look - start) / kMs, bigtime_t(1500))), 100);
	EXPECT_NEAR(static_cast<double>((Start() - start) / kMs), 1500, 100);
}

TEST_F(EngineTest, PassesOverWhatCannotBePlayed)
{
	AddText("empty.wav", "");
	AddText("text.mp3", "This is no music.\n");
	fState.Add(Path("missing.ogg"));
	AddWave("good.wav", 0.4);
	AddText("late.flac", std::string(5000, 'x'));
	fEngine.Play(0);
	ASSERT_TRUE(WaitForTitle("good.wav"));
	ASSERT_TRUE(fTold.WaitForEnd());
	EXPECT_THAT(fTold.failed, ElementsAre(0, 1, 2, 4));
	EXPECT_TRUE(fTold.anyPlayed);
}

TEST_F(EngineTest, TellsWhenNothingCouldBePlayed)
{
	AddText("empty.wav", "");
	AddText("text.mp3", "This is no music.\n");
	fEngine.Play(0);
	ASSERT_TRUE(fTold.WaitForEnd());
	EXPECT_FALSE(fTold.anyPlayed);
	EXPECT_THAT(fTold.failed, ElementsAre(0, 1));
	EXPECT_EQ(fState.Info().state, PlayState::kStopped);
}

TEST_F(EngineTest, ASongThatIsToldBeforeItIsHeardIsTakenBackWhenItFails)
{
	write_wave(Path("1.wav"), 1, "Song", "Band");
	std::string song = fDir.Read("1.wav");
	song[20] = 0x7f; // a coding of sound that there is not
	AddText("1.wav", song);
	fEngine.Play(0);
	ASSERT_TRUE(fTold.WaitForEnd());
	EXPECT_THAT(fTold.Titles(), Contains("Band - Song"));
	EXPECT_THAT(fTold.failed, ElementsAre(0));
	EXPECT_EQ(fState.CurrentIndex(), -1);
	EXPECT_EQ(Title(), "");
}

TEST_F(EngineTest, DoesNotPlayAListOfFilesAsASong)
{
	AddWave("1.wav", 0.3);
	AddText(
		"2.m3u", "#EXTM3U\n" + Path("1.wav") + "\n" + Path("1.wav") + "\n" + Path("1.wav") + "\n");
	AddWave("3.wav", 1);
	AddWave("4.wav", 1);
	fEngine.Play(0);
	ASSERT_TRUE(fTold.WaitFor([&] { return fTold.ended > 0 && Title() == "4.wav"; }));
	EXPECT_THAT(fTold.Titles(), ElementsAre("1.wav", "3.wav", "4.wav"));
	EXPECT_EQ(fTold.ended, 1);
	EXPECT_THAT(fTold.failed, ElementsAre(1));
	EXPECT_EQ(fState.CurrentIndex(), 3);
}

TEST_F(EngineTest, TellsOfEverySongEvenOfTheShortest)
{
	AddWave("1.wav", 0.5);
	AddWave("2.wav", 0.02);
	AddWave("3.wav", 1);
	fEngine.Play(0);
	ASSERT_TRUE(WaitForTitle("3.wav"));
	PlaylistEntry entry;
	ASSERT_TRUE(fState.GetEntry(1, entry));
	EXPECT_TRUE(entry.played);
	ASSERT_TRUE(fTold.WaitForEnd());
}

TEST_F(EngineTest, PausesSeeksAndGoesOn)
{
	AddWave("1.wav", 20);
	AddWave("2.wav", 1);
	fEngine.Play(0);
	ASSERT_TRUE(WaitForPosition(50));
	fEngine.TogglePause();
	// It is told when the player has also been asked where it stands.
	ASSERT_TRUE(fTold.WaitFor([&] { return fTold.toldState == PlayState::kPaused; }));
	int32 paused = fState.Info().positionMs;
	snooze(120 * kMs);
	EXPECT_EQ(fState.Info().positionMs, paused);

	fEngine.SeekTo(15 * kSecond);
	ASSERT_TRUE(WaitForPosition(14900));
	EXPECT_NEAR(fState.Info().positionMs, 15000, 30);
	EXPECT_EQ(fState.Info().state, PlayState::kPaused);
	fEngine.SeekBy(-5 * kSecond);
	ASSERT_TRUE(fTold.WaitFor([&] { return fState.Info().positionMs < 14000; }));
	snooze(600 * kMs);
	EXPECT_NEAR(fState.Info().positionMs, 10000, 40); // whatever the player itself takes it for

	fEngine.Resume();
	ASSERT_TRUE(WaitForPosition(10200));
	EXPECT_LT(fState.Info().positionMs, 11000);
	fEngine.SeekBy(60 * kSecond); // beyond the end
	ASSERT_TRUE(WaitForTitle("2.wav"));
}

/*	The player is done with a song seconds before its end is heard. */
TEST_F(EngineTest, SeeksInASongUntilItsEndIsHeard)
{
	AddWave("1.wav", 9);
	AddWave("2.wav", 5);
	fEngine.Play(0, false, 6 * kSecond);
	ASSERT_TRUE(WaitForPosition(6500));
	fEngine.SeekBy(-4 * kSecond);
	ASSERT_TRUE(fTold.WaitFor([&] { return fState.Info().positionMs < 4000; }));
	ASSERT_TRUE(WaitForPosition(2900)); // and it plays on from there
	EXPECT_LT(fState.Info().positionMs, 4000);
	EXPECT_EQ(Title(), "1.wav");

	fEngine.SeekTo(7 * kSecond);
	ASSERT_TRUE(WaitForPosition(7300));
	fEngine.Pause();
	ASSERT_TRUE(fTold.WaitFor([&] { return fState.Info().state == PlayState::kPaused; }));
	fEngine.SeekTo(8 * kSecond);
	ASSERT_TRUE(WaitForPosition(7900));
	snooze(300 * kMs);
	EXPECT_NEAR(fState.Info().positionMs, 8000, 40);
	EXPECT_EQ(fState.Info().state, PlayState::kPaused);
	fEngine.Resume();
	ASSERT_TRUE(WaitForPosition(8100));
	EXPECT_EQ(Title(), "1.wav");
	fEngine.SeekBy(2 * kSecond); // beyond the end
	ASSERT_TRUE(WaitForTitle("2.wav"));
	EXPECT_LT(fState.Info().positionMs, 1000);

	fEngine.Play(0, false, 7 * kSecond);
	ASSERT_TRUE(WaitForTitle("1.wav"));
	ASSERT_TRUE(WaitForPosition(7300));
	fEngine.Pause();
	fEngine.SeekTo(10 * kSecond);
	ASSERT_TRUE(WaitForTitle("2.wav"));
	snooze(300 * kMs);
	EXPECT_EQ(fState.Info().positionMs, 0);
	EXPECT_EQ(fState.Info().state, PlayState::kPaused);

	fEngine.Play(0, false, 7 * kSecond);
	ASSERT_TRUE(WaitForTitle("1.wav"));
	ASSERT_TRUE(WaitForPosition(7300));
	fEngine.Play(1, true);
	fEngine.SeekBy(-kSecond); // ends the fade, and is no way back
	ASSERT_TRUE(WaitForTitle("2.wav"));
}

TEST_F(EngineTest, SeeksInAPauseWhileTheNextSongIsOpened)
{
	AddWave("1.wav", 9);
	AddWave("2.wav", 5);
	for (int i = 0; i < 12; i++) {
		fEngine.Play(0, false, 7 * kSecond);
		ASSERT_TRUE(fTold.WaitFor([&] { return fState.Info().positionMs < 7900; }));
		ASSERT_TRUE(WaitForPosition(7005));
		snooze(i * 2 * kMs);
		fEngine.Pause();
		fEngine.SeekTo(8 * kSecond);
		EXPECT_TRUE(WaitForPosition(7995)) << i << " " << fState.Info().positionMs;
	}
}

TEST_F(EngineTest, GoesToTheNextAndThePreviousSong)
{
	AddWave("1.wav", 20);
	AddText("2.wav", "");
	AddWave("3.wav", 20);
	fEngine.Play(0);
	ASSERT_TRUE(WaitForTitle("1.wav"));
	fEngine.Next();
	ASSERT_TRUE(WaitForTitle("3.wav"));
	fEngine.Previous(); // over the one that failed
	ASSERT_TRUE(WaitForTitle("1.wav"));
	fEngine.SeekTo(8 * kSecond);
	ASSERT_TRUE(WaitForPosition(8000));
	fEngine.Previous(); // well into the song: to its start
	ASSERT_TRUE(fTold.WaitFor([&] { return fState.Info().positionMs < 1000; }));
	EXPECT_EQ(Title(), "1.wav");
}

TEST_F(EngineTest, QuickKeysDoWhatSlowOnesDo)
{
	for (const char* name : {"1.wav", "2.wav", "3.wav", "4.wav"})
		AddWave(name, 20);
	fEngine.Play(0, false, 10 * kSecond);
	ASSERT_TRUE(WaitForPosition(10000));
	fEngine.Next();
	fEngine.Next();
	ASSERT_TRUE(WaitForTitle("3.wav"));
	fEngine.SeekTo(8 * kSecond);
	ASSERT_TRUE(WaitForPosition(8000));
	fEngine.Next();
	fEngine.Previous();
	ASSERT_TRUE(fTold.WaitFor([&] { // the fourth may be heard between the two
		const QuboInfo info = fState.Info();
		return strcmp(info.title, "3.wav") == 0 && info.positionMs < 4000;
	}));
	ASSERT_TRUE(WaitForPosition(100));
	EXPECT_EQ(Title(), "3.wav");
	fEngine.TogglePause();
	fEngine.TogglePause();
	ASSERT_TRUE(WaitForPosition(fState.Info().positionMs + 500));
	EXPECT_EQ(fState.Info().state, PlayState::kPlaying);
}

TEST_F(EngineTest, AStopThatIsAskedForIsNoEndOfTheList)
{
	AddWave("1.wav", 1);
	for (int i = 0; i < 10; i++) {
		fEngine.Play(0);
		snooze(i * 8 * kMs); // before it is opened, before it is heard, and while it is
		fEngine.Stop();
		snooze(20 * kMs);
	}
	EXPECT_EQ(fTold.ended, 0);
	fEngine.Play(0);
	ASSERT_TRUE(fTold.WaitForEnd());
	EXPECT_EQ(fTold.ended, 1);
}

TEST_F(EngineTest, FadesForHalfASecond)
{
	AddWave("1.wav", 20);
	AddWave("2.wav", 20);
	fEngine.Play(0);
	ASSERT_TRUE(WaitForPosition(50));
	bigtime_t fastest = kSecond;
	for (int i = 0; i < 3; i++) { // a busy machine may be slow, but not always
		bigtime_t start = system_time();
		fEngine.Play(1, true);
		ASSERT_TRUE(WaitForTitle("2.wav"));
		EXPECT_GE((system_time() - start) / kMs, 500);
		start = system_time();
		fEngine.Play(0, false);
		ASSERT_TRUE(WaitForTitle("1.wav"));
		fastest = std::min(fastest, system_time() - start);
	}
	EXPECT_LT(fastest, 400 * kMs);
}

TEST_F(EngineTest, StartsWithinASongOnlyWhatItIsToldTo)
{
	AddWave("1.wav", 2);
	AddWave("2.wav", 2);
	fEngine.Play(0, false, kSecond);
	ASSERT_TRUE(WaitForTitle("1.wav"));
	EXPECT_GE(fState.Info().positionMs, 990);
	ASSERT_TRUE(WaitForTitle("2.wav"));
	EXPECT_LT(fState.Info().positionMs, 1000);
}

TEST_F(EngineTest, BeginsWithTheSongItIsToldTo)
{
	AddWave("1.wav", 0.3);
	AddWave("2.wav", 0.3);
	AddWave("3.wav", 0.3);
	fEngine.Play(2);
	ASSERT_TRUE(fTold.WaitForEnd());
	EXPECT_EQ(Title(), "3.wav");
	PlaylistEntry entry;
	ASSERT_TRUE(fState.GetEntry(0, entry));
	EXPECT_FALSE(entry.played);
}

TEST_F(EngineTest, PlaysASongToItsEndBeforeAFileThatCannotBePlayed)
{
	AddWave("1.wav", 1.5);
	AddText("2.wav", "no sound");
	AddWave("3.wav", 1);
	fEngine.Play(0);
	ASSERT_TRUE(WaitForPosition(500));
	const bigtime_t start = Start();
	ASSERT_TRUE(WaitForTitle("3.wav"));
	EXPECT_GE(system_time() - start, 1480 * kMs); // all of the first was heard
	EXPECT_THAT(fTold.failed, ElementsAre(1));
}

TEST_F(EngineTest, GoesOnToWhatIsAddedWhileTheLastSongPlays)
{
	AddWave("1.wav", 2);
	fEngine.Play(0);
	ASSERT_TRUE(WaitForTitle("1.wav"));
	AddWave("2.wav", 1);
	fEngine.ListChanged();
	ASSERT_TRUE(WaitForTitle("2.wav"));
	EXPECT_EQ(fTold.ended, 0);
}

TEST_F(EngineTest, PlaysWhatIsAddedLater)
{
	AddWave("1.wav", 0.3);
	fEngine.Play(0);
	ASSERT_TRUE(fTold.WaitForEnd());
	fEngine.Play(AddWave("2.wav", 1));
	ASSERT_TRUE(WaitForTitle("2.wav"));
	ASSERT_TRUE(fTold.WaitFor([&] { return fTold.ended == 2; }));
	fEngine.Resume(); // once more
	ASSERT_TRUE(fTold.WaitFor([&] { return fTold.ended == 3; }));
}

TEST_F(EngineTest, SongsAreNamedBeforeTheyPlay)
{
	AddWave("1.wav", 20, "One", "Band");
	AddText("2.wav", "This is no music.\n");
	AddWave("3.wav", 0.5, "Three", "Band");
	fEngine.Play(0);
	ASSERT_TRUE(WaitForTitle("Band - One")); // already before it is heard
	TagReader reader(fState, [] {});
	reader.Wake();
	PlaylistEntry entry;
	ASSERT_TRUE(
		fTold.WaitFor([&] { return fState.GetEntry(2, entry) && entry.title == "Band - Three"; }));
	EXPECT_EQ(entry.lengthMs, 500);
	EXPECT_FALSE(entry.played);
	AddWave("4.wav", 0.5, "Three", "Band");
	reader.Wake();
	ASSERT_TRUE(fTold.WaitFor(
		[&] { return fState.GetEntry(3, entry) && entry.title == "Band - Three (2)"; }));
	EXPECT_FALSE(fState.Describe(0, {"Other", "Name"})); // not while it plays
	EXPECT_EQ(Title(), "Band - One");
}

TEST(EngineEnd, ComesAtOnceWhateverItDoes)
{
	setenv("QUBO_AO", "null", 1);
	TempFolder dir;
	write_wave(dir.Path() + "/1.wav", 2); // the end of a list is heard, so none is near
	std::mt19937 random(7);
	std::vector<bigtime_t> times[2]; // without and with a fade, which takes longer than the end may
	for (int i = 0; i < 26; i++) {
		const bool fades = i % 2 == 1;
		PlayState state;
		Recorder told(state);
		for (int j = 0; j < 5; j++)
			state.Add(dir.Path() + "/1.wav");
		bigtime_t start;
		{
			Engine engine(state, told);
			engine.Play(0);
			snooze(random() % (300 * kMs));
			engine.Play(3, fades);
			snooze(random() % (30 * kMs));
			start = system_time();
		}
		times[fades].push_back(system_time() - start);
	}
	for (auto& series : times) {
		std::sort(series.begin(), series.end());
		EXPECT_LT(series[series.size() / 2], 400 * kMs);
	}
}

} // namespace
