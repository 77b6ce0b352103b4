#include "kernel/LocalPort.h"

#include <algorithm>
#include <errno.h>
#include <limits.h>
#include <poll.h>
#include <string.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

namespace BPrivate {

LocalPort::LocalPort(const PortAddress& address)
	: fAddress(address),
	  fWakeReaders(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
	  fSocket(PortFolder().Bind(address))
{ }

LocalPort::~LocalPort()
{
	Delete();
	if (fSocket >= 0)
		close(fSocket);
	if (fWakeReaders >= 0)
		close(fWakeReaders);
}

void
LocalPort::GetInfo(port_info* info)
{
	Lock lock(fLock);
	FetchForReaders();
	info->queue_count = static_cast<int32>(fItems.size());
	info->total_count = fTotal;
}

ssize_t
LocalPort::Count()
{
	Lock lock(fLock);
	FetchForReaders();
	return static_cast<ssize_t>(fItems.size());
}

status_t
LocalPort::Write(int32 code, const void* buffer, size_t size, const Deadline& deadline)
{
	const char* bytes = static_cast<const char*>(buffer);
	Item item{code, std::vector<char>(bytes, bytes + size)};
	Lock lock(fLock);
	const auto may_go = [&] { return fClosed || fItems.size() < size_t(fAddress.capacity); };
	while (!may_go()) {
		if (deadline.MustNotWait() || (!deadline.Wait(fRoomMade, lock) && !may_go()))
			return deadline.Failure();
	}
	if (fClosed)
		return B_BAD_PORT_ID;
	fItems.push_back(std::move(item));
	if (fReaders > 0)
		WakeReaders();
	return B_OK;
}

ssize_t
LocalPort::Read(int32* code, void* buffer, size_t size, const Deadline& deadline)
{
	Lock lock(fLock);
	if (const status_t error = WaitForItem(lock, deadline); error != B_OK)
		return error;
	const Item item = std::move(fItems.front());
	fItems.pop_front();
	fTotal++;
	fRoomMade.notify_one();
	lock.unlock();

	if (code != nullptr)
		*code = item.code;
	const size_t copied = std::min(size, item.data.size());
	if (copied > 0)
		memcpy(buffer, item.data.data(), copied);
	return static_cast<ssize_t>(copied);
}

ssize_t
LocalPort::NextSize(const Deadline& deadline)
{
	Lock lock(fLock);
	const status_t error = WaitForItem(lock, deadline);
	return error == B_OK ? static_cast<ssize_t>(fItems.front().data.size()) : error;
}

//! B_OK: there is one.
status_t
LocalPort::WaitForItem(Lock& lock, const Deadline& deadline)
{
	bool inTime = true;
	for (;;) {
		FetchFromSocket(fAddress.capacity);
		if (!fItems.empty()) {
			// whoever waits besides may take the next one
			if (fReaders > 0)
				WakeReaders();
			return B_OK;
		}
		if (fClosed)
			return B_BAD_PORT_ID;
		if (deadline.MustNotWait() || !inTime)
			return deadline.Failure();
		eventfd_t count;
		eventfd_read(fWakeReaders, &count);
		fReaders++;
		lock.unlock();
		inTime = WaitForWake(deadline);
		lock.lock();
		fReaders--;
	}
}

//! False when the time is over. Without the lock.
bool
LocalPort::WaitForWake(const Deadline& deadline) const
{
	pollfd sources[2] = {{fWakeReaders, POLLIN, 0}, {fSocket, POLLIN, 0}};
	for (;;) {
		const bigtime_t rest = deadline.Remaining();
		const timespec timeout
			= {static_cast<time_t>(rest / 1000000), static_cast<long>(rest % 1000000 * 1000)};
		const int ready = ppoll(sources, 2, deadline.IsInfinite() ? nullptr : &timeout, nullptr);
		if (ready >= 0 || errno != EINTR)
			return ready > 0;
	}
}

//! With the lock held. A reader on its way to sleep looks at the socket, in which it is no more.
void
LocalPort::FetchForReaders()
{
	FetchFromSocket(fAddress.capacity);
	if (fReaders > 0 && !fItems.empty())
		WakeReaders();
}

void
LocalPort::WakeReaders()
{
	eventfd_write(fWakeReaders, 1);
}

//! With the lock held: fills the queue up to `capacity`.
void
LocalPort::FetchFromSocket(size_t capacity)
{
	while (fSocket >= 0 && fItems.size() < capacity) {
		const ssize_t size = recv(fSocket, nullptr, 0, MSG_PEEK | MSG_TRUNC | MSG_DONTWAIT);
		if (size < 0 || (size == 0 && fClosed))
			return;
		Item item{0, std::vector<char>(std::max<size_t>(size, sizeof(int32)) - sizeof(int32))};
		iovec parts[2] = {{&item.code, sizeof(int32)}, {item.data.data(), item.data.size()}};
		if (readv(fSocket, parts, 2) >= ssize_t(sizeof(int32)))
			fItems.push_back(std::move(item));
	}
}

void
LocalPort::Close()
{
	Lock lock(fLock);
	if (fClosed)
		return;
	fClosed = true;
	if (fSocket >= 0) {
		PortFolder().Remove(fAddress);
		shutdown(fSocket, SHUT_RD); // who waits for room there gets an error
		FetchFromSocket(SIZE_MAX);
	}
	fRoomMade.notify_all();
	WakeReaders();
}

void
LocalPort::Delete()
{
	Close();
	Lock lock(fLock);
	fItems.clear();
}

} // namespace BPrivate
