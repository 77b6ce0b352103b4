#include "BusThread.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <future>
#include <iterator>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

namespace {

constexpr bigtime_t kConnectTime = 5000000; // a bus that has not greeted by then is none

//! As a value of a bus address is written.
std::string
escaped(const std::string& value)
{
	constexpr const char* kDigits = "0123456789abcdef";
	std::string result;
	for (const unsigned char c : value) {
		if (std::isalnum(c) != 0 || strchr("-_/.\\*", c) != nullptr)
			result += static_cast<char>(c);
		else
			result += {'%', kDigits[c >> 4], kDigits[c & 15]};
	}
	return result;
}

std::string
session_address()
{
	if (const char* address = getenv("DBUS_SESSION_BUS_ADDRESS"))
		return address;
	const char* folder = getenv("XDG_RUNTIME_DIR");
	return folder != nullptr ? "unix:path=" + escaped(folder) + "/bus" : "";
}

} // namespace

// #pragma mark - BusSlot

BusSlot::BusSlot(BusSlot&& other) noexcept : fSlot(std::exchange(other.fSlot, nullptr)) { }

BusSlot&
BusSlot::operator=(BusSlot&& other) noexcept
{
	std::swap(fSlot, other.fSlot);
	return *this;
}

sd_bus_slot**
BusSlot::Put()
{
	Drop();
	return &fSlot;
}

void
BusSlot::Drop()
{
	fSlot = sd_bus_slot_unref(fSlot);
}

// #pragma mark - BusThread

BusThread::BusThread(const std::string& address)
	: fAddress(address.empty() ? session_address() : address),
	  fWakeEvent(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
	fThread = spawn_thread(ThreadEntry, "Qubo bus", B_NORMAL_PRIORITY, this);
	resume_thread(fThread);
}

BusThread::~BusThread()
{
	{
		std::lock_guard lock(fLock);
		fQuitting = true;
	}
	Wake();
	status_t result;
	wait_for_thread(fThread, &result);
	close(fWakeEvent);
}

void
BusThread::Add(Client& client)
{
	Post([this, &client] {
		fClients.push_back(&client);
		if (fState == kConnected)
			client.BusConnected();
		else if (fState == kNoBus)
			client.BusLost();
	});
}

void
BusThread::Remove(Client& client, const Job& last)
{
	std::promise<void> done;
	Post([this, &client, &last, &done] {
		std::erase(fClients, &client);
		last();
		done.set_value();
	});
	done.get_future().wait();
}

void
BusThread::Post(Job job)
{
	{
		std::lock_guard lock(fLock);
		fJobs.push_back(std::move(job));
	}
	Wake();
}

BusThread::TimerId
BusThread::CallAt(bigtime_t when, Job job)
{
	fTimers[{when, ++fLastTimer}] = std::move(job);
	return fLastTimer;
}

void
BusThread::Cancel(TimerId timer)
{
	std::erase_if(fTimers, [timer](const auto& each) { return each.first.second == timer; });
}

// #pragma mark - the thread

status_t
BusThread::ThreadEntry(void* self)
{
	static_cast<BusThread*>(self)->Run();
	return 0;
}

void
BusThread::Run()
{
	Connect();
	while (RunJobs()) {
		RunTimers();
		ProcessBus();
		Wait();
	}
	fTimers.clear();
	Close();
}

void
BusThread::Connect()
{
	const int status = StartConnection();
	if (status < 0) {
		Lose();
		return;
	}
	CallAt(system_time() + kConnectTime, [this] {
		if (fState == kConnecting)
			Lose();
	});
}

//! Nothing of it waits: the bus greets later.
int
BusThread::StartConnection()
{
	int status = fAddress.empty() ? -EADDRNOTAVAIL : sd_bus_new(&fBus);
	if (status >= 0)
		status = sd_bus_set_address(fBus, fAddress.c_str());
	if (status >= 0)
		status = sd_bus_set_bus_client(fBus, true);
	if (status >= 0)
		status = sd_bus_start(fBus);
	return status;
}

void
BusThread::BecomeConnected()
{
	const char* name;
	if (sd_bus_get_unique_name(fBus, &name) < 0) {
		Lose();
		return;
	}
	fUniqueName = name;
	fState = kConnected;
	for (Client* client : std::vector(fClients))
		client->BusConnected();
}

void
BusThread::Lose()
{
	fState = kNoBus;
	fUniqueName.clear();
	for (Client* client : std::vector(fClients))
		client->BusLost();
	Close();
}

void
BusThread::Close()
{
	sd_bus_close(fBus); // slots that a client still holds keep it, without effect
	fBus = sd_bus_unref(fBus);
}

bool
BusThread::RunJobs()
{
	std::unique_lock lock(fLock);
	const std::deque<Job> jobs = std::exchange(fJobs, {});
	const bool quitting = fQuitting;
	lock.unlock();
	for (const Job& job : jobs)
		job();
	return !quitting;
}

void
BusThread::RunTimers()
{
	const bigtime_t now = system_time();
	while (!fTimers.empty() && fTimers.begin()->first.first <= now)
		fTimers.extract(fTimers.begin()).mapped()();
}

void
BusThread::ProcessBus()
{
	int status = 1;
	while (fBus != nullptr && status > 0) {
		status = sd_bus_process(fBus, nullptr);
		if (status < 0)
			Lose();
		else if (fState == kConnecting && sd_bus_is_ready(fBus) > 0)
			BecomeConnected();
	}
}

void
BusThread::Wait()
{
	bigtime_t end = fTimers.empty() ? B_INFINITE_TIMEOUT : fTimers.begin()->first.first;
	pollfd polls[] = {{fWakeEvent, POLLIN, 0}, {-1, 0, 0}};
	if (fBus != nullptr) {
		uint64_t busTime;
		if (sd_bus_get_timeout(fBus, &busTime) >= 0)
			end = static_cast<bigtime_t>(std::min<uint64_t>(end, busTime));
		polls[1].fd = sd_bus_get_fd(fBus);
		polls[1].events = static_cast<short>(sd_bus_get_events(fBus));
	}
	const bigtime_t left = std::max<bigtime_t>(end - system_time(), 0);
	const timespec time
		= {static_cast<time_t>(left / 1000000), static_cast<long>(left % 1000000 * 1000)};
	ppoll(polls, std::size(polls), end == B_INFINITE_TIMEOUT ? nullptr : &time, nullptr);
	uint64_t count;
	if (polls[0].revents != 0 && read(fWakeEvent, &count, sizeof(count)) < 0)
		return; // another one has been here: the jobs are looked at in any case
}

void
BusThread::Wake()
{
	const uint64_t one = 1;
	while (write(fWakeEvent, &one, sizeof(one)) < 0 && errno == EINTR)
		continue;
}
