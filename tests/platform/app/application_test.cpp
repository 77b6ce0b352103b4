// The application, scripting and the roster. Each case makes an application of its own.

#include "platform/app/app_test_support.h"
#include <Application.h>
#include <Entry.h>
#include <Roster.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

namespace {

const char* const kSignature = "application/x-vnd.MERION-AppTest";

class TestApplication : public BApplication {
public:
	TestApplication() : BApplication(kSignature) { }
	void ArgvReceived(int32 argc, char** argv) override
	{
		log += "argv ";
		EXPECT_EQ(argv[argc], nullptr);
	}
	void ReadyToRun() override
	{
		log += "ready ";
		if (onReady)
			onReady();
	}
	void RefsReceived(BMessage*) override { log += "refs "; }
	bool QuitRequested() override
	{
		log += "quit ";
		return BApplication::QuitRequested();
	}

	std::function<void()> onReady;
	std::string log;
};

//! A looper that counts as a window.
class WindowLooper : public TestLooper {
public:
	explicit WindowLooper(const char* name) : TestLooper({}, name)
	{
		_SetWindow(reinterpret_cast<BWindow*>(static_cast<BLooper*>(this)));
	}
	~WindowLooper() override { _SetWindow(NULL); }
	bool QuitRequested() override { return mayQuit; }
	bool mayQuit = true;
};

BMessage
get(uint32 command, const char* property)
{
	BMessage message(command);
	message.AddSpecifier(property);
	return message;
}

BMessage
answer_to(BMessage message)
{
	BMessage reply;
	EXPECT_EQ(be_app_messenger.SendMessage(&message, &reply), B_OK);
	return reply;
}

} // namespace

TEST(Application, RunsFromArgumentsToQuit)
{
	Watchdog watchdog("an application's life");
	TestApplication application;
	EXPECT_EQ(be_app, &application);
	EXPECT_TRUE(application.IsLaunching());
	EXPECT_TRUE(be_app_messenger.IsValid());
	application.PostMessage(B_REFS_RECEIVED);
	application.PostMessage(B_QUIT_REQUESTED);
	EXPECT_GE(application.Run(), 0);
	EXPECT_NE(application.log.find("ready refs quit "), std::string::npos) << application.log;
	EXPECT_FALSE(application.IsLaunching());
}

TEST(Application, NeedsASignatureAndIsAlone)
{
	status_t error = B_OK;
	BApplication none(NULL, &error);
	EXPECT_EQ(error, B_BAD_VALUE);
	EXPECT_EQ(none.Run(), B_BAD_VALUE);
	BApplication text("text/plain", &error);
	EXPECT_EQ(error, B_BAD_VALUE);
	EXPECT_EQ(be_app, nullptr);
	TestApplication application;
	BApplication second(kSignature, &error);
	EXPECT_EQ(error, B_NOT_ALLOWED);
	EXPECT_EQ(be_app, &application);
}

TEST(Application, IsFoundByItsSignature)
{
	Watchdog watchdog("the application's messenger");
	{
		TestApplication application;
		status_t error;
		const BMessenger messenger("APPLICATION/x-vnd.merion-apptest", -1, &error);
		EXPECT_EQ(error, B_OK);
		EXPECT_EQ(messenger, be_app_messenger);
		EXPECT_TRUE(be_roster->IsRunning(kSignature));
		EXPECT_EQ(be_roster->Launch(kSignature), B_ALREADY_RUNNING);
		app_info info;
		EXPECT_EQ(application.GetAppInfo(&info), B_OK);
		EXPECT_STREQ(info.signature, kSignature);
		EXPECT_EQ(info.team, getpid());
	}
	EXPECT_FALSE(be_roster->IsRunning(kSignature));
	EXPECT_FALSE(be_app_messenger.IsValid());
}

TEST(Application, EndsWhenItsLastLooperHasEnded)
{
	Watchdog watchdog("loopers that are left when the application quits");
	std::atomic<bool> slowGone{false}, windowGone{false};
	TestApplication application;
	TestLooper* slow = new TestLooper([](TestLooper*, BMessage*) { snooze(30000); });
	slow->deleted = &slowGone;
	slow->PostMessage('slow');
	slow->Run();
	WindowLooper* window = new WindowLooper("window");
	window->deleted = &windowGone;
	window->Run();
	window->PostMessage(B_QUIT_REQUESTED);
	application.PostMessage(B_QUIT_REQUESTED);
	application.Run();
	EXPECT_TRUE(slowGone);
	EXPECT_TRUE(windowGone);
}

TEST(Application, StaysWhenAWindowRefusesToQuit)
{
	Watchdog watchdog("a window that refuses");
	TestApplication application;
	WindowLooper* window = new WindowLooper("window");
	window->mayQuit = false;
	window->Run();
	std::thread tester([&] {
		BMessage reply;
		EXPECT_EQ(be_app_messenger.SendMessage(B_QUIT_REQUESTED, &reply), B_OK);
		EXPECT_FALSE(reply.GetBool("result", true));
		EXPECT_EQ(application.CountWindows(), 1);
		EXPECT_TRUE(window->Lock());
		window->mayQuit = true;
		window->Unlock();
		EXPECT_EQ(be_app_messenger.SendMessage(B_QUIT_REQUESTED, &reply), B_OK);
		EXPECT_TRUE(reply.GetBool("result"));
	});
	application.Run();
	tester.join();
	EXPECT_EQ(application.CountWindows(), 0);
}

TEST(Application, LetsNobodyWaitWhoAsksAfterItsLoopHasEnded)
{
	Watchdog watchdog("the end of a wait for an application that has quit");
	TestApplication application;
	const BMessenger messenger(be_app_messenger);
	application.PostMessage(B_QUIT_REQUESTED);
	std::thread tester([&] {
		BMessage reply;
		while (messenger.SendMessage('more', &reply) == B_OK)
			continue;
	});
	application.Run();
	tester.join();
	EXPECT_EQ(application.PostMessage('late'), B_BAD_PORT_ID);
}

TEST(Application, ListsLoopersInTheOrderOfTheirMaking)
{
	Watchdog watchdog("lists");
	TestApplication application;
	TestLooper* looper = new TestLooper;
	WindowLooper* a = new WindowLooper("a");
	WindowLooper* b = new WindowLooper("b");
	EXPECT_EQ(application.CountLoopers(), 4);
	EXPECT_EQ(application.LooperAt(0), &application);
	EXPECT_EQ(application.LooperAt(1), looper);
	EXPECT_EQ(application.LooperAt(4), nullptr);
	EXPECT_EQ(application.LooperAt(-1), nullptr);
	EXPECT_EQ(application.CountWindows(), 2);
	EXPECT_EQ(reinterpret_cast<BLooper*>(application.WindowAt(1)), b);
	EXPECT_EQ(application.WindowAt(2), nullptr);
	delete a;
	EXPECT_EQ(reinterpret_cast<BLooper*>(application.WindowAt(0)), b);
	delete b;
	delete looper;
}

// Scripting

class Scripting : public testing::Test {
protected:
	Scripting()
	{
		// an application is run by the thread that makes it
		thread = std::thread([this] {
			TestApplication application;
			application.onReady = [this] { ready = true; };
			first = new WindowLooper("first");
			second = new WindowLooper("second");
			first->Run();
			second->Run();
			application.Run();
		});
		EXPECT_TRUE(happens([this] { return ready.load(); }));
	}
	~Scripting() override
	{
		be_app_messenger.SendMessage(B_QUIT_REQUESTED);
		thread.join();
	}

	Watchdog watchdog{"scripting"};
	std::atomic<bool> ready{false};
	WindowLooper* first;
	WindowLooper* second;
	std::thread thread;
};

TEST_F(Scripting, ReachesWindowsByIndexAndName)
{
	BMessage message = get(B_GET_PROPERTY, "InternalName");
	message.AddSpecifier("Window", 1);
	EXPECT_STREQ(answer_to(message).GetString("result"), "second");

	message = get(B_GET_PROPERTY, "InternalName");
	message.AddSpecifier("Window", "first");
	EXPECT_STREQ(answer_to(message).GetString("result"), "first");

	message = get(B_GET_PROPERTY, "InternalName");
	BMessage last(B_REVERSE_INDEX_SPECIFIER);
	last.AddString("property", "Window");
	last.AddInt32("index", 1);
	message.AddSpecifier(&last);
	EXPECT_STREQ(answer_to(message).GetString("result"), "second");

	message = get(B_GET_PROPERTY, "Messenger");
	message.AddSpecifier("Looper", 1);
	BMessenger messenger;
	EXPECT_EQ(answer_to(message).FindMessenger("result", &messenger), B_OK);
	BLooper* looper;
	messenger.Target(&looper);
	EXPECT_EQ(looper, first);
	EXPECT_EQ(answer_to(get(B_COUNT_PROPERTIES, "Window")).GetInt32("result", -1), 2);
	EXPECT_EQ(answer_to(get(B_COUNT_PROPERTIES, "Looper")).GetInt32("result", -1), 3);
}

TEST_F(Scripting, AnswersWhatItDoesNotUnderstand)
{
	BMessage message = get(B_GET_PROPERTY, "InternalName");
	message.AddSpecifier("Window", 9);
	BMessage reply = answer_to(message);
	EXPECT_EQ(reply.what, uint32(B_MESSAGE_NOT_UNDERSTOOD));
	EXPECT_EQ(reply.GetInt32("error", 0), B_BAD_INDEX);

	message = get(B_GET_PROPERTY, "InternalName");
	message.AddSpecifier("Window", "third");
	EXPECT_EQ(answer_to(message).GetInt32("error", 0), B_NAME_NOT_FOUND);

	message = get(B_GET_PROPERTY, "NoSuchProperty");
	message.AddSpecifier("Window", 0);
	reply = answer_to(message);
	EXPECT_EQ(reply.what, uint32(B_MESSAGE_NOT_UNDERSTOOD));
	EXPECT_EQ(reply.GetInt32("error", 0), B_BAD_SCRIPT_SYNTAX);

	// known to nobody, and without specifiers: no reply is owed but that there is none
	EXPECT_EQ(answer_to(BMessage('unkn')).what, uint32(B_NO_REPLY));
	// specifiers that are no messages
	BMessage broken(B_GET_PROPERTY);
	broken.AddSpecifier("Name");
	broken.ReplaceData("specifiers", B_MESSAGE_TYPE, "none", 4);
	EXPECT_EQ(answer_to(broken).GetInt32("error", 0), B_BAD_SCRIPT_SYNTAX);
}

TEST_F(Scripting, TellsItsSuites)
{
	const BMessage reply = answer_to(BMessage(B_GET_SUPPORTED_SUITES));
	EXPECT_STREQ(reply.GetString("suites", 0, NULL), "suite/vnd.Be-application");
	EXPECT_STREQ(reply.GetString("suites", 1, NULL), "suite/vnd.Be-looper");
	EXPECT_STREQ(reply.GetString("suites", 2, NULL), "suite/vnd.Be-handler");
	EXPECT_TRUE(reply.HasData("messages", B_PROPERTY_INFO_TYPE, 2));
}

// Launching

class Launching : public testing::Test {
protected:
	Launching()
	{
		char name[] = "/tmp/launch-test-XXXXXX";
		folder = mkdtemp(name);
		std::filesystem::create_directories(folder / "applications/sub");
		setenv("XDG_DATA_HOME", folder.c_str(), 1);
		setenv("XDG_DATA_DIRS", (folder / "system").c_str(), 1);
	}
	~Launching() override { std::filesystem::remove_all(folder); }
	void WriteDesktopFile(const std::string& exec)
	{
		std::ofstream file(folder / "applications/sub/test.desktop");
		file << "[Desktop Action other]\nExec=/bin/false\nX-MERION-Signature=other\n"
			 << "[Desktop Entry]\nName=Test\nExec=" << exec
			 << "\nX-MERION-Signature = application/x-vnd.MERION-Other\n";
	}
	std::string WrittenLine()
	{
		std::string line;
		EXPECT_TRUE(happens([&] {
			std::ifstream file(folder / "out");
			return bool(std::getline(file, line));
		}));
		return line;
	}

	Watchdog watchdog{"launching"};
	std::filesystem::path folder;
};

TEST_F(Launching, StartsTheApplicationOfASignature)
{
	WriteDesktopFile(R"(/bin/sh -c "printf '%%s\\n' \\"$0 $1\\" > $2; sleep 0" "two words" %F )"
		+ (folder / "out").string() + " %i");
	const std::filesystem::path song = folder / "a song";
	std::ofstream(song) << "la";
	entry_ref ref;
	ASSERT_EQ(get_ref_for_path(song.c_str(), &ref), B_OK);
	BMessage message(B_REFS_RECEIVED);
	message.AddRef("refs", &ref);
	team_id team = -1;
	EXPECT_EQ(be_roster->Launch("application/x-vnd.MERION-Other", &message, &team), B_OK);
	EXPECT_GT(team, 0);
	EXPECT_EQ(WrittenLine(), "two words " + song.string());
}

TEST_F(Launching, TellsWhyItDoesNot)
{
	EXPECT_EQ(be_roster->Launch(static_cast<const char*>(NULL)), B_BAD_VALUE);
	EXPECT_EQ(be_roster->Launch("application/x-vnd.MERION-Other"), B_LAUNCH_FAILED_APP_NOT_FOUND);
	WriteDesktopFile((folder / "no-such-program").string());
	EXPECT_EQ(be_roster->Launch("application/x-vnd.MERION-Other"), B_LAUNCH_FAILED_EXECUTABLE);
	EXPECT_EQ(be_roster->Launch("other"), B_LAUNCH_FAILED_APP_NOT_FOUND);
	BMessage message;
	message.AddInt32("n", 1);
	EXPECT_EQ(be_roster->Launch("application/x-vnd.MERION-Other", &message), B_NOT_SUPPORTED);
	const entry_ref nowhere;
	EXPECT_EQ(be_roster->Launch(&nowhere), B_ENTRY_NOT_FOUND);
}

TEST_F(Launching, OpensAFileWithThePreferredApplication)
{
	// an opener of our own in the place of the desktop's
	const std::filesystem::path opener = folder / "xdg-open";
	std::ofstream(opener) << "#!/bin/sh\necho \"$1\" > " << (folder / "out").string() << '\n';
	std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
	const std::filesystem::path page = folder / "help.html";
	std::ofstream(page) << "help";
	setenv("PATH", folder.c_str(), 1);
	entry_ref ref;
	ASSERT_EQ(get_ref_for_path(page.c_str(), &ref), B_OK);
	EXPECT_EQ(be_roster->Launch(&ref), B_OK);
	EXPECT_EQ(WrittenLine(), page.string());
	std::filesystem::remove(folder / "out");
	const char* addresses[] = {"https://example.org/a?b=c d", "-option", NULL};
	EXPECT_EQ(be_roster->Launch("application/x-vnd.Be.URL.https", 1, addresses), B_OK);
	EXPECT_EQ(WrittenLine(), addresses[0]);
	EXPECT_EQ(be_roster->Launch("text/html", 1, addresses + 1), B_BAD_VALUE);
	EXPECT_EQ(be_roster->Launch("text/html", 1, addresses + 2), B_BAD_VALUE);
	std::filesystem::remove(opener);
	EXPECT_EQ(be_roster->Launch("text/html", 1, addresses), B_LAUNCH_FAILED_NO_PREFERRED_APP);
	EXPECT_EQ(be_roster->Launch(&ref), B_LAUNCH_FAILED_NO_PREFERRED_APP);
}
