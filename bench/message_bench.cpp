// Messages between loopers, beside Qt's queued invocation between two of its threads in the same run.

#include <Handler.h>
#include <Looper.h>
#include <Message.h>
#include <Messenger.h>
#include <OS.h>

#include <QCoreApplication>
#include <QMetaObject>
#include <QObject>
#include <QThread>

#include <atomic>
#include <semaphore>

#include <benchmark/benchmark.h>

namespace {

constexpr uint32 kPing = 'ping';
constexpr uint32 kPong = 'pong';
constexpr uint32 kCount = 'cont';

//! Answers each ping with a pong to the looper it was told.
class Echo : public BLooper {
public:
	Echo() : BLooper("echo", B_NORMAL_PRIORITY, 10000) { }

	void SetPartner(const BMessenger& partner) { fPartner = partner; }

	void MessageReceived(BMessage* message) override
	{
		switch (message->what) {
			case kPing:
				fPartner.SendMessage(kPong);
				break;
			case kCount:
				fCount.fetch_add(1, std::memory_order_relaxed);
				break;
			default:
				BLooper::MessageReceived(message);
		}
	}

	std::atomic<int64> fCount{0};

private:
	BMessenger fPartner;
};

class Caller : public BLooper {
public:
	Caller() : BLooper("caller") { }

	void MessageReceived(BMessage* message) override
	{
		if (message->what == kPong)
			fAnswered.release();
		else if (message->what == kPing)
			fEcho.SendMessage(kPing);
		else
			BLooper::MessageReceived(message);
	}

	BMessenger fEcho;
	std::binary_semaphore fAnswered{0};
};

void
quit(BLooper* looper)
{
	looper->Lock();
	looper->Quit();
}

//! From this thread to one looper, to the other and back to the first: two hops and a wake-up here.
void
LooperRoundTrip(benchmark::State& state)
{
	auto* echo = new Echo;
	auto* caller = new Caller;
	echo->SetPartner(BMessenger(caller));
	caller->fEcho = BMessenger(echo);
	echo->Run();
	caller->Run();
	for (auto _ : state) {
		caller->PostMessage(kPing);
		caller->fAnswered.acquire();
	}
	quit(caller);
	quit(echo);
}
BENCHMARK(LooperRoundTrip)->UseRealTime()->Repetitions(5)->ReportAggregatesOnly();

struct QtPartner : QObject {
	std::binary_semaphore answered{0};
};

//! The same way with Qt: this thread, one thread, the other, the first.
void
QtRoundTrip(benchmark::State& state)
{
	QThread first, second;
	auto* caller = new QtPartner;
	auto* echo = new QObject;
	caller->moveToThread(&first);
	echo->moveToThread(&second);
	first.start();
	second.start();
	for (auto _ : state) {
		QMetaObject::invokeMethod(
			caller,
			[&] {
				QMetaObject::invokeMethod(
					echo,
					[&] {
						QMetaObject::invokeMethod(
							caller, [&] { caller->answered.release(); }, Qt::QueuedConnection);
					},
					Qt::QueuedConnection);
			},
			Qt::QueuedConnection);
		caller->answered.acquire();
	}
	first.quit();
	second.quit();
	first.wait();
	second.wait();
	delete caller;
	delete echo;
}
BENCHMARK(QtRoundTrip)->UseRealTime()->Repetitions(5)->ReportAggregatesOnly();

constexpr int64 kBatch = 5000;

void
PostedMessages(benchmark::State& state)
{
	auto* looper = new Echo;
	looper->Run();
	int64 sent = 0;
	for (auto _ : state) {
		for (int64 i = 0; i < kBatch; i++)
			looper->PostMessage(kCount);
		sent += kBatch;
		while (looper->fCount.load(std::memory_order_relaxed) < sent)
			snooze(20);
	}
	state.SetItemsProcessed(sent);
	quit(looper);
}
BENCHMARK(PostedMessages)->UseRealTime()->Repetitions(5)->ReportAggregatesOnly();

void
QtPostedCalls(benchmark::State& state)
{
	QThread thread;
	QObject receiver;
	receiver.moveToThread(&thread);
	thread.start();
	std::atomic<int64> count{0};
	int64 sent = 0;
	for (auto _ : state) {
		for (int64 i = 0; i < kBatch; i++) {
			QMetaObject::invokeMethod(
				&receiver, [&] { count.fetch_add(1, std::memory_order_relaxed); },
				Qt::QueuedConnection);
		}
		sent += kBatch;
		while (count.load(std::memory_order_relaxed) < sent)
			snooze(20);
	}
	state.SetItemsProcessed(sent);
	thread.quit();
	thread.wait();
}
BENCHMARK(QtPostedCalls)->UseRealTime()->Repetitions(5)->ReportAggregatesOnly();

} // namespace

int
main(int argc, char** argv)
{
	QCoreApplication application(argc, argv);
	benchmark::Initialize(&argc, argv);
	benchmark::RunSpecifiedBenchmarks();
	return 0;
}
