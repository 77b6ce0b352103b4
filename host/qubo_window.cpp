#include "host/qubo_window.h"

#include <cstring>

#include <Application.h>
#include <Window.h>

#include "host/QuboProtocol.h"

namespace {

// µs; a window that is locked for longer, such as one that was made but never shown, is passed over.
constexpr bigtime_t kLockTimeout = 500000;

// Whether that is the host's window; its frame goes out with the same look.
bool
is_qubo_window(BWindow* window, BRect* frame)
{
	// A window that was closed meanwhile does not lock.
	if (window->LockWithTimeout(kLockTimeout) != B_OK)
		return false;
	const char* title = window->Title();
	const bool isQubo
		= title != nullptr && strncmp(title, kQuboWindowTitle, strlen(kQuboWindowTitle)) == 0;
	if (isQubo)
		*frame = window->Frame();
	window->Unlock();
	return isQubo;
}

status_t
find_qubo_window(BWindow** found, BRect* frame)
{
	if (be_app == nullptr)
		return -1;
	BWindow* window;
	for (int32 i = 0; (window = be_app->WindowAt(i)) != nullptr; i++) {
		if (is_qubo_window(window, frame)) {
			*found = window;
			return 0;
		}
	}
	return -1;
}

} // namespace

status_t
get_qubo_window(BWindow** window)
{
	BRect frame;
	return find_qubo_window(window, &frame);
}

status_t
get_qubo_win_frame(BRect* frame)
{
	BWindow* window;
	return find_qubo_window(&window, frame);
}
