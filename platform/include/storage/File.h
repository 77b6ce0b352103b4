#pragma once

#include <DataIO.h>
#include <Node.h>

/*!	An open regular file. Symbolic links are followed. Folders are refused with B_IS_A_DIRECTORY,
	pipes, sockets and devices with B_NOT_ALLOWED, without waiting for anybody.
	Reads and writes give the number of bytes or an error; a read is short at the file's end only.
	Not thread-safe: one thread at a time uses an object. */
class BFile : public BNode, public BPositionIO {
public:
	BFile();
	BFile(const entry_ref* ref, uint32 openMode);
	BFile(const BEntry* entry, uint32 openMode);
	BFile(const char* path, uint32 openMode);
	BFile(const BDirectory* dir, const char* path, uint32 openMode);
	BFile(const BFile& file); // shares the position
	virtual ~BFile();

	/*!	B_BAD_VALUE: NULL or no such open mode; B_ENTRY_NOT_FOUND: no file and no B_CREATE_FILE;
		B_FILE_EXISTS, B_PERMISSION_DENIED, B_READ_ONLY_DEVICE, ... */
	status_t SetTo(const entry_ref* ref, uint32 openMode);
	status_t SetTo(const BEntry* entry, uint32 openMode);
	status_t SetTo(const char* path, uint32 openMode);
	status_t SetTo(const BDirectory* dir, const char* path, uint32 openMode);

	bool IsReadable() const; // by the open mode
	bool IsWritable() const;

	virtual ssize_t Read(void* buffer, size_t size);
	virtual ssize_t ReadAt(off_t location, void* buffer, size_t size);
	virtual ssize_t Write(const void* buffer, size_t size);
	virtual ssize_t WriteAt(off_t location, const void* buffer, size_t size);
	virtual off_t Seek(off_t offset, uint32 seekMode);
	virtual off_t Position() const;
	virtual status_t SetSize(off_t size);
	virtual status_t GetSize(off_t* size) const;

	BFile& operator=(const BFile& file);

private:
	status_t _Open(int dirFd, const char* path, uint32 openMode);
	int _AccessMode() const;
};
