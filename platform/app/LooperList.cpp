#include "app/LooperList.h"

#include "app/LooperLock.h"
#include "app/MessagePort.h"
#include "kernel/Deadline.h"
#include <algorithm>
#include <set>
#include <shared_mutex>
#include <stdio.h>
#include <string>

namespace BPrivate::LooperList {

namespace {

struct Entry {
	BLooper* looper;
	std::shared_ptr<LooperLock> lock;
	std::shared_ptr<MessagePort> port;
	BWindow* window;
	std::string name;
	QuitOrder quits = kQuitsAsUsual;
};

struct List {
	std::shared_mutex lock;
	std::vector<Entry> entries;

	std::mutex threadLock;
	std::condition_variable threadEnded;
	std::set<thread_id> threads;
	std::vector<thread_id> ended; // a few that may be on their last steps
};

constexpr size_t kKeptThreads = 64;
constexpr bigtime_t kComplainAfter = 5000000;

List&
list()
{
	static List& sList = *new List; // loopers may outlive main()
	return sList;
}

template<typename Predicate>
Entry*
find_entry(Predicate fits)
{
	const auto found = std::find_if(list().entries.begin(), list().entries.end(), fits);
	return found != list().entries.end() ? &*found : nullptr;
}

Entry*
entry_of(const BLooper* looper)
{
	return find_entry([looper](const Entry& entry) { return entry.looper == looper; });
}

std::vector<Item>
items(bool windowsOnly)
{
	std::shared_lock lock(list().lock);
	std::vector<Item> found;
	for (QuitOrder order : {kQuitsFirst, kQuitsAsUsual, kQuitsLast}) {
		for (const Entry& entry : list().entries) {
			if (entry.quits == order && (entry.window != nullptr || !windowsOnly))
				found.push_back({entry.looper, entry.window});
		}
	}
	return found;
}

void
print_threads(const std::set<thread_id>& threads)
{
	for (thread_id thread : threads) {
		thread_info info;
		if (get_thread_info(thread, &info) == B_OK)
			fprintf(stderr, "still waiting for the looper \"%s\" to quit\n", info.name);
	}
}

} // namespace

void
Add(BLooper* looper, std::shared_ptr<LooperLock> lock, std::shared_ptr<MessagePort> port)
{
	std::unique_lock guard(list().lock);
	list().entries.push_back({looper, std::move(lock), std::move(port), nullptr, ""});
}

void
Remove(BLooper* looper)
{
	std::unique_lock lock(list().lock);
	std::erase_if(list().entries, [looper](const Entry& entry) { return entry.looper == looper; });
}

void
SetName(BLooper* looper, const char* name)
{
	std::unique_lock lock(list().lock);
	if (Entry* entry = entry_of(looper))
		entry->name = name != NULL ? name : "";
}

void
SetWindow(BLooper* looper, BWindow* window)
{
	std::unique_lock lock(list().lock);
	if (Entry* entry = entry_of(looper))
		entry->window = window;
}

void
SetQuitOrder(BLooper* looper, QuitOrder order)
{
	std::unique_lock lock(list().lock);
	if (Entry* entry = entry_of(looper))
		entry->quits = order;
}

std::shared_ptr<LooperLock>
LockOf(const BLooper* looper)
{
	std::shared_lock lock(list().lock);
	const Entry* entry = entry_of(looper);
	return entry != nullptr ? entry->lock : nullptr;
}

std::shared_ptr<MessagePort>
PortOf(const BLooper* looper)
{
	std::shared_lock lock(list().lock);
	const Entry* entry = entry_of(looper);
	return entry != nullptr ? entry->port : nullptr;
}

BLooper*
OfPort(int32 port, std::shared_ptr<LooperLock>* looperLock)
{
	std::shared_lock lock(list().lock);
	const Entry* entry
		= find_entry([port](const Entry& other) { return other.port->Id() == port; });
	if (entry == nullptr)
		return NULL;
	if (looperLock != nullptr)
		*looperLock = entry->lock;
	return entry->looper;
}

BLooper*
OfThread(thread_id thread)
{
	std::shared_lock lock(list().lock);
	const Entry* entry = find_entry(
		[thread](const Entry& other) { return thread >= 0 && other.port->Thread() == thread; });
	return entry != nullptr ? entry->looper : NULL;
}

std::vector<Item>
Loopers()
{
	return items(false);
}

std::vector<Item>
Windows()
{
	return items(true);
}

BLooper*
Named(const char* name, bool windowsOnly)
{
	std::shared_lock lock(list().lock);
	const Entry* entry = find_entry([&](const Entry& other) {
		return other.name == name && (other.window != nullptr || !windowsOnly);
	});
	return entry != nullptr ? entry->looper : NULL;
}

void
ThreadBegins(thread_id thread)
{
	std::lock_guard lock(list().threadLock);
	list().threads.insert(thread);
}

void
ThreadEnds(thread_id thread)
{
	std::lock_guard lock(list().threadLock);
	list().threads.erase(thread);
	if (list().ended.size() >= kKeptThreads)
		list().ended.erase(list().ended.begin());
	list().ended.push_back(thread);
	list().threadEnded.notify_all();
}

void
WaitForThreads(thread_id except)
{
	std::vector<thread_id> ended;
	{
		std::unique_lock lock(list().threadLock);
		const auto allEnded
			= [except] { return list().threads.size() == list().threads.count(except); };
		while (!wait_until(list().threadEnded, lock, deadline_after(kComplainAfter), allEnded)) {
			std::set<thread_id> left = list().threads;
			left.erase(except);
			print_threads(left);
		}
		ended.swap(list().ended);
	}
	for (thread_id thread : ended) {
		if (thread != except && thread != find_thread(NULL))
			wait_for_thread(thread, NULL);
	}
}

} // namespace BPrivate::LooperList
