#include "server/DisplayServer.h"

#include <dlfcn.h>
#include <stdlib.h>
#include <unistd.h>

/*!	Takes the place of the C library's function for the whole process, the toolkit's libraries too:
	when the X server dies they call it on the main thread while the loopers run. A handler of
	atexit() would come too late, after the destructors of whatever the toolkit has made since,
	which the loopers' drawing still uses. On any other thread it is the plain function. */
extern "C" void
exit(int status) noexcept
{
	if (!BPrivate::DisplayServer::Default().EndBeforeExit())
		_exit(status);
	auto plainExit = reinterpret_cast<void (*)(int)>(dlsym(RTLD_NEXT, "exit"));
	if (plainExit != nullptr)
		plainExit(status);
	_exit(status);
}
