#include <File.h>

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <unistd.h>

#include <Directory.h>
#include <Entry.h>

#include "kernel/errno_status.h"
#include "storage/FileDescriptor.h"

using BPrivate::FileDescriptor;
using BPrivate::open_at;
using BPrivate::status_of_errno;

static const uint32 kAccessModes = B_READ_ONLY | B_WRITE_ONLY | B_READ_WRITE;
static const uint32 kOpenModes
	= kAccessModes | B_FAIL_IF_EXISTS | B_CREATE_FILE | B_ERASE_FILE | B_OPEN_AT_END;

static status_t
check_open_mode(uint32 openMode)
{
	uint32 access = openMode & kAccessModes;
	if ((openMode & ~kOpenModes) != 0 || access > B_READ_WRITE)
		return B_BAD_VALUE;
	// The system would empty the file all the same.
	if ((openMode & B_ERASE_FILE) != 0 && access == B_READ_ONLY)
		return B_NOT_ALLOWED;
	return B_OK;
}

static int
open_flags(uint32 openMode)
{
	// A pipe or a terminal must neither be waited for nor become our terminal.
	int flags = O_NONBLOCK | O_NOCTTY;
	uint32 access = openMode & kAccessModes;
	flags |= access == B_READ_ONLY ? O_RDONLY : access == B_WRITE_ONLY ? O_WRONLY : O_RDWR;
	if ((openMode & B_CREATE_FILE) != 0) {
		flags |= O_CREAT;
		if ((openMode & B_FAIL_IF_EXISTS) != 0)
			flags |= O_EXCL;
	}
	if ((openMode & B_ERASE_FILE) != 0)
		flags |= O_TRUNC;
	return flags;
}

static status_t
check_kind(const struct stat& stat)
{
	if (S_ISDIR(stat.st_mode))
		return B_IS_A_DIRECTORY;
	if (!S_ISREG(stat.st_mode))
		return B_NOT_ALLOWED;
	return B_OK;
}

//!	Calls a read or write until all is done, it is at the end, or it fails; that counts when nothing was done before.
template<typename Transfer>
static ssize_t
transfer_all(size_t size, Transfer transfer)
{
	if (size > SSIZE_MAX)
		return B_BAD_VALUE;
	size_t done = 0;
	while (done < size) {
		ssize_t bytes = transfer(done);
		if (bytes < 0 && errno == EINTR)
			continue;
		if (bytes < 0 && done == 0)
			return status_of_errno(errno);
		if (bytes <= 0)
			break;
		done += bytes;
	}
	return done;
}

BFile::BFile() { }

BFile::BFile(const entry_ref* ref, uint32 openMode)
{
	SetTo(ref, openMode);
}

BFile::BFile(const BEntry* entry, uint32 openMode)
{
	SetTo(entry, openMode);
}

BFile::BFile(const char* path, uint32 openMode)
{
	SetTo(path, openMode);
}

BFile::BFile(const BDirectory* dir, const char* path, uint32 openMode)
{
	SetTo(dir, path, openMode);
}

BFile::BFile(const BFile& file) : BNode(file), BPositionIO() { }

BFile::~BFile() { }

status_t
BFile::SetTo(const entry_ref* ref, uint32 openMode)
{
	BEntry entry(ref);
	if (entry.InitCheck() != B_OK)
		return _Fail(entry.InitCheck());
	return SetTo(&entry, openMode);
}

status_t
BFile::SetTo(const BEntry* entry, uint32 openMode)
{
	if (entry == NULL || entry->InitCheck() != B_OK)
		return _Fail(B_BAD_VALUE);
	return _Open(entry->fDirFd, entry->fName, openMode);
}

status_t
BFile::SetTo(const char* path, uint32 openMode)
{
	return _Open(AT_FDCWD, path, openMode);
}

status_t
BFile::SetTo(const BDirectory* dir, const char* path, uint32 openMode)
{
	if (dir == NULL || dir->InitCheck() != B_OK)
		return _Fail(B_BAD_VALUE);
	return _Open(dir->fFd, path, openMode);
}

bool
BFile::IsReadable() const
{
	int mode = _AccessMode();
	return mode == O_RDONLY || mode == O_RDWR;
}

bool
BFile::IsWritable() const
{
	int mode = _AccessMode();
	return mode == O_WRONLY || mode == O_RDWR;
}

ssize_t
BFile::Read(void* buffer, size_t size)
{
	if (InitCheck() != B_OK)
		return InitCheck();
	if (buffer == NULL)
		return B_BAD_VALUE;
	return transfer_all(size,
		[&](size_t done) { return read(fFd, static_cast<char*>(buffer) + done, size - done); });
}

ssize_t
BFile::ReadAt(off_t location, void* buffer, size_t size)
{
	if (InitCheck() != B_OK)
		return InitCheck();
	if (buffer == NULL || location < 0)
		return B_BAD_VALUE;
	return transfer_all(size, [&](size_t done) {
		return pread(fFd, static_cast<char*>(buffer) + done, size - done, location + done);
	});
}

ssize_t
BFile::Write(const void* buffer, size_t size)
{
	if (InitCheck() != B_OK)
		return InitCheck();
	if (buffer == NULL)
		return B_BAD_VALUE;
	return transfer_all(size, [&](size_t done) {
		return write(fFd, static_cast<const char*>(buffer) + done, size - done);
	});
}

ssize_t
BFile::WriteAt(off_t location, const void* buffer, size_t size)
{
	if (InitCheck() != B_OK)
		return InitCheck();
	if (buffer == NULL || location < 0)
		return B_BAD_VALUE;
	return transfer_all(size, [&](size_t done) {
		return pwrite(fFd, static_cast<const char*>(buffer) + done, size - done, location + done);
	});
}

off_t
BFile::Seek(off_t offset, uint32 seekMode)
{
	if (InitCheck() != B_OK)
		return InitCheck();
	if (seekMode != SEEK_SET && seekMode != SEEK_CUR && seekMode != SEEK_END)
		return B_BAD_VALUE;
	off_t position = lseek(fFd, offset, static_cast<int>(seekMode));
	return position >= 0 ? position : status_of_errno(errno);
}

off_t
BFile::Position() const
{
	if (InitCheck() != B_OK)
		return InitCheck();
	off_t position = lseek(fFd, 0, SEEK_CUR);
	return position >= 0 ? position : status_of_errno(errno);
}

status_t
BFile::SetSize(off_t size)
{
	if (InitCheck() != B_OK)
		return InitCheck();
	while (ftruncate(fFd, size) != 0) {
		if (errno != EINTR)
			return status_of_errno(errno);
	}
	return B_OK;
}

status_t
BFile::GetSize(off_t* size) const
{
	return BStatable::GetSize(size);
}

BFile&
BFile::operator=(const BFile& file)
{
	BNode::operator=(file);
	return *this;
}

status_t
BFile::_Open(int dirFd, const char* path, uint32 openMode)
{
	status_t status = path != NULL ? check_open_mode(openMode) : B_BAD_VALUE;
	if (status != B_OK)
		return _Fail(status);

	// Opening a device can already do something, so look before.
	struct stat stat;
	bool exclusive = (open_flags(openMode) & O_EXCL) != 0;
	if (!exclusive && fstatat(dirFd, path, &stat, 0) == 0)
		status = check_kind(stat);
	if (status != B_OK)
		return _Fail(status);

	int fd = open_at(dirFd, path, open_flags(openMode), DEFFILEMODE);
	if (fd < 0)
		return _Fail(status_of_errno(-fd));
	FileDescriptor file(fd);
	status = fstat(fd, &stat) == 0 ? check_kind(stat) : status_of_errno(errno);
	if (status != B_OK)
		return _Fail(status);

	fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
	if ((openMode & B_OPEN_AT_END) != 0)
		lseek(fd, 0, SEEK_END);
	return _SetFd(file.Release());
}

int
BFile::_AccessMode() const
{
	return InitCheck() == B_OK ? fcntl(fFd, F_GETFL) & O_ACCMODE : -1;
}
