#pragma once

#include <functional>
#include <thread>

/*!	Turns the first SIGINT, SIGTERM or SIGHUP into a call of `quit` on a thread of its own; the second one ends the process at
	once. A pipe that nobody reads any more does not end the process. At most one object at a time.
	Handlers rather than blocked signals: a program that is started from here does not inherit them. */
class SignalWatch {
public:
	explicit SignalWatch(std::function<void()> quit);
	~SignalWatch();

private:
	void Wait();

	std::function<void()> fQuit;
	std::thread fThread;
};
