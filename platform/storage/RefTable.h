#pragma once

#include <map>
#include <mutex>
#include <string>

#include <Node.h>

namespace BPrivate {

/*!	Where the nodes are that the kit has told the identity of: Linux cannot find a path for a device
	and an inode. Each node has one path, the last one it was seen at. A path is checked whenever
	it is used, so one that no longer leads to its node answers B_ENTRY_NOT_FOUND.
	The table forgets such paths only, and looks for them whenever it has doubled.
	Any thread. */
class RefTable {
public:
	//!	The process's table. It is never destroyed, so that any thread can use it until the end.
	static RefTable& Default();

	void Remember(const node_ref& node, const std::string& path);
	void Remember(int fd); // what is open here, if it has a path

	status_t PathFor(const node_ref& node, std::string& path) const;

	//!	The node opened with O_PATH, or an errno negated (ENOENT: not known or not there).
	int Open(const node_ref& node) const;

	//!	A folder was seen moving: so did all in it.
	void FolderMoved(const std::string& from, const std::string& to);

	size_t Count() const;

private:
	using Paths = std::map<node_ref, std::string>;

	void _ForgetStale();

	mutable std::mutex fLock; // guards all below
	Paths fPaths;
	size_t fLimit = 1024;
};

//!	Whether a path is, or is in, a folder.
bool is_below(const std::string& path, const std::string& folder);

} // namespace BPrivate
