#include "player/PlayState.h"
#include "player/PositionClock.h"

#include <gmock/gmock.h>

namespace {

constexpr bigtime_t kSecond = 1000000;
constexpr bigtime_t kMs = 1000;

class Clock : public testing::Test {
protected:
	//! A song of 10 s that was at 2 s at 100 s of the system's time, and runs.
	void SetUp() override
	{
		fClock.SetLength(10 * kSecond);
		fClock.Jump(0);
		fClock.SetRunning(true, 100 * kSecond);
		fClock.Sample(2 * kSecond, 100 * kSecond);
	}

	bigtime_t At(bigtime_t afterMs) { return fClock.Position(100 * kSecond + afterMs * kMs) / kMs; }

	PositionClock fClock;
};

TEST_F(Clock, GoesOnBetweenSamples)
{
	EXPECT_EQ(At(0), 2000);
	EXPECT_EQ(At(1), 2001);
	EXPECT_EQ(At(1234), 3234);
}

TEST_F(Clock, StopsAtTheEndOfTheSong)
{
	EXPECT_EQ(At(7999), 9999);
	EXPECT_EQ(At(8000), 10000);
	EXPECT_EQ(At(60000), 10000);
}

TEST_F(Clock, GoesOnWithoutEndWhenTheLengthIsUnknown)
{
	fClock.SetLength(0);
	EXPECT_EQ(At(60000), 62000);
}

TEST_F(Clock, WaitsForASampleThatIsBehind)
{
	EXPECT_EQ(At(1000), 3000);
	fClock.Sample(2900 * kMs, 101 * kSecond); // the sound came late
	EXPECT_EQ(At(1000), 3000);
	EXPECT_EQ(At(1099), 3000);
	EXPECT_EQ(At(1100), 3000);
	EXPECT_EQ(At(1101), 3001);
}

TEST_F(Clock, FollowsASampleThatIsAhead)
{
	fClock.Sample(3500 * kMs, 101 * kSecond);
	EXPECT_EQ(At(1000), 3500);
	EXPECT_EQ(At(1500), 4000);
}

TEST_F(Clock, StandsWhilePausedAndGoesOnFromThere)
{
	fClock.SetRunning(false, 101 * kSecond);
	EXPECT_EQ(At(1000), 3000);
	EXPECT_EQ(At(5000), 3000);
	fClock.SetRunning(true, 105 * kSecond);
	EXPECT_EQ(At(5000), 3000);
	EXPECT_EQ(At(5500), 3500);
}

TEST_F(Clock, GoesBackOnlyByAJump)
{
	EXPECT_EQ(At(5000), 7000);
	fClock.Jump(1 * kSecond);
	EXPECT_EQ(At(5000), 1000);
	EXPECT_EQ(At(6000), 1000); // until the sound is there
	fClock.SetRunning(true, 106 * kSecond);
	fClock.Sample(1 * kSecond, 106 * kSecond);
	EXPECT_EQ(At(6250), 1250);
}

TEST_F(Clock, FollowsAPlayerThatIsElsewhere)
{
	fClock.Jump(9 * kSecond); // a seek that the player did not make
	fClock.SetRunning(true, 101 * kSecond);
	fClock.Sample(3 * kSecond, 101 * kSecond);
	EXPECT_EQ(At(1000), 3000);
	EXPECT_EQ(At(1500), 3500);
	fClock.Jump(60 * kSecond); // beyond the end
	EXPECT_EQ(At(1500), 10000);
}

TEST_F(Clock, IsZeroBeforeTheSoundIsHeard)
{
	fClock.Jump(0);
	fClock.SetRunning(true, 101 * kSecond);
	fClock.Sample(-400 * kMs, 101 * kSecond);
	EXPECT_EQ(At(1000), 0);
	EXPECT_EQ(At(1400), 0);
	EXPECT_EQ(At(1500), 100);
}

TEST(PlayState, TellsSongTitleAndPositionTogether)
{
	PlayState state;
	state.Add("/one.ogg");
	state.Add("/two.ogg");
	QuboInfo info = state.Info();
	EXPECT_EQ(info.state, PlayState::kStopped);
	EXPECT_STREQ(info.title, "");

	state.StartSong(0, {"Band", "One", 8 * kSecond}, 0);
	state.Sample(7500 * kMs, system_time());
	info = state.Info();
	EXPECT_EQ(info.state, PlayState::kPlaying);
	EXPECT_EQ(info.lengthMs, 8000);
	EXPECT_GE(info.positionMs, 7500);
	EXPECT_STREQ(info.title, "Band - One");

	state.StartSong(1, {"", "", 0}, 0);
	info = state.Info();
	EXPECT_EQ(info.positionMs, 0);
	EXPECT_EQ(info.lengthMs, 0);
	EXPECT_STREQ(info.title, "two.ogg");

	PlaylistEntry entry;
	ASSERT_TRUE(state.GetEntry(0, entry));
	EXPECT_EQ(entry.title, "Band - One");
	EXPECT_EQ(entry.lengthMs, 8000);
	EXPECT_TRUE(entry.played);
	EXPECT_FALSE(state.GetEntry(2, entry));
	EXPECT_FALSE(state.GetEntry(-1, entry));
}

TEST(PlayState, KeepsSongAndPositionAtTheEnd)
{
	PlayState state;
	state.Add("/one.ogg");
	state.StartSong(0, {"", "", 8 * kSecond}, 0);
	state.Sample(9 * kSecond, system_time());
	state.Stop();
	QuboInfo info = state.Info();
	EXPECT_EQ(info.state, PlayState::kStopped);
	EXPECT_EQ(info.positionMs, 8000);
	EXPECT_STREQ(info.title, "one.ogg");
}

TEST(PlayState, GoesOnByTheSongsEndAfterASeek)
{
	PlayState state;
	state.Add("/one.ogg");
	state.StartSong(0, {"", "", 8 * kSecond}, 0);
	state.Jump(6 * kSecond);
	const bigtime_t now = system_time();
	EXPECT_EQ(state.InfoAt(now + kSecond).positionMs, 6000);
	state.EndAt(now + 1500 * kMs);
	EXPECT_EQ(state.InfoAt(now).positionMs, 6500);
	EXPECT_EQ(state.InfoAt(now + kSecond).positionMs, 7500);
	state.EndAt(now + 9 * kSecond); // a clock that goes is left alone
	EXPECT_EQ(state.InfoAt(now + 1400 * kMs).positionMs, 7900);
	state.SetPaused(true);
	state.Jump(2 * kSecond);
	state.EndAt(now + kSecond);
	EXPECT_EQ(state.InfoAt(now + kSecond).positionMs, 2000);
}

TEST(PlayState, IsPausedFromTheStartOfASongThatBeginsPaused)
{
	PlayState state;
	state.Add("/one.ogg");
	state.SetPaused(true);
	EXPECT_EQ(state.Info().state, PlayState::kStopped);
	state.StartSong(0, {"", "", 8 * kSecond}, 0);
	state.Sample(2 * kSecond, system_time() - kSecond);
	QuboInfo info = state.Info();
	EXPECT_EQ(info.state, PlayState::kPaused);
	EXPECT_EQ(info.positionMs, 2000);
	state.SetPaused(false);
	EXPECT_EQ(state.Info().state, PlayState::kPlaying);
}

} // namespace
