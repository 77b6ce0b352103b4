#include "storage/FileDescriptor.h"

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <unistd.h>

namespace BPrivate {

void
FileDescriptor::Set(int fd)
{
	if (fFd >= 0)
		close(fFd);
	fFd = fd;
}

int
FileDescriptor::Release()
{
	int fd = fFd;
	fFd = -1;
	return fd;
}

int
open_at(int dirFd, const char* path, int flags, mode_t mode)
{
	for (;;) {
		int fd = openat(dirFd, path, flags | O_CLOEXEC, mode);
		if (fd >= 0)
			return fd;
		if (errno != EINTR)
			return -errno;
	}
}

int
duplicate(int fd)
{
	if (fd < 0)
		return -1;
	int copy = fcntl(fd, F_DUPFD_CLOEXEC, 0);
	return copy >= 0 ? copy : -errno;
}

bool
path_of(int fd, std::string& path)
{
	char buffer[PATH_MAX];
	std::string link = "/proc/self/fd/" + std::to_string(fd);
	ssize_t length = readlink(link.c_str(), buffer, sizeof(buffer));
	if (length <= 0 || length == static_cast<ssize_t>(sizeof(buffer)) || buffer[0] != '/')
		return false;

	// The system goes on telling a path when the file was removed or is out of reach.
	std::string found(buffer, length);
	struct stat open, named;
	if (fstat(fd, &open) != 0 || lstat(found.c_str(), &named) != 0)
		return false;
	if (open.st_dev != named.st_dev || open.st_ino != named.st_ino)
		return false;
	path = std::move(found);
	return true;
}

std::string
path_in(const std::string& folder, const std::string& name)
{
	return folder.ends_with('/') ? folder + name : folder + '/' + name;
}

} // namespace BPrivate
