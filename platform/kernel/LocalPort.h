#pragma once

#include "kernel/PortFolder.h"
#include <deque>

namespace BPrivate {

/*!	A port of this process: a queue, and a socket for what other processes send. What this process
	sends goes into the queue straight away; a reader takes what waits at the socket into the queue
	first. Thread: any. Owner: the table of ports and each call in progress. */
class LocalPort {
public:
	explicit LocalPort(const PortAddress& address);
	~LocalPort();
	LocalPort(const LocalPort&) = delete;
	LocalPort& operator=(const LocalPort&) = delete;

	const PortAddress& Address() const { return fAddress; }
	//! Without it no reader can be woken.
	bool IsValid() const { return fWakeReaders >= 0; }
	void GetInfo(port_info* info);
	ssize_t Count();

	status_t Write(int32 code, const void* buffer, size_t size, const Deadline& deadline);
	ssize_t Read(int32* code, void* buffer, size_t size, const Deadline& deadline);
	ssize_t NextSize(const Deadline& deadline);

	//! No more messages come in.
	void Close();
	//! Close() and throw away what is there.
	void Delete();

private:
	struct Item {
		int32 code;
		std::vector<char> data;
	};
	using Lock = std::unique_lock<std::mutex>;

	status_t WaitForItem(Lock& lock, const Deadline& deadline);
	bool WaitForWake(const Deadline& deadline) const;
	void WakeReaders();
	void FetchForReaders();
	void FetchFromSocket(size_t capacity);

	const PortAddress fAddress;
	const int fWakeReaders; // an event counter: not 0 while a waiting reader should look
	int fSocket;
	std::mutex fLock;
	std::condition_variable fRoomMade;
	std::deque<Item> fItems;
	int32 fReaders = 0; // who waits
	int32 fTotal = 0;
	bool fClosed = false;
};

} // namespace BPrivate
