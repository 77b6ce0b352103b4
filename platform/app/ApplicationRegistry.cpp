#include "app/ApplicationRegistry.h"

#include "app/MessageAccess.h"
#include <atomic>
#include <limits.h>
#include <mutex>
#include <string>
#include <strings.h>
#include <unistd.h>

namespace BPrivate {

namespace {

std::mutex sSignatureLock;
std::atomic<int32> sPort{-1};

std::string&
signature_of_application()
{
	static std::string* sSignature = new std::string; // outlives every thread
	return *sSignature;
}

} // namespace

bool
register_application(const char* signature, int32 port)
{
	std::lock_guard lock(sSignatureLock);
	if (sPort >= 0)
		return false;
	signature_of_application() = signature;
	sPort = port;
	return true;
}

void
unregister_application(int32 port)
{
	std::lock_guard lock(sSignatureLock);
	if (sPort != port)
		return;
	sPort = -1;
	signature_of_application().clear();
}

bool
is_application(const char* signature)
{
	std::lock_guard lock(sSignatureLock);
	return sPort >= 0 && strcasecmp(signature_of_application().c_str(), signature) == 0;
}

BMessenger
application_messenger()
{
	const int32 port = sPort;
	return port >= 0 ? MessengerAccess::Make(port, kPreferredToken) : BMessenger();
}

const char*
executable_path()
{
	static const std::string* const sPath = [] {
		char path[PATH_MAX];
		const ssize_t length = readlink("/proc/self/exe", path, sizeof(path));
		return new std::string(path, length > 0 ? size_t(length) : 0);
	}();
	return sPath->c_str();
}

} // namespace BPrivate
