#include <DataIO.h>

#include <algorithm>
#include <limits.h>
#include <stdlib.h>
#include <string.h>

BDataIO::~BDataIO() = default;

BPositionIO::~BPositionIO() = default;

//! The place that Seek() means, or an error; never below 0.
static off_t
seek_target(off_t position, uint32 seekMode, off_t current, off_t end)
{
	off_t base;
	switch (seekMode) {
		case SEEK_SET:
			base = 0;
			break;
		case SEEK_CUR:
			base = current;
			break;
		case SEEK_END:
			base = end;
			break;
		default:
			return B_BAD_VALUE;
	}
	off_t target;
	if (__builtin_add_overflow(base, position, &target) || target < 0)
		return B_BAD_VALUE;
	return target;
}

ssize_t
BPositionIO::Read(void* buffer, size_t size)
{
	const off_t position = Position();
	const ssize_t bytes = ReadAt(position, buffer, size);
	if (bytes > 0)
		Seek(position + bytes, SEEK_SET);
	return bytes;
}

ssize_t
BPositionIO::Write(const void* buffer, size_t size)
{
	const off_t position = Position();
	const ssize_t bytes = WriteAt(position, buffer, size);
	if (bytes > 0)
		Seek(position + bytes, SEEK_SET);
	return bytes;
}

status_t
BPositionIO::SetSize(off_t)
{
	return B_ERROR;
}

status_t
BPositionIO::GetSize(off_t* size) const
{
	if (size == nullptr)
		return B_BAD_VALUE;
	// moves the position, but puts it back
	BPositionIO* self = const_cast<BPositionIO*>(this);
	const off_t position = Position();
	const off_t end = self->Seek(0, SEEK_END);
	if (end < 0)
		return static_cast<status_t>(end);
	*size = end;
	const off_t back = self->Seek(position, SEEK_SET);
	return back < 0 ? static_cast<status_t>(back) : B_OK;
}

static ssize_t
read_from(const char* data, size_t length, off_t position, void* buffer, size_t size)
{
	if (position < 0 || (buffer == nullptr && size > 0))
		return B_BAD_VALUE;
	if (static_cast<size_t>(position) >= length)
		return 0;
	size = std::min(size, length - static_cast<size_t>(position));
	if (size > 0)
		memcpy(buffer, data + position, size);
	return static_cast<ssize_t>(size);
}

BMemoryIO::BMemoryIO(void* buffer, size_t length)
	: fBuffer(static_cast<char*>(buffer)),
	  fLength(length),
	  fBufferSize(length),
	  fReadOnly(false)
{ }

BMemoryIO::BMemoryIO(const void* buffer, size_t length)
	: fBuffer(static_cast<char*>(const_cast<void*>(buffer))),
	  fLength(length),
	  fBufferSize(length),
	  fReadOnly(true)
{ }

BMemoryIO::~BMemoryIO() = default;

ssize_t
BMemoryIO::ReadAt(off_t position, void* buffer, size_t size)
{
	return read_from(fBuffer, fLength, position, buffer, size);
}

ssize_t
BMemoryIO::WriteAt(off_t position, const void* buffer, size_t size)
{
	if (fReadOnly)
		return B_NOT_ALLOWED;
	if (position < 0 || (buffer == nullptr && size > 0))
		return B_BAD_VALUE;
	if (static_cast<size_t>(position) >= fBufferSize)
		return 0;
	size = std::min(size, fBufferSize - static_cast<size_t>(position));
	if (size > 0)
		memcpy(fBuffer + position, buffer, size);
	fLength = std::max(fLength, static_cast<size_t>(position) + size);
	return static_cast<ssize_t>(size);
}

off_t
BMemoryIO::Seek(off_t position, uint32 seekMode)
{
	const off_t target = seek_target(
		position, seekMode, static_cast<off_t>(fPosition), static_cast<off_t>(fLength));
	if (target >= 0)
		fPosition = static_cast<size_t>(target);
	return target;
}

off_t
BMemoryIO::Position() const
{
	return static_cast<off_t>(fPosition);
}

status_t
BMemoryIO::SetSize(off_t size)
{
	if (fReadOnly)
		return B_NOT_ALLOWED;
	if (size < 0 || static_cast<size_t>(size) > fBufferSize)
		return B_ERROR;
	fLength = static_cast<size_t>(size);
	return B_OK;
}

BMallocIO::BMallocIO() = default;

BMallocIO::~BMallocIO()
{
	free(fData);
}

ssize_t
BMallocIO::ReadAt(off_t position, void* buffer, size_t size)
{
	return read_from(fData, fLength, position, buffer, size);
}

ssize_t
BMallocIO::WriteAt(off_t position, const void* buffer, size_t size)
{
	if (position < 0 || size > SSIZE_MAX || (buffer == nullptr && size > 0))
		return B_BAD_VALUE;
	if (size == 0)
		return 0;
	off_t end;
	if (__builtin_add_overflow(position, static_cast<off_t>(size), &end))
		return B_NO_MEMORY;
	if (static_cast<size_t>(end) > fLength) {
		if (const status_t error = SetSize(end); error != B_OK)
			return error;
	}
	memcpy(fData + position, buffer, size);
	return static_cast<ssize_t>(size);
}

off_t
BMallocIO::Seek(off_t position, uint32 seekMode)
{
	const off_t target = seek_target(position, seekMode, fPosition, static_cast<off_t>(fLength));
	if (target >= 0)
		fPosition = target;
	return target;
}

off_t
BMallocIO::Position() const
{
	return fPosition;
}

status_t
BMallocIO::SetSize(off_t newSize)
{
	if (newSize < 0)
		return B_BAD_VALUE;
	const size_t size = static_cast<size_t>(newSize);
	if (size > fMallocSize) {
		// by half again, so that many small writes stay cheap
		const size_t blocks = std::max(size, fMallocSize + fMallocSize / 2) / fBlockSize + 1;
		size_t wanted;
		if (__builtin_mul_overflow(blocks, fBlockSize, &wanted))
			return B_NO_MEMORY;
		char* data = static_cast<char*>(realloc(fData, wanted));
		if (data == nullptr)
			return B_NO_MEMORY;
		fData = data;
		fMallocSize = wanted;
	}
	if (size > fLength)
		memset(fData + fLength, 0, size - fLength);
	fLength = size;
	return B_OK;
}

void
BMallocIO::SetBlockSize(size_t blockSize)
{
	fBlockSize = std::max<size_t>(blockSize, 1);
}

const void*
BMallocIO::Buffer() const
{
	return fData;
}

size_t
BMallocIO::BufferLength() const
{
	return fLength;
}
