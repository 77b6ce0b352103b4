#pragma once

#include "app/MainThreadService.h"
#include "server/ServerLink.h"

#include <QtGlobal>
#include <condition_variable>
#include <memory>
#include <mutex>

class QApplication;
class QSocketNotifier;

namespace BPrivate {

/*!	The display server of this process: the toolkit's application, the link and the registry, on the
	thread that makes the BApplication. It runs no client's code, takes no looper's lock and waits
	for no looper.
	When the X server dies, the toolkit calls exit() on the main thread. Exit.cpp has that call ask
	the application to quit, let every blocked caller go on with nothing, and give the loopers a
	second to save what they have. */
class DisplayServer : public MainThreadService {
public:
	static DisplayServer& Default();

	void Start() override;
	void Run() override;
	void Stop() override;
	/*!	For a call of exit(). False: loopers are left, so that nothing of theirs may be destroyed.
		True at once on any thread but the server's own. */
	bool EndBeforeExit();

private:
	DisplayServer() = default;

	void Shutdown();
	bool WaitForStop(int64_t microseconds);

	QApplication* fApplication = nullptr;
	QSocketNotifier* fNotifier = nullptr;
	std::mutex fMutex;
	std::condition_variable fChanged;
	bool fStopped = false;
	bool fRunning = false;
};

} // namespace BPrivate
