#include "player/CommandLine.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

TEST(CommandLine, TakesOptionsAnywhereAndFilesAsWritten)
{
	CommandLine line;
	std::string error;
	ASSERT_TRUE(
		line.Parse({"a.ogg", "--headless", "--print", "--volume", "30", "--start=1.5", "--add-ons",
					   "dir", "--snapshot=p.png", "--at", "12.25", "-", "--", "--help", "b.ogg"},
			error))
		<< error;
	EXPECT_THAT(line.files, ElementsAre("a.ogg", "-", "--help", "b.ogg"));
	EXPECT_TRUE(line.headless);
	EXPECT_TRUE(line.print);
	EXPECT_FALSE(line.help);
	EXPECT_EQ(line.volume, 30);
	EXPECT_EQ(line.start, 1500000);
	EXPECT_EQ(line.addOns, "dir");
	EXPECT_EQ(line.snapshot, "p.png");
	EXPECT_EQ(line.snapshotTime, 12250000);
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
	{"negative time", {"--start", "-1"}, "-1"},
	{"no time", {"--start", "nan"}, "nan"},
	{"endless time", {"--start", "inf"}, "inf"},
	{"empty path", {"--snapshot=", "a.ogg"}, "--snapshot"},
	{"value for a switch", {"--print=yes"}, "--print"},
	{"a time without a picture", {"--at", "3", "a.ogg"}, "--snapshot"},
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
	for (const char* option : {"--help", "--version", "--add-ons", "--headless", "--snapshot",
			 "--at", "--print", "--volume", "--start"})
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
