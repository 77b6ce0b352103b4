#include <Node.h>

#include <cerrno>
#include <fcntl.h>
#include <tuple>
#include <unistd.h>

#include <Directory.h>
#include <Entry.h>

#include "kernel/errno_status.h"
#include "storage/FileDescriptor.h"

using BPrivate::FileDescriptor;
using BPrivate::open_at;
using BPrivate::status_of_errno;

node_ref::node_ref() : device(static_cast<dev_t>(-1)), node(static_cast<ino_t>(-1)) { }

node_ref::node_ref(dev_t device, ino_t node) : device(device), node(node) { }

bool
node_ref::operator==(const node_ref& other) const
{
	return device == other.device && node == other.node;
}

bool
node_ref::operator!=(const node_ref& other) const
{
	return !(*this == other);
}

bool
node_ref::operator<(const node_ref& other) const
{
	return std::tie(device, node) < std::tie(other.device, other.node);
}

BNode::BNode() : fFd(-1), fCStatus(B_NO_INIT) { }

BNode::BNode(const entry_ref* ref) : BNode()
{
	SetTo(ref);
}

BNode::BNode(const BEntry* entry) : BNode()
{
	SetTo(entry);
}

BNode::BNode(const char* path) : BNode()
{
	SetTo(path);
}

BNode::BNode(const BDirectory* dir, const char* path) : BNode()
{
	SetTo(dir, path);
}

BNode::BNode(const BNode& node) : BStatable(node), fFd(-1), fCStatus(B_NO_INIT)
{
	_CopyFrom(node);
}

BNode::~BNode()
{
	Unset();
}

status_t
BNode::InitCheck() const
{
	return fCStatus;
}

status_t
BNode::GetStat(struct stat* stat) const
{
	if (stat == NULL)
		return B_BAD_VALUE;
	if (fCStatus != B_OK)
		return fCStatus;
	return fstat(fFd, stat) == 0 ? B_OK : status_of_errno(errno);
}

status_t
BNode::SetTo(const entry_ref* ref)
{
	BEntry entry(ref);
	if (entry.InitCheck() != B_OK)
		return _Fail(entry.InitCheck());
	return SetTo(&entry);
}

status_t
BNode::SetTo(const BEntry* entry)
{
	if (entry == NULL || entry->InitCheck() != B_OK)
		return _Fail(B_BAD_VALUE);
	return _SetFd(open_at(entry->fDirFd, entry->fName, O_PATH | O_NOFOLLOW));
}

status_t
BNode::SetTo(const char* path)
{
	if (path == NULL)
		return _Fail(B_BAD_VALUE);
	return _SetFd(open_at(AT_FDCWD, path, O_PATH | O_NOFOLLOW));
}

status_t
BNode::SetTo(const BDirectory* dir, const char* path)
{
	if (dir == NULL || dir->InitCheck() != B_OK || path == NULL)
		return _Fail(B_BAD_VALUE);
	return _SetFd(open_at(dir->fFd, path, O_PATH | O_NOFOLLOW));
}

void
BNode::Unset()
{
	if (fFd >= 0)
		close(fFd);
	fFd = -1;
	fCStatus = B_NO_INIT;
}

status_t
BNode::Sync()
{
	if (fCStatus != B_OK)
		return fCStatus;
	if (fsync(fFd) == 0)
		return B_OK;
	if (errno != EBADF)
		return status_of_errno(errno);

	// Opened for its identity only: for this it needs to be opened really.
	std::string link = "/proc/self/fd/" + std::to_string(fFd);
	int fd = open_at(AT_FDCWD, link.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY);
	if (fd < 0)
		return status_of_errno(-fd);
	FileDescriptor file(fd);
	return fsync(fd) == 0 ? B_OK : status_of_errno(errno);
}

BNode&
BNode::operator=(const BNode& node)
{
	if (this != &node)
		_CopyFrom(node);
	return *this;
}

bool
BNode::operator==(const BNode& node) const
{
	if (fCStatus != B_OK || node.fCStatus != B_OK)
		return fCStatus == B_NO_INIT && node.fCStatus == B_NO_INIT;
	struct stat a, b;
	return GetStat(&a) == B_OK && node.GetStat(&b) == B_OK
		&& node_ref(a.st_dev, a.st_ino) == node_ref(b.st_dev, b.st_ino);
}

bool
BNode::operator!=(const BNode& node) const
{
	return !(*this == node);
}

status_t
BNode::_NodePath(std::string& path) const
{
	if (fCStatus != B_OK)
		return fCStatus;
	if (!BPrivate::path_of(fFd, path))
		return B_ENTRY_NOT_FOUND;
	return B_OK;
}

status_t
BNode::_SetFd(int fd)
{
	if (fd < 0)
		return _Fail(status_of_errno(-fd));
	Unset();
	fFd = fd;
	return fCStatus = B_OK;
}

status_t
BNode::_Fail(status_t status)
{
	Unset();
	return fCStatus = status;
}

void
BNode::_CopyFrom(const BNode& node)
{
	if (node.fCStatus == B_OK)
		_SetFd(BPrivate::duplicate(node.fFd));
	else
		_Fail(node.fCStatus);
}
