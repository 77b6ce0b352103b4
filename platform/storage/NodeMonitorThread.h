#pragma once

#include <deque>
#include <mutex>
#include <set>
#include <thread>

#include "storage/EventTranslator.h"
#include "storage/FileDescriptor.h"

namespace BPrivate {

//!	Messages that could not be delivered at once, since the target's queue was full.
class Outbox {
public:
	void Add(std::vector<Delivery> deliveries);
	//!	Tries to deliver each, in order; answers whose targets are gone.
	std::vector<BMessenger> Deliver();
	bool IsEmpty() const { return fWaiting.empty(); }

private:
	std::deque<Delivery> fWaiting;
	std::set<std::pair<BMessenger, node_ref>> fChanges; // whom the waiting ones tell of which node
};

/*!	Watches nodes by inotify, on a thread that starts with the first watch and ends with the process.
	Messages are sent without its lock, and never waited for. Any thread. */
class NodeMonitorThread {
public:
	//!	Never destroyed; it is stopped when the process exits, and then refuses to watch.
	static NodeMonitorThread& Default();

	NodeMonitorThread() = default;
	~NodeMonitorThread();

	status_t Watch(const node_ref& node, uint32 flags, const BMessenger& target);
	status_t StopWatching(const node_ref& node, const BMessenger& target);
	void StopWatching(const BMessenger& target);
	void Stop();

private:
	status_t _Start();
	void _Run();
	void _Handle(const char* events, size_t size);
	bool _Wait();
	size_t _Read(char* buffer, size_t size);

	std::mutex fLock; // guards all down to the thread
	bool fStopped = false;
	std::unique_ptr<WatchList> fList; // NULL until started
	std::unique_ptr<EventTranslator> fTranslator;
	std::thread fThread;

	FileDescriptor fInotify; // not changed while the thread runs
	FileDescriptor fStopEvent;
	Outbox fOutbox; // the thread's own
};

} // namespace BPrivate
