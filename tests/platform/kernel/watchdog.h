#pragma once

#include <condition_variable>
#include <mutex>
#include <stdio.h>
#include <stdlib.h>
#include <thread>

/*!	Ends the test program with a sentence when the block that it guards does not come to its end in
	time. */
class Watchdog {
public:
	explicit Watchdog(const char* whatDidNotHappen, int seconds = 60)
		: fThread([=, this] { Watch(whatDidNotHappen, seconds); })
	{ }
	~Watchdog()
	{
		{
			std::lock_guard lock(fLock);
			fDone = true;
		}
		fEnded.notify_one();
		fThread.join();
	}

private:
	void Watch(const char* whatDidNotHappen, int seconds)
	{
		std::unique_lock lock(fLock);
		if (fEnded.wait_for(lock, std::chrono::seconds(seconds), [this] { return fDone; }))
			return;
		fprintf(stderr, "watchdog: %s\n", whatDidNotHappen);
		abort();
	}

	std::mutex fLock;
	std::condition_variable fEnded;
	bool fDone = false;
	std::thread fThread;
};
