#include "storage/RefTable.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>

#include "storage/FileDescriptor.h"

namespace BPrivate {

static bool
leads_to(const std::string& path, const node_ref& node)
{
	struct stat stat;
	return lstat(path.c_str(), &stat) == 0 && node == node_ref(stat.st_dev, stat.st_ino);
}

RefTable&
RefTable::Default()
{
	static RefTable* sTable = new RefTable;
	return *sTable;
}

void
RefTable::Remember(const node_ref& node, const std::string& path)
{
	bool full;
	{
		std::lock_guard lock(fLock);
		std::string& known = fPaths[node];
		if (known != path)
			known = path;
		full = fPaths.size() > fLimit;
	}
	if (full)
		_ForgetStale();
}

void
RefTable::Remember(int fd)
{
	struct stat stat;
	std::string path;
	if (fstat(fd, &stat) == 0 && path_of(fd, path))
		Remember(node_ref(stat.st_dev, stat.st_ino), path);
}

status_t
RefTable::PathFor(const node_ref& node, std::string& path) const
{
	std::string known;
	{
		std::lock_guard lock(fLock);
		auto found = fPaths.find(node);
		if (found == fPaths.end())
			return B_ENTRY_NOT_FOUND;
		known = found->second;
	}
	if (!leads_to(known, node))
		return B_ENTRY_NOT_FOUND;
	path = std::move(known);
	return B_OK;
}

int
RefTable::Open(const node_ref& node) const
{
	std::string path;
	if (PathFor(node, path) != B_OK)
		return -ENOENT;
	int fd = open_at(AT_FDCWD, path.c_str(), O_PATH | O_NOFOLLOW);
	if (fd < 0)
		return fd;

	FileDescriptor file(fd);
	struct stat stat;
	if (fstat(fd, &stat) != 0 || node != node_ref(stat.st_dev, stat.st_ino))
		return -ENOENT;
	return file.Release();
}

void
RefTable::FolderMoved(const std::string& from, const std::string& to)
{
	std::lock_guard lock(fLock);
	for (auto& [node, path] : fPaths) {
		if (is_below(path, from))
			path.replace(0, from.size(), to);
	}
}

size_t
RefTable::Count() const
{
	std::lock_guard lock(fLock);
	return fPaths.size();
}

void
RefTable::_ForgetStale()
{
	Paths paths;
	{
		std::lock_guard lock(fLock);
		if (fPaths.size() <= fLimit)
			return;
		paths = fPaths;
		fLimit = fPaths.size() * 2; // for others, while this one looks
	}
	// The disk may be slow: nobody waits for it with the lock held.
	std::erase_if(paths, [](const auto& entry) { return leads_to(entry.second, entry.first); });

	std::lock_guard lock(fLock);
	for (const auto& [node, path] : paths) {
		auto found = fPaths.find(node);
		if (found != fPaths.end() && found->second == path)
			fPaths.erase(found);
	}
	fLimit = std::max<size_t>(1024, fPaths.size() * 2);
}

bool
is_below(const std::string& path, const std::string& folder)
{
	if (!path.starts_with(folder))
		return false;
	return path.size() == folder.size() || folder.ends_with('/') || path[folder.size()] == '/';
}

} // namespace BPrivate
