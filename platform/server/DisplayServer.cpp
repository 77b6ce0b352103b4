#include "server/DisplayServer.h"

#include "app/LooperLock.h"
#include "interface/FontCache.h"
#include "server/Desktop.h"
#include "server/Registry.h"
#include "server/ServerWindow.h"

#include <Application.h>
#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QLibraryInfo>
#include <QSocketNotifier>
#include <QTranslator>
#include <chrono>
#include <clocale>
#include <errno.h>
#include <stdlib.h>
#include <unistd.h>

namespace BPrivate {

// so that input is looked at between jobs
static constexpr int kJobsAtOnce = 64;
static constexpr int64_t kSavingTime = 1000000;

// installs the server when the library is loaded
[[maybe_unused]] static const bool sInstalled
	= (gMainThreadService = &DisplayServer::Default(), true);

//! The offscreen platform says at each turn what it cannot do; the rest is worth reading.
static void
toolkit_message(QtMsgType type, const QMessageLogContext&, const QString& text)
{
	if (type == QtDebugMsg || type == QtInfoMsg || text.startsWith("This plugin does not support "))
		return;
	fprintf(stderr, "%s: %s\n", program_invocation_short_name, qPrintable(text));
	if (type == QtFatalMsg)
		abort();
}

//! The toolkit's own texts (of its file dialog, its questions), where they are installed.
static void
translate_toolkit(QApplication* application)
{
	auto* texts = new QTranslator(application);
	if (texts->load(QLocale(), "qtbase", "_", QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
		QCoreApplication::installTranslator(texts);
}

//! The windows belong to the desktop entry with the program's name, and have its icon, where these are installed.
static void
show_icon()
{
	const QString program = QFile::decodeName(program_invocation_short_name);
	QApplication::setDesktopFileName(program);
	QApplication::setWindowIcon(QIcon::fromTheme(program));
}

static QApplication*
make_application()
{
	// Wayland lets a client neither place its windows nor keep one on top
	if (getenv("DISPLAY") != nullptr)
		setenv("QT_QPA_PLATFORM", "xcb", 0);
	qInstallMessageHandler(toolkit_message);
	// others' dialogs wait in loops of their own
	QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
	static int sCount = 1;
	static char* sArguments[] = {program_invocation_name, nullptr};
	auto* application = new QApplication(sCount, sArguments);
	// the toolkit takes the user's locale over; numbers in files have a point in every country
	setlocale(LC_NUMERIC, "C");
	QApplication::setQuitOnLastWindowClosed(false);
	show_icon();
	translate_toolkit(application);
	return application;
}

DisplayServer&
DisplayServer::Default()
{
	static DisplayServer* server = new DisplayServer;
	return *server;
}

void
DisplayServer::Start()
{
	if (fApplication != nullptr)
		return;
	fApplication = make_application();
	Desktop::Watch(ServerWindow::ReportScreenToAll);
	update_standard_fonts();
	ServerLink& link = ServerLink::Default();
	if (link.Open() != B_OK) {
		fprintf(stderr, "%s: no file descriptor for the display server\n",
			program_invocation_short_name);
		exit(EXIT_FAILURE);
	}
	fNotifier = new QSocketNotifier(link.WakeDescriptor(), QSocketNotifier::Read, fApplication);
	QObject::connect(
		fNotifier, &QSocketNotifier::activated, [] { ServerLink::Default().RunJobs(kJobsAtOnce); });
	std::lock_guard lock(fMutex);
	fStopped = false;
}

void
DisplayServer::Run()
{
	ServerLink& link = ServerLink::Default();
	bool serve;
	{
		std::lock_guard lock(fMutex);
		serve = !fStopped;
		fRunning = serve;
	}
	if (serve) {
		link.SetServing(true);
		forbid_looper_locks(true);
		fApplication->exec();
		forbid_looper_locks(false);
		link.SetServing(false);
	}
	{
		std::lock_guard lock(fMutex);
		fRunning = false;
	}
	Shutdown();
}

/*!	The widgets end on the server's own thread, after the last looper; QApplication::quit() would
	ask the windows, which always refuse. */
void
DisplayServer::Stop()
{
	ServerLink& link = ServerLink::Default();
	bool running;
	{
		std::lock_guard lock(fMutex);
		fStopped = true;
		running = fRunning;
		fChanged.notify_all();
	}
	if (running)
		link.Post([] { QCoreApplication::exit(0); });
	else if (link.IsOwner())
		Shutdown();
}

void
DisplayServer::Shutdown()
{
	Registry::Default().DeleteAll();
	ServerLink::Default().Close();
	delete std::exchange(fNotifier, nullptr);
	delete std::exchange(fApplication, nullptr);
}

bool
DisplayServer::EndBeforeExit()
{
	if (!on_server_thread())
		return true;
	ServerLink::Default().SetServing(false);
	thread_id application = -1;
	if (be_app != NULL) {
		application = be_app->Thread();
		BMessage quit(B_QUIT_REQUESTED);
		be_app_messenger.SendMessage(&quit, static_cast<BHandler*>(NULL), 0);
	}
	ServerLink::Default().Close();
	if (!WaitForStop(kSavingTime))
		return false;
	// it has called Stop() and is on its last steps
	wait_for_thread(application, NULL);
	return true;
}

bool
DisplayServer::WaitForStop(int64_t microseconds)
{
	std::unique_lock lock(fMutex);
	return fChanged.wait_for(
		lock, std::chrono::microseconds(microseconds), [this] { return fStopped; });
}

} // namespace BPrivate
