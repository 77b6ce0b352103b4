#include "support/run_tests.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <thread>
#include <unistd.h>

#include <AppDefs.h>
#include <Application.h>

#include "support/temp_folder.h"

namespace {

constexpr unsigned kWatchdog = 115; // s, before the test runner's own

void
give_up(int)
{
	static const char kMessage[] = "\nthe watchdog: the tests have not ended in time\n";
	(void)!write(STDERR_FILENO, kMessage, sizeof(kMessage) - 1);
	abort();
}

} // namespace

int
run_tests(int argc, char** argv, const std::function<std::unique_ptr<BApplication>()>& make)
{
	testing::InitGoogleTest(&argc, argv);
	signal(SIGALRM, give_up);
	alarm(kWatchdog);

	// before anything asks for the settings folder
	TempFolder settings;
	setenv("XDG_CONFIG_HOME", settings.Path().c_str(), 1);
	setenv("QT_QPA_PLATFORM", "offscreen", 0);

	int result = 1;
	const std::unique_ptr<BApplication> application = make();
	std::thread tests([&result] {
		result = RUN_ALL_TESTS();
		be_app->PostMessage(B_QUIT_REQUESTED);
	});
	application->Run();
	tests.join();
	return result;
}
