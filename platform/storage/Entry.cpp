#include <Entry.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include <Directory.h>
#include <Path.h>

#include "kernel/errno_status.h"
#include "storage/FileDescriptor.h"
#include "storage/RefTable.h"

using BPrivate::FileDescriptor;
using BPrivate::open_at;
using BPrivate::path_in;
using BPrivate::path_of;
using BPrivate::RefTable;
using BPrivate::status_of_errno;

namespace {

const int kOpenFolder = O_PATH | O_DIRECTORY;
const int kMaxLinks = 40; // as the system's own limit

//!	Cuts a path without slashes at its end into the folder, "." if none is named, and the last name.
void
split(const std::string& path, std::string& folder, std::string& leaf)
{
	size_t slash = path.rfind('/');
	if (slash == std::string::npos) {
		folder = ".";
		leaf = path;
	} else {
		folder = slash == 0 ? "/" : path.substr(0, slash);
		leaf = path.substr(slash + 1);
	}
}

bool
is_same(const struct stat& a, const struct stat& b)
{
	return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

//!	The target of a link, false when the name is none.
bool
read_link(int dirFd, const char* name, std::string& target)
{
	char buffer[PATH_MAX];
	ssize_t length = readlinkat(dirFd, name, buffer, sizeof(buffer));
	if (length <= 0)
		return false;
	target.assign(buffer, length);
	return true;
}

} // namespace

BEntry::BEntry() : fDirFd(-1), fName(NULL), fCStatus(B_NO_INIT) { }

BEntry::BEntry(const BDirectory* dir, const char* path, bool traverse) : BEntry()
{
	SetTo(dir, path, traverse);
}

BEntry::BEntry(const entry_ref* ref, bool traverse) : BEntry()
{
	SetTo(ref, traverse);
}

BEntry::BEntry(const char* path, bool traverse) : BEntry()
{
	SetTo(path, traverse);
}

BEntry::BEntry(const BEntry& entry) : BStatable(entry), fDirFd(-1), fName(NULL), fCStatus(B_NO_INIT)
{
	_CopyFrom(entry);
}

BEntry::~BEntry()
{
	Unset();
}

status_t
BEntry::InitCheck() const
{
	return fCStatus;
}

bool
BEntry::Exists() const
{
	struct stat stat;
	return GetStat(&stat) == B_OK;
}

status_t
BEntry::GetStat(struct stat* stat) const
{
	if (stat == NULL)
		return B_BAD_VALUE;
	if (fCStatus != B_OK)
		return fCStatus;
	int result = fstatat(fDirFd, fName, stat, AT_SYMLINK_NOFOLLOW);
	return result == 0 ? B_OK : status_of_errno(errno);
}

status_t
BEntry::SetTo(const BDirectory* dir, const char* path, bool traverse)
{
	if (dir == NULL || dir->InitCheck() != B_OK)
		return _Fail(B_BAD_VALUE);
	return _SetTo(dir->fFd, path != NULL && path[0] != '\0' ? path : ".", traverse);
}

status_t
BEntry::SetTo(const entry_ref* ref, bool traverse)
{
	// A slash in the name would lead to quite another folder.
	if (ref == NULL || ref->name == NULL || ref->name[0] == '\0' || strchr(ref->name, '/') != NULL)
		return _Fail(B_BAD_VALUE);
	int fd = RefTable::Default().Open(node_ref(ref->device, ref->directory));
	if (fd < 0)
		return _Fail(status_of_errno(-fd));
	FileDescriptor folder(fd);
	return _SetTo(fd, ref->name, traverse);
}

status_t
BEntry::SetTo(const char* path, bool traverse)
{
	if (path == NULL)
		return _Fail(B_BAD_VALUE);
	return _SetTo(AT_FDCWD, path, traverse);
}

void
BEntry::Unset()
{
	if (fDirFd >= 0)
		close(fDirFd);
	free(fName);
	fDirFd = -1;
	fName = NULL;
	fCStatus = B_NO_INIT;
}

status_t
BEntry::GetRef(entry_ref* ref) const
{
	if (ref == NULL)
		return B_BAD_VALUE;
	struct stat stat;
	status_t status = fCStatus;
	if (status == B_OK && fstat(fDirFd, &stat) != 0)
		status = status_of_errno(errno);
	if (status != B_OK) {
		*ref = entry_ref();
		return status;
	}
	RefTable::Default().Remember(fDirFd);
	ref->device = stat.st_dev;
	ref->directory = stat.st_ino;
	return ref->set_name(fName);
}

status_t
BEntry::GetPath(BPath* path) const
{
	if (path == NULL)
		return B_BAD_VALUE;
	std::string text;
	status_t status = _NodePath(text);
	if (status != B_OK) {
		path->Unset();
		return status;
	}
	return path->SetTo(text.c_str());
}

status_t
BEntry::GetParent(BEntry* entry) const
{
	if (entry == NULL)
		return B_BAD_VALUE;
	status_t status = fCStatus;
	if (status == B_OK && strcmp(fName, ".") == 0)
		status = B_ENTRY_NOT_FOUND;
	if (status != B_OK) {
		entry->Unset();
		return status;
	}
	return entry->_SetToFolder(BPrivate::duplicate(fDirFd));
}

status_t
BEntry::GetParent(BDirectory* dir) const
{
	if (dir == NULL)
		return B_BAD_VALUE;
	status_t status = fCStatus;
	if (status == B_OK && strcmp(fName, ".") == 0)
		status = B_ENTRY_NOT_FOUND;
	if (status != B_OK) {
		dir->Unset();
		return status;
	}
	return dir->_Open(fDirFd, ".");
}

status_t
BEntry::GetName(char* buffer) const
{
	if (buffer == NULL)
		return B_BAD_VALUE;
	if (fCStatus != B_OK)
		return fCStatus;
	strcpy(buffer, fName); // shorter than B_FILE_NAME_LENGTH, see _SetTo()
	return B_OK;
}

const char*
BEntry::Name() const
{
	return fName;
}

status_t
BEntry::Rename(const char* path, bool clobber)
{
	if (path == NULL)
		return B_BAD_VALUE;
	return _MoveTo(fDirFd, path, clobber);
}

status_t
BEntry::MoveTo(BDirectory* dir, const char* path, bool clobber)
{
	if (dir == NULL || dir->InitCheck() != B_OK)
		return B_BAD_VALUE;
	return _MoveTo(dir->fFd, path != NULL ? path : fName, clobber);
}

status_t
BEntry::Remove()
{
	struct stat stat;
	status_t status = GetStat(&stat);
	if (status != B_OK)
		return status;
	int flags = S_ISDIR(stat.st_mode) ? AT_REMOVEDIR : 0;
	return unlinkat(fDirFd, fName, flags) == 0 ? B_OK : status_of_errno(errno);
}

BEntry&
BEntry::operator=(const BEntry& entry)
{
	if (this != &entry)
		_CopyFrom(entry);
	return *this;
}

bool
BEntry::operator==(const BEntry& entry) const
{
	if (fCStatus != B_OK || entry.fCStatus != B_OK)
		return fCStatus == B_NO_INIT && entry.fCStatus == B_NO_INIT;
	struct stat a, b;
	return strcmp(fName, entry.fName) == 0 && fstat(fDirFd, &a) == 0 && fstat(entry.fDirFd, &b) == 0
		&& is_same(a, b);
}

bool
BEntry::operator!=(const BEntry& entry) const
{
	return !(*this == entry);
}

status_t
BEntry::_NodePath(std::string& path) const
{
	if (fCStatus != B_OK)
		return fCStatus;
	std::string folder;
	if (!path_of(fDirFd, folder))
		return B_ENTRY_NOT_FOUND;
	path = strcmp(fName, ".") == 0 ? folder : path_in(folder, fName);
	return B_OK;
}

status_t
BEntry::_SetTo(int dirFd, std::string path, bool traverse)
{
	FileDescriptor current; // the folder of the link that is being followed
	for (int links = 0; links <= kMaxLinks; links++) {
		if (path.empty())
			return _Fail(B_ENTRY_NOT_FOUND);
		if (path.size() >= PATH_MAX)
			return _Fail(B_NAME_TOO_LONG);
		while (path.size() > 1 && path.back() == '/')
			path.pop_back();

		std::string folder, leaf;
		split(path, folder, leaf);
		if (leaf.empty() || leaf == "." || leaf == "..")
			return _SetToFolder(open_at(dirFd, path.c_str(), kOpenFolder));
		int fd = open_at(dirFd, folder.c_str(), kOpenFolder);
		if (fd < 0)
			return _Fail(status_of_errno(-fd));
		if (!traverse || !read_link(fd, leaf.c_str(), path))
			return _Set(fd, leaf);
		current.Set(fd);
		dirFd = fd;
	}
	return _Fail(B_LINK_LIMIT);
}

status_t
BEntry::_Set(int dirFd, const std::string& name)
{
	FileDescriptor folder(dirFd);
	if (name.size() > NAME_MAX)
		return _Fail(B_NAME_TOO_LONG);
	char* copy = strdup(name.c_str());
	if (copy == NULL)
		return _Fail(B_NO_MEMORY);
	Unset();
	fDirFd = folder.Release();
	fName = copy;
	return fCStatus = B_OK;
}

/*!	The root folder has no other name than "." in itself. */
status_t
BEntry::_SetToFolder(int fd)
{
	if (fd < 0)
		return _Fail(status_of_errno(-fd));
	FileDescriptor folder(fd);
	int parentFd = open_at(fd, "..", kOpenFolder);
	if (parentFd < 0)
		return _Fail(status_of_errno(-parentFd));

	FileDescriptor parent(parentFd);
	struct stat stat, parentStat;
	if (fstat(fd, &stat) != 0 || fstat(parentFd, &parentStat) != 0)
		return _Fail(status_of_errno(errno));
	if (is_same(stat, parentStat))
		return _Set(parent.Release(), ".");

	std::string path;
	if (!path_of(fd, path))
		return _Fail(B_ENTRY_NOT_FOUND);
	return _Set(parent.Release(), path.substr(path.rfind('/') + 1));
}

status_t
BEntry::_Fail(status_t status)
{
	Unset();
	return fCStatus = status;
}

void
BEntry::_CopyFrom(const BEntry& entry)
{
	if (entry.fCStatus != B_OK) {
		_Fail(entry.fCStatus);
		return;
	}
	int fd = BPrivate::duplicate(entry.fDirFd);
	if (fd < 0)
		_Fail(status_of_errno(-fd));
	else
		_Set(fd, entry.fName);
}

status_t
BEntry::_MoveTo(int dirFd, const char* path, bool clobber)
{
	if (fCStatus != B_OK)
		return fCStatus;
	BEntry target;
	status_t status = target._SetTo(dirFd, path, false);
	if (status != B_OK)
		return status;

	int result
		= renameat2(fDirFd, fName, target.fDirFd, target.fName, clobber ? 0 : RENAME_NOREPLACE);
	if (result != 0 && errno == EINVAL && !clobber) {
		// A file system that cannot promise it: then a look before has to do.
		if (target.Exists())
			return B_FILE_EXISTS;
		result = renameat(fDirFd, fName, target.fDirFd, target.fName);
	}
	if (result != 0)
		return status_of_errno(errno);
	*this = target;
	return B_OK;
}
