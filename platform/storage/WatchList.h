#pragma once

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include <Messenger.h>
#include <Node.h>

namespace BPrivate {

struct Watcher {
	BMessenger target;
	uint32 flags;
};

//!	A node with an inotify watch, for its watchers or for the names of watched nodes in it.
struct WatchedNode {
	node_ref ref;
	int watch = -1;
	bool isFolder = false;
	std::string path; // "" when it is not known any more
	std::vector<Watcher> watchers;

	node_ref folder;  // where the node has its name
	std::string name; // "" when it has been removed or moved out of sight
	bool holdsFolder = false;

	int32 holders = 0;     // nodes that need this folder to be watched
	bool isListed = false; // entries has all of them, else those of watched nodes
	// As the watchers were told, not as it is right now. Some file systems give files another device
	// than their folder's.
	std::map<std::string, node_ref> entries;

	bool IsWatchedFor(uint32 flags) const;
};

/*!	The watched nodes and who watches them. Not locked.
	Nodes stay where they are until Drop(), Forget() or a Remove...() */
class WatchList {
public:
	explicit WatchList(int inotify);

	//!	See watch_node().
	status_t Add(const node_ref& ref, uint32 flags, const BMessenger& target);
	status_t Remove(const node_ref& ref, const BMessenger& target);
	void RemoveAll(const BMessenger& target);
	void RemoveDead();

	WatchedNode* Find(const node_ref& ref) const;
	WatchedNode* FindWatch(int watch) const;
	std::vector<node_ref> All() const;

	//!	The node got another name in a folder that is watched.
	void Moved(WatchedNode& node, WatchedNode& folder, const std::string& name);
	//!	The node has no name any more.
	void LostName(WatchedNode& node);
	//!	The system has ended the watch.
	void Forget(WatchedNode& node);
	//!	All that was in a folder is in another place now.
	void FolderMoved(const std::string& from, const std::string& to);

private:
	using Nodes = std::map<node_ref, std::unique_ptr<WatchedNode>>;

	status_t _Watch(const std::string& path, const node_ref& ref, WatchedNode** node);
	void _HoldFolder(WatchedNode& node);
	void _ReleaseFolder(WatchedNode& node);
	void _ListIfNeeded(WatchedNode& folder);
	template<typename Condition> void _RemoveIf(Condition condition);
	void _DropIfUnused(WatchedNode& node);

	int fInotify;
	Nodes fNodes;
	std::unordered_map<int, WatchedNode*> fByWatch;
};

} // namespace BPrivate
