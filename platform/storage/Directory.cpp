#include <Directory.h>

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>

#include <Entry.h>
#include <File.h>

#include "kernel/errno_status.h"
#include "storage/FileDescriptor.h"
#include "storage/RefTable.h"

using BPrivate::FileDescriptor;
using BPrivate::open_at;
using BPrivate::RefTable;
using BPrivate::status_of_errno;

static bool
has_flavor(const BEntry& entry, int32 nodeFlags)
{
	struct stat stat;
	if (entry.GetStat(&stat) != B_OK)
		return false;
	if (S_ISDIR(stat.st_mode))
		return (nodeFlags & B_DIRECTORY_NODE) != 0;
	if (S_ISLNK(stat.st_mode))
		return (nodeFlags & B_SYMLINK_NODE) != 0;
	return (nodeFlags & B_FILE_NODE) != 0;
}

BEntryList::~BEntryList() { }

BDirectory::BDirectory() : fStream(NULL) { }

BDirectory::BDirectory(const entry_ref* ref) : BDirectory()
{
	SetTo(ref);
}

BDirectory::BDirectory(const node_ref* ref) : BDirectory()
{
	SetTo(ref);
}

BDirectory::BDirectory(const BEntry* entry) : BDirectory()
{
	SetTo(entry);
}

BDirectory::BDirectory(const char* path) : BDirectory()
{
	SetTo(path);
}

BDirectory::BDirectory(const BDirectory* dir, const char* path) : BDirectory()
{
	SetTo(dir, path);
}

BDirectory::BDirectory(const BDirectory& dir) : BNode(dir), BEntryList(dir), fStream(NULL) { }

BDirectory::~BDirectory()
{
	_CloseStream();
}

status_t
BDirectory::SetTo(const entry_ref* ref)
{
	BEntry entry(ref, true);
	if (entry.InitCheck() != B_OK) {
		_CloseStream();
		return _Fail(entry.InitCheck());
	}
	return SetTo(&entry);
}

status_t
BDirectory::SetTo(const node_ref* ref)
{
	_CloseStream();
	if (ref == NULL)
		return _Fail(B_BAD_VALUE);
	int fd = RefTable::Default().Open(*ref);
	if (fd < 0)
		return _Fail(status_of_errno(-fd));
	FileDescriptor folder(fd);
	return _Open(fd, ".");
}

status_t
BDirectory::SetTo(const BEntry* entry)
{
	if (entry != NULL && entry->InitCheck() == B_OK)
		return _Open(entry->fDirFd, entry->fName);
	_CloseStream();
	return _Fail(B_BAD_VALUE);
}

status_t
BDirectory::SetTo(const char* path)
{
	return _Open(AT_FDCWD, path);
}

status_t
BDirectory::SetTo(const BDirectory* dir, const char* path)
{
	if (dir != NULL && dir->InitCheck() == B_OK)
		return _Open(dir->fFd, path);
	_CloseStream();
	return _Fail(B_BAD_VALUE);
}

void
BDirectory::Unset()
{
	_CloseStream();
	BNode::Unset();
}

status_t
BDirectory::GetEntry(BEntry* entry) const
{
	if (entry == NULL)
		return B_BAD_VALUE;
	if (InitCheck() != B_OK) {
		entry->Unset();
		return B_NO_INIT;
	}
	return entry->_SetToFolder(BPrivate::duplicate(fFd));
}

status_t
BDirectory::FindEntry(const char* path, BEntry* entry, bool traverse) const
{
	if (entry == NULL)
		return B_BAD_VALUE;
	if (path == NULL)
		return GetEntry(entry);
	status_t status = entry->SetTo(this, path, traverse);
	if (status == B_OK && !entry->Exists())
		status = B_ENTRY_NOT_FOUND;
	if (status != B_OK)
		entry->Unset();
	return status;
}

bool
BDirectory::Contains(const char* path, int32 nodeFlags) const
{
	if (InitCheck() != B_OK)
		return false;
	if (path == NULL)
		return (nodeFlags & B_DIRECTORY_NODE) != 0;
	BEntry entry(this, path);
	return Contains(&entry, nodeFlags);
}

bool
BDirectory::Contains(const BEntry* entry, int32 nodeFlags) const
{
	if (InitCheck() != B_OK || entry == NULL || !has_flavor(*entry, nodeFlags))
		return false;
	std::string folder, path;
	if (_NodePath(folder) != B_OK || entry->_NodePath(path) != B_OK)
		return false;
	return path != folder && BPrivate::is_below(path, folder);
}

status_t
BDirectory::GetNextEntry(BEntry* entry, bool traverse)
{
	if (entry == NULL)
		return B_BAD_VALUE;
	const char* name;
	status_t status = _NextName(&name);
	if (status != B_OK) {
		entry->Unset();
		return status;
	}
	return entry->_SetTo(fFd, name, traverse);
}

status_t
BDirectory::GetNextRef(entry_ref* ref)
{
	if (ref == NULL)
		return B_BAD_VALUE;
	const char* name;
	struct stat stat;
	status_t status = _NextName(&name);
	if (status == B_OK)
		status = GetStat(&stat);
	if (status != B_OK) {
		*ref = entry_ref();
		return status;
	}
	RefTable::Default().Remember(fFd);
	ref->device = stat.st_dev;
	ref->directory = stat.st_ino;
	return ref->set_name(name);
}

status_t
BDirectory::Rewind()
{
	if (InitCheck() != B_OK)
		return InitCheck();
	_CloseStream();
	return B_OK;
}

int32
BDirectory::CountEntries()
{
	status_t status = Rewind();
	int32 count = 0;
	const char* name;
	while (status == B_OK) {
		status = _NextName(&name);
		if (status == B_OK)
			count++;
	}
	_CloseStream();
	return status == B_ENTRY_NOT_FOUND ? count : status;
}

status_t
BDirectory::CreateDirectory(const char* path, BDirectory* dir)
{
	status_t status = path != NULL ? InitCheck() : B_BAD_VALUE;
	if (status == B_OK && mkdirat(fFd, path, ACCESSPERMS) != 0)
		status = status_of_errno(errno);
	if (dir == NULL)
		return status;
	if (status == B_OK)
		return dir->_Open(fFd, path);
	dir->Unset();
	return status;
}

status_t
BDirectory::CreateFile(const char* path, BFile* file, bool failIfExists)
{
	uint32 mode = B_READ_WRITE | B_CREATE_FILE | (failIfExists ? B_FAIL_IF_EXISTS : B_ERASE_FILE);
	BFile created;
	status_t status = InitCheck();
	if (status == B_OK)
		status = created.SetTo(this, path, mode);
	if (file != NULL)
		*file = created;
	return status;
}

BDirectory&
BDirectory::operator=(const BDirectory& dir)
{
	if (this != &dir) {
		_CloseStream();
		BNode::operator=(dir);
	}
	return *this;
}

status_t
BDirectory::_Open(int dirFd, const char* path)
{
	_CloseStream();
	if (path == NULL)
		return _Fail(B_BAD_VALUE);
	// Its names can be used without the right to list them.
	return _SetFd(open_at(dirFd, path, O_PATH | O_DIRECTORY));
}

status_t
BDirectory::_NextName(const char** name)
{
	if (InitCheck() != B_OK)
		return InitCheck();
	if (fStream == NULL) {
		int fd = open_at(fFd, ".", O_RDONLY | O_DIRECTORY);
		if (fd < 0)
			return status_of_errno(-fd);
		FileDescriptor folder(fd);
		fStream = fdopendir(fd);
		if (fStream == NULL)
			return status_of_errno(errno);
		folder.Release();
	}
	for (;;) {
		errno = 0;
		const dirent* entry = readdir(static_cast<DIR*>(fStream));
		if (entry == NULL)
			return errno == 0 ? B_ENTRY_NOT_FOUND : status_of_errno(errno);
		if (strcmp(entry->d_name, ".") != 0 && strcmp(entry->d_name, "..") != 0) {
			*name = entry->d_name;
			return B_OK;
		}
	}
}

void
BDirectory::_CloseStream()
{
	if (fStream != NULL)
		closedir(static_cast<DIR*>(fStream));
	fStream = NULL;
}

static status_t
make_one(const std::string& path, mode_t mode)
{
	if (mkdir(path.c_str(), mode) == 0)
		return B_OK;
	// Other errors, too, are reported for what is there already, as on a volume that cannot be written.
	int error = errno;
	struct stat stat;
	if (::stat(path.c_str(), &stat) != 0)
		return status_of_errno(error == EEXIST ? errno : error);
	if (!S_ISDIR(stat.st_mode))
		return B_NOT_A_DIRECTORY;
	return B_OK;
}

status_t
create_directory(const char* path, mode_t mode)
{
	if (path == NULL || path[0] == '\0')
		return B_BAD_VALUE;
	std::string all = path;
	for (size_t end = all.find('/', 1); end != std::string::npos; end = all.find('/', end + 1)) {
		// What comes below is made in it, so its owner must be able to.
		status_t status = make_one(all.substr(0, end), mode | S_IWUSR | S_IXUSR);
		if (status != B_OK)
			return status;
	}
	return make_one(all, mode);
}
