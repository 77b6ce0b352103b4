#pragma once

#include <Statable.h>

class BDirectory;
class BPath;

/*!	A name in a folder, whether something has it or not. device and directory are the folder's.
	The layer finds a folder again by a table of those it has handed out: a ref made of other
	numbers, one from a file, and one whose folder was moved answer B_ENTRY_NOT_FOUND. */
struct entry_ref {
	entry_ref();
	entry_ref(dev_t device, ino_t directory, const char* name); // copies the name
	entry_ref(const entry_ref& ref);
	~entry_ref();

	status_t set_name(const char* name); // copies; NULL unsets; B_NO_MEMORY

	entry_ref& operator=(const entry_ref& ref);
	bool operator==(const entry_ref& ref) const;
	bool operator!=(const entry_ref& ref) const;

	dev_t device;
	ino_t directory;
	char* name; // owned, allocated by malloc(); NULL until set
};

//!	An order for maps: device, folder, name.
bool operator<(const entry_ref& a, const entry_ref& b);

/*!	The ref for a path. Its folder must exist, the last component need not.
	B_BAD_VALUE for NULL, B_ENTRY_NOT_FOUND without such a folder. */
status_t get_ref_for_path(const char* path, entry_ref* ref);

/*!	An entry of a folder: the folder must exist, something of that name need not.
	Holds the folder open, so it stays right when the folder is renamed.
	With traverse, a symbolic link is followed to the entry that it means (B_LINK_LIMIT: a loop). */
class BEntry : public BStatable {
public:
	BEntry();
	BEntry(const BDirectory* dir, const char* path, bool traverse = false);
	explicit BEntry(const entry_ref* ref, bool traverse = false);
	explicit BEntry(const char* path, bool traverse = false);
	BEntry(const BEntry& entry);
	virtual ~BEntry();

	status_t InitCheck() const; // B_NO_INIT until set
	bool Exists() const;
	virtual status_t GetStat(struct stat* stat) const; // B_ENTRY_NOT_FOUND

	/*!	An absolute path makes dir meaningless; an empty or NULL path with a dir means dir itself.
		B_BAD_VALUE: NULL or a dir that is not set; B_ENTRY_NOT_FOUND: no such folder;
		B_NAME_TOO_LONG, B_NOT_A_DIRECTORY, B_LINK_LIMIT, B_PERMISSION_DENIED. */
	status_t SetTo(const BDirectory* dir, const char* path, bool traverse = false);
	status_t SetTo(const entry_ref* ref, bool traverse = false);
	status_t SetTo(const char* path, bool traverse = false);
	void Unset();

	// On failure the argument is unset (for GetName(): untouched).
	status_t GetRef(entry_ref* ref) const;
	status_t GetPath(BPath* path) const;
	status_t GetParent(BEntry* entry) const; // B_ENTRY_NOT_FOUND for the root folder
	status_t GetParent(BDirectory* dir) const;
	status_t GetName(char* buffer) const; // B_FILE_NAME_LENGTH bytes
	const char* Name() const;             // NULL until set

	/*!	Both move the entry, and this object with it. path may be absolute, else it is relative to
		the entry's folder or to dir; NULL keeps the name. Without clobber what is there stays:
		B_FILE_EXISTS. */
	status_t Rename(const char* path, bool clobber = false);
	status_t MoveTo(BDirectory* dir, const char* path = NULL, bool clobber = false);
	status_t Remove(); // a folder must be empty: B_DIRECTORY_NOT_EMPTY

	BEntry& operator=(const BEntry& entry);
	bool operator==(const BEntry& entry) const; // the same ref, or both not set
	bool operator!=(const BEntry& entry) const;

private:
	friend class BDirectory;
	friend class BFile;
	friend class BNode;

	virtual status_t _NodePath(std::string& path) const;
	status_t _SetTo(int dirFd, std::string path, bool traverse);
	status_t _Set(int dirFd, const std::string& name); // takes the descriptor
	status_t _SetToFolder(int fd);                     // takes the descriptor
	status_t _Fail(status_t status);
	void _CopyFrom(const BEntry& entry);
	status_t _MoveTo(int dirFd, const char* path, bool clobber);

	int fDirFd;
	char* fName;
	status_t fCStatus;
};
