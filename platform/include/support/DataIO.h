#pragma once

#include <SupportDefs.h>
#include <stdio.h>

/*!	A stream of bytes. */
class BDataIO {
public:
	BDataIO() = default;
	virtual ~BDataIO();
	BDataIO(const BDataIO&) = delete;
	BDataIO& operator=(const BDataIO&) = delete;

	//! At most `size` bytes; answers how many, 0 at the end, or an error.
	virtual ssize_t Read(void* buffer, size_t size) = 0;
	virtual ssize_t Write(const void* buffer, size_t size) = 0;
};

/*!	A stream with a position. Read() and Write() of the base move it, the ...At() versions leave it
	alone. Thread: not locked; one thread at a time. */
class BPositionIO : public BDataIO {
public:
	BPositionIO() = default;
	~BPositionIO() override;

	ssize_t Read(void* buffer, size_t size) override;
	ssize_t Write(const void* buffer, size_t size) override;
	virtual ssize_t ReadAt(off_t position, void* buffer, size_t size) = 0;
	virtual ssize_t WriteAt(off_t position, const void* buffer, size_t size) = 0;

	//! `seekMode`: SEEK_SET, SEEK_CUR or SEEK_END. Answers the new position or an error.
	virtual off_t Seek(off_t position, uint32 seekMode) = 0;
	virtual off_t Position() const = 0;
	//! B_ERROR where the size cannot be changed.
	virtual status_t SetSize(off_t size);
	//! Found by seeking to the end and back.
	virtual status_t GetSize(off_t* size) const;
};

/*!	A position stream over a caller's buffer, which it neither owns nor enlarges. Over a const
	buffer nothing can be written (B_NOT_ALLOWED). */
class BMemoryIO : public BPositionIO {
public:
	BMemoryIO(void* buffer, size_t length);
	BMemoryIO(const void* buffer, size_t length);
	~BMemoryIO() override;

	ssize_t ReadAt(off_t position, void* buffer, size_t size) override;
	ssize_t WriteAt(off_t position, const void* buffer, size_t size) override;
	off_t Seek(off_t position, uint32 seekMode) override;
	off_t Position() const override;
	//! Up to the buffer's length, else B_ERROR.
	status_t SetSize(off_t size) override;

private:
	char* fBuffer;
	size_t fLength;     // what can be read
	size_t fBufferSize; // what the caller gave
	size_t fPosition = 0;
	bool fReadOnly;
};

/*!	A position stream over memory of its own, which grows as it is written to. */
class BMallocIO : public BPositionIO {
public:
	BMallocIO();
	~BMallocIO() override;

	ssize_t ReadAt(off_t position, void* buffer, size_t size) override;
	//! A gap before `position` is filled with zeros. B_NO_MEMORY when it does not fit.
	ssize_t WriteAt(off_t position, const void* buffer, size_t size) override;
	off_t Seek(off_t position, uint32 seekMode) override;
	off_t Position() const override;
	status_t SetSize(off_t size) override;

	//! Memory is taken in multiples of this, 256 bytes at first.
	void SetBlockSize(size_t blockSize);
	//! Valid until the next change of the size; NULL as long as nothing was written.
	const void* Buffer() const;
	size_t BufferLength() const;

private:
	size_t fBlockSize = 256;
	size_t fMallocSize = 0;
	size_t fLength = 0;
	char* fData = nullptr;
	off_t fPosition = 0;
};
