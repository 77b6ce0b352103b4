// Message runners: their beats, and that they stop.

#include "platform/app/app_test_support.h"
#include <MessageRunner.h>
#include <ctime>
#include <gtest/gtest.h>

namespace {

constexpr uint32 kBeat = 'beat';

//! When the beats came, on the looper's thread.
struct Beats {
	std::mutex lock;
	std::vector<bigtime_t> times;

	void Add()
	{
		std::lock_guard guard(lock);
		times.push_back(system_time());
	}
	size_t Count()
	{
		std::lock_guard guard(lock);
		return times.size();
	}
	bigtime_t At(size_t index)
	{
		std::lock_guard guard(lock);
		return times[index];
	}
};

TestLooper*
beating_looper(Beats& beats)
{
	TestLooper* looper = new TestLooper([&](TestLooper*, BMessage* message) {
		if (message->what == kBeat)
			beats.Add();
	});
	looper->Run();
	return looper;
}

} // namespace

TEST(MessageRunner, KeepsTheBeat)
{
	Watchdog watchdog("beats");
	Beats beats;
	TestLooper* looper = beating_looper(beats);
	const bigtime_t start = system_time();
	BMessageRunner runner(BMessenger(looper), BMessage(kBeat), 10000);
	ASSERT_EQ(runner.InitCheck(), B_OK);
	EXPECT_TRUE(happens([&] { return beats.Count() >= 20; }));
	// never early: the twentieth beat is the twentieth or a later one
	for (size_t i = 0; i < 20; i++)
		EXPECT_GE(beats.At(i) - start, bigtime_t(i + 1) * 10000);
	quit(looper);
	EXPECT_EQ(runner.SetInterval(1000), B_BAD_VALUE);
}

TEST(MessageRunner, StopsAfterItsCount)
{
	Watchdog watchdog("counted beats");
	Beats beats;
	TestLooper* looper = beating_looper(beats);
	BMessageRunner runner(BMessenger(looper), BMessage(kBeat), 1000, 3);
	EXPECT_TRUE(happens([&] { return beats.Count() == 3; }));
	bigtime_t interval;
	int32 count;
	EXPECT_EQ(runner.GetInfo(&interval, &count), B_BAD_VALUE);
	EXPECT_EQ(runner.SetCount(5), B_BAD_VALUE);

	// one that is done is seen to be done by a later one, which cannot beat while the looper is locked
	ASSERT_TRUE(looper->Lock());
	BMessageRunner later(BMessenger(looper), BMessage('late'), 5000, 1);
	EXPECT_EQ(later.GetInfo(&interval, &count), B_OK);
	EXPECT_EQ(interval, 5000);
	EXPECT_EQ(count, 1);
	looper->Unlock();
	EXPECT_TRUE(happens([&] { return looper->received == 4; }));
	EXPECT_EQ(beats.Count(), 3u);
	quit(looper);
}

TEST(MessageRunner, SetIntervalCountsFromNow)
{
	Watchdog watchdog("SetInterval()");
	Beats beats;
	TestLooper* looper = beating_looper(beats);
	BMessageRunner runner(BMessenger(looper), BMessage(kBeat), 100000000);
	const bigtime_t start = system_time();
	EXPECT_EQ(runner.SetInterval(20000), B_OK); // wakes a looper that sleeps for 100 s
	EXPECT_TRUE(happens([&] { return beats.Count() >= 1; }));
	EXPECT_GE(beats.At(0) - start, 20000);
	ASSERT_TRUE(looper->Lock()); // none is under way
	EXPECT_EQ(runner.SetInterval(100000000), B_OK);
	const size_t count = beats.Count();
	looper->Unlock();
	snooze(30000);
	EXPECT_EQ(beats.Count(), count);
	quit(looper);
}

// The way the display polls: no beat while one is worked on, the next a whole interval after it.
TEST(MessageRunner, MayBeHeldWhileABeatIsWorkedOn)
{
	Watchdog watchdog("beats that hold their runner");
	std::unique_ptr<BMessageRunner> runner;
	bigtime_t lastEnd = 0, shortest = B_INFINITE_TIMEOUT;
	TestLooper* looper = new TestLooper([&](TestLooper*, BMessage*) {
		runner->SetInterval(100000000);
		if (lastEnd > 0)
			shortest = std::min(shortest, system_time() - lastEnd);
		snooze(7000);
		lastEnd = system_time();
		runner->SetInterval(5000);
	});
	runner = std::make_unique<BMessageRunner>(BMessenger(looper), BMessage(kBeat), 5000);
	looper->Run();
	EXPECT_TRUE(happens([&] { return looper->received >= 10; }));
	quit(looper);
	EXPECT_GE(shortest, 5000);
}

TEST(MessageRunner, SkipsWhatTheLooperWasTooBusyFor)
{
	Watchdog watchdog("skipped beats");
	Beats beats;
	TestLooper* looper = beating_looper(beats);
	looper->Lock();
	const bigtime_t start = system_time();
	BMessageRunner runner(BMessenger(looper), BMessage(kBeat), 20000);
	snooze(210000);
	looper->Unlock();
	EXPECT_TRUE(happens([&] { return beats.Count() >= 3; }));
	// one for all that were missed; the next ones are on the old beat again
	EXPECT_GE(beats.At(1) - start, 220000);
	EXPECT_GE(beats.At(2) - start, 240000);
	quit(looper);
}

TEST(MessageRunner, AndAFloodOfMessagesDoNotKeepEachOtherOut)
{
	Watchdog watchdog("runners beside a flood");
	std::atomic<int> beats{0}, others{0};
	TestLooper* looper = new TestLooper([&](TestLooper* self, BMessage* message) {
		if (message->what == kBeat) {
			beats++;
			return;
		}
		others++;
		self->PostMessage('more');
	});
	looper->PostMessage('more');
	looper->Run();
	BMessageRunner frequent(BMessenger(looper), BMessage(kBeat), 1); // due again at once
	EXPECT_TRUE(happens([&] { return beats > 200 && others > 200; }));
	quit(looper);
}

TEST(MessageRunner, SleepsThroughAnIntervalThatNeverEnds)
{
	Watchdog watchdog("a far beat");
	Beats beats;
	TestLooper* looper = beating_looper(beats);
	BMessageRunner runner(BMessenger(looper), BMessage(kBeat), 1000000);
	const clock_t before = clock();
	for (const bigtime_t interval : {INT64_MAX, INT64_MAX / 2, INT64_MAX / 1000 + 1}) {
		ASSERT_EQ(runner.SetInterval(interval), B_OK);
		snooze(40000); // in which a looper that does not sleep would burn as much
	}
	EXPECT_LT(clock() - before, CLOCKS_PER_SEC * 60 / 1000);
	EXPECT_EQ(beats.Count(), 0u);
	quit(looper);
}

TEST(MessageRunner, RefusesWhatCannotBe)
{
	TestLooper* looper = new TestLooper;
	const BMessenger messenger(looper);
	EXPECT_EQ(
		BMessageRunner(messenger, static_cast<BMessage*>(NULL), 1000).InitCheck(), B_BAD_VALUE);
	EXPECT_EQ(BMessageRunner(messenger, BMessage(kBeat), 0).InitCheck(), B_BAD_VALUE);
	EXPECT_EQ(BMessageRunner(messenger, BMessage(kBeat), 1000, 0).InitCheck(), B_ERROR);
	EXPECT_EQ(BMessageRunner(BMessenger(), BMessage(kBeat), 1000).InitCheck(), B_BAD_VALUE);
	BMessageRunner runner(messenger, BMessage(kBeat), 1000);
	EXPECT_EQ(runner.SetInterval(0), B_BAD_VALUE);
	EXPECT_EQ(runner.SetCount(0), B_BAD_VALUE);
	delete looper;
	EXPECT_EQ(runner.InitCheck(), B_OK);
	EXPECT_EQ(runner.SetInterval(1000), B_BAD_VALUE);
}

TEST(MessageRunner, StopsWhenItsHandlerIsGone)
{
	Watchdog watchdog("a runner without its handler");
	Beats beats;
	TestLooper* looper = beating_looper(beats);
	BHandler* handler = new BHandler;
	looper->Lock();
	looper->AddHandler(handler);
	looper->Unlock();
	BMessageRunner runner(BMessenger(handler), BMessage(kBeat), 1000);
	delete handler;
	EXPECT_TRUE(happens([&] { return runner.GetInfo(NULL, NULL) == B_BAD_VALUE; }));
	quit(looper);
}

TEST(MessageRunner, MayComeAndGoOnAnyThreadWhileLoopersQuit)
{
	Watchdog watchdog("runners of loopers that quit", 60);
	for (int round = 0; round < 100; round++) {
		Beats beats;
		TestLooper* looper = beating_looper(beats);
		const BMessenger messenger(looper);
		std::thread other([&] {
			for (int i = 0; i < 20; i++) {
				BMessageRunner runner(messenger, BMessage(kBeat), 100);
				runner.SetInterval(50);
				BMessageRunner::StartSending(messenger, NULL, 10, 2);
				const BMessage last(kBeat);
				BMessageRunner::StartSending(messenger, &last, 10, 2);
			}
		});
		quit(looper);
		other.join();
	}
}
