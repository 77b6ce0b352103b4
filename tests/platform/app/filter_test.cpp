// Filters, watchers and invokers.

#include "platform/app/app_test_support.h"
#include <Invoker.h>
#include <List.h>
#include <MessageFilter.h>
#include <gtest/gtest.h>

namespace {

class LoggingFilter : public BMessageFilter {
public:
	LoggingFilter(std::string* log, const char* name, uint32 what)
		: BMessageFilter(B_ANY_DELIVERY, B_ANY_SOURCE, what),
		  fLog(log),
		  fName(name)
	{ }
	~LoggingFilter() override { *fLog += "~" + fName; }
	filter_result Filter(BMessage* message, BHandler** target) override
	{
		*fLog += fName;
		if (message->HasString("skip") && fName == message->GetString("skip"))
			return B_SKIP_MESSAGE;
		void* other;
		if (message->FindPointer("target", &other) == B_OK)
			*target = static_cast<BHandler*>(other);
		return B_DISPATCH_MESSAGE;
	}

private:
	std::string* fLog;
	std::string fName;
};

class Collector : public BHandler {
public:
	explicit Collector(const char* name = "collector") : BHandler(name) { }
	void MessageReceived(BMessage* message) override
	{
		if (message->what == 'pass') {
			BHandler::MessageReceived(message);
			return;
		}
		std::lock_guard guard(lock);
		messages.push_back(*message);
		count++;
	}

	std::mutex lock;
	std::vector<BMessage> messages;
	std::atomic<int> count{0};
};

} // namespace

class Filters : public testing::Test {
protected:
	Filters()
	{
		looper = new TestLooper([this](TestLooper*, BMessage*) { log += "L"; });
		looper->AddHandler(&handler);
		looper->AddCommonFilter(new LoggingFilter(&log, "c", 'mess'));
		looper->AddCommonFilter(new LoggingFilter(&log, "d", 'mess'));
		looper->AddFilter(new LoggingFilter(&log, "l", 'mess'));
		handler.AddFilter(new LoggingFilter(&log, "h", 'mess'));
		handler.AddFilter(new LoggingFilter(&log, "i", 'othr'));
	}
	//! What happened, when the looper has done all and is gone; its filters' end cut off.
	std::string Run()
	{
		looper->Run();
		quit(looper);
		return log.substr(0, log.find('~'));
	}

	Watchdog watchdog{"filters"};
	std::string log;
	Collector handler;
	TestLooper* looper;
};

TEST_F(Filters, AreAskedCommonOnesFirstAndInOrder)
{
	looper->PostMessage('mess', &handler);
	looper->PostMessage('othr', &handler);
	looper->PostMessage('mess');
	EXPECT_EQ(Run(), "cdhicdlL");
	EXPECT_EQ(log, "cdhicdlL~c~d~l");
	EXPECT_EQ(handler.count, 2);
}

TEST_F(Filters, EndAMessage)
{
	for (const char* name : {"c", "d", "h"}) {
		BMessage message('mess');
		message.AddString("skip", name);
		looper->PostMessage(&message, &handler);
	}
	EXPECT_EQ(Run(), "ccdcdh");
	EXPECT_EQ(handler.count, 0);
}

TEST_F(Filters, MayNameAnotherHandlerOfTheLooperOnly)
{
	BMessage message('mess');
	BHandler stray;
	message.AddPointer("target", &handler);
	looper->PostMessage(&message);
	message.ReplacePointer("target", &stray);
	looper->PostMessage(&message);
	EXPECT_EQ(Run(), "cdhc");
	EXPECT_EQ(handler.count, 1);
}

TEST_F(Filters, BelongToTheCallerOnceTakenOff)
{
	BMessageFilter* first = static_cast<BMessageFilter*>(looper->CommonFilterList()->ItemAt(0));
	EXPECT_EQ(first->Looper(), looper);
	EXPECT_TRUE(looper->RemoveCommonFilter(first));
	EXPECT_FALSE(looper->RemoveCommonFilter(first));
	EXPECT_EQ(first->Looper(), nullptr);
	looper->PostMessage('mess', &handler);
	EXPECT_EQ(Run(), "dh");
	delete first;
}

TEST_F(Filters, SeeWhatIsPassedOnToTheNextHandler)
{
	looper->AddFilter(new LoggingFilter(&log, "p", 'pass'));
	looper->PostMessage('pass', &handler);
	EXPECT_EQ(Run(), "pL");
}

TEST(FilterKinds, TakeWhatTheyAreMadeFor)
{
	Watchdog watchdog("kinds of filters");
	static std::atomic<int> sHooked;
	sHooked = 0;
	const filter_hook hook = [](BMessage*, BHandler**, BMessageFilter*) {
		sHooked++;
		return B_DISPATCH_MESSAGE;
	};
	TestLooper* looper = new TestLooper([](TestLooper* self, BMessage* message) {
		// a filter may take itself off while it is asked
		if (message->what == 'last')
			self->SetCommonFilterList(NULL);
	});
	looper->AddCommonFilter(new BMessageFilter(B_PROGRAMMED_DELIVERY, B_LOCAL_SOURCE, hook));
	looper->AddCommonFilter(new BMessageFilter(B_DROPPED_DELIVERY, B_ANY_SOURCE, hook));
	looper->AddCommonFilter(new BMessageFilter(B_ANY_DELIVERY, B_REMOTE_SOURCE, hook));
	looper->AddCommonFilter(new BMessageFilter('othr', hook));
	looper->PostMessage('mess');
	looper->PostMessage('last');
	looper->PostMessage('mess');
	looper->Run();
	quit(looper);
	EXPECT_EQ(sHooked, 2);
}

// Watching

class Watching : public testing::Test {
protected:
	Watching()
		: source(new TestLooper([](TestLooper* self, BMessage* message) {
			  if (message->what != 'tell') {
				  self->BLooper::MessageReceived(message);
				  return;
			  }
			  BMessage notice('note');
			  notice.AddInt32("value", message->GetInt32("value", 0));
			  self->SendNotices(uint32(message->GetInt32("what", 0)), &notice);
		  })),
		  target(new TestLooper)
	{
		target->AddHandler(&observer);
		source->Run();
		target->Run();
	}
	~Watching() override
	{
		if (source != nullptr)
			quit(source);
		quit(target);
	}
	void Tell(int32 what, int32 value)
	{
		BMessage message('tell'), reply;
		message.AddInt32("what", what);
		message.AddInt32("value", value);
		BMessenger(source).SendMessage(&message, &reply); // answered when it is done
	}

	Watchdog watchdog{"notices"};
	Collector observer;
	TestLooper* source;
	TestLooper* target;
};

TEST_F(Watching, GetsTheNoticesItAskedFor)
{
	EXPECT_EQ(observer.StartWatching(BMessenger(source), 7), B_OK);
	Tell(8, 1);
	Tell(7, 2);
	EXPECT_TRUE(happens([&] { return observer.count == 1; }));
	const BMessage& notice = observer.messages[0];
	EXPECT_EQ(notice.what, uint32(B_OBSERVER_NOTICE_CHANGE));
	EXPECT_EQ(notice.GetInt32("value", -1), 2);
	EXPECT_EQ(notice.GetInt32(B_OBSERVE_WHAT_CHANGE, -1), 7);
	EXPECT_EQ(notice.GetInt32(B_OBSERVE_ORIGINAL_WHAT, -1), int32('note'));
	EXPECT_EQ(observer.StopWatching(BMessenger(source), 7), B_OK);
	Tell(7, 3);
	EXPECT_EQ(observer.StartWatchingAll(BMessenger(source)), B_OK);
	Tell(9, 4);
	EXPECT_TRUE(happens([&] { return observer.count == 2; }));
	EXPECT_EQ(observer.messages[1].GetInt32("value", -1), 4);
}

TEST_F(Watching, ByHandlerEndsWithTheHandler)
{
	source->Lock();
	EXPECT_FALSE(source->IsWatched());
	EXPECT_EQ(source->StartWatching(&observer, 7), B_OK);
	Collector* second = new Collector;
	EXPECT_EQ(source->StartWatchingAll(second), B_OK); // before it has a looper
	EXPECT_EQ(source->StopWatching(&observer, 8), B_BAD_HANDLER);
	source->Unlock();
	target->Lock();
	target->AddHandler(second);
	target->Unlock();
	Tell(7, 1);
	EXPECT_TRUE(happens([&] { return observer.count == 1 && second->count == 1; }));
	delete second;
	Tell(7, 2);
	EXPECT_TRUE(happens([&] { return observer.count == 2; }));
	source->Lock();
	EXPECT_EQ(source->StopWatching(&observer, 7), B_OK);
	EXPECT_FALSE(source->IsWatched());
	source->Unlock();
}

TEST(Invoker, SendsItsMessageWithWhenAndSource)
{
	Watchdog watchdog("invokers");
	TestLooper* looper = new TestLooper;
	Collector handler;
	looper->AddHandler(&handler);
	looper->Run();
	BInvoker invoker(new BMessage('invk'), &handler);
	EXPECT_EQ(invoker.Command(), uint32('invk'));
	EXPECT_EQ(invoker.Target(), &handler);
	EXPECT_EQ(invoker.Invoke(), B_OK);
	BMessage other('othr');
	EXPECT_EQ(invoker.InvokeNotify(&other, B_CONTROL_MODIFIED), B_OK);
	EXPECT_TRUE(happens([&] { return handler.count == 2; }));
	EXPECT_EQ(handler.messages[0].what, uint32('invk'));
	EXPECT_EQ(handler.messages[0].GetPointer("source"), &invoker);
	EXPECT_TRUE(handler.messages[0].HasInt64("when"));
	EXPECT_EQ(handler.messages[1].what, uint32('othr'));
	EXPECT_FALSE(invoker.Message()->HasInt64("when"));
	looper->Lock();
	looper->RemoveHandler(&handler);
	looper->Quit();
	EXPECT_EQ(invoker.Invoke(), B_BAD_PORT_ID);
	EXPECT_EQ(BInvoker().Invoke(), B_BAD_VALUE);
}
