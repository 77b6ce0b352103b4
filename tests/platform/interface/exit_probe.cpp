// A program whose main thread leaves by exit(), as the toolkit does when the X server dies;
// exit_test.cpp looks at its end.
// Arguments: "willing" or "stubborn" (its window refuses to quit), and a file that the window
// writes when it ends. With "panel" it quits as usual, while a file panel and a menu in that are open.

#include "server/ServerFilePanel.h"
#include "server/ServerLink.h"

#include <AppDefs.h>
#include <Application.h>
#include <FilePanel.h>
#include <Message.h>
#include <QApplication>
#include <QListView>
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

//! Opens the menu of the panel's list, which runs a loop within the server's.
void
open_menu()
{
	for (QWidget* window : QApplication::topLevelWidgets()) {
		if (auto* dialog = window->findChild<BPrivate::ServerFilePanel*>())
			emit dialog->findChild<QListView*>("listView")
				->customContextMenuRequested(QPoint(5, 5));
	}
}

void
quit_with_panel()
{
	BFilePanel panel(B_SAVE_PANEL);
	panel.Show();
	std::thread([] {
		BPrivate::ServerLink& link = BPrivate::ServerLink::Default();
		link.Post(open_menu);
		bool isOpen = false;
		while (!isOpen)
			link.CallJob([&isOpen] { isOpen = QApplication::activePopupWidget() != nullptr; });
		be_app->PostMessage(B_QUIT_REQUESTED);
	}).detach();
	be_app->Run();
}

} // namespace

int
main(int, char** arguments)
{
	BApplication application("application/x-vnd.MERION-exit-probe");
	auto* window = new SavingWindow(strcmp(arguments[1], "stubborn") == 0, arguments[2]);
	window->Show();
	if (strcmp(arguments[1], "panel") == 0) {
		quit_with_panel();
		return 0;
	}
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
