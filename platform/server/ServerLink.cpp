#include "server/ServerLink.h"

#include <Errors.h>
#include <errno.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace BPrivate {

//! A blocked caller.
struct ServerLink::Waiter {
	std::mutex mutex;
	std::condition_variable changed;
	bool done = false;
	bool ran = false;

	void Finish(bool didRun)
	{
		std::lock_guard lock(mutex);
		done = true;
		ran = didRun;
		changed.notify_all();
	}

	bool Wait()
	{
		std::unique_lock lock(mutex);
		changed.wait(lock, [this] { return done; });
		return ran;
	}
};

//! Goes with the job; if the job is dropped, the caller learns of it by the ticket's end.
struct ServerLink::Ticket {
	std::shared_ptr<Waiter> waiter;
	bool ran = false;

	explicit Ticket(std::shared_ptr<Waiter> waiter) : waiter(std::move(waiter)) { }
	~Ticket() { waiter->Finish(ran); }
};

bool
on_server_thread()
{
	ServerLink& link = ServerLink::Default();
	return link.IsOwner() && link.IsServing();
}

ServerLink&
ServerLink::Default()
{
	// never destroyed: threads may still post while the process ends
	static ServerLink* link = new ServerLink;
	return *link;
}

bool
ServerLink::Post(Job job)
{
	std::lock_guard lock(fMutex);
	if (!fOpen)
		return false;
	fJobs.push_back(std::move(job));
	Kick();
	return true;
}

bool
ServerLink::CallJob(Job job)
{
	if (IsOwner()) {
		while (RunNext()) { }
		std::unique_lock lock(fMutex);
		if (!fOpen)
			return false;
		lock.unlock();
		job();
		return true;
	}
	auto waiter = std::make_shared<Waiter>();
	auto ticket = std::make_shared<Ticket>(waiter);
	bool posted = Post([ticket, job = std::move(job)] {
		job();
		ticket->ran = true;
	});
	ticket.reset();
	return waiter->Wait() && posted;
}

int
ServerLink::Open()
{
	std::lock_guard lock(fMutex);
	if (fWake < 0)
		fWake = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
	if (fWake < 0)
		return errno;
	fOwner = std::this_thread::get_id();
	fOpen = true;
	return B_OK;
}

void
ServerLink::Close()
{
	std::deque<Job> dropped;
	std::lock_guard lock(fMutex);
	fOpen = false;
	// their tickets end outside of this list, but may as well do so under the lock: waking takes no
	// other one of ours
	dropped.swap(fJobs);
}

void
ServerLink::SetServing(bool serving)
{
	std::lock_guard lock(fMutex);
	fServing = serving;
}

bool
ServerLink::IsServing() const
{
	std::lock_guard lock(fMutex);
	return fServing;
}

bool
ServerLink::IsOwner() const
{
	std::lock_guard lock(fMutex);
	return fOwner == std::this_thread::get_id();
}

void
ServerLink::RunJobs(int limit)
{
	uint64_t count;
	while (read(fWake, &count, sizeof(count)) < 0 && errno == EINTR) { }
	{
		std::lock_guard lock(fMutex);
		fKicked = false;
	}
	while (limit-- > 0 && RunNext()) { }
	std::lock_guard lock(fMutex);
	if (!fJobs.empty())
		Kick();
}

//! Makes the descriptor readable. With the mutex held.
void
ServerLink::Kick()
{
	if (fKicked)
		return;
	uint64_t one = 1;
	while (write(fWake, &one, sizeof(one)) < 0 && errno == EINTR) { }
	fKicked = true;
}

bool
ServerLink::RunNext()
{
	Job job;
	{
		std::lock_guard lock(fMutex);
		if (fJobs.empty())
			return false;
		job = std::move(fJobs.front());
		fJobs.pop_front();
		// the job may enter an event loop of its own, which must see the others
		if (!fJobs.empty())
			Kick();
	}
	job();
	return true;
}

} // namespace BPrivate
