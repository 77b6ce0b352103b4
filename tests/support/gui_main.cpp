// The main program of tests that show something: the tests run on a thread of their own, while the application, and with it the
// display server, has the main thread.

#include <gtest/gtest.h>

#include <AppDefs.h>
#include <Application.h>
#include <csignal>
#include <cstdlib>
#include <thread>
#include <unistd.h>

#include "support/temp_folder.h"

static void
give_up(int)
{
	static const char kMessage[] = "\nthe watchdog: the tests have not ended in time\n";
	(void)!write(STDERR_FILENO, kMessage, sizeof(kMessage) - 1);
	abort();
}

int
main(int argc, char** argv)
{
	testing::InitGoogleTest(&argc, argv);
	signal(SIGALRM, give_up);
	alarm(115);

	// before anything asks for the settings folder
	TempFolder settings;
	setenv("XDG_CONFIG_HOME", settings.Path().c_str(), 1);
	setenv("QT_QPA_PLATFORM", "offscreen", 0);

	int result = 1;
	{
		BApplication application("application/x-vnd.MERION-tests");
		std::thread tests([&result] {
			result = RUN_ALL_TESTS();
			be_app->PostMessage(B_QUIT_REQUESTED);
		});
		application.Run();
		tests.join();
	}
	return result;
}
