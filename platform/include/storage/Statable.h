#pragma once

#include <string>

#include <StorageDefs.h>

struct node_ref;

/*!	What can be asked of anything that has a node: file, folder, symbolic link.
	All answer B_NO_INIT on an object that was not set, B_BAD_VALUE for a NULL argument.
	Not thread-safe: one thread at a time uses an object. */
class BStatable {
public:
	virtual ~BStatable();

	virtual status_t GetStat(struct stat* stat) const = 0;

	// False also when there is no such node.
	bool IsFile() const;
	bool IsDirectory() const;
	bool IsSymLink() const;

	/*!	The node's identity. The kit remembers where it was, so that watch_node() and
		BDirectory(const node_ref*) find it again as long as it stays there. */
	status_t GetNodeRef(node_ref* ref) const;

	status_t GetPermissions(mode_t* permissions) const;
	status_t SetPermissions(mode_t permissions);
	status_t GetSize(off_t* size) const;               // bytes
	status_t GetModificationTime(time_t* mtime) const; // whole seconds since 1970
	status_t SetModificationTime(time_t mtime);

private:
	//!	Where the node is right now; B_ENTRY_NOT_FOUND when it has no name any more.
	virtual status_t _NodePath(std::string& path) const = 0;
};
