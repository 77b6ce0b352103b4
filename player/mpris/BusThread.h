#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include <OS.h>

struct sd_bus;
struct sd_bus_slot;

/*!	A subscription or a pending call on the bus; dropped with the object, after which its callback does not come any more.
	Thread: the bus thread only. */
class BusSlot {
public:
	BusSlot() = default;
	BusSlot(BusSlot&& other) noexcept;
	BusSlot& operator=(BusSlot&& other) noexcept;
	~BusSlot() { Drop(); }

	//! Where the bus library puts a new one; the old one is dropped.
	sd_bus_slot** Put();
	void Drop();
	bool IsSet() const { return fSlot != nullptr; }

private:
	sd_bus_slot* fSlot = nullptr;
};

/*!	The connection to the user's session bus, by sd-bus, on a thread of its own, which connects, dispatches and keeps deadlines.
	Nothing on it may wait: calls are made asynchronously, with a time-out. That there is no bus is no error: it is a state that clients
	are told, and everything else goes on.
	Thread: Add(), Remove(), Post() and GetState() from any; all else, and all callbacks, on the bus thread. Times are system_time(). */
class BusThread {
public:
	enum State { kConnecting, kConnected, kNoBus };

	class Client {
	public:
		virtual ~Client() = default;
		//! From now on there is Bus(). At most once.
		virtual void BusConnected() = 0;
		//! There is no bus, or none any more. Slots may be dropped now or later.
		virtual void BusLost() = 0;
	};

	using Job = std::function<void()>;
	using TimerId = int64; // never 0

	//! `address` is for a bus of one's own; "": the user's.
	explicit BusThread(const std::string& address = "");
	//! Ends the thread. What was posted before is still done; deadlines and pending calls are dropped.
	~BusThread();

	//! It is told the present state soon, and each later one. It must be removed before it or this object goes.
	void Add(Client& client);
	/*!	Waits until the bus thread has called `last` (which drops the client's slots and deadlines) and knows it no more. Not from the
		bus thread. */
	void Remove(Client& client, const Job& last);
	//! Done in this order, on the bus thread.
	void Post(Job job);
	State GetState() const { return fState; }

	// on the bus thread
	bool IsBusThread() const { return find_thread(nullptr) == fThread; }
	//! NULL unless connected.
	sd_bus* Bus() const { return fState == kConnected ? fBus : nullptr; }
	//! This connection's unique name; "" unless connected.
	const std::string& UniqueName() const { return fUniqueName; }
	//! Calls once, not before `when`; what is late is done at once.
	TimerId CallAt(bigtime_t when, Job job);
	//! Also one that was called, or 0: nothing happens then.
	void Cancel(TimerId timer);

private:
	static status_t ThreadEntry(void* self);
	void Run();
	void Connect();
	int StartConnection();
	void BecomeConnected();
	void Lose();
	void Close();
	bool RunJobs(); // false: the end
	void RunTimers();
	void ProcessBus();
	void Wait();
	void Wake();

	const std::string fAddress;
	std::atomic<State> fState = kConnecting;
	int fWakeEvent;
	thread_id fThread;

	std::mutex fLock; // of the jobs
	std::deque<Job> fJobs;
	bool fQuitting = false;

	// the bus thread only
	sd_bus* fBus = nullptr;
	std::string fUniqueName;
	std::vector<Client*> fClients;
	std::map<std::pair<bigtime_t, TimerId>, Job> fTimers;
	TimerId fLastTimer = 0;
};
