// The main program of tests that play the host: the tests run on a thread of their own, while the application has the main thread.

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <unistd.h>

#include "support/ScriptedHost.h"
#include "support/temp_folder.h"

namespace {

void
give_up(int)
{
	static const char message[] = "\nthe watchdog: the tests have not ended in time\n";
	(void)!write(STDERR_FILENO, message, sizeof(message) - 1);
	abort();
}

} // namespace

int
main(int argc, char** argv)
{
	testing::InitGoogleTest(&argc, argv);
	signal(SIGALRM, give_up);
	alarm(110);

	// Before anything asks for the settings folder.
	TempFolder settings;
	setenv("XDG_CONFIG_HOME", settings.Path().c_str(), 1);
	setenv("QT_QPA_PLATFORM", "offscreen", 0);

	int result = 1;
	{
		ScriptedHost application;
		std::thread tests([&result] {
			result = RUN_ALL_TESTS();
			be_app->PostMessage(B_QUIT_REQUESTED);
		});
		application.Run();
		tests.join();
	}
	return result;
}
