#include "Child.h"
#include "PrivateBus.h"
#include "WaveFile.h"
#include "support/temp_folder.h"
#include "support/wait_until.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <memory>
#include <regex>

#include <systemd/sd-bus.h>

using testing::HasSubstr;

namespace {

/*!	The player on a bus of its own, seen by gdbus and by a connection that hears its signals. */
class PlayerServer : public testing::Test {
protected:
	void SetUp() override
	{
		std::filesystem::create_directory(fDir / "add-ons");
		write_wave(fDir / "1.wav", 60, "Song & \"Co\"", "Band");
		write_wave(fDir / "曲 #2?%41.wav", 60);
		sd_bus* bus = nullptr;
		ASSERT_GE(sd_bus_new(&bus), 0);
		fListener.reset(bus);
		ASSERT_GE(sd_bus_set_address(bus, fBus.Address().c_str()), 0);
		ASSERT_GE(sd_bus_set_bus_client(bus, 1), 0);
		ASSERT_GE(sd_bus_start(bus), 0);
		for (const char* rule :
			{"type='signal',member='PropertiesChanged'", "type='signal',member='Seeked'"})
			ASSERT_GE(sd_bus_add_match(bus, nullptr, rule, &Heard, this), 0);
	}

	std::unique_ptr<Child> Start(std::vector<std::string> arguments)
	{
		arguments.insert(arguments.begin(), {QUBO, "--add-ons", fDir / "add-ons"});
		return Run(arguments);
	}

	std::unique_ptr<Child> Run(const std::vector<std::string>& words)
	{
		return std::make_unique<Child>(words,
			std::map<std::string, std::string>{{"QUBO_AO", "null"}, {"HOME", fDir.Path()},
				{"XDG_CONFIG_HOME", fDir / "config"}, {"XDG_RUNTIME_DIR", fDir.Path()},
				{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", ""}, {"QT_QPA_PLATFORM", "offscreen"},
				{"DBUS_SESSION_BUS_ADDRESS", fBus.Address()}});
	}

	//! What gdbus prints; the errors if there are any.
	std::string Call(const std::string& method, const std::vector<std::string>& arguments = {},
		const std::string& name = "qubo")
	{
		std::vector<std::string> words = {"/usr/bin/gdbus", "call", "--session", "--timeout=10",
			"--dest=org.mpris.MediaPlayer2." + name, "--object-path=/org/mpris/MediaPlayer2",
			"--method=org." + method, "--"};
		words.insert(words.end(), arguments.begin(), arguments.end());
		const auto child = Run(words);
		child->WaitForExit();
		return child->output + child->errors;
	}

	std::string Player(const std::string& method, const std::vector<std::string>& arguments = {})
	{
		return Call("mpris.MediaPlayer2.Player." + method, arguments);
	}

	std::string Get(const std::string& property, const std::string& name = "qubo")
	{
		return Call(
			"freedesktop.DBus.Properties.Get", {"org.mpris.MediaPlayer2.Player", property}, name);
	}

	bool WaitFor(const std::string& property, const std::string& value)
	{
		std::string last;
		const bool is = wait_until(
			[&] {
				last = Get(property);
				return last.find(value) != std::string::npos;
			},
			std::chrono::seconds(30));
		EXPECT_TRUE(is) << property << ": " << last;
		return is;
	}

	int64_t Position()
	{
		std::smatch found;
		const std::string told = Get("Position");
		return std::regex_search(told, found, std::regex("int64 (\\d+)")) ? std::stoll(found[1])
																		  : -1;
	}

	//! What was heard so far.
	const std::string& Signals()
	{
		while (sd_bus_process(fListener.get(), nullptr) > 0)
			continue;
		return fHeard;
	}

	PrivateBus fBus;
	TempFolder fDir;

private:
	struct Close {
		void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
	};

	static int Heard(sd_bus_message* message, void* self, sd_bus_error*)
	{
		auto& heard = static_cast<PlayerServer*>(self)->fHeard;
		int64_t position;
		const char* property;
		heard += std::string(sd_bus_message_get_member(message)) + ":";
		if (sd_bus_message_is_signal(message, nullptr, "Seeked") > 0
			&& sd_bus_message_read(message, "x", &position) >= 0)
			heard += std::to_string(position / 1000000);
		else if (sd_bus_message_skip(message, "s") >= 0
			&& sd_bus_message_enter_container(message, 'a', "{sv}") >= 0) {
			while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
				if (sd_bus_message_read(message, "s", &property) >= 0)
					heard += std::string(property) + ",";
				sd_bus_message_skip(message, "v");
				sd_bus_message_exit_container(message);
			}
		}
		heard += "\n";
		return 0;
	}

	std::unique_ptr<sd_bus, Close> fListener;
	std::string fHeard;
};

TEST_F(PlayerServer, TellsWhatPlaysAndIsDriven)
{
	const auto program = Start({fDir / "1.wav", fDir / "曲 #2?%41.wav"});
	ASSERT_TRUE(WaitFor("PlaybackStatus", "Playing")) << program->errors;
	ASSERT_TRUE(WaitFor("CanSeek", "true"));
	const std::string metadata = Get("Metadata");
	EXPECT_THAT(metadata, HasSubstr("'mpris:trackid': <objectpath '/qubo/track/0'>"));
	EXPECT_THAT(metadata, HasSubstr("'mpris:length': <int64 60000000>"));
	EXPECT_THAT(metadata, HasSubstr("'xesam:title': <'Song & \"Co\"'>"));
	EXPECT_THAT(metadata, HasSubstr("'xesam:artist': <['Band']>"));
	EXPECT_THAT(metadata, HasSubstr("'xesam:url': <'file://" + fDir.Path() + "/1.wav'>"));
	EXPECT_THAT(Call("freedesktop.DBus.Properties.GetAll", {"org.mpris.MediaPlayer2"}),
		HasSubstr("'DesktopEntry': <'qubo'>"));

	EXPECT_THAT(Call("freedesktop.DBus.Properties.GetAll", {"org.mpris.MediaPlayer2"}),
		HasSubstr("'audio/mpeg', 'audio/ogg'"));

	ASSERT_TRUE(wait_until([&] { return Position() > 100000; })); // it is heard
	Player("Pause");
	ASSERT_TRUE(WaitFor("PlaybackStatus", "Paused"));
	const int64_t paused = Position();
	Player("Seek", {"20000000"});
	EXPECT_TRUE(wait_until([&] { return Position() >= paused + 20000000; })) << Position();
	Player("SetPosition", {"/qubo/track/1", "1000000"});  // of another track
	Player("SetPosition", {"/qubo/track/0", "60000001"}); // beyond its end
	Player("SetPosition", {"/qubo/track/0", "5000000"});
	EXPECT_TRUE(wait_until([&] { return Position() == 5000000; })) << Position();
	EXPECT_TRUE(wait_until([&] { return Signals().find("Seeked:5\n") != std::string::npos; }));
	EXPECT_THAT(Signals(), testing::Not(HasSubstr("Seeked:1\n")));
	EXPECT_THAT(Signals(), testing::Not(HasSubstr("Seeked:60\n")));

	const size_t before = Signals().size();
	Player("Next");
	EXPECT_TRUE(WaitFor("Metadata", "/%E6%9B%B2%20%232%3F%2541.wav'"));
	EXPECT_TRUE(WaitFor("CanGoNext", "false"));
	EXPECT_TRUE(
		wait_until([&] { return Signals().find("Metadata", before) != std::string::npos; }));
	Call("freedesktop.DBus.Properties.Set", {"org.mpris.MediaPlayer2.Player", "Volume", "<0.25>"});
	EXPECT_TRUE(WaitFor("Volume", "0.25"));
	EXPECT_TRUE(wait_until([&] { return Signals().find("Volume") != std::string::npos; }));
	EXPECT_THAT(Player("OpenUri", {"http://example.org/1.wav"}), HasSubstr("InvalidArgs"));
	Player("OpenUri", {"file://" + fDir.Path() + "/%31.wav"});
	EXPECT_TRUE(WaitFor("Metadata", "/qubo/track/2"));
	Player("Stop");
	EXPECT_TRUE(WaitFor("PlaybackStatus", "Stopped"));
	Call("mpris.MediaPlayer2.Quit");
	EXPECT_EQ(program->WaitForExit(), 0) << program->errors;
}

TEST_F(PlayerServer, TellsNothingWhileNothingChanges)
{
	const auto program = Start({fDir / "1.wav"});
	ASSERT_TRUE(WaitFor("PlaybackStatus", "Playing")) << program->errors;
	ASSERT_TRUE(wait_until([&] { return Position() > 2000000; }, std::chrono::seconds(30)))
		<< Position();
	const std::string before = Signals();
	const int64_t position = Position();
	ASSERT_TRUE(wait_until([&] { return Position() > position + 1500000; }));
	EXPECT_EQ(Signals(), before);
}

TEST_F(PlayerServer, ASecondOneHasANameOfItsOwnAndOneThatIsUnseenOrFollowsNone)
{
	const auto first = Start({fDir / "1.wav"});
	ASSERT_TRUE(WaitFor("PlaybackStatus", "Playing")) << first->errors;
	const auto second = Start({fDir / "1.wav"});
	const std::string name = "qubo.instance" + std::to_string(second->Process());
	EXPECT_TRUE(
		wait_until([&] { return Get("PlaybackStatus", name).find("Playing") != std::string::npos; },
			std::chrono::seconds(30)))
		<< second->errors;
	first->Kill(SIGTERM);
	EXPECT_EQ(first->WaitForExit(), 0) << first->errors;
	EXPECT_THAT(Get("PlaybackStatus"), HasSubstr("Error"));
	for (const std::vector<std::string>& arguments :
		{std::vector<std::string>{"--headless", fDir / "1.wav"}, {"--follow"}}) {
		const auto unnamed = Start(arguments);
		EXPECT_FALSE(
			wait_until([&] { return Get("PlaybackStatus").find("Error") == std::string::npos; },
				std::chrono::seconds(2)))
			<< arguments[0];
	}
}

} // namespace
