#include <Statable.h>

#include <cerrno>
#include <fcntl.h>

#include <Node.h>

#include "kernel/errno_status.h"
#include "storage/RefTable.h"

using BPrivate::RefTable;
using BPrivate::status_of_errno;

BStatable::~BStatable() { }

bool
BStatable::IsFile() const
{
	struct stat stat;
	return GetStat(&stat) == B_OK && S_ISREG(stat.st_mode);
}

bool
BStatable::IsDirectory() const
{
	struct stat stat;
	return GetStat(&stat) == B_OK && S_ISDIR(stat.st_mode);
}

bool
BStatable::IsSymLink() const
{
	struct stat stat;
	return GetStat(&stat) == B_OK && S_ISLNK(stat.st_mode);
}

status_t
BStatable::GetNodeRef(node_ref* ref) const
{
	if (ref == NULL)
		return B_BAD_VALUE;
	struct stat stat;
	status_t status = GetStat(&stat);
	if (status != B_OK)
		return status;
	*ref = node_ref(stat.st_dev, stat.st_ino);

	// What was removed while it was open has an identity, but it cannot be found again.
	std::string path;
	if (_NodePath(path) == B_OK)
		RefTable::Default().Remember(*ref, path);
	return B_OK;
}

status_t
BStatable::GetPermissions(mode_t* permissions) const
{
	if (permissions == NULL)
		return B_BAD_VALUE;
	struct stat stat;
	status_t status = GetStat(&stat);
	if (status == B_OK)
		*permissions = stat.st_mode & ALLPERMS;
	return status;
}

status_t
BStatable::SetPermissions(mode_t permissions)
{
	std::string path;
	status_t status = _NodePath(path);
	if (status != B_OK)
		return status;
	if (fchmodat(AT_FDCWD, path.c_str(), permissions & ALLPERMS, AT_SYMLINK_NOFOLLOW) != 0)
		return status_of_errno(errno);
	return B_OK;
}

status_t
BStatable::GetSize(off_t* size) const
{
	if (size == NULL)
		return B_BAD_VALUE;
	struct stat stat;
	status_t status = GetStat(&stat);
	if (status == B_OK)
		*size = stat.st_size;
	return status;
}

status_t
BStatable::GetModificationTime(time_t* mtime) const
{
	if (mtime == NULL)
		return B_BAD_VALUE;
	struct stat stat;
	status_t status = GetStat(&stat);
	if (status == B_OK)
		*mtime = stat.st_mtime;
	return status;
}

status_t
BStatable::SetModificationTime(time_t mtime)
{
	struct stat stat;
	status_t status = GetStat(&stat);
	std::string path;
	if (status == B_OK)
		status = _NodePath(path);
	if (status != B_OK)
		return status;

	// inotify reports a change of both times as one of attributes, of one alone as if data were
	// written: so the access time is set to what it was.
	struct timespec times[2] = {stat.st_atim, {mtime, 0}};
	if (utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW) != 0)
		return status_of_errno(errno);
	return B_OK;
}
