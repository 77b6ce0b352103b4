#pragma once

#include <Statable.h>

class BDirectory;
class BEntry;
struct entry_ref;

//!	A node's identity; device and node are -1 until set.
struct node_ref {
	node_ref();
	node_ref(dev_t device, ino_t node);

	bool operator==(const node_ref& other) const;
	bool operator!=(const node_ref& other) const;
	bool operator<(const node_ref& other) const;

	dev_t device;
	ino_t node;
};

/*!	A node itself, whatever its name becomes. Symbolic links are not followed.
	Holds a descriptor, closed by Unset(), a new SetTo() and the destructor. */
class BNode : public BStatable {
public:
	BNode();
	explicit BNode(const entry_ref* ref);
	explicit BNode(const BEntry* entry);
	explicit BNode(const char* path);
	BNode(const BDirectory* dir, const char* path);
	BNode(const BNode& node);
	virtual ~BNode();

	status_t InitCheck() const; // B_NO_INIT until set
	virtual status_t GetStat(struct stat* stat) const;

	// B_BAD_VALUE for NULL, B_ENTRY_NOT_FOUND, B_PERMISSION_DENIED, ...: InitCheck() says it too.
	status_t SetTo(const entry_ref* ref);
	status_t SetTo(const BEntry* entry);
	status_t SetTo(const char* path);
	status_t SetTo(const BDirectory* dir, const char* path);
	void Unset();

	status_t Sync(); // waits until the node's data are on the disk

	BNode& operator=(const BNode& node);
	bool operator==(const BNode& node) const; // the same node, or both not set
	bool operator!=(const BNode& node) const;

private:
	friend class BDirectory;
	friend class BEntry;
	friend class BFile;

	virtual status_t _NodePath(std::string& path) const;
	status_t _SetFd(int fd); // takes the descriptor, or an errno negated
	status_t _Fail(status_t status);
	void _CopyFrom(const BNode& node);

	int fFd;
	status_t fCStatus;
};
