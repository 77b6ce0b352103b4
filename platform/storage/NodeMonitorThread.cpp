#include "storage/NodeMonitorThread.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <system_error>
#include <unistd.h>

#include "kernel/errno_status.h"

namespace BPrivate {

static const bigtime_t kRetryDelivery = 20000;

/*!	A change of a node that is still to be delivered tells what another one would. */
void
Outbox::Add(std::vector<Delivery> deliveries)
{
	for (Delivery& delivery : deliveries) {
		if (!delivery.changed || fChanges.insert({delivery.target, *delivery.changed}).second)
			fWaiting.push_back(std::move(delivery));
	}
}

std::vector<BMessenger>
Outbox::Deliver()
{
	std::vector<BMessenger> full, gone;
	auto contains = [](const std::vector<BMessenger>& list, const BMessenger& target) {
		return std::find(list.begin(), list.end(), target) != list.end();
	};
	std::erase_if(fWaiting, [&](Delivery& delivery) {
		const BMessenger& target = delivery.target;
		if (contains(full, target))
			return false; // never before those that could not be delivered
		if (!contains(gone, target)
			&& target.SendMessage(&delivery.message, static_cast<BHandler*>(NULL), 0) != B_OK) {
			if (target.IsValid()) {
				full.push_back(target);
				return false;
			}
			gone.push_back(target);
		}
		if (delivery.changed)
			fChanges.erase({target, *delivery.changed});
		return true;
	});
	return gone;
}

NodeMonitorThread&
NodeMonitorThread::Default()
{
	// Other threads may call it until the very end, so only the thread is ended.
	static NodeMonitorThread* sMonitor = new NodeMonitorThread;
	static struct Stopper {
		~Stopper() { sMonitor->Stop(); }
	} sStopper;
	return *sMonitor;
}

NodeMonitorThread::~NodeMonitorThread()
{
	Stop();
}

status_t
NodeMonitorThread::Watch(const node_ref& node, uint32 flags, const BMessenger& target)
{
	std::lock_guard lock(fLock);
	status_t status = _Start();
	if (status != B_OK)
		return status;
	fList->RemoveDead();
	return fList->Add(node, flags, target);
}

status_t
NodeMonitorThread::StopWatching(const node_ref& node, const BMessenger& target)
{
	std::lock_guard lock(fLock);
	return fList ? fList->Remove(node, target) : static_cast<status_t>(B_BAD_VALUE);
}

void
NodeMonitorThread::StopWatching(const BMessenger& target)
{
	std::lock_guard lock(fLock);
	if (fList)
		fList->RemoveAll(target);
}

void
NodeMonitorThread::Stop()
{
	std::thread thread;
	{
		std::lock_guard lock(fLock);
		fStopped = true;
		thread.swap(fThread);
	}
	if (!thread.joinable())
		return;
	eventfd_write(fStopEvent.Get(), 1);
	thread.join();
}

status_t
NodeMonitorThread::_Start()
{
	if (fStopped)
		return B_SHUTTING_DOWN;
	if (fList)
		return B_OK;
	fInotify.Set(inotify_init1(IN_CLOEXEC | IN_NONBLOCK));
	if (fInotify.Get() < 0)
		return status_of_errno(errno);
	fStopEvent.Set(eventfd(0, EFD_CLOEXEC));
	if (fStopEvent.Get() < 0)
		return status_of_errno(errno);
	fList = std::make_unique<WatchList>(fInotify.Get());
	fTranslator = std::make_unique<EventTranslator>(*fList);

	// Signals are for threads that expect them.
	sigset_t all, before;
	sigfillset(&all);
	pthread_sigmask(SIG_SETMASK, &all, &before);
	status_t status = B_OK;
	try {
		fThread = std::thread([this] { _Run(); });
		pthread_setname_np(fThread.native_handle(), "node monitor");
	} catch (const std::system_error&) {
		fTranslator.reset();
		fList.reset();
		status = B_NO_MORE_THREADS;
	}
	pthread_sigmask(SIG_SETMASK, &before, NULL);
	return status;
}

void
NodeMonitorThread::_Run()
{
	alignas(inotify_event) char buffer[65536];
	while (_Wait()) {
		// before the read: the other half of a move that is due by now is among what it brings
		const bigtime_t now = system_time();
		size_t size = _Read(buffer, sizeof(buffer));
		{
			std::lock_guard lock(fLock);
			_Handle(buffer, size);
			fTranslator->HandleTime(now);
			fOutbox.Add(fTranslator->TakeDeliveries());
		}
		for (const BMessenger& target : fOutbox.Deliver())
			StopWatching(target);
	}
}

void
NodeMonitorThread::_Handle(const char* events, size_t size)
{
	for (size_t offset = 0; offset + sizeof(inotify_event) <= size;) {
		auto event = reinterpret_cast<const inotify_event*>(events + offset);
		fTranslator->Handle(*event);
		offset += sizeof(inotify_event) + event->len;
	}
}

//!	Until there is something to do; false when it is to stop.
bool
NodeMonitorThread::_Wait()
{
	bigtime_t time;
	{
		std::lock_guard lock(fLock);
		time = fTranslator->NextTime();
	}
	if (!fOutbox.IsEmpty())
		time = std::min(time, system_time() + kRetryDelivery);

	int timeout = -1;
	if (time != B_INFINITE_TIMEOUT)
		timeout = std::max<bigtime_t>(0, (time - system_time() + 999) / 1000); // ms
	pollfd fds[] = {{fInotify.Get(), POLLIN, 0}, {fStopEvent.Get(), POLLIN, 0}};
	poll(fds, 2, timeout);
	return fds[1].revents == 0;
}

size_t
NodeMonitorThread::_Read(char* buffer, size_t size)
{
	ssize_t bytes = read(fInotify.Get(), buffer, size);
	return bytes > 0 ? bytes : 0;
}

} // namespace BPrivate
