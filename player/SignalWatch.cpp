#include "SignalWatch.h"

#include <atomic>
#include <cerrno>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
constexpr char kSignalled = 's';
constexpr char kEnd = 'e';

int sPipe[2];
std::atomic<int> sCount;
static_assert(std::atomic<int>::is_always_lock_free); // touched by a signal handler

void
tell(char what)
{
	while (write(sPipe[1], &what, 1) < 0 && errno == EINTR)
		continue;
}

void
handle_signal(int signal)
{
	int saved = errno;
	if (sCount.fetch_add(1) > 0)
		_exit(128 + signal);
	tell(kSignalled);
	errno = saved;
}

void
ignore_signal(int)
{ }

void
set_handler(int signal, void (*handler)(int))
{
	struct sigaction action = {};
	action.sa_handler = handler;
	action.sa_flags = SA_RESTART;
	sigaction(signal, &action, nullptr);
}

} // namespace

SignalWatch::SignalWatch()
{
	sCount = 0;
	if (pipe2(sPipe, O_CLOEXEC) != 0)
		return; // signals end the process as they always did
	for (int signal : kSignals)
		set_handler(signal, handle_signal);
	set_handler(SIGPIPE, ignore_signal);
	fReady = true;
}

SignalWatch::~SignalWatch()
{
	Stop();
	if (!fReady)
		return;
	for (int signal : kSignals)
		set_handler(signal, SIG_DFL);
	close(sPipe[0]);
	close(sPipe[1]);
}

void
SignalWatch::Start(std::function<void()> quit)
{
	fQuit = std::move(quit);
	if (fReady)
		fThread = std::thread(&SignalWatch::Wait, this);
}

void
SignalWatch::Stop()
{
	if (!fThread.joinable())
		return;
	tell(kEnd);
	fThread.join();
}

void
SignalWatch::Wait()
{
	char what = kEnd;
	do {
		ssize_t got = read(sPipe[0], &what, 1);
		if (got < 0 && errno == EINTR)
			continue;
		if (got != 1)
			return;
		if (what == kSignalled)
			fQuit();
	} while (what != kEnd);
}
