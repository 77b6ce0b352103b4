/*	What the machine itself takes for the polling: three threads of which each wakes the next, 40 times a second, and does nothing else.
	The program's own figures are worth more beside this one, which differs between machines by several times.

	usage: bare_polling SECONDS; prints their share of a core, in percent */

#include <pthread.h>
#include <time.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace {

constexpr std::chrono::milliseconds kInterval(25);
constexpr std::chrono::seconds kStart(1); // which is not counted

class Bell {
public:
	void Ring() { Change(fRung); }
	void End() { Change(fEnded); }

	//! False once it has ended.
	bool Wait()
	{
		std::unique_lock lock(fLock);
		fChange.wait(lock, [this] { return fRung || fEnded; });
		fRung = false;
		return !fEnded;
	}

	//! False once it has ended.
	bool WaitUntil(std::chrono::steady_clock::time_point when)
	{
		std::unique_lock lock(fLock);
		return !fChange.wait_until(lock, when, [this] { return fEnded; });
	}

private:
	void Change(bool& what)
	{
		{
			const std::lock_guard lock(fLock);
			what = true;
		}
		fChange.notify_one();
	}

	std::mutex fLock;
	std::condition_variable fChange;
	bool fRung = false;
	bool fEnded = false;
};

double
run_time(std::thread& thread)
{
	clockid_t clock;
	timespec time = {};
	if (pthread_getcpuclockid(thread.native_handle(), &clock) == 0)
		clock_gettime(clock, &time);
	return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

} // namespace

int
main(int count, char** arguments)
{
	const double seconds = count == 2 ? atof(arguments[1]) : 0;
	if (seconds <= 0) {
		fprintf(stderr, "usage: bare_polling SECONDS\n");
		return 2;
	}
	Bell timer;
	Bell second;
	Bell third;
	std::thread threads[] = {std::thread([&] {
								 auto when = std::chrono::steady_clock::now();
								 while (timer.WaitUntil(when += kInterval))
									 second.Ring();
							 }),
		std::thread([&] {
			while (second.Wait())
				third.Ring();
		}),
		std::thread([&] {
			while (third.Wait()) { }
		})};
	std::this_thread::sleep_for(kStart);
	double used = 0;
	for (std::thread& thread : threads)
		used -= run_time(thread);
	const auto begin = std::chrono::steady_clock::now();
	std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
	for (std::thread& thread : threads)
		used += run_time(thread);
	const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
	printf("%.3f\n", 100 * used / took.count());
	for (Bell* bell : {&timer, &second, &third})
		bell->End();
	for (std::thread& thread : threads)
		thread.join();
	return 0;
}
