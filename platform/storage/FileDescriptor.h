#pragma once

#include <string>
#include <sys/stat.h>

#include <SupportDefs.h>

namespace BPrivate {

//!	Owns a descriptor, -1 for none.
class FileDescriptor {
public:
	explicit FileDescriptor(int fd = -1) : fFd(fd) { }
	FileDescriptor(const FileDescriptor&) = delete;
	FileDescriptor& operator=(const FileDescriptor&) = delete;
	~FileDescriptor() { Set(-1); }

	int Get() const { return fFd; }
	void Set(int fd);
	int Release();

private:
	int fFd;
};

//!	openat() with O_CLOEXEC that is not interrupted: a descriptor, or an errno negated.
int open_at(int dirFd, const char* path, int flags, mode_t mode = 0);

//!	A descriptor for the same open file, or an errno negated; -1 for -1.
int duplicate(int fd);

//!	The path that leads to an open file now; false when none does, as for one that was removed.
bool path_of(int fd, std::string& path);

//!	"folder/name" without doubling the root's slash.
std::string path_in(const std::string& folder, const std::string& name);

} // namespace BPrivate
