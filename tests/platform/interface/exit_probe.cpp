// A program whose main thread leaves by exit(), as the toolkit does when the X server dies;
// exit_test.cpp looks at its end.
// Arguments: "willing" or "stubborn" (its window refuses to quit), and a file that the window
// writes when it ends.

#include "server/ServerLink.h"

#include <AppDefs.h>
#include <Application.h>
#include <Message.h>
#include <Window.h>
#include <fstream>
#include <stdlib.h>
#include <string.h>
#include <thread>

/*!	For the leak checker: the toolkit, which is left alive here, would have freed what this library
	keeps. */
extern "C" const char*
__lsan_default_suppressions()
{
	return "leak:libfontconfig.so";
}

namespace {

class SavingWindow : public BWindow {
public:
	SavingWindow(bool stubborn, const char* path)
		: BWindow(BRect(0, 0, 99, 99), "saving", B_TITLED_WINDOW, 0),
		  fStubborn(stubborn),
		  fPath(path)
	{ }
	~SavingWindow() override { std::ofstream(fPath) << "saved"; }
	bool QuitRequested() override { return !fStubborn; }

private:
	bool fStubborn;
	const char* fPath;
};

} // namespace

int
main(int, char** arguments)
{
	BApplication application("application/x-vnd.MERION-exit-probe");
	auto* window = new SavingWindow(strcmp(arguments[1], "stubborn") == 0, arguments[2]);
	window->Show();
	std::thread([] {
		BPrivate::ServerLink& link = BPrivate::ServerLink::Default();
		link.CallJob([] {}); // until it serves
		link.Post([] { exit(7); });
		// blocked when the server goes: without its waking up, the looper below would not end
		be_app->Lock();
		link.CallJob([] {});
		be_app->Unlock();
	}).detach();
	application.Run();
	return 0;
}
