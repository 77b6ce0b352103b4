// Messengers and replies: who gets them, and that nobody waits for ever.

#include "platform/app/app_test_support.h"
#include <Handler.h>
#include <gtest/gtest.h>

namespace {

constexpr uint32 kAsk = 'ask ';
constexpr uint32 kAnswer = 'answ';

//! Answers kAsk with its field "n", or does what the field "do" says.
void
answer(TestLooper*, BMessage* message)
{
	if (message->what != kAsk)
		return;
	BMessage reply(kAnswer);
	reply.AddInt32("n", message->GetInt32("n", -1));
	message->SendReply(&reply);
}

BMessage
ask(int32 n)
{
	BMessage message(kAsk);
	message.AddInt32("n", n);
	return message;
}

} // namespace

TEST(Reply, ComesToTheThreadThatWaits)
{
	Watchdog watchdog("synchronous replies");
	TestLooper* looper = new TestLooper(answer);
	const BMessenger messenger(looper);
	looper->Run();
	std::vector<std::thread> threads;
	for (int32 thread = 0; thread < 4; thread++) {
		threads.emplace_back([&, thread] {
			for (int32 i = 0; i < 300; i++) {
				BMessage question = ask(thread * 1000 + i), reply;
				ASSERT_EQ(messenger.SendMessage(&question, &reply), B_OK);
				ASSERT_EQ(reply.what, kAnswer);
				ASSERT_EQ(reply.GetInt32("n", -1), thread * 1000 + i);
				ASSERT_TRUE(reply.IsReply());
				ASSERT_NE(reply.Previous(), nullptr);
				ASSERT_EQ(reply.Previous()->what, kAsk);
			}
		});
	}
	for (std::thread& thread : threads)
		thread.join();
	quit(looper);
}

TEST(Reply, IsNoReplyWhenTheTargetDoesNotAnswer)
{
	Watchdog watchdog("B_NO_REPLY");
	TestLooper* looper = new TestLooper([](TestLooper*, BMessage*) {});
	BHandler* handler = new BHandler;
	looper->AddHandler(handler);
	const BMessenger messenger(looper), toHandler(handler);
	looper->Run();
	BMessage reply;
	EXPECT_EQ(messenger.SendMessage(kAsk, &reply), B_OK);
	EXPECT_EQ(reply.what, uint32(B_NO_REPLY));

	// the looper is there, its handler is not
	ASSERT_TRUE(looper->Lock());
	delete handler;
	looper->Unlock();
	EXPECT_TRUE(toHandler.IsValid());
	EXPECT_EQ(toHandler.Target(NULL), nullptr);
	reply.what = 0;
	EXPECT_EQ(toHandler.SendMessage(kAsk, &reply), B_OK);
	EXPECT_EQ(reply.what, uint32(B_NO_REPLY));

	quit(looper);
	EXPECT_FALSE(messenger.IsValid());
	EXPECT_EQ(messenger.SendMessage(kAsk, &reply), B_BAD_PORT_ID);
	EXPECT_EQ(messenger.SendMessage(kAsk), B_BAD_PORT_ID);
}

TEST(Reply, IsNoReplyForWhatStillWaitsWhenTheLooperQuits)
{
	Watchdog watchdog("messages in the queue of a looper that quits");
	for (int round = 0; round < 50; round++) {
		std::atomic<bool> inHandler{false}, go{false};
		TestLooper* looper = new TestLooper([&](TestLooper* self, BMessage* message) {
			if (message->what != 'quit')
				return;
			inHandler = true;
			while (!go)
				snooze(50);
			self->Quit();
		});
		const BMessenger messenger(looper);
		looper->Run();
		messenger.SendMessage('quit');
		ASSERT_TRUE(happens([&] { return inHandler.load(); }));
		std::vector<std::thread> senders;
		std::atomic<int> sent{0};
		for (int i = 0; i < 4; i++) {
			senders.emplace_back([&] {
				BMessage question = ask(1), reply;
				sent++;
				const status_t error = messenger.SendMessage(&question, &reply);
				EXPECT_TRUE(
					error == B_BAD_PORT_ID || (error == B_OK && reply.what == uint32(B_NO_REPLY)))
					<< error;
			});
		}
		EXPECT_TRUE(happens([&] { return sent == 4; }));
		go = true;
		for (std::thread& sender : senders)
			sender.join();
	}
}

TEST(Reply, TimesOut)
{
	Watchdog watchdog("time-outs");
	std::atomic<bool> taken{false}, go{false};
	std::atomic<status_t> late{1};
	TestLooper* looper = new TestLooper(
		[&](TestLooper*, BMessage* message) {
			if (message->what == kAnswer)
				return;
			taken = true;
			while (!go)
				snooze(100);
			late = message->SendReply(kAnswer);
		},
		"slow", 1);
	const BMessenger messenger(looper);
	looper->Run();
	BMessage question(kAsk), reply(7);
	const bigtime_t start = system_time();
	EXPECT_EQ(messenger.SendMessage(&question, &reply, 1000000, 20000), B_TIMED_OUT);
	EXPECT_GE(system_time() - start, 20000);
	EXPECT_EQ(reply.what, 7u);

	// the queue has one place, which the question has left
	EXPECT_TRUE(happens([&] { return taken.load(); }));
	EXPECT_EQ(looper->PostMessage(kAnswer), B_OK);
	EXPECT_EQ(looper->PostMessage(kAnswer), B_WOULD_BLOCK);
	BMessage more(kAnswer);
	EXPECT_EQ(messenger.SendMessage(&more, static_cast<BHandler*>(NULL), 10000), B_TIMED_OUT);
	EXPECT_EQ(messenger.SendMessage(&more, &reply, 10000, 10000), B_TIMED_OUT);
	std::thread waiting([&] { EXPECT_EQ(messenger.SendMessage(kAnswer), B_OK); });
	go = true;
	waiting.join();
	EXPECT_TRUE(happens([&] { return looper->received == 3; }));
	// the answer to the first question found nobody
	EXPECT_EQ(late, B_BAD_PORT_ID);
	quit(looper);
}

TEST(Reply, ALateOneIsNotTakenForAnother)
{
	Watchdog watchdog("late replies");
	std::unique_ptr<BMessage> kept;
	TestLooper* looper = new TestLooper([&](TestLooper* self, BMessage* message) {
		if (kept == nullptr) {
			kept.reset(self->DetachCurrentMessage());
			return;
		}
		BMessage lateReply('late');
		EXPECT_EQ(kept->SendReply(&lateReply), B_BAD_PORT_ID);
		message->SendReply(kAnswer);
	});
	const BMessenger messenger(looper);
	looper->Run();
	BMessage question(kAsk), reply;
	EXPECT_EQ(messenger.SendMessage(&question, &reply, 1000000, 5000), B_TIMED_OUT);
	EXPECT_EQ(messenger.SendMessage(&question, &reply), B_OK);
	EXPECT_EQ(reply.what, kAnswer);
	quit(looper);
}

TEST(Reply, IsGivenOnceToAWaitingSource)
{
	Watchdog watchdog("duplicate replies");
	std::atomic<status_t> second{0}, toItself{0};
	TestLooper* looper = new TestLooper([&](TestLooper* self, BMessage* message) {
		BMessage reply;
		toItself = BMessenger(self).SendMessage(kAsk, &reply);
		EXPECT_TRUE(message->IsSourceWaiting());
		EXPECT_TRUE(message->WasDelivered());
		EXPECT_FALSE(message->IsSourceRemote());
		BMessage copy(*message);
		EXPECT_EQ(copy.SendReply(kAnswer), B_BAD_REPLY);
		EXPECT_EQ(message->SendReply(kAnswer), B_OK);
		EXPECT_FALSE(message->IsSourceWaiting());
		second = message->SendReply(kAnswer);
	});
	const BMessenger messenger(looper);
	looper->Run();
	BMessage reply;
	EXPECT_EQ(messenger.SendMessage(kAsk, &reply), B_OK);
	quit(looper);
	EXPECT_EQ(second, B_DUPLICATE_REPLY);
	EXPECT_EQ(toItself, B_MESSAGE_TO_SELF);
	EXPECT_EQ(BMessage().SendReply(kAnswer), B_BAD_REPLY);
}

TEST(Reply, CanBeAnsweredItself)
{
	Watchdog watchdog("a reply to a reply");
	std::atomic<uint32> second{0};
	TestLooper* looper = new TestLooper([&](TestLooper*, BMessage* message) {
		BMessage reply(kAnswer), replyToReply;
		EXPECT_EQ(message->SendReply(&reply, &replyToReply), B_OK);
		second = replyToReply.what;
	});
	const BMessenger messenger(looper);
	looper->Run();
	BMessage reply;
	EXPECT_EQ(messenger.SendMessage(kAsk, &reply), B_OK);
	EXPECT_TRUE(reply.IsSourceWaiting());
	EXPECT_EQ(reply.SendReply('two '), B_OK);
	quit(looper);
	EXPECT_EQ(second, uint32('two '));
}

// A message that is sent on takes the duty to reply along.
TEST(Reply, ComesFromTheLastOneAMessageIsSentOnTo)
{
	Watchdog watchdog("forwarded messages");
	TestLooper* last = new TestLooper(answer);
	const BMessenger toLast(last);
	TestLooper* first = new TestLooper([&](TestLooper*, BMessage* message) {
		EXPECT_EQ(toLast.SendMessage(message), B_OK);
		EXPECT_FALSE(message->IsSourceWaiting());
	});
	const BMessenger toFirst(first);
	last->Run();
	first->Run();
	BMessage question = ask(5), reply;
	EXPECT_EQ(toFirst.SendMessage(&question, &reply), B_OK);
	EXPECT_EQ(reply.GetInt32("n", -1), 5);

	// it stays with the first when the second is gone
	quit(last);
	TestLooper* other = new TestLooper([&](TestLooper*, BMessage* message) {
		EXPECT_EQ(toLast.SendMessage(message), B_BAD_PORT_ID);
		EXPECT_TRUE(message->IsSourceWaiting());
		message->SendReply('mine');
	});
	other->Run();
	EXPECT_EQ(BMessenger(other).SendMessage(&question, &reply), B_OK);
	EXPECT_EQ(reply.what, uint32('mine'));
	quit(first);
	quit(other);
}

TEST(Reply, GoesToTheHandlerThatWasNamed)
{
	Watchdog watchdog("asynchronous replies");
	TestLooper* target = new TestLooper(answer);
	std::atomic<int32> n{0};
	TestLooper* source = new TestLooper([&](TestLooper*, BMessage* message) {
		EXPECT_TRUE(message->IsReply());
		EXPECT_EQ(message->Previous()->GetInt32("n", -1), 8);
		n = message->GetInt32("n", -1);
	});
	target->Run();
	source->Run();
	BMessage question = ask(8);
	EXPECT_EQ(BMessenger(target).SendMessage(&question, source), B_OK);
	EXPECT_TRUE(happens([&] { return n == 8; }));
	quit(target);
	quit(source);
}

TEST(Messenger, TellsWhatItIsAimedAt)
{
	Watchdog watchdog("targets");
	TestLooper* looper = new TestLooper;
	BHandler handler, stray;
	looper->AddHandler(&handler);
	status_t error;
	BLooper* found = NULL;
	EXPECT_EQ(BMessenger(&handler, NULL, &error).Target(&found), &handler);
	EXPECT_EQ(error, B_OK);
	EXPECT_EQ(found, looper);
	EXPECT_EQ(BMessenger(NULL, looper).Target(&found), nullptr);
	EXPECT_EQ(found, looper);
	EXPECT_FALSE(BMessenger(&stray, NULL, &error).IsValid());
	EXPECT_EQ(error, B_MISMATCHED_VALUES);
	BMessenger(static_cast<BHandler*>(NULL), NULL, &error);
	EXPECT_EQ(error, B_BAD_VALUE);
	BMessenger("application/x-vnd.nobody", -1, &error);
	EXPECT_EQ(error, B_BAD_VALUE);
	EXPECT_EQ(BMessenger(looper), BMessenger(looper));
	EXPECT_NE(BMessenger(looper), BMessenger(&handler));

	looper->Run();
	const BMessenger messenger(looper);
	EXPECT_TRUE(messenger.LockTarget());
	looper->RemoveHandler(&handler);
	std::thread([&] {
		EXPECT_EQ(messenger.LockTargetWithTimeout(1000), B_TIMED_OUT);
		EXPECT_EQ(messenger.LockTargetWithTimeout(0), B_WOULD_BLOCK);
	}).join();
	looper->Quit();
	EXPECT_FALSE(messenger.LockTarget());
	EXPECT_EQ(messenger.LockTargetWithTimeout(1000), B_BAD_PORT_ID);
	EXPECT_EQ(messenger.Target(&found), nullptr);
	EXPECT_EQ(found, nullptr);
}
