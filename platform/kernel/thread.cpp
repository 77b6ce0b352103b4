#include <OS.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <limits.h>
#include <map>
#include <memory>
#include <mutex>
#include <pthread.h>
#include <string.h>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

/*	The threads are kept here with numbers and names of our own: the system cuts names at 15 bytes
	and gives its numbers out again at once. A thread is a suspended entry until it is resumed; only
	then the system's thread is made. When it has ended, the one who waits for it joins the system's
	thread, or else the next thread that ends, so that at most one is ever left over. */

namespace {

constexpr size_t kKeptResults = 256;
constexpr size_t kSystemNameLength = 15;

enum State {
	kSuspended,
	kRunning,
	kEnded, // its function has; the system's thread is about to
	kGone
};

struct Thread {
	thread_id id = 0;
	std::string name;
	int32 priority = B_NORMAL_PRIORITY;
	thread_func func = nullptr; // NULL: not made by us
	void* data = nullptr;
	State state = kSuspended;
	pthread_t system{};
	status_t result = B_OK;
	int32 waiters = 0;
	std::condition_variable changed;
};

using ThreadRef = std::shared_ptr<Thread>;

struct Table {
	std::mutex lock;
	std::map<thread_id, ThreadRef> threads;
	std::deque<thread_id> results;   // who has ended, in order
	std::vector<ThreadRef> unjoined; // who has ended and is nobody's yet to join
	thread_id lastId = 0;
	pthread_key_t foreignKey{};
};

thread_local thread_id sSelf = 0;

void foreign_thread_ends(void* id);

Table&
table()
{
	// never deleted: threads may outlive the statics
	static Table* const sTable = [] {
		Table* table = new Table;
		pthread_key_create(&table->foreignKey, foreign_thread_ends);
		return table;
	}();
	return *sTable;
}

//! NULL for threads that have ended.
Thread*
live_thread(Table& table, thread_id id)
{
	const auto found = table.threads.find(id);
	if (found == table.threads.end() || found->second->state > kRunning)
		return nullptr;
	return found->second.get();
}

ThreadRef
add_thread(Table& table, const char* name, int32 priority)
{
	do
		table.lastId = table.lastId == INT_MAX ? 1 : table.lastId + 1;
	while (table.threads.contains(table.lastId));
	ThreadRef thread = std::make_shared<Thread>();
	thread->id = table.lastId;
	thread->name.assign(name, strnlen(name, B_OS_NAME_LENGTH - 1));
	thread->priority = std::clamp<int32>(priority, 1, B_REAL_TIME_PRIORITY);
	table.threads[thread->id] = thread;
	return thread;
}

//! Keeps the result, but not for ever.
void
remember_result(Table& table, thread_id id)
{
	table.results.push_back(id);
	if (table.results.size() <= kKeptResults)
		return;
	table.threads.erase(table.results.front());
	table.results.pop_front();
}

void
forget(Table& table, thread_id id)
{
	table.threads.erase(id);
	std::erase(table.results, id);
}

/*!	With the lock not held; `thread` was taken out of `unjoined`. */
void
join(Table& table, const ThreadRef& thread)
{
	pthread_join(thread->system, nullptr);
	std::lock_guard lock(table.lock);
	thread->state = kGone;
	thread->changed.notify_all();
}

void
thread_ends(const ThreadRef& thread, status_t result)
{
	Table& table = ::table();
	std::vector<ThreadRef> others;
	{
		std::lock_guard lock(table.lock);
		thread->state = kEnded;
		thread->result = result;
		others.swap(table.unjoined);
		table.unjoined.push_back(thread);
		remember_result(table, thread->id);
		thread->changed.notify_all();
	}
	for (const ThreadRef& other : others)
		join(table, other);
}

void
set_system_name(pthread_t thread, const std::string& name)
{
	pthread_setname_np(thread, name.substr(0, kSystemNameLength).c_str());
}

void*
thread_main(void* data)
{
	const std::unique_ptr<ThreadRef> holder(static_cast<ThreadRef*>(data));
	const ThreadRef& thread = *holder;
	sSelf = thread->id;
	thread_ends(thread, thread->func(thread->data));
	return nullptr;
}

//! With the lock held.
status_t
start(const ThreadRef& thread)
{
	auto holder = std::make_unique<ThreadRef>(thread);
	thread->state = kRunning;
	if (pthread_create(&thread->system, nullptr, thread_main, holder.get()) != 0) {
		thread->state = kSuspended;
		return B_NO_MORE_THREADS;
	}
	holder.release(); // the thread deletes it
	set_system_name(thread->system, thread->name);
	return B_OK;
}

void
foreign_thread_ends(void* id)
{
	Table& table = ::table();
	std::lock_guard lock(table.lock);
	const auto found = table.threads.find(static_cast<thread_id>(reinterpret_cast<intptr_t>(id)));
	if (found == table.threads.end())
		return;
	found->second->state = kGone;
	found->second->changed.notify_all();
	table.threads.erase(found);
}

thread_id
register_caller()
{
	char name[kSystemNameLength + 1] = "";
	pthread_getname_np(pthread_self(), name, sizeof(name));
	Table& table = ::table();
	std::lock_guard lock(table.lock);
	const ThreadRef thread = add_thread(table, name, B_NORMAL_PRIORITY);
	thread->state = kRunning;
	sSelf = thread->id;
	pthread_setspecific(
		table.foreignKey, reinterpret_cast<void*>(static_cast<intptr_t>(thread->id)));
	return sSelf;
}

/*!	Waits, with the lock held, until the thread is gone; joins it if nobody else has begun to. */
void
wait_until_gone(Table& table, const ThreadRef& thread, std::unique_lock<std::mutex>& lock)
{
	thread->waiters++;
	thread->changed.wait(lock, [&] { return thread->state >= kEnded; });
	if (std::erase(table.unjoined, thread) > 0) {
		lock.unlock();
		join(table, thread);
		lock.lock();
	}
	thread->changed.wait(lock, [&] { return thread->state == kGone; });
	thread->waiters--;
}

//! What is left over at the end of the program.
[[gnu::destructor]] void
join_ended_threads()
{
	Table& table = ::table();
	std::vector<ThreadRef> threads;
	{
		std::lock_guard lock(table.lock);
		threads.swap(table.unjoined);
	}
	for (const ThreadRef& thread : threads)
		join(table, thread);
}

} // namespace

thread_id
spawn_thread(thread_func func, const char* name, int32 priority, void* data)
{
	if (func == nullptr)
		return B_BAD_VALUE;
	Table& table = ::table();
	std::lock_guard lock(table.lock);
	const ThreadRef thread = add_thread(table, name != nullptr ? name : "", priority);
	thread->func = func;
	thread->data = data;
	return thread->id;
}

status_t
resume_thread(thread_id id)
{
	Table& table = ::table();
	std::lock_guard lock(table.lock);
	if (live_thread(table, id) == nullptr)
		return B_BAD_THREAD_ID;
	const ThreadRef& thread = table.threads[id];
	return thread->state == kSuspended ? start(thread) : B_BAD_THREAD_STATE;
}

status_t
wait_for_thread(thread_id id, status_t* returnValue)
{
	if (id == sSelf && id != 0)
		return B_NOT_ALLOWED;
	Table& table = ::table();
	std::unique_lock lock(table.lock);
	const auto found = table.threads.find(id);
	if (found == table.threads.end())
		return B_BAD_THREAD_ID;
	const ThreadRef thread = found->second;
	if (thread->state == kSuspended) {
		if (const status_t error = start(thread); error != B_OK)
			return error;
	}
	wait_until_gone(table, thread, lock);
	if (returnValue != nullptr)
		*returnValue = thread->result;
	if (thread->waiters == 0)
		forget(table, id);
	return B_OK;
}

thread_id
find_thread(const char* name)
{
	if (name == nullptr)
		return sSelf != 0 ? sSelf : register_caller();
	Table& table = ::table();
	std::lock_guard lock(table.lock);
	for (const auto& [id, thread] : table.threads) {
		if (thread->state <= kRunning && thread->name == name)
			return id;
	}
	return B_NAME_NOT_FOUND;
}

status_t
rename_thread(thread_id id, const char* newName)
{
	if (newName == nullptr)
		return B_BAD_VALUE;
	Table& table = ::table();
	std::lock_guard lock(table.lock);
	Thread* thread = live_thread(table, id);
	if (thread == nullptr)
		return B_BAD_THREAD_ID;
	thread->name.assign(newName, strnlen(newName, B_OS_NAME_LENGTH - 1));
	// the name of the main thread is the process's as others list it
	if (thread->func != nullptr && thread->state == kRunning)
		set_system_name(thread->system, thread->name);
	return B_OK;
}

status_t
set_thread_priority(thread_id id, int32 newPriority)
{
	Table& table = ::table();
	std::lock_guard lock(table.lock);
	Thread* thread = live_thread(table, id);
	if (thread == nullptr)
		return B_BAD_THREAD_ID;
	return std::exchange(thread->priority, std::clamp<int32>(newPriority, 1, B_REAL_TIME_PRIORITY));
}

status_t
get_thread_info(thread_id id, thread_info* info)
{
	if (info == nullptr)
		return B_BAD_VALUE;
	Table& table = ::table();
	std::lock_guard lock(table.lock);
	const Thread* thread = live_thread(table, id);
	if (thread == nullptr)
		return B_BAD_THREAD_ID;
	memset(info, 0, sizeof(*info));
	info->thread = id;
	info->team = getpid();
	thread->name.copy(info->name, sizeof(info->name) - 1);
	info->state = thread->state == kSuspended ? B_THREAD_SUSPENDED : B_THREAD_RUNNING;
	info->priority = thread->priority;
	return B_OK;
}
