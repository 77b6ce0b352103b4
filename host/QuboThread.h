#pragma once

#include <atomic>

#include <OS.h>

/*!	A thread with a body of its own, Main(), that ends soon after it was asked to.
	Thread: owned and stopped by the thread that made it. A derived destructor calls Abort() first, since Main() may
	use what it is about to destroy. */
class QuboThread {
public:
	QuboThread() = default;
	QuboThread(const QuboThread&) = delete;
	QuboThread& operator=(const QuboThread&) = delete;
	virtual ~QuboThread();

	//! The body; sets fDone when it returns.
	virtual int32 Main();

	//! Spawns and resumes the thread; on an error none runs.
	status_t Start(const char* name, int32 priority);
	//! Asks the thread to end and waits until its body has.
	void Abort();

	static status_t MainStarter(void* self);

protected:
	virtual void ThreadInit() { }
	void ThreadCleanUp();
	bool IsQuitting() const { return fQuit != 0; }
	void AskToQuit() { fQuit = 1; }
	//! Waits until the body has returned, without asking for it.
	void WaitUntilDone() const;

private:
	thread_id fThread = -1;
	std::atomic<int32> fQuit{0};
	std::atomic<int32> fDone{1}; // 1 while no body runs
};
