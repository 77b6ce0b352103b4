#include "host/QuboThread.h"

namespace {

constexpr bigtime_t kLookInterval = 1000; // µs between two looks at a flag of the thread's

} // namespace

QuboThread::~QuboThread()
{
	Abort();
	// The body has returned, but its thread may still have a few steps to go in code that is about to be unloaded.
	status_t result;
	if (fThread >= 0)
		wait_for_thread(fThread, &result);
}

int32
QuboThread::Main()
{
	ThreadInit();
	ThreadCleanUp();
	return 0;
}

status_t
QuboThread::Start(const char* name, int32 priority)
{
	fThread = spawn_thread(MainStarter, name, priority, this);
	if (fThread < 0)
		return fThread;
	fQuit = 0;
	fDone = 0;
	const status_t status = resume_thread(fThread);
	if (status != B_OK) {
		fThread = -1;
		fDone = 1;
	}
	return status;
}

void
QuboThread::Abort()
{
	AskToQuit();
	WaitUntilDone();
}

void
QuboThread::WaitUntilDone() const
{
	while (fDone == 0)
		snooze(kLookInterval);
}

status_t
QuboThread::MainStarter(void* self)
{
	return static_cast<QuboThread*>(self)->Main();
}

void
QuboThread::ThreadCleanUp()
{
	fDone = 1;
}
