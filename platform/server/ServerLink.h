#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <type_traits>

namespace BPrivate {

/*!	Is the caller the thread that serves, while it serves? Such a caller must not lock a looper nor
	wait for one. */
bool on_server_thread();

/*!	The one way from the clients' threads to the display server.
	Jobs run in the order in which they were posted, one at a time, on the server's thread. A job
	holds plain values and ids only, and its code is the layer's own, because an add-on's code may
	be unloaded while its job waits.
	Any thread may post; from Open() until the server serves, jobs wait, and the thread that opened
	the link may call: it then runs what waits itself. */
class ServerLink {
public:
	using Job = std::function<void()>;

	static ServerLink& Default();

	//! False, and the job is dropped, when the link is closed.
	bool Post(Job job);
	/*!	Runs `function` on the server and answers what it returns; nothing when the link is closed
		before that. Not from the server's own jobs. */
	template<typename Function>
	auto Call(Function function) -> std::optional<std::invoke_result_t<Function>>
	{
		auto result = std::make_shared<std::optional<std::invoke_result_t<Function>>>();
		if (!CallJob([result, function] { result->emplace(function()); }))
			return std::nullopt;
		return std::move(*result);
	}
	//! The same for a job without a value.
	bool CallJob(Job job);

	// For the server itself.
	//! The calling thread is the one that will serve. B_OK or the system's error.
	int Open();
	//! Drops what waits: blocked callers wake with nothing.
	void Close();
	void SetServing(bool serving);
	bool IsServing() const;
	bool IsOwner() const;
	//! Readable when jobs wait.
	int WakeDescriptor() const { return fWake; }
	/*!	Runs at most `limit` jobs. A job may enter an event loop of its own: the rest is then done
		in that one. */
	void RunJobs(int limit);

private:
	struct Waiter;
	struct Ticket;

	void Kick();
	bool RunNext();

	mutable std::mutex fMutex;
	std::deque<Job> fJobs;
	std::thread::id fOwner;
	int fWake = -1;
	bool fOpen = false;
	bool fServing = false;
	bool fKicked = false;
};

} // namespace BPrivate
