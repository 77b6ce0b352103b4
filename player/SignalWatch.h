#pragma once

#include <functional>
#include <thread>

/*!	Turns the first SIGINT, SIGTERM or SIGHUP into a call on a thread of its own; the second one ends the process at once.
	A pipe that nobody reads any more does not end the process. At most one object at a time.
	Handlers rather than blocked signals: a program that is started from here does not inherit them. */
class SignalWatch {
public:
	//! From now on no signal is lost.
	SignalWatch();
	~SignalWatch();

	//! `quit` is called, at once if the signal has come already, until Stop() has returned.
	void Start(std::function<void()> quit);
	void Stop();

private:
	void Wait();

	std::function<void()> fQuit;
	std::thread fThread;
	bool fReady = false;
};
