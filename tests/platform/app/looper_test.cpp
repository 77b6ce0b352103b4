// Loopers: dispatching, locking, quitting.

#include "platform/app/app_test_support.h"
#include <MessageQueue.h>
#include <gtest/gtest.h>

TEST(Looper, DispatchesInOrderAndLocked)
{
	Watchdog watchdog("dispatching");
	std::vector<uint32> order;
	TestLooper* looper = new TestLooper([&](TestLooper* self, BMessage* message) {
		EXPECT_TRUE(self->IsLocked());
		EXPECT_EQ(self->LockingThread(), find_thread(NULL));
		EXPECT_EQ(self->CurrentMessage(), message);
		order.push_back(message->what);
	});
	EXPECT_TRUE(looper->IsLocked()); // by its maker, until it runs
	EXPECT_EQ(looper->Thread(), -1);
	for (uint32 i = 1; i <= 100; i++)
		looper->PostMessage(i);
	const thread_id thread = looper->Run();
	EXPECT_FALSE(looper->IsLocked());
	EXPECT_EQ(find_thread("test looper"), thread);
	EXPECT_EQ(BLooper::LooperForThread(thread), looper);
	quit(looper);
	ASSERT_EQ(order.size(), 100u);
	EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
	EXPECT_EQ(BLooper::LooperForThread(thread), nullptr);
}

namespace {

class NamingHandler : public BHandler {
public:
	explicit NamingHandler(std::string* log, const char* name) : BHandler(name), fLog(log) { }
	void MessageReceived(BMessage* message) override
	{
		*fLog += Name();
		if (message->what == 'pass')
			BHandler::MessageReceived(message);
	}

private:
	std::string* fLog;
};

} // namespace

TEST(Looper, FindsTheHandlerAMessageIsFor)
{
	Watchdog watchdog("handlers");
	std::string log;
	TestLooper* looper = new TestLooper([&](TestLooper*, BMessage*) { log += "L"; });
	NamingHandler a(&log, "a"), b(&log, "b"), stray(&log, "x");
	looper->AddHandler(&a);
	looper->AddHandler(&b);
	EXPECT_EQ(looper->CountHandlers(), 3);
	EXPECT_EQ(looper->HandlerAt(0), looper);
	EXPECT_EQ(looper->IndexOf(&b), 2);
	EXPECT_EQ(looper->HandlerAt(3), nullptr);
	EXPECT_EQ(a.NextHandler(), looper);
	a.SetNextHandler(&b);
	looper->PostMessage('none', NULL); // nobody is preferred yet
	EXPECT_EQ(looper->PostMessage('x', &stray), B_MISMATCHED_VALUES);
	looper->PostMessage('one ', &a);
	looper->PostMessage('pass', &a);
	looper->Run();
	EXPECT_TRUE(happens([&] { return looper->received == 2; })); // the second by way of a and b
	looper->Lock();
	looper->SetPreferredHandler(&b);
	looper->PostMessage('pref', NULL);
	looper->PostMessage('dead', &a);
	EXPECT_TRUE(looper->RemoveHandler(&a));
	EXPECT_FALSE(looper->RemoveHandler(&a));
	EXPECT_EQ(a.Looper(), nullptr);
	looper->Unlock();
	quit(looper);
	EXPECT_EQ(log, "LaabLb");
	EXPECT_EQ(b.Looper(), nullptr); // left by a looper that is gone
	EXPECT_FALSE(b.LockLooper());
}

// Locking

namespace {

//! A looper's address when it is gone, which callers may still ask.
__attribute__((no_sanitize("vptr"))) bool
lock_looper(BLooper* looper)
{
	return looper->Lock();
}

} // namespace

TEST(LooperLocking, FailsForALooperThatIsGone)
{
	Watchdog watchdog("Lock() on a dead looper");
	TestLooper* looper = new TestLooper;
	looper->Run();
	quit(looper);
	EXPECT_FALSE(lock_looper(looper));
	TestLooper* neverRun = new TestLooper;
	delete neverRun;
	EXPECT_FALSE(lock_looper(neverRun));
}

TEST(LooperLocking, WakesThoseThatWaitWhenTheLooperGoes)
{
	Watchdog watchdog("waiting for the lock of a looper that quits");
	for (int round = 0; round < 50; round++) {
		TestLooper* looper = new TestLooper;
		looper->Run();
		looper->Lock();
		std::vector<std::thread> threads;
		std::atomic<int> locked{0};
		for (int i = 0; i < 3; i++) {
			threads.emplace_back([&] {
				if (!lock_looper(looper))
					return;
				locked++;
				looper->Unlock();
			});
		}
		EXPECT_TRUE(happens([&] { return looper->CountLockRequests() == 4; }));
		looper->Quit();
		for (std::thread& thread : threads)
			thread.join();
		// each either was let in before the end, or was told that there is none
		EXPECT_LE(locked, 3);
	}
}

TEST(LooperLocking, CountsAndTimesOut)
{
	Watchdog watchdog("locks");
	TestLooper* looper = new TestLooper;
	looper->Run();
	EXPECT_TRUE(looper->Lock());
	EXPECT_TRUE(looper->Lock());
	EXPECT_EQ(looper->CountLocks(), 2);
	std::thread([&] {
		EXPECT_FALSE(looper->IsLocked());
		EXPECT_EQ(looper->LockWithTimeout(0), B_WOULD_BLOCK);
		EXPECT_EQ(looper->LockWithTimeout(5000), B_TIMED_OUT);
		looper->Unlock(); // not its own: nothing happens
	}).join();
	looper->Unlock();
	EXPECT_TRUE(looper->IsLocked());
	looper->Unlock();
	EXPECT_FALSE(looper->IsLocked());
	EXPECT_EQ(looper->LockingThread(), -1);
	quit(looper);
}

// A looper with an endless stream of messages must let others have its lock.
TEST(LooperLocking, IsFair)
{
	Watchdog watchdog("a busy looper's lock");
	TestLooper* looper
		= new TestLooper([](TestLooper* self, BMessage*) { self->PostMessage('more'); });
	looper->PostMessage('more');
	looper->Run();
	// both get on: the looper while we take its lock all the time, and we while it has work all the time
	int locks = 0;
	for (; locks < 500 || looper->received < 500; locks++) {
		ASSERT_TRUE(looper->Lock());
		looper->Unlock();
	}
	quit(looper);
}

// Quitting

TEST(LooperQuit, FromItsOwnThreadDoesNotReturn)
{
	Watchdog watchdog("Quit() from a looper's own thread");
	std::atomic<bool> deleted{false}, returned{false};
	TestLooper* looper = new TestLooper([&](TestLooper* self, BMessage*) {
		self->Quit();
		returned = true;
	});
	looper->deleted = &deleted;
	looper->PostMessage('quit');
	const thread_id thread = looper->Run();
	wait_for_thread(thread, NULL);
	EXPECT_TRUE(deleted);
	EXPECT_FALSE(returned);
}

TEST(LooperQuit, FromAnotherThreadDispatchesWhatWasPostedBefore)
{
	Watchdog watchdog("Quit() from another thread");
	std::atomic<int> received{0};
	TestLooper* looper = new TestLooper([&](TestLooper*, BMessage*) { received++; });
	for (int i = 0; i < B_LOOPER_PORT_DEFAULT_CAPACITY; i++)
		EXPECT_EQ(looper->PostMessage('more'), B_OK); // full: quitting needs no place
	looper->Run();
	looper->Lock();
	looper->Lock();
	looper->Quit();
	EXPECT_EQ(received, B_LOOPER_PORT_DEFAULT_CAPACITY);
}

TEST(LooperQuit, AsksForPermission)
{
	class Stubborn : public TestLooper {
	public:
		bool QuitRequested() override { return ++asked > 1; }
		int asked = 0;
	};
	Watchdog watchdog("QuitRequested()");
	Stubborn* looper = new Stubborn;
	std::atomic<bool> deleted{false};
	looper->deleted = &deleted;
	const BMessenger messenger(looper);
	const thread_id thread = looper->Run();
	BMessage reply;
	EXPECT_EQ(messenger.SendMessage(B_QUIT_REQUESTED, &reply), B_OK);
	EXPECT_FALSE(reply.GetBool("result", true));
	EXPECT_TRUE(messenger.IsValid());
	EXPECT_EQ(messenger.SendMessage(B_QUIT_REQUESTED, &reply), B_OK);
	EXPECT_TRUE(reply.GetBool("result"));
	wait_for_thread(thread, NULL);
	EXPECT_TRUE(deleted);
}

TEST(LooperQuit, TwoHundredTimesWhileOthersPostLockAndAsk)
{
	Watchdog watchdog("loopers made and quit while others use them", 60);
	std::mutex lock;
	BMessenger current;
	BLooper* address = NULL;
	std::atomic<bool> end{false};
	std::vector<std::thread> threads;
	const auto target = [&] {
		std::lock_guard guard(lock);
		return current;
	};
	threads.emplace_back([&] {
		while (!end)
			target().SendMessage('post');
	});
	threads.emplace_back([&] {
		BMessage reply;
		while (!end)
			target().SendMessage('ask ', &reply);
	});
	threads.emplace_back([&] {
		while (!end) {
			BLooper* looper;
			{
				std::lock_guard guard(lock);
				looper = address;
			}
			if (looper != NULL && lock_looper(looper))
				looper->Unlock();
		}
	});
	for (int round = 0; round < 200; round++) {
		TestLooper* looper = new TestLooper([](TestLooper*, BMessage* message) {
			if (message->what == 'ask ')
				message->SendReply('answ');
		});
		{
			std::lock_guard guard(lock);
			current = BMessenger(looper);
			address = looper;
		}
		const thread_id thread = looper->Run();
		if (round % 2 == 0)
			quit(looper);
		else
			current.SendMessage(B_QUIT_REQUESTED);
		wait_for_thread(thread, NULL);
	}
	end = true;
	for (std::thread& thread : threads)
		thread.join();
}

TEST(LooperQuit, HandlersMayGoWhileMessagesForThemArrive)
{
	Watchdog watchdog("messengers to dying handlers");
	TestLooper* looper = new TestLooper;
	looper->Run();
	std::mutex lock;
	BMessenger current;
	std::atomic<bool> end{false};
	std::thread sender([&] {
		while (!end) {
			BMessenger messenger;
			{
				std::lock_guard guard(lock);
				messenger = current;
			}
			messenger.SendMessage('post');
		}
	});
	for (int round = 0; round < 300; round++) {
		BHandler* handler = new BHandler;
		looper->Lock();
		looper->AddHandler(handler);
		looper->Unlock();
		{
			std::lock_guard guard(lock);
			current = BMessenger(handler);
		}
		snooze(10);
		delete handler; // locks the looper by itself
	}
	end = true;
	sender.join();
	quit(looper);
}

// What the kits above build on

namespace {

class BatchLooper : public TestLooper {
public:
	explicit BatchLooper(Function function) : TestLooper(std::move(function)) { }
	void _BatchDone() override
	{
		EXPECT_TRUE(IsLocked());
		receivedAtBatch = received.load();
		batches++;
	}
	void _AboutToWait() override
	{
		EXPECT_FALSE(IsLocked());
		waits++;
	}
	std::atomic<int> batches{0}, waits{0}, receivedAtBatch{0};
};

} // namespace

TEST(LooperBatch, EndsOnceAfterManyMessages)
{
	Watchdog watchdog("batches");
	BatchLooper* looper = new BatchLooper([](TestLooper*, BMessage*) {});
	for (int i = 0; i < 100; i++)
		looper->PostMessage('more');
	const bigtime_t start = system_time();
	looper->Run();
	EXPECT_TRUE(happens([&] { return looper->waits >= 1; }));
	EXPECT_EQ(looper->receivedAtBatch, 100);
	// one at the end; a slow machine has another for each 16 ms
	EXPECT_LE(looper->batches, 1 + (system_time() - start) / 16000);
	const int before = looper->batches;
	looper->PostMessage('more');
	EXPECT_TRUE(happens([&] { return looper->batches == before + 1; }));
	quit(looper);
}

TEST(LooperBatch, EndsInTheMiddleOfAFlood)
{
	Watchdog watchdog("batches of an endless stream");
	BatchLooper* looper
		= new BatchLooper([](TestLooper* self, BMessage*) { self->PostMessage('more'); });
	looper->PostMessage('more');
	looper->Run();
	EXPECT_TRUE(happens([&] { return looper->batches >= 5; }));
	EXPECT_EQ(looper->waits, 0);
	quit(looper);
}

TEST(MessageQueue, KeepsOrderAndFinds)
{
	BMessageQueue queue;
	BMessage* messages[4];
	for (uint32 i = 0; i < 4; i++)
		queue.AddMessage(messages[i] = new BMessage(i % 2));
	EXPECT_EQ(queue.CountMessages(), 4);
	EXPECT_EQ(queue.FindMessage(int32(2)), messages[2]);
	EXPECT_EQ(queue.FindMessage(uint32(1), 1), messages[3]);
	EXPECT_EQ(queue.FindMessage(uint32(1), 2), nullptr);
	EXPECT_EQ(queue.FindMessage(int32(-1)), nullptr);
	queue.RemoveMessage(messages[3]);
	queue.RemoveMessage(messages[0]);
	delete messages[3];
	delete messages[0];
	EXPECT_TRUE(queue.IsNextMessage(messages[1]));
	queue.AddMessage(messages[0] = new BMessage(9));
	std::unique_ptr<BMessage> first(queue.NextMessage()), second(queue.NextMessage());
	EXPECT_EQ(first.get(), messages[1]);
	EXPECT_EQ(second.get(), messages[2]);
	EXPECT_EQ(queue.CountMessages(), 1); // deleted with the queue
}
