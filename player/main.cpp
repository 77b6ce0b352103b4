#include "CommandLine.h"
#include "QuboApp.h"
#include "SignalWatch.h"
#include "memory_use.h"
#include "screen_check.h"

#include <AppDefs.h>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int kWrongUse = 2;
constexpr int kNoScreen = 3;

int
run(const CommandLine& line)
{
	if (line.headless)
		setenv("QT_QPA_PLATFORM", "offscreen", 1); // windows without a screen
	else if (!has_screen()) {
		fputs(
			"qubo: there is no screen to show windows on (--headless plays without one)\n", stderr);
		return kNoScreen;
	}
	setenv("PIPEWIRE_DEBUG", "0", 0); // a missing sound device is told by us
	tune_allocator();
	SignalWatch signals;
	QuboApp application(line);
	signals.Start([&application] { application.PostMessage(B_QUIT_REQUESTED); });
	application.Run();
	signals.Stop();
	return application.ExitCode();
}

} // namespace

int
main(int argc, char** argv)
{
	CommandLine line;
	std::string error;
	if (!line.Parse(std::vector<std::string>(argv + 1, argv + argc), error)) {
		fprintf(stderr, "qubo: %s\nTry: qubo --help\n", error.c_str());
		return kWrongUse;
	}
	if (line.help)
		fputs(CommandLine::HelpText(), stdout);
	else if (line.version)
		puts("qubo " QUBO_VERSION);
	else
		return run(line);
	return 0;
}
