#include "player/CommandLine.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

TEST(CommandLine, TakesOptionsAnywhereAndFilesAsWritten)
{
	CommandLine line;
	std::string error;
	ASSERT_TRUE(line.Parse(
		{"a.ogg", "--headless", "--print", "--volume", "30", "--start=1.5", "--add-ons", "dir",
			"--snapshot=p.png", "--shift", "-250", "--at", "12.25", "-", "--", "--help", "b.ogg"},
		error))
		<< error;
	EXPECT_THAT(line.files, ElementsAre("a.ogg", "-", "--help", "b.ogg"));
	EXPECT_TRUE(line.headless);
	EXPECT_TRUE(line.print);
	EXPECT_FALSE(line.help);
	EXPECT_EQ(line.volume, 30);
	EXPECT_EQ(line.start, 1500000);
	EXPECT_EQ(line.shift, -250);
	EXPECT_EQ(line.addOns, "dir");
	EXPECT_EQ(line.snapshot, "p.png");
	EXPECT_EQ(line.snapshotTime, 12250000);
}

TEST(CommandLine, FollowsPlayersThatMayBeNamed)
{
	std::string error;
	CommandLine any;
	ASSERT_TRUE(any.Parse({"--follow", "--headless", "--print"}, error)) << error;
	EXPECT_TRUE(any.follow);
	EXPECT_THAT(any.players, ElementsAre());
	CommandLine some;
	ASSERT_TRUE(some.Parse({"--ignore", "a", "--follow", "mpv,vlc", "--ignore=b,c"}, error))
		<< error;
	EXPECT_TRUE(some.follow);
	EXPECT_THAT(some.players, ElementsAre("mpv", "vlc"));
	EXPECT_THAT(some.ignored, ElementsAre("a", "b", "c"));
	CommandLine last;
	ASSERT_TRUE(last.Parse({"--follow=mpv", "--lyrics-folder", "l"}, error)) << error;
	EXPECT_THAT(last.players, ElementsAre("mpv"));
	EXPECT_EQ(last.lyricsFolder, "l");
}

struct WrongCase {
	const char* name;
	std::vector<std::string> arguments;
	const char* message; // a part of it
};

const WrongCase kWrongCases[] = {
	{"unknown option", {"--loud", "a.ogg"}, "--loud"},
	{"unknown short option", {"-x", "a.ogg"}, "-x"},
	{"no value", {"a.ogg", "--volume"}, "--volume needs"},
	{"no number", {"--volume", "loud"}, "loud"},
	{"number with a rest", {"--volume", "30%"}, "30%"},
	{"volume too high", {"--volume", "101"}, "101"},
	{"volume too low", {"--volume=-1"}, "-1"},
	{"shift too large", {"--shift", "10001"}, "10001"},
	{"shift too small", {"--shift=-10001"}, "-10001"},
	{"shift with a unit", {"--shift", "40ms"}, "40ms"},
	{"shift of two signs", {"--shift", "+-40"}, "+-40"},
	{"no shift", {"--shift", "+"}, "--shift"},
	{"negative time", {"--start", "-1"}, "-1"},
	{"no time", {"--start", "nan"}, "nan"},
	{"endless time", {"--start", "inf"}, "inf"},
	{"empty path", {"--snapshot=", "a.ogg"}, "--snapshot"},
	{"value for a switch", {"--print=yes"}, "--print"},
	{"a time without a picture", {"--at", "3", "a.ogg"}, "--snapshot"},
	{"an explanation with a picture", {"--explain", "--snapshot", "p.png", "a.ogg"}, "--explain"},
	{"files while following", {"--follow=mpv", "a.ogg"}, "no files"},
	{"following and not", {"--follow", "--no-follow"}, "--no-follow"},
	{"empty name", {"--follow=mpv,"}, "--follow"},
	{"no end to wait for", {"--follow", "--snapshot", "p.png"}, "--at"},
	{"headless without files", {"--headless"}, "--headless"},
};

TEST(CommandLine, SaysWhatIsWrong)
{
	for (const WrongCase& row : kWrongCases) {
		CommandLine line;
		std::string error;
		EXPECT_FALSE(line.Parse(row.arguments, error)) << row.name;
		EXPECT_THAT(error, HasSubstr(row.message)) << row.name;
	}
}

TEST(CommandLine, NamesEveryOptionInItsHelp)
{
	for (const char* option : {"--help", "--version", "--explain", "--add-ons", "--headless",
			 "--snapshot", "--at", "--print", "--volume", "--shift", "--start"})
		EXPECT_THAT(CommandLine::HelpText(), HasSubstr(option));
}

TEST(CommandLine, HelpNeedsNothingElse)
{
	CommandLine line;
	std::string error;
	EXPECT_TRUE(line.Parse({"--headless", "--help"}, error));
	EXPECT_TRUE(line.help);
}

} // namespace
