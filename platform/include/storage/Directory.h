#pragma once

#include <EntryList.h>
#include <Node.h>

class BFile;

/*!	A folder. Symbolic links to it are followed. As a list it gives the entries in no order,
	without "." and "..". */
class BDirectory : public BNode, public BEntryList {
public:
	BDirectory();
	explicit BDirectory(const entry_ref* ref);
	explicit BDirectory(const node_ref* ref);
	explicit BDirectory(const BEntry* entry);
	explicit BDirectory(const char* path);
	BDirectory(const BDirectory* dir, const char* path);
	BDirectory(const BDirectory& dir); // with a position of its own, at the beginning
	virtual ~BDirectory();

	// B_BAD_VALUE for NULL, B_ENTRY_NOT_FOUND, B_NOT_A_DIRECTORY, ...
	status_t SetTo(const entry_ref* ref);
	status_t SetTo(const node_ref* ref);
	status_t SetTo(const BEntry* entry);
	status_t SetTo(const char* path);
	status_t SetTo(const BDirectory* dir, const char* path);
	void Unset();

	status_t GetEntry(BEntry* entry) const; // the folder's own entry
	//!	B_ENTRY_NOT_FOUND also for a name that nothing has; NULL: the folder itself.
	status_t FindEntry(const char* path, BEntry* entry, bool traverse = false) const;

	//!	Whether it holds the path, or the entry at any depth, as one of these node_flavors.
	bool Contains(const char* path, int32 nodeFlags = B_ANY_NODE) const;
	bool Contains(const BEntry* entry, int32 nodeFlags = B_ANY_NODE) const;

	virtual status_t GetNextEntry(BEntry* entry, bool traverse = false);
	virtual status_t GetNextRef(entry_ref* ref);
	virtual status_t Rewind();
	virtual int32 CountEntries();

	/*!	Makes one folder; an existing entry: B_FILE_EXISTS. The argument, unless NULL, is set to it,
		on failure unset. */
	status_t CreateDirectory(const char* path, BDirectory* dir);
	//!	An existing file is emptied, or B_FILE_EXISTS. The file is opened for reading and writing.
	status_t CreateFile(const char* path, BFile* file, bool failIfExists = false);

	BDirectory& operator=(const BDirectory& dir);

private:
	friend class BEntry;

	status_t _Open(int dirFd, const char* path);
	status_t _NextName(const char** name);
	void _CloseStream();

	void* fStream; // of readdir(), made when it is first needed
};

/*!	Makes the folder and all that is missing before it; B_OK when it is there already.
	B_NOT_A_DIRECTORY: a component is something else. */
status_t create_directory(const char* path, mode_t mode);
