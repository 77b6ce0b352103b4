#include "Child.h"
#include "WaveFile.h"
#include "support/temp_folder.h"
#include "support/wait_until.h"

#include <File.h>
#include <Message.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <random>
#include <sstream>

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

/*!	The whole program as its user runs it, without a screen and without a sound. */
class Program : public testing::Test {
protected:
	void SetUp() override { std::filesystem::create_directory(AddOns()); }

	std::string Path(const std::string& name) const { return fDir / name; }
	std::string AddOns() const { return Path("add-ons"); }
	std::string Wave(const std::string& name, double seconds, const std::string& title = "")
	{
		write_wave(Path(name), seconds, title, title.empty() ? "" : "Band");
		return Path(name);
	}
	std::string Text(const std::string& name, const std::string& text)
	{
		return fDir.Write(name, text);
	}
	void InstallProbe() { std::filesystem::copy_file(PROBE_ADD_ON, AddOns() + "/gen_probe.so"); }

	Child Start(
		std::vector<std::string> arguments, std::map<std::string, std::string> environment = {})
	{
		std::vector<std::string> words = {QUBO, "--add-ons", AddOns()};
		words.insert(words.end(), arguments.begin(), arguments.end());
		environment.insert({{"QUBO_AO", "null"}, {"ADD_ON_LOG", Path("log")}, {"HOME", fDir.Path()},
			{"XDG_CONFIG_HOME", Path("config")}, {"XDG_RUNTIME_DIR", fDir.Path()},
			{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", ""}});
		return Child(words, environment);
	}

	void InstallAddOn() { std::filesystem::copy_file(ADD_ON, AddOns() + "/gen_TavoraD.so"); }

	//! As a desktop starts it, with the windows on no screen: it shares the session of this test.
	std::unique_ptr<Child> StartInSession(const std::vector<std::string>& arguments)
	{
		std::vector<std::string> words = {QUBO};
		words.insert(words.end(), arguments.begin(), arguments.end());
		const std::map<std::string, std::string> environment
			= {{"QUBO_AO", "null"}, {"HOME", fDir.Path()}, {"XDG_CONFIG_HOME", Path("config")},
				{"XDG_RUNTIME_DIR", fDir.Path()}, {"LC_ALL", "C.UTF-8"}, {"LANGUAGE", ""},
				{"QT_QPA_PLATFORM", "offscreen"}, {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/none"}};
		return std::make_unique<Child>(words, environment);
	}

	//! Until the running one plays that file.
	bool WaitUntilPlays(const std::string& file)
	{
		std::string said;
		const bool plays = wait_until(
			[&] {
				const auto child = StartInSession({"--explain"});
				child->WaitForExit();
				said = child->output + child->errors;
				return child->output.find(": " + file + "\n") != std::string::npos;
			},
			std::chrono::seconds(30));
		EXPECT_TRUE(plays) << said;
		return plays;
	}

	//! What the probe noted.
	std::vector<std::string> Log() const
	{
		std::vector<std::string> lines;
		std::ifstream file(Path("log"));
		for (std::string line; std::getline(file, line);)
			lines.push_back(line.substr(0, line.find_last_not_of(' ') + 1));
		return lines;
	}

	TempFolder fDir;
};

TEST_F(Program, TellsItsVersionAndItsUse)
{
	Child version = Start({"--version"});
	EXPECT_EQ(version.WaitForExit(), 0);
	EXPECT_THAT(version.output, StartsWith("qubo "));
	Child help = Start({"--help"});
	EXPECT_EQ(help.WaitForExit(), 0);
	EXPECT_THAT(help.output, HasSubstr("--headless"));
}

TEST_F(Program, SpeaksTheDesktopsLanguage)
{
	const struct {
		const char* locale;
		const char* text;
	} kCases[] = {
		{"C", "Cannot play /100%2.ogg: it is not there"},
		{"sv_SE.UTF-8", "Cannot play /100%2.ogg: it is not there"},
		{"ja_JP.UTF-8", "/100%2.ogg を再生できません：見つかりません"},
		{"de_AT.UTF-8", "/100%2.ogg kann nicht abgespielt werden: nicht vorhanden"},
	};
	for (const auto& each : kCases) {
		Child child = Start({"--headless", "/100%2.ogg"}, {{"LC_ALL", each.locale}});
		EXPECT_NE(child.WaitForExit(), -1) << each.locale;
		EXPECT_THAT(child.errors, HasSubstr(each.text)) << each.locale;
	}
}

TEST_F(Program, RefusesWrongUse)
{
	Child unknown = Start({"--loud"});
	EXPECT_EQ(unknown.WaitForExit(), 2);
	EXPECT_THAT(unknown.errors, HasSubstr("--loud"));
	Child nothing = Start({"--headless"});
	EXPECT_EQ(nothing.WaitForExit(), 2);
}

TEST_F(Program, SaysThatThereIsNoScreen)
{
	using Environment = std::map<std::string, std::string>;
	for (Environment environment : {Environment{{"DISPLAY", ""}, {"WAYLAND_DISPLAY", ""}},
			 Environment{{"DISPLAY", ":54321"}, {"WAYLAND_DISPLAY", ""}},
			 Environment{{"DISPLAY", ""}, {"WAYLAND_DISPLAY", "wayland-0"}},
			 Environment{{"QT_QPA_PLATFORM", "wayland"}, {"WAYLAND_DISPLAY", "wayland-0"}}}) {
		environment.insert({"QT_QPA_PLATFORM", ""});
		Child child = Start({Wave("1.wav", 0.1)}, environment);
		EXPECT_EQ(child.WaitForExit(), 3);
		EXPECT_THAT(child.errors, HasSubstr("no screen"));
		EXPECT_EQ(std::count(child.errors.begin(), child.errors.end(), '\n'), 1) << child.errors;
	}
}

TEST_F(Program, PlaysToTheEnd)
{
	Child child = Start({"--headless", Wave("1.wav", 0.4), Wave("2.wav", 0.4)});
	EXPECT_EQ(child.WaitForExit(), 0) << child.errors;
	EXPECT_GE(child.duration, 0.8);
	EXPECT_LT(child.duration, 20);
}

TEST_F(Program, FailsWhenNothingCanBePlayed)
{
	Child missing = Start({"--headless", Path("missing.ogg")});
	EXPECT_EQ(missing.WaitForExit(), 1);
	EXPECT_THAT(missing.errors, HasSubstr("missing.ogg"));
	Child bad
		= Start({"--headless", Text("empty.wav", ""), Text("text.mp3", "This is no music.\n")});
	EXPECT_EQ(bad.WaitForExit(), 1);
	EXPECT_THAT(bad.errors, HasSubstr("empty.wav"));
	EXPECT_THAT(bad.errors, HasSubstr("text.mp3"));
}

TEST_F(Program, PassesOverBadFiles)
{
	Child child = Start({"--headless", Text("bad.wav", "x"), Wave("good.wav", 0.3)});
	EXPECT_EQ(child.WaitForExit(), 0);
	EXPECT_THAT(child.errors, HasSubstr("bad.wav"));
	EXPECT_THAT(child.errors, Not(HasSubstr("good.wav")));
}

TEST_F(Program, AnswersTheFrontEndProtocolToItsAddOns)
{
	InstallProbe();
	std::string first = Wave("1.wav", 2, "Song");
	std::string second = Wave("2.wav", 1, "Song");
	Child child = Start({"--headless", first, second});
	EXPECT_EQ(child.WaitForExit(), 0) << child.errors;
	std::vector<std::string> log = Log();
	EXPECT_THAT(log, Contains("info 1 2000 Band - Song"));
	EXPECT_THAT(log, Contains("count 2"));
	EXPECT_THAT(log, Contains("no entry -1"));
	EXPECT_THAT(log, Contains("entry 0 " + first + " Band - Song 2 0 1"));
	EXPECT_THAT(log,
		Contains(testing::AnyOf("entry 1 " + second + " 2.wav 0 1 0",
			"entry 1 " + second + " Band - Song (2) 1 1 0"))); // its tags are read or not yet
	EXPECT_THAT(log, Contains("no entry 2"));
	EXPECT_THAT(log, Contains("current " + first));
	EXPECT_THAT(log, Contains("windows 2"));
	EXPECT_THAT(log, Contains("entry without index 1 0"));
	EXPECT_THAT(log, Contains("window 1"));
	EXPECT_THAT(log, Contains("playing Band - Song (2)"));
	ASSERT_GE(log.size(), 2u);
	EXPECT_EQ(log[log.size() - 2], "cleanup");
	EXPECT_EQ(log.back(), "count at the end 2"); // answered until the very end
}

TEST_F(Program, PrintsEachLineWithItsTime)
{
	InstallProbe();
	Child child = Start({"--headless", "--print", Wave("1.wav", 3)});
	EXPECT_EQ(child.WaitForExit(), 0) << child.errors;
	std::istringstream lines(child.output);
	std::vector<int> numbers;
	std::vector<int> late; // ms
	for (std::string line; std::getline(lines, line);) {
		int minutes;
		int seconds;
		int hundredths;
		int number;
		ASSERT_EQ(line.size(), strlen("[00:00.00] line 0")) << line;
		ASSERT_EQ(
			sscanf(line.c_str(), "[%2d:%2d.%2d] line %d", &minutes, &seconds, &hundredths, &number),
			4)
			<< line;
		int ms = minutes * 60000 + seconds * 1000 + hundredths * 10;
		numbers.push_back(number);
		if (numbers.back() > 0) { // the view looks every 10 ms
			EXPECT_GE(ms, numbers.back() * 500) << line;
			late.push_back(ms - numbers.back() * 500);
		}
	}
	ASSERT_GE(late.size(), 3u) << child.output;
	std::sort(late.begin(), late.end());
	EXPECT_LE(late[late.size() / 2], 300)
		<< child.output; // a busy machine may be slow, but not always
	// each that the view has shown since it was found, and no other
	std::ifstream noted(Path("log.lines"));
	const std::vector<int> shown{std::istream_iterator<int>(noted), {}};
	EXPECT_NE(std::search(shown.begin(), shown.end(), numbers.begin(), numbers.end()), shown.end())
		<< child.output;
}

TEST_F(Program, ShiftsThePositionWithinTheSong)
{
	InstallProbe(); // a line is 500 ms
	Wave("1.wav", 1);
	Child early = Start({"--headless", "--print", "--shift", "5000", Path("1.wav")});
	EXPECT_EQ(early.WaitForExit(), 0) << early.errors;
	EXPECT_EQ(early.output, "[00:01.00] line 2\n");
	Child late = Start({"--headless", "--print", "--shift=-5000", Path("1.wav")});
	EXPECT_EQ(late.WaitForExit(), 0) << late.errors;
	EXPECT_EQ(late.output, "[00:00.00] line 0\n");
}

TEST_F(Program, SavesAPictureOfTheLyricsWindow)
{
	InstallProbe();
	std::string song = Wave("1.wav", 1);
	for (const std::vector<std::string>& when :
		{std::vector<std::string>{}, std::vector<std::string>{"--at", "0.3"}}) {
		std::vector<std::string> arguments
			= {"--headless", "--snapshot", Path("picture.png"), song};
		arguments.insert(arguments.end(), when.begin(), when.end());
		Child child = Start(arguments);
		EXPECT_EQ(child.WaitForExit(), 0) << child.errors;
		std::ifstream file(Path("picture.png"), std::ios::binary);
		std::string picture((std::istreambuf_iterator<char>(file)), {});
		EXPECT_THAT(picture, StartsWith("\x89PNG"));
		EXPECT_EQ(picture.substr(16, 8), std::string("\0\0\0\xc8\0\0\0\x64", 8)); // 200 x 100
		std::filesystem::remove(Path("picture.png"));
	}
}

TEST_F(Program, FailsWhenThereIsNoPictureToSave)
{
	Child none = Start({"--headless", "--snapshot", Path("picture.png"), Wave("1.wav", 0.3)});
	EXPECT_EQ(none.WaitForExit(), 1);
	InstallProbe();
	Child nowhere = Start({"--headless", "--snapshot", Path("no/where.png"), Path("1.wav")});
	EXPECT_EQ(nowhere.WaitForExit(), 1);
	EXPECT_THAT(nowhere.errors, HasSubstr("where.png"));
}

TEST_F(Program, EndsInOrderWithinASecondOnASignal)
{
	InstallProbe();
	Wave("1.wav", 20);
	double fastest = 10; // a busy machine may be slow, but not always
	for (int signal : {SIGINT, SIGTERM, SIGHUP}) {
		std::filesystem::remove(Path("log"));
		Child child = Start({"--headless", "--print", Path("1.wav")});
		ASSERT_TRUE(child.WaitForOutput("line 1")) << child.errors;
		double before = Child::Now();
		child.Kill(signal);
		EXPECT_EQ(child.WaitForExit(), 0) << child.errors;
		fastest = std::min(fastest, Child::Now() - before);
		ASSERT_THAT(Log(), Not(IsEmpty()));
		EXPECT_EQ(Log().back(), "count at the end 1");
	}
	EXPECT_LT(fastest, 1);
}

TEST_F(Program, EndsWhileItWaitsForLyricsToExplain)
{
	Child child = Start({"--headless", "--explain", Wave("1.wav", 0.1), Wave("2.wav", 0.1)});
	ASSERT_TRUE(child.WaitForOutput("No lyrics")) << child.errors;
	// Now it waits for those of the second song, of which nothing will be known for five seconds.
	const double before = Child::Now();
	child.Kill(SIGTERM);
	EXPECT_EQ(child.WaitForExit(), 0) << child.errors;
	EXPECT_LT(Child::Now() - before, 3);
	EXPECT_THAT(child.output, Not(HasSubstr("2.wav")));
}

TEST_F(Program, EndsWellWheneverItIsAskedTo)
{
	InstallAddOn();
	Wave("1.wav", 20);
	Text("1.lrc", "[00:00.00]one\n[00:00.20]two\n[00:00.40]three\n");
	int saved = 0;
	std::mt19937 random(11);
	std::vector<double> times;
	for (int i = 0; i < 40; i++) {
		Child child = Start({"--headless", Path("1.wav")});
		usleep(random() % 400000);
		const double before = Child::Now();
		child.Kill(SIGTERM);
		const int code = child.WaitForExit();
		// before main() has set anything up a signal still ends it at once
		EXPECT_TRUE(code == 0 || (code == 128 + SIGTERM && child.output.empty())) << code << "\n"
																				  << child.errors;
		times.push_back(Child::Now() - before);
		std::error_code none;
		for (auto& entry : std::filesystem::recursive_directory_iterator(Path("config"), none)) {
			BFile file(entry.path().c_str(), B_READ_ONLY);
			BMessage archive;
			if (entry.is_regular_file()) {
				EXPECT_EQ(archive.Unflatten(&file), B_OK) << entry.path();
				saved++;
			}
		}
	}
	EXPECT_GT(saved, 0);
	std::sort(times.begin(), times.end());
	EXPECT_LT(times[times.size() / 4], 1); // a busy machine may be slow, but not always
}

TEST_F(Program, ExplainsWhereTheLyricsComeFrom)
{
	InstallAddOn();
	Text("sjis.lrc", "[00:01]\x83\x65\x83\x58\x83\x67\n[00:02]\x8e\x8c\n");
	Text("words.txt", "no times\nat all");
	Text("capital.Lrc", "[00:01]one");
	std::filesystem::create_directory(Path("folder.lrc"));
	Child child = Start({"--explain", Wave("sjis.wav", 0.1, "Title"), Wave("words.wav", 0.1),
		Wave("capital.wav", 0.1), Wave("folder.wav", 0.1)});
	EXPECT_EQ(child.WaitForExit(), 0) << child.errors;
	EXPECT_EQ(child.output,
		"Title: Band - Title\nEntry 1: " + Path("sjis.wav") + "\nLyrics: " + Path("sjis.lrc")
			+ "\nEncoding: Shift-JIS, recognised by the text\nLines: 2, at 2 different times\n"
			+ "\nTitle: words.wav\nEntry 2: " + Path("words.wav") + "\nLyrics: " + Path("words.txt")
			+ "\nEncoding: UTF-8, recognised by the text\n" + "Lines: 2, at 0 different times\n"
			+ "No line has a time: the first one stays highlighted.\n"
			+ "\nTitle: capital.wav\nEntry 3: " + Path("capital.wav")
			+ "\nNo lyrics: beside the song there is neither capital.lrc nor capital.txt\n"
			+ "capital.Lrc is there, but in such a name capitals count\n"
			+ "\nTitle: folder.wav\nEntry 4: " + Path("folder.wav")
			+ "\nNo lyrics: " + Path("folder.lrc") + " cannot be read: it is a folder\n");
	std::filesystem::remove(AddOns() + "/gen_TavoraD.so");
	Child bare = Start({"--explain", Path("sjis.wav"), Path("none.wav")});
	EXPECT_EQ(bare.WaitForExit(), 1);
	EXPECT_THAT(bare.output, HasSubstr("No lyrics: no add-on shows lyrics"));
	EXPECT_THAT(bare.errors, HasSubstr("none.wav"));
	EXPECT_EQ(StartInSession({"--explain"})->WaitForExit(), 1);
}

TEST_F(Program, HandsItsFilesToTheOneThatRuns)
{
	const std::string song = Wave("1.wav", 60);
	const std::string other = Wave("曲 #2 %41.wav", 60);
	const auto first = StartInSession({song});
	ASSERT_TRUE(WaitUntilPlays(song)) << first->errors;

	std::filesystem::create_directory(Path("folder"));
	const auto second = StartInSession({Path("folder/../曲 #2 %41.wav"), song});
	EXPECT_EQ(second->WaitForExit(), 0) << second->errors;
	EXPECT_TRUE(WaitUntilPlays(other));
	const auto missing = StartInSession({Path("none.wav")});
	EXPECT_EQ(missing->WaitForExit(), 1);
	EXPECT_THAT(missing->errors, HasSubstr("none.wav"));

	// more than a port takes at a time
	const std::string last = Wave(std::string(200, 'x') + ".wav", 60);
	std::vector<std::string> many(3000, song);
	many[0] = last;
	const auto big = StartInSession(many);
	EXPECT_EQ(big->WaitForExit(), 0) << big->errors;
	EXPECT_TRUE(WaitUntilPlays(last));

	EXPECT_FALSE(first->HasExited());
	first->Kill(SIGTERM);
	EXPECT_EQ(first->WaitForExit(), 0) << first->errors;
}

TEST_F(Program, PlaysItselfWhenTheFirstOneIsDeadOrDeaf)
{
	const std::string song = Wave("1.wav", 60);
	const std::string other = Wave("2.wav", 60);
	const auto crashed = StartInSession({song});
	ASSERT_TRUE(WaitUntilPlays(song)) << crashed->errors;
	crashed->Kill(SIGKILL);
	EXPECT_EQ(crashed->WaitForExit(), 128 + SIGKILL);
	const auto next = StartInSession({other});
	EXPECT_TRUE(WaitUntilPlays(other));
	next->Kill(SIGSTOP);
	const auto alone = StartInSession({song});
	EXPECT_FALSE(wait_until([&] { return alone->HasExited(); }, std::chrono::seconds(5)));
	alone->Kill(SIGTERM);
	EXPECT_EQ(alone->WaitForExit(), 0) << alone->errors;
	next->Kill(SIGCONT);
	EXPECT_TRUE(WaitUntilPlays(other)) << "it has taken what the other one played itself";
	next->Kill(SIGTERM);
	EXPECT_EQ(next->WaitForExit(), 0) << next->errors;
}

TEST_F(Program, TakesNoRequestsWhenItHasFoundNothingToPlay)
{
	for (int i = 0; i < 2000; i++) // takes it a while to look through
		std::filesystem::create_directories(Path("empty") + '/' + std::to_string(i));
	const auto first = StartInSession({Path("empty")});
	ASSERT_TRUE(wait_until([&] {
		return std::ranges::any_of(std::filesystem::directory_iterator(fDir.Path()),
			[](const auto& entry) { return entry.path().extension() == ".lock"; });
	}));
	const auto second = StartInSession({"--follow"});
	EXPECT_EQ(first->WaitForExit(), 1) << first->errors;
	EXPECT_TRUE(wait_until([&] { // it has not gone as well, but is the one that answers
		const auto question = StartInSession({"--explain"});
		question->WaitForExit();
		return question->errors.empty();
	})) << second->errors;
	second->Kill(SIGTERM);
	EXPECT_EQ(second->WaitForExit(), 0) << second->errors;
}

TEST_F(Program, OneOfSeveralThatStartAtOnceStays)
{
	const std::string song = Wave("1.wav", 60);
	std::vector<std::unique_ptr<Child>> children;
	for (int i = 0; i < 5; i++)
		children.push_back(StartInSession({song}));
	const auto still_there = [&] {
		return std::count_if(
			children.begin(), children.end(), [](auto& child) { return !child->HasExited(); });
	};
	EXPECT_TRUE(wait_until([&] { return still_there() == 1; }, std::chrono::seconds(30)));
	EXPECT_TRUE(WaitUntilPlays(song));
	EXPECT_EQ(still_there(), 1);
	for (auto& child : children) {
		child->Kill(SIGTERM);
		EXPECT_EQ(child->WaitForExit(), 0) << child->errors;
	}
}

} // namespace
