#include "kernel/PortFolder.h"

#include "kernel/errno_status.h"
#include <algorithm>
#include <charconv>
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/uio.h>
#include <sys/un.h>
#include <unistd.h>

namespace BPrivate {

// the whole message must fit into the socket's buffer, with the kernel's own overhead
static constexpr int kSendBuffer = 2 * kPortMaxMessageSize;

//! The folder, made if need be; -1 unless it is a folder that only this user can enter.
static int
open_folder(const std::string& path)
{
	if (mkdir(path.c_str(), 0700) != 0 && errno != EEXIST)
		return -1;
	const int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
	struct stat info;
	if (folder >= 0 && fstat(folder, &info) == 0 && info.st_uid == geteuid()
		&& (info.st_mode & 077) == 0)
		return folder;
	if (folder >= 0)
		close(folder);
	return -1;
}

PortFolder::PortFolder()
{
	const char* runtime = getenv("XDG_RUNTIME_DIR");
	if (runtime != nullptr && runtime[0] == '/')
		fFolder = open_folder(std::string(runtime) + "/tavora-ports");
	if (fFolder < 0)
		fFolder = open_folder("/tmp/tavora-ports-" + std::to_string(geteuid()));
}

PortFolder::~PortFolder()
{
	if (fFolder >= 0)
		close(fFolder);
}

//! "TEAM.PORT.CAPACITY.NAME", the name in hexadecimal: any byte is allowed in a port's name.
static std::string
file_name(const PortAddress& address)
{
	std::string file = std::to_string(address.team) + '.' + std::to_string(address.port) + '.'
		+ std::to_string(address.capacity) + '.';
	for (const unsigned char c : address.name) {
		char digits[3];
		snprintf(digits, sizeof(digits), "%02x", c);
		file += digits;
	}
	return file;
}

static bool
parse_number(const char*& at, const char* end, int32* number)
{
	const auto [next, error] = std::from_chars(at, end, *number);
	if (error != std::errc() || next == end || *next != '.' || *number <= 0)
		return false;
	at = next + 1;
	return true;
}

static bool
parse_file_name(const char* file, PortAddress* address)
{
	const char* end = file + strlen(file);
	if (!parse_number(file, end, &address->team) || !parse_number(file, end, &address->port)
		|| !parse_number(file, end, &address->capacity))
		return false;
	for (; end - file >= 2; file += 2) {
		uint8 byte;
		const auto [next, error] = std::from_chars(file, file + 2, byte, 16);
		if (error != std::errc() || next != file + 2 || byte == 0)
			return false;
		address->name += static_cast<char>(byte);
	}
	return file == end && address->name.size() < B_OS_NAME_LENGTH;
}

/*!	The socket's address. It goes by way of the open folder: however long the folder's path is, the
	address has room for 108 bytes only. */
static bool
socket_address(int folder, const PortAddress& address, sockaddr_un* socket)
{
	memset(socket, 0, sizeof(*socket));
	socket->sun_family = AF_UNIX;
	const int length = snprintf(socket->sun_path, sizeof(socket->sun_path), "/proc/self/fd/%d/%s",
		folder, file_name(address).c_str());
	return length < static_cast<int>(sizeof(socket->sun_path));
}

static int
make_socket()
{
	return socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
}

int
PortFolder::Bind(const PortAddress& address) const
{
	sockaddr_un name;
	if (fFolder < 0 || !socket_address(fFolder, address, &name))
		return -1;
	const int socket = make_socket();
	if (socket < 0)
		return -1;
	const auto bind_it
		= [&] { return bind(socket, reinterpret_cast<sockaddr*>(&name), sizeof(name)) == 0; };
	// a leftover of a process that had our number is in the way
	if (bind_it() || (errno == EADDRINUSE && !IsAlive(address) && bind_it()))
		return socket;
	close(socket);
	return -1;
}

void
PortFolder::Remove(const PortAddress& address) const
{
	if (fFolder >= 0)
		unlinkat(fFolder, file_name(address).c_str(), 0);
}

std::vector<PortAddress>
PortFolder::List() const
{
	std::vector<PortAddress> addresses;
	const int copy = fFolder >= 0 ? openat(fFolder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1;
	DIR* folder = copy >= 0 ? fdopendir(copy) : nullptr;
	if (folder == nullptr)
		return addresses;
	while (const dirent* entry = readdir(folder)) {
		PortAddress address;
		if (parse_file_name(entry->d_name, &address) && address.team != getpid())
			addresses.push_back(address);
	}
	closedir(folder);
	return addresses;
}

//! A socket that is connected to the port, or -1 with errno. The dead are removed.
int
PortFolder::Connect(const PortAddress& address) const
{
	errno = ENOENT;
	sockaddr_un name;
	if (fFolder < 0 || !socket_address(fFolder, address, &name))
		return -1;
	const int socket = make_socket();
	if (socket < 0 || connect(socket, reinterpret_cast<sockaddr*>(&name), sizeof(name)) == 0)
		return socket;
	const int error = errno;
	close(socket);
	if (error == ECONNREFUSED)
		Remove(address);
	errno = error;
	return -1;
}

bool
PortFolder::IsAlive(const PortAddress& address) const
{
	const int socket = Connect(address);
	if (socket >= 0)
		close(socket);
	return socket >= 0;
}

static void
set_send_timeout(int socket, const Deadline& deadline)
{
	if (deadline.IsInfinite())
		return;
	// 0 would be for ever
	const bigtime_t timeout = std::max<bigtime_t>(deadline.Remaining(), 1);
	const timeval value
		= {static_cast<time_t>(timeout / 1000000), static_cast<suseconds_t>(timeout % 1000000)};
	setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &value, sizeof(value));
}

static status_t
send_message(int socket, int32 code, const void* buffer, size_t size, const Deadline& deadline)
{
	setsockopt(socket, SOL_SOCKET, SO_SNDBUF, &kSendBuffer, sizeof(kSendBuffer));
	iovec parts[2] = {{&code, sizeof(code)}, {const_cast<void*>(buffer), size}};
	msghdr message = {};
	message.msg_iov = parts;
	message.msg_iovlen = 2;
	const int flags = MSG_NOSIGNAL | (deadline.MustNotWait() ? MSG_DONTWAIT : 0);
	// the kernel rounds the time down
	const auto came_too_early = [&] {
		return errno == EINTR
			|| (errno == EAGAIN && !deadline.MustNotWait() && deadline.Remaining() > 0);
	};
	ssize_t sent;
	do {
		set_send_timeout(socket, deadline);
		sent = sendmsg(socket, &message, flags);
	} while (sent < 0 && came_too_early());
	if (sent >= 0)
		return B_OK;
	switch (errno) {
		case EAGAIN:
			return deadline.Failure();
		case EMSGSIZE:
			return B_BAD_VALUE;
		case ECONNREFUSED:
		case ECONNRESET:
		case ENOTCONN:
		case EPIPE:
			return B_BAD_PORT_ID;
		default:
			return status_of_errno(errno);
	}
}

status_t
PortFolder::Send(const PortAddress& address, int32 code, const void* buffer, size_t size,
	const Deadline& deadline) const
{
	const int socket = Connect(address);
	if (socket < 0)
		return errno == EMFILE || errno == ENFILE ? B_NO_MORE_FDS : B_BAD_PORT_ID;
	const status_t result = send_message(socket, code, buffer, size, deadline);
	close(socket);
	return result;
}

} // namespace BPrivate
