#include "Child.h"
#include "PrivateBus.h"
#include "WaveFile.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <optional>

namespace {

/*!	The whole program beside the real player, on a bus of their own, without screen and sound. */
class FollowProgram : public testing::Test {
protected:
	//! A song of 60 s with a line each half second: "NAME at 0.0", "NAME at 0.5" and so on.
	std::string Song(const std::string& name)
	{
		std::string lyrics;
		for (int half = 0; half < 120; half++) {
			char line[80];
			snprintf(line, sizeof(line), "[%02d:%02d:%02d]%s at %d.%d\n", half / 120, half / 2,
				half % 2 * 50, name.c_str(), half / 2, half % 2 * 5);
			lyrics += line;
		}
		fDir.Write(name + ".lrc", lyrics);
		write_wave(fDir / (name + ".wav"), 60);
		return fDir / (name + ".wav");
	}
	std::map<std::string, std::string> Environment() const
	{
		return {{"DBUS_SESSION_BUS_ADDRESS", fBus.Address()}, {"HOME", fDir.Path()},
			{"XDG_CONFIG_HOME", fDir / "config"}, {"XDG_RUNTIME_DIR", fDir.Path()},
			{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", ""}};
	}
	void StartPlayer(const std::string& song, const std::string& start)
	{
		fPlayer.emplace(
			std::vector<std::string>{"/usr/bin/mpv", "--no-config", "--script=" MPRIS_PLUG_IN,
				"--no-video", "--ao=null", "--start=" + start, song},
			Environment());
	}
	Child StartQubo(std::vector<std::string> arguments)
	{
		arguments.insert(arguments.begin(), QUBO);
		return Child(arguments, Environment());
	}

	TempFolder fDir;
	PrivateBus fBus;
	std::optional<Child> fPlayer;
};

TEST_F(FollowProgram, PrintsWhatIsSungByAPlayerThatGoesAndComes)
{
	if (access(MPRIS_PLUG_IN, R_OK) != 0)
		GTEST_SKIP() << "mpv-mpris is not installed";
	StartPlayer(Song("One #1? 桜"), "10");
	Child qubo = StartQubo({"--headless", "--follow", "mpv", "--print"});
	ASSERT_TRUE(qubo.WaitForOutput("] One #1? 桜 at 1")) << qubo.errors << fPlayer->errors;
	fPlayer->Kill(SIGKILL);
	StartPlayer(Song("Two"), "30");
	ASSERT_TRUE(qubo.WaitForOutput("] Two at 3")) << qubo.output << qubo.errors;
	qubo.Kill(SIGTERM);
	EXPECT_EQ(qubo.WaitForExit(), 0);
}

TEST_F(FollowProgram, FollowsWhatRunsWhenItIsGivenNothingToPlay)
{
	if (access(MPRIS_PLUG_IN, R_OK) != 0)
		GTEST_SKIP() << "mpv-mpris is not installed";
	StartPlayer(Song("One"), "10");
	Child waiting = StartQubo({"--headless", "--follow", "--print"});
	ASSERT_TRUE(waiting.WaitForOutput("] One at")); // the player is there by now
	Child qubo = StartQubo({"--print"});
	EXPECT_TRUE(qubo.WaitForOutput("] One at")) << qubo.errors;
	qubo.Kill(SIGTERM);
	EXPECT_EQ(qubo.WaitForExit(), 0);
}

} // namespace
