#include "screen_check.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr const char* kXLibrary = "libxcb.so.1"; // the toolkit brings it along

std::string
variable(const char* name)
{
	const char* value = getenv(name);
	return value != nullptr ? value : "";
}

template<typename Function>
Function
find(void* library, const char* name)
{
	return reinterpret_cast<Function>(dlsym(library, name));
}

bool
x_server_answers()
{
	void* library = dlopen(kXLibrary, RTLD_LAZY | RTLD_LOCAL);
	if (library == nullptr)
		return true; // the toolkit knows better
	auto connect = find<void* (*)(const char*, int*)>(library, "xcb_connect");
	auto hasError = find<int (*)(void*)>(library, "xcb_connection_has_error");
	auto disconnect = find<void (*)(void*)>(library, "xcb_disconnect");
	if (connect == nullptr || hasError == nullptr || disconnect == nullptr)
		return true;
	void* connection = connect(nullptr, nullptr);
	const bool answers = hasError(connection) == 0;
	disconnect(connection);
	return answers;
}

bool
wayland_answers(const std::string& display)
{
	const std::string path
		= display[0] == '/' ? display : variable("XDG_RUNTIME_DIR") + '/' + display;
	sockaddr_un address = {};
	address.sun_family = AF_UNIX;
	if (path.size() >= sizeof(address.sun_path))
		return false;
	memcpy(address.sun_path, path.c_str(), path.size() + 1);
	const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
	const bool answers
		= connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
	close(socket);
	return answers;
}

} // namespace

bool
has_screen()
{
	const std::string platform = variable("QT_QPA_PLATFORM");
	if (!platform.empty() && !platform.starts_with("xcb") && !platform.starts_with("wayland"))
		return true;
	// as the layer chooses: an X server where there is one
	if (!platform.starts_with("wayland") && !variable("DISPLAY").empty())
		return x_server_answers();
	const std::string wayland = variable("WAYLAND_DISPLAY");
	return !wayland.empty() && wayland_answers(wayland);
}
