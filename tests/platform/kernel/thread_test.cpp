#include "platform/kernel/watchdog.h"

#include <OS.h>

#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
#include <string.h>
#include <thread>
#include <vector>

static int
system_threads()
{
	const std::filesystem::directory_iterator tasks("/proc/self/task"), end;
	return static_cast<int>(std::distance(tasks, end));
}

static status_t
return_argument(void* data)
{
	return *static_cast<status_t*>(data);
}

static status_t
wait_for_semaphore(void* data)
{
	return acquire_sem(*static_cast<sem_id*>(data));
}

static status_t
set_flag(void* data)
{
	static_cast<std::atomic<bool>*>(data)->store(true);
	return B_OK;
}

TEST(Thread, SleepsUntilItIsResumed)
{
	const Watchdog watchdog("a thread did not start or did not end");
	std::atomic<bool> ran = false;
	const thread_id thread = spawn_thread(set_flag, "sleeper", B_NORMAL_PRIORITY, &ran);
	ASSERT_GT(thread, 0);
	thread_info info;
	ASSERT_EQ(get_thread_info(thread, &info), B_OK);
	EXPECT_EQ(info.state, B_THREAD_SUSPENDED);
	EXPECT_EQ(find_thread("sleeper"), thread);
	EXPECT_FALSE(ran);
	EXPECT_EQ(resume_thread(thread), B_OK);
	while (!ran)
		std::this_thread::yield();
	status_t result;
	EXPECT_EQ(wait_for_thread(thread, &result), B_OK);
	EXPECT_EQ(find_thread("sleeper"), B_NAME_NOT_FOUND);
}

TEST(Thread, HandsItsResultToWhoWaits)
{
	const Watchdog watchdog("a thread that has ended was waited for in vain");
	status_t value = 4711, result = 0;
	const thread_id thread = spawn_thread(return_argument, "result", 10, &value);
	// waiting starts a thread that sleeps
	EXPECT_EQ(wait_for_thread(thread, &result), B_OK);
	EXPECT_EQ(result, 4711);
	EXPECT_EQ(wait_for_thread(thread, &result), B_BAD_THREAD_ID) << "once is enough";

	const thread_id late = spawn_thread(return_argument, "late", 10, &value);
	resume_thread(late);
	while (find_thread("late") == late)
		std::this_thread::yield();
	EXPECT_EQ(resume_thread(late), B_BAD_THREAD_ID);
	EXPECT_EQ(wait_for_thread(late, nullptr), B_OK) << "the result is kept";
}

TEST(Thread, LetsSeveralWait)
{
	const Watchdog watchdog("one of several waiters was forgotten");
	sem_id gate = create_sem(0, "gate");
	const thread_id thread = spawn_thread(wait_for_semaphore, "awaited", 10, &gate);
	resume_thread(thread);
	std::atomic<int> waiting = 0;
	std::atomic<int> served = 0;
	std::vector<std::thread> waiters;
	for (int i = 0; i < 4; i++) {
		waiters.emplace_back([&] {
			waiting++;
			status_t result = B_ERROR;
			const status_t error = wait_for_thread(thread, &result);
			// who comes too late finds nobody, but gets no wrong answer either
			EXPECT_TRUE((error == B_OK && result == B_OK) || error == B_BAD_THREAD_ID);
			served += error == B_OK;
		});
	}
	while (waiting < 4)
		std::this_thread::yield();
	release_sem(gate);
	for (std::thread& waiter : waiters)
		waiter.join();
	EXPECT_GE(served, 1);
	delete_sem(gate);
}

TEST(Thread, KeepsNamesThatTheSystemWouldCut)
{
	sem_id gate = create_sem(0, "gate");
	const char* const kNames[] = {"TavoraD Communication Manager",
		"TavoraD Communication Messenger", "a name that is longer than anything allowed here"};
	std::vector<thread_id> threads;
	for (const char* name : kNames) {
		threads.push_back(spawn_thread(wait_for_semaphore, name, 10, &gate));
		resume_thread(threads.back());
		EXPECT_EQ(
			find_thread(std::string(name).substr(0, B_OS_NAME_LENGTH - 1).c_str()), threads.back());
	}
	EXPECT_EQ(find_thread("TavoraD Communi"), B_NAME_NOT_FOUND);
	EXPECT_EQ(rename_thread(threads[0], "Qubo FrontEnd Mailbox"), B_OK);
	EXPECT_EQ(find_thread("Qubo FrontEnd Mailbox"), threads[0]);
	EXPECT_EQ(find_thread(kNames[0]), B_NAME_NOT_FOUND);
	thread_info info;
	EXPECT_EQ(get_thread_info(threads[2], &info), B_OK);
	EXPECT_EQ(std::string(info.name), std::string(kNames[2]).substr(0, B_OS_NAME_LENGTH - 1));
	EXPECT_EQ(info.state, B_THREAD_RUNNING);
	delete_sem(gate);
	for (const thread_id thread : threads)
		EXPECT_EQ(wait_for_thread(thread, nullptr), B_OK);
}

TEST(Thread, TakesAnyPriorityOfAThreadThatIsThere)
{
	sem_id gate = create_sem(0, "gate");
	const thread_id thread = spawn_thread(wait_for_semaphore, "ranked", 10, &gate);
	EXPECT_EQ(set_thread_priority(thread, 15), 10);
	resume_thread(thread);
	EXPECT_EQ(set_thread_priority(thread, 1000), 15);
	EXPECT_EQ(set_thread_priority(thread, -3), B_REAL_TIME_PRIORITY);
	EXPECT_EQ(set_thread_priority(thread, 10), B_LOWEST_ACTIVE_PRIORITY);
	release_sem(gate);
	wait_for_thread(thread, nullptr);
	EXPECT_EQ(set_thread_priority(thread, 10), B_BAD_THREAD_ID);
	delete_sem(gate);
}

TEST(Thread, GivesIdsToThreadsOfOthers)
{
	const Watchdog watchdog("a thread that is not ours was waited for in vain");
	const thread_id self = find_thread(nullptr);
	EXPECT_GT(self, 0);
	EXPECT_EQ(find_thread(nullptr), self);
	EXPECT_EQ(wait_for_thread(self, nullptr), B_NOT_ALLOWED);
	EXPECT_EQ(resume_thread(self), B_BAD_THREAD_STATE);

	std::atomic<thread_id> other = 0;
	std::atomic<bool> mayEnd = false;
	std::thread thread([&] {
		other = find_thread(nullptr);
		while (!mayEnd)
			std::this_thread::yield();
	});
	while (other == 0)
		std::this_thread::yield();
	EXPECT_NE(other, self);
	EXPECT_EQ(rename_thread(other, "one of the others"), B_OK);
	EXPECT_EQ(find_thread("one of the others"), other);
	mayEnd = true;
	// waits, or comes too late
	const status_t error = wait_for_thread(other, nullptr);
	EXPECT_TRUE(error == B_OK || error == B_BAD_THREAD_ID);
	EXPECT_EQ(find_thread("one of the others"), B_NAME_NOT_FOUND);
	thread.join();
}

TEST(Thread, RefusesBadArguments)
{
	thread_info info;
	EXPECT_EQ(spawn_thread(nullptr, "no function", 10, nullptr), B_BAD_VALUE);
	EXPECT_EQ(get_thread_info(find_thread(nullptr), nullptr), B_BAD_VALUE);
	EXPECT_EQ(rename_thread(find_thread(nullptr), nullptr), B_BAD_VALUE);
	for (const thread_id bad : {0, -1, INT_MAX, int(B_BAD_VALUE)}) {
		EXPECT_EQ(resume_thread(bad), B_BAD_THREAD_ID);
		EXPECT_EQ(wait_for_thread(bad, nullptr), B_BAD_THREAD_ID);
		EXPECT_EQ(rename_thread(bad, "nobody"), B_BAD_THREAD_ID);
		EXPECT_EQ(set_thread_priority(bad, 10), B_BAD_THREAD_ID);
		EXPECT_EQ(get_thread_info(bad, &info), B_BAD_THREAD_ID);
	}
}

TEST(Thread, ThreadsThatNobodyWaitsForLeaveNothingBehind)
{
	const Watchdog watchdog("threads that nobody waits for did not end");
	const int before = system_threads();
	status_t value = 7, result = 0;
	const auto start = [&] {
		const thread_id thread = spawn_thread(return_argument, "nobody's", 10, &value);
		EXPECT_EQ(resume_thread(thread), B_OK);
		return thread;
	};
	const auto wait_for_all = [] {
		while (find_thread("nobody's") > 0)
			std::this_thread::yield();
	};
	const thread_id first = start();
	wait_for_all(); // whose result is older than all others
	for (int i = 0; i < 1000; i++) {
		start();
		// not more at once than a small machine has room for
		while (system_threads() > before + 50)
			std::this_thread::yield();
	}
	wait_for_all();
	const thread_id last = start();
	wait_for_all();
	EXPECT_EQ(wait_for_thread(last, &result), B_OK);
	EXPECT_EQ(result, 7);
	EXPECT_EQ(wait_for_thread(first, &result), B_BAD_THREAD_ID) << "results are kept for ever";
	// the last one that nobody waits for may be on its way
	while (system_threads() > before + 1)
		std::this_thread::yield();
}

TEST(Thread, IsGoneWithAllItHadWhenTheWaitIsOver)
{
	static std::atomic<bool> sDestroyed;
	struct Local {
		bool used = false;
		~Local() { sDestroyed = true; }
	};
	for (int i = 0; i < 200; i++) {
		sDestroyed = false;
		const auto use_local = [](void*) -> status_t {
			static thread_local Local sLocal;
			sLocal.used = true;
			return B_OK;
		};
		const thread_id thread = spawn_thread(use_local, "local", 10, nullptr);
		resume_thread(thread);
		ASSERT_EQ(wait_for_thread(thread, nullptr), B_OK);
		ASSERT_TRUE(sDestroyed) << i;
	}
}

TEST(Time, SnoozesNoLessThanItSays)
{
	const bigtime_t start = system_time();
	EXPECT_EQ(snooze(5000), B_OK);
	EXPECT_GE(system_time() - start, 5000);
	EXPECT_EQ(snooze_until(start + 12000, B_SYSTEM_TIMEBASE), B_OK);
	EXPECT_GE(system_time() - start, 12000);
	EXPECT_EQ(snooze(-1), B_OK);
	EXPECT_EQ(snooze_until(0, B_SYSTEM_TIMEBASE), B_OK);
	EXPECT_EQ(snooze_until(0, 17), B_BAD_VALUE);
	// the second's clock may be a tick behind
	const bigtime_t before = real_time_clock();
	const bigtime_t now = real_time_clock_usecs() / 1000000;
	EXPECT_LE(before, now);
	EXPECT_GE(real_time_clock() + 1, now);
}
