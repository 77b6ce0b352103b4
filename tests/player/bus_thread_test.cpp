#include "PrivateBus.h"

#include "player/mpris/BusThread.h"
#include "support/wait_until.h"

#include <gtest/gtest.h>

#include <atomic>
#include <vector>

#include <systemd/sd-bus.h>

namespace {

/*!	Calls "GetId" of the bus when it is there, and once more on demand. */
class Caller : public BusThread::Client {
public:
	explicit Caller(BusThread& bus) : fBus(bus) { fBus.Add(*this); }
	~Caller() override
	{
		fBus.Remove(*this, [this] { fCall.Drop(); });
	}

	void Call()
	{
		if (sd_bus_call_method_async(fBus.Bus(), fCall.Put(), "org.freedesktop.DBus",
				"/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId", &Answered, this, "")
			< 0)
			failed++;
	}

	std::atomic<int> connected = 0;
	std::atomic<int> lost = 0;
	std::atomic<int> answered = 0;
	std::atomic<int> failed = 0;

private:
	static int Answered(sd_bus_message* message, void* self, sd_bus_error*)
	{
		auto caller = static_cast<Caller*>(self);
		if (sd_bus_message_is_method_error(message, nullptr) > 0)
			caller->failed++;
		else
			caller->answered++;
		return 0;
	}
	void BusConnected() override
	{
		connected++;
		Call();
	}
	void BusLost() override { lost++; }

	BusThread& fBus;
	BusSlot fCall;
};

TEST(BusThread, ConnectsAndCallsAndTellsTheEndOfTheBus)
{
	PrivateBus daemon;
	BusThread bus(daemon.Address());
	Caller early(bus);
	EXPECT_TRUE(wait_until([&] { return early.answered == 1; }));
	Caller late(bus);
	EXPECT_TRUE(wait_until([&] { return late.answered == 1; }));
	EXPECT_EQ(bus.GetState(), BusThread::kConnected);
	daemon.End();
	EXPECT_TRUE(wait_until([&] { return early.lost == 1 && late.lost == 1; }));
	EXPECT_EQ(bus.GetState(), BusThread::kNoBus);
	EXPECT_EQ(early.connected, 1);
	EXPECT_EQ(early.failed, 0);
}

TEST(BusThread, TakesAMissingBusAsAState)
{
	for (const char* address : {"unix:path=/nonexistent/bus", "nonsense", "autolaunch:"}) {
		BusThread bus(address);
		Caller caller(bus);
		EXPECT_TRUE(wait_until([&] { return caller.lost == 1; })) << address;
		EXPECT_EQ(bus.GetState(), BusThread::kNoBus) << address;
		std::atomic<bool> done = false;
		bus.Post([&] { done = bus.Bus() == nullptr; }); // it works on
		EXPECT_TRUE(wait_until([&] { return done.load(); })) << address;
	}
}

TEST(BusThread, EndsWhateverTheBusDoes)
{
	PrivateBus daemon;
	{
		BusThread bus(daemon.Address()); // on its way
	}
	BusThread bus(daemon.Address());
	Caller caller(bus);
	ASSERT_TRUE(wait_until([&] { return caller.answered == 1; }));
	daemon.Stop();
	bus.Post([&] { caller.Call(); }); // is never answered
	{
		BusThread hanging(daemon.Address());
		Caller waiting(hanging);
		EXPECT_EQ(waiting.connected, 0);
	}
	daemon.Continue();
}

TEST(BusThread, KeepsTheOrderOfJobsAndDeadlines)
{
	std::vector<int> order;
	std::atomic<bool> isHeld = false;
	std::atomic<bool> arePosted = false;
	std::atomic<bool> done = false;
	{
		BusThread bus("nonsense");
		// until both jobs are there: the deadlines of the first may come before this thread posts the second
		bus.Post([&] {
			isHeld = true;
			while (!arePosted)
				snooze(1000);
		});
		EXPECT_TRUE(wait_until([&] { return isHeld.load(); }));
		bus.Post([&] {
			const bigtime_t now = system_time();
			bus.CallAt(now + 20000, [&] { order.push_back(4); });
			bus.CallAt(now + 10000, [&] {
				order.push_back(3);
				bus.CallAt(0, [&] { order.push_back(5); }); // from within, and late
			});
			bus.Cancel(bus.CallAt(now + 5000, [&] { order.push_back(-1); }));
			bus.Cancel(0);
			bus.CallAt(now + 40000, [&] { done = true; });
			bus.CallAt(now + 3600000000, [&] { order.push_back(-2); }); // dropped at the end
			order.push_back(1);
		});
		bus.Post([&] { order.push_back(2); });
		arePosted = true;
		EXPECT_TRUE(wait_until([&] { return done.load(); }));
		bus.Post([&] { order.push_back(6); }); // still done
	}
	EXPECT_EQ(order, (std::vector<int>{1, 2, 3, 5, 4, 6}));
}

} // namespace
