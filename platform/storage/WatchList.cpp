#include "storage/WatchList.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/inotify.h>

#include <NodeMonitor.h>

#include "kernel/errno_status.h"
#include "storage/FileDescriptor.h"
#include "storage/RefTable.h"

namespace BPrivate {

namespace {

const uint32 kNodeEvents = IN_CLOSE_WRITE | IN_ATTRIB | IN_DELETE_SELF | IN_MOVE_SELF;
// What is still written to a file whose name is gone would be reported under that name.
const uint32 kFolderEvents
	= kNodeEvents | IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_EXCL_UNLINK;

std::string
folder_of(const std::string& path)
{
	size_t slash = path.rfind('/');
	return slash == 0 ? "/" : path.substr(0, slash);
}

} // namespace

bool
WatchedNode::IsWatchedFor(uint32 flags) const
{
	return std::any_of(watchers.begin(), watchers.end(),
		[=](const Watcher& watcher) { return (watcher.flags & flags) != 0; });
}

WatchList::WatchList(int inotify) : fInotify(inotify) { }

status_t
WatchList::Add(const node_ref& ref, uint32 flags, const BMessenger& target)
{
	std::string path;
	status_t status = RefTable::Default().PathFor(ref, path);
	WatchedNode* node;
	if (status == B_OK)
		status = _Watch(path, ref, &node);
	if (status != B_OK)
		return status;

	auto found = std::find_if(node->watchers.begin(), node->watchers.end(),
		[&](const Watcher& watcher) { return watcher.target == target; });
	if (found != node->watchers.end())
		found->flags |= flags;
	else
		node->watchers.push_back({target, flags});

	// A folder's own moves must be known to look at its entries.
	if (node->IsWatchedFor(B_WATCH_NAME | (node->isFolder ? B_WATCH_DIRECTORY : 0)))
		_HoldFolder(*node);
	_ListIfNeeded(*node);
	return B_OK;
}

status_t
WatchList::Remove(const node_ref& ref, const BMessenger& target)
{
	WatchedNode* node = Find(ref);
	if (node == NULL)
		return B_BAD_VALUE;
	size_t removed = std::erase_if(
		node->watchers, [&](const Watcher& watcher) { return watcher.target == target; });
	if (removed == 0)
		return B_BAD_VALUE;
	_DropIfUnused(*node);
	return B_OK;
}

void
WatchList::RemoveAll(const BMessenger& target)
{
	_RemoveIf([&](const Watcher& watcher) { return watcher.target == target; });
}

void
WatchList::RemoveDead()
{
	_RemoveIf([](const Watcher& watcher) { return !watcher.target.IsValid(); });
}

WatchedNode*
WatchList::Find(const node_ref& ref) const
{
	auto found = fNodes.find(ref);
	return found != fNodes.end() ? found->second.get() : NULL;
}

WatchedNode*
WatchList::FindWatch(int watch) const
{
	auto found = fByWatch.find(watch);
	return found != fByWatch.end() ? found->second : NULL;
}

std::vector<node_ref>
WatchList::All() const
{
	std::vector<node_ref> refs;
	for (const auto& [ref, node] : fNodes)
		refs.push_back(ref);
	return refs;
}

void
WatchList::Moved(WatchedNode& node, WatchedNode& folder, const std::string& name)
{
	folder.holders++; // first, so that it is not dropped as the old one
	_ReleaseFolder(node);
	node.folder = folder.ref;
	node.name = name;
	node.path = path_in(folder.path, name);
	node.holdsFolder = true;
}

void
WatchList::LostName(WatchedNode& node)
{
	_ReleaseFolder(node);
	node.name.clear();
	node.path.clear();
}

void
WatchList::Forget(WatchedNode& node)
{
	fByWatch.erase(node.watch);
	node.watch = -1;
	node.watchers.clear();
	// As a folder it may still be named by nodes that were in it.
	for (const auto& [ref, other] : fNodes) {
		if (other->holdsFolder && other->folder == node.ref)
			other->holdsFolder = false;
	}
	node.holders = 0;
	_DropIfUnused(node);
}

void
WatchList::FolderMoved(const std::string& from, const std::string& to)
{
	for (const auto& [ref, node] : fNodes) {
		if (is_below(node->path, from))
			node->path.replace(0, from.size(), to);
	}
	RefTable::Default().FolderMoved(from, to);
}

/*!	Always asks the system for the watch: it answers the one that there is, or a new one when the node was deleted
	and its number given to another, and that is not read yet. */
status_t
WatchList::_Watch(const std::string& path, const node_ref& ref, WatchedNode** node)
{
	FileDescriptor file(open_at(AT_FDCWD, path.c_str(), O_PATH | O_NOFOLLOW));
	struct stat stat;
	if (file.Get() < 0 || fstat(file.Get(), &stat) != 0
		|| ref != node_ref(stat.st_dev, stat.st_ino))
		return B_ENTRY_NOT_FOUND;

	std::string link = "/proc/self/fd/" + std::to_string(file.Get());
	uint32 events = S_ISDIR(stat.st_mode) ? kFolderEvents : kNodeEvents;
	int watch = inotify_add_watch(fInotify, link.c_str(), events);
	if (watch < 0)
		return errno == ENOSPC ? static_cast<status_t>(B_NO_MEMORY) : status_of_errno(errno);

	std::unique_ptr<WatchedNode>& entry = fNodes[ref];
	if (!entry)
		entry = std::make_unique<WatchedNode>();
	if (entry->watch != watch) {
		fByWatch.erase(entry->watch);
		fByWatch[watch] = entry.get();
		entry->isListed = false;
		entry->entries.clear();
	}
	entry->ref = ref;
	entry->watch = watch;
	entry->isFolder = S_ISDIR(stat.st_mode);
	if (entry->path != path) {
		_ReleaseFolder(*entry);
		entry->path = path;
		entry->name.clear();
	}
	_ListIfNeeded(*entry);
	*node = entry.get();
	return B_OK;
}

void
WatchList::_HoldFolder(WatchedNode& node)
{
	if (node.holdsFolder || node.path == "/")
		return;
	std::string path = folder_of(node.path);
	struct stat stat;
	if (lstat(path.c_str(), &stat) != 0)
		return;
	node.folder = node_ref(stat.st_dev, stat.st_ino);
	node.name = node.path.substr(node.path.rfind('/') + 1);

	// A folder that may not be read cannot be watched; then only the node's own end is noticed.
	WatchedNode* folder;
	if (_Watch(path, node.folder, &folder) != B_OK)
		return;
	folder->holders++;
	folder->entries.emplace(node.name, node.ref);
	node.holdsFolder = true;
}

void
WatchList::_ReleaseFolder(WatchedNode& node)
{
	if (!node.holdsFolder)
		return;
	node.holdsFolder = false;
	WatchedNode* folder = Find(node.folder);
	if (folder == NULL)
		return;
	folder->holders--;
	_DropIfUnused(*folder);
}

/*!	What is known already stays: what became of it is told by events to come. */
void
WatchList::_ListIfNeeded(WatchedNode& folder)
{
	if (folder.isListed || !folder.isFolder || !folder.IsWatchedFor(B_WATCH_DIRECTORY))
		return;
	std::error_code error;
	for (std::filesystem::directory_iterator entry(folder.path, error), end; !error && entry != end;
		 entry.increment(error)) {
		struct stat stat;
		if (lstat(entry->path().c_str(), &stat) == 0)
			folder.entries.emplace(entry->path().filename(), node_ref(stat.st_dev, stat.st_ino));
	}
	folder.isListed = true;
}

template<typename Condition>
void
WatchList::_RemoveIf(Condition condition)
{
	for (const node_ref& ref : All()) {
		WatchedNode* node = Find(ref);
		if (node != NULL && std::erase_if(node->watchers, condition) > 0)
			_DropIfUnused(*node);
	}
}

void
WatchList::_DropIfUnused(WatchedNode& node)
{
	if (!node.IsWatchedFor(B_WATCH_DIRECTORY))
		node.isListed = false;
	if (!node.watchers.empty())
		return;
	_ReleaseFolder(node); // nobody is told about its name
	if (node.holders > 0)
		return;
	if (node.watch >= 0) {
		inotify_rm_watch(fInotify, node.watch);
		fByWatch.erase(node.watch);
	}
	fNodes.erase(node.ref);
}

} // namespace BPrivate
