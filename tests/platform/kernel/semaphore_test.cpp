#include "platform/kernel/watchdog.h"

#include <Locker.h>
#include <OS.h>

#include <atomic>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <set>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

static void
run_threads(int count, const std::function<void(int)>& func)
{
	std::vector<std::thread> threads;
	for (int i = 0; i < count; i++)
		threads.emplace_back(func, i);
	for (std::thread& thread : threads)
		thread.join();
}

static int32
count_of(sem_id sem)
{
	int32 count = -1000;
	EXPECT_EQ(get_sem_count(sem, &count), B_OK);
	return count;
}

static void
wait_for_count(sem_id sem, int32 wanted)
{
	while (count_of(sem) != wanted)
		std::this_thread::yield();
}

//! By the system's number of a thread that does nothing any more but wait.
static void
wait_until_asleep(pid_t thread)
{
	const std::string path = "/proc/self/task/" + std::to_string(thread) + "/stat";
	for (char state = 0; state != 'S'; std::this_thread::yield()) {
		std::ifstream stat(path); // "NUMBER (NAME) STATE ..."
		stat.ignore(std::numeric_limits<std::streamsize>::max(), ')') >> state;
	}
}

TEST(Semaphore, RefusesBadArguments)
{
	int32 count;
	EXPECT_EQ(create_sem(-1, "negative"), B_BAD_VALUE);
	const sem_id sem = create_sem(1, nullptr);
	ASSERT_GT(sem, 0);
	EXPECT_EQ(acquire_sem_etc(sem, 0, 0, 0), B_BAD_VALUE);
	EXPECT_EQ(release_sem_etc(sem, -1, 0), B_BAD_VALUE);
	EXPECT_EQ(release_sem_etc(sem, INT_MAX, 0), B_BAD_VALUE) << "the count would overflow";
	EXPECT_EQ(get_sem_count(sem, nullptr), B_BAD_VALUE);
	EXPECT_EQ(count_of(sem), 1);
	EXPECT_EQ(delete_sem(sem), B_OK);
	for (const sem_id bad : {sem, sem_id(-1), sem_id(0), sem_id(INT_MAX), sem_id(B_BAD_VALUE)}) {
		EXPECT_EQ(acquire_sem(bad), B_BAD_SEM_ID) << bad;
		EXPECT_EQ(release_sem(bad), B_BAD_SEM_ID) << bad;
		EXPECT_EQ(delete_sem(bad), B_BAD_SEM_ID) << bad;
		EXPECT_EQ(get_sem_count(bad, &count), B_BAD_SEM_ID) << bad;
	}
}

TEST(Semaphore, WaitsAsLongAsTheFlagsSay)
{
	const Watchdog watchdog("a wait with a timeout did not end");
	const sem_id sem = create_sem(0, "empty");
	const struct {
		uint32 flags;
		bigtime_t timeout, atLeast;
		status_t result;
	} kCases[] = {
		{B_RELATIVE_TIMEOUT, 0, 0, B_WOULD_BLOCK},
		{B_RELATIVE_TIMEOUT, -5, 0, B_WOULD_BLOCK},
		{B_RELATIVE_TIMEOUT, 20000, 20000, B_TIMED_OUT},
		{B_ABSOLUTE_TIMEOUT, system_time() - 10, 0, B_TIMED_OUT},
		{B_ABSOLUTE_TIMEOUT, 0, 0, B_TIMED_OUT},
		{B_ABSOLUTE_TIMEOUT, system_time() + 90000, 0, B_TIMED_OUT},
	};
	for (const auto& row : kCases) {
		const bigtime_t start = system_time();
		EXPECT_EQ(acquire_sem_etc(sem, 1, row.flags, row.timeout), row.result) << row.timeout;
		EXPECT_GE(system_time() - start, row.atLeast);
		EXPECT_EQ(count_of(sem), 0) << "who gave up is still counted";
	}
	EXPECT_GE(system_time(), kCases[5].timeout);

	std::thread releaser([&] {
		wait_for_count(sem, -1);
		release_sem(sem);
	});
	EXPECT_EQ(acquire_sem_etc(sem, 1, B_RELATIVE_TIMEOUT, B_INFINITE_TIMEOUT), B_OK);
	releaser.join();
	delete_sem(sem);
}

TEST(Semaphore, GuardsACounterUnderContention)
{
	const Watchdog watchdog("threads that share a semaphore did not get on");
	const sem_id sem = create_sem(1, "guard");
	int counter = 0;
	run_threads(8, [&](int) {
		for (int i = 0; i < 5000; i++) {
			ASSERT_EQ(acquire_sem(sem), B_OK);
			counter++;
			ASSERT_EQ(release_sem(sem), B_OK);
		}
	});
	EXPECT_EQ(counter, 40000);
	EXPECT_EQ(count_of(sem), 1);
	delete_sem(sem);
}

// timeouts, releases of several and acquires of several at once: no place may be lost or made
TEST(Semaphore, KeepsItsPlacesWhenWaitersGiveUp)
{
	const Watchdog watchdog("waiters with timeouts did not come to an end");
	constexpr int32 kPlaces = 3;
	const sem_id sem = create_sem(kPlaces, "places");
	std::atomic<int32> taken = 0;
	std::atomic<int32> gaveUp = 0;
	run_threads(6, [&](int thread) {
		for (int i = 0; i < 1000; i++) {
			const int32 count = 1 + (i + thread) % kPlaces;
			if (acquire_sem_etc(sem, count, B_RELATIVE_TIMEOUT, (i % 4) * 20) != B_OK) {
				gaveUp++;
				continue;
			}
			EXPECT_LE(taken.fetch_add(count) + count, kPlaces);
			if (i % 3 == 0)
				std::this_thread::yield();
			taken -= count;
			release_sem_etc(sem, count, 0);
		}
	});
	EXPECT_EQ(count_of(sem), kPlaces);
	EXPECT_GT(gaveUp, 0);
	delete_sem(sem);
}

TEST(Semaphore, ServesInTheOrderOfComing)
{
	const Watchdog watchdog("the first of the waiters was never served");
	const sem_id sem = create_sem(0, "row");
	std::atomic<int> order = 0;
	int large = 0, small = 0;
	std::thread first([&] {
		acquire_sem_etc(sem, 3, 0, 0);
		large = ++order;
		release_sem(sem);
	});
	wait_for_count(sem, -3);
	std::thread second([&] {
		acquire_sem(sem);
		small = ++order;
	});
	wait_for_count(sem, -4);
	// two places would do for the second, but the first has come before
	release_sem_etc(sem, 2, 0);
	EXPECT_EQ(acquire_sem_etc(sem, 1, B_RELATIVE_TIMEOUT, 0), B_WOULD_BLOCK);
	release_sem(sem);
	first.join();
	second.join();
	EXPECT_EQ(large, 1);
	EXPECT_EQ(small, 2);
	delete_sem(sem);
}

TEST(Semaphore, FailsItsWaitersWhenDeleted)
{
	const Watchdog watchdog("a waiter slept on after its semaphore was deleted");
	for (int round = 0; round < 50; round++) {
		const sem_id sem = create_sem(0, "doomed");
		std::thread deleter([&] {
			wait_for_count(sem, -4);
			delete_sem(sem);
			// the place in the table may be used again at once
			delete_sem(create_sem(5, "next"));
		});
		run_threads(4, [&](int) { EXPECT_EQ(acquire_sem(sem), B_BAD_SEM_ID); });
		deleter.join();
	}
}

TEST(Semaphore, DeletionMeetsAcquiresAndReleases)
{
	const Watchdog watchdog("threads did not notice that their semaphore is gone");
	for (int round = 0; round < 100; round++) {
		const sem_id sem = create_sem(1, "contested");
		std::atomic<bool> begun = false;
		std::thread deleter([&] {
			begun.wait(false);
			delete_sem(sem);
		});
		run_threads(3, [&](int) {
			while (acquire_sem(sem) == B_OK) {
				begun = true;
				begun.notify_all();
				release_sem(sem);
			}
			EXPECT_EQ(release_sem(sem), B_BAD_SEM_ID);
		});
		deleter.join();
	}
}

TEST(Semaphore, GivesOutAnIdOnlyOnce)
{
	std::set<sem_id> seen;
	for (int i = 0; i < 20000; i++) {
		const sem_id sem = create_sem(0, "short-lived");
		ASSERT_TRUE(seen.insert(sem).second) << sem;
		ASSERT_EQ(delete_sem(sem), B_OK);
	}
}

TEST(Locker, BelongsToOneThreadAsOftenAsItLikes)
{
	const Watchdog watchdog("a locker was not given back");
	BLocker locker("counter");
	int counter = 0;
	run_threads(4, [&](int) {
		for (int i = 0; i < 2000; i++) {
			ASSERT_TRUE(locker.Lock());
			ASSERT_TRUE(locker.Lock());
			ASSERT_EQ(locker.CountLocks(), 2);
			ASSERT_EQ(locker.LockingThread(), find_thread(nullptr));
			counter++;
			locker.Unlock();
			ASSERT_TRUE(locker.IsLocked());
			locker.Unlock();
			locker.Unlock(); // not ours any more
		}
	});
	EXPECT_EQ(counter, 8000);
	EXPECT_FALSE(locker.IsLocked());
	EXPECT_LT(locker.LockingThread(), 0);
}

TEST(Locker, TellsWhyItIsNotLocked)
{
	const Watchdog watchdog("a thread waits for a locker that is gone");
	auto locker = std::make_unique<BLocker>();
	ASSERT_TRUE(locker->Lock());
	std::atomic<pid_t> waits = 0;
	std::thread other([&, raw = locker.get()] {
		EXPECT_EQ(raw->LockWithTimeout(0), B_WOULD_BLOCK);
		EXPECT_EQ(raw->LockWithTimeout(1000), B_TIMED_OUT);
		raw->Unlock(); // not the owner
		EXPECT_FALSE(raw->IsLocked());
		waits = gettid();
		EXPECT_FALSE(raw->Lock());
	});
	while (waits == 0)
		std::this_thread::yield();
	// its end wakes who waits; who comes after it has no locker to ask
	wait_until_asleep(waits);
	locker.reset();
	other.join();
}
