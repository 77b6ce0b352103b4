#include <OS.h>

#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

static bigtime_t
microseconds_of(clockid_t clock)
{
	timespec now;
	clock_gettime(clock, &now);
	return now.tv_sec * 1000000LL + now.tv_nsec / 1000;
}

bigtime_t
system_time()
{
	return microseconds_of(CLOCK_MONOTONIC);
}

bigtime_t
real_time_clock_usecs()
{
	return microseconds_of(CLOCK_REALTIME);
}

uint32
real_time_clock()
{
	return static_cast<uint32>(time(nullptr));
}

status_t
snooze_until(bigtime_t time, int timeBase)
{
	if (timeBase != B_SYSTEM_TIMEBASE)
		return B_BAD_VALUE;
	if (time <= 0)
		return B_OK;
	const timespec when
		= {static_cast<time_t>(time / 1000000), static_cast<long>(time % 1000000 * 1000)};
	const int error = clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &when, nullptr);
	return error == EINTR ? B_INTERRUPTED : B_OK;
}

status_t
snooze(bigtime_t microseconds)
{
	if (microseconds <= 0)
		return B_OK;
	bigtime_t until;
	if (__builtin_add_overflow(system_time(), microseconds, &until))
		until = B_INFINITE_TIMEOUT;
	return snooze_until(until, B_SYSTEM_TIMEBASE);
}

void
debugger(const char* message)
{
	fprintf(stderr, "debugger: %s\n", message != nullptr ? message : "");
	abort();
}
