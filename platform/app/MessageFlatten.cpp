#include <Message.h>

#include "app/MessageAccess.h"
#include "app/MessageBody.h"
#include "app/MessageReader.h"
#include <ByteOrder.h>
#include <algorithm>
#include <new>

using namespace BPrivate;

namespace {

//! The header of the native format.
struct NativeHeader {
	uint32 magic;
	uint32 what;
	uint32 flags;
	int32 target;
	int32 currentSpecifier;
	int32 area;
	int32 replyPort;
	int32 replyTarget;
	int32 replyTeam;
	uint32 dataSize;
	uint32 fieldCount;
	uint32 tableSize;
	std::array<int32, MessageBody::kBuckets> table;
};
static_assert(sizeof(NativeHeader) == 68);

constexpr size_t kReadStep = 64 * 1024;

bool
fits_in_memory(const NativeHeader& header)
{
	return uint64(header.fieldCount) * sizeof(FieldHeader) <= MessageBody::kMaxSize
		&& header.dataSize <= MessageBody::kMaxSize;
}

//! Bytes that a message without a known end announces, from its beginning.
size_t
announced_size(const char* buffer)
{
	uint32 words[17];
	memcpy(words, buffer, sizeof(uint32));
	switch (words[0]) {
		case kNativeMagic: {
			NativeHeader header;
			memcpy(&header, buffer, sizeof(header));
			if (!fits_in_memory(header))
				return sizeof(header);
			return sizeof(header) + header.fieldCount * sizeof(FieldHeader) + header.dataSize;
		}
		case kR5Magic:
		case kR5SwappedMagic: {
			memcpy(words, buffer, 3 * sizeof(uint32));
			const int32 size = int32(words[0] == kR5Magic ? words[2] : B_SWAP_INT32(words[2]));
			return std::max(size, 12);
		}
		case kDanoMagic:
			memcpy(words, buffer, 2 * sizeof(uint32));
			return std::max(int32(words[1]), 8);
		default:
			return sizeof(uint32);
	}
}

} // namespace

bool
MessageReader::Read(void* buffer, size_t size)
{
	char* to = static_cast<char*>(buffer);
	while (size > 0) {
		const ssize_t got = fStream->Read(to, size);
		if (got <= 0 || size_t(got) > size)
			return false;
		to += got;
		size -= size_t(got);
	}
	return true;
}

bool
MessageReader::Read(std::vector<uint8>* bytes, size_t size)
{
	bytes->clear();
	while (bytes->size() < size) {
		const size_t done = bytes->size();
		const size_t step = std::min(size - done, std::max(kReadStep, done));
		bytes->resize(done + step);
		if (!Read(bytes->data() + done, step))
			return false;
	}
	return true;
}

status_t
BPrivate::read_native_message(MessageReader& reader, BMessage* message)
{
	NativeHeader header;
	if (!reader.Read(&header.what, sizeof(header) - sizeof(header.magic))
		|| !(header.flags & kMessageValid))
		return B_BAD_VALUE;
	if ((header.flags & kMessageInArea) && header.area >= 0)
		return B_ERROR;
	if (!fits_in_memory(header))
		return B_NO_MEMORY;

	std::vector<uint8> fieldBytes, data;
	if (!reader.Read(&fieldBytes, header.fieldCount * sizeof(FieldHeader))
		|| !reader.Read(&data, header.dataSize))
		return B_BAD_VALUE;
	if (header.fieldCount > 0) {
		if (header.tableSize != MessageBody::kBuckets)
			return B_BAD_VALUE;
		std::vector<FieldHeader> fields(header.fieldCount);
		memcpy(fields.data(), fieldBytes.data(), fieldBytes.size());
		MessageBody* body = new MessageBody;
		MessageAccess::SetBody(*message, body);
		if (!body->Adopt(header.table, std::move(fields), std::move(data)))
			return B_BAD_VALUE;
	}
	message->what = header.what;
	MessageAccess::HeaderOf(*message) = {header.flags & ~uint32(kMessageInArea), header.target,
		header.currentSpecifier, header.replyPort, header.replyTarget, header.replyTeam};
	return B_OK;
}

ssize_t
BMessage::FlattenedSize() const
{
	size_t size = sizeof(NativeHeader);
	if (fBody != nullptr)
		size += fBody->Fields().size() * sizeof(FieldHeader) + fBody->Data().size();
	return ssize_t(size);
}

status_t
BMessage::Flatten(char* buffer, ssize_t size) const
{
	if (buffer == NULL || size < FlattenedSize())
		return B_BAD_VALUE;
	NativeHeader header = {kNativeMagic, what, fHeader.flags, fHeader.target,
		fHeader.currentSpecifier, -1, fHeader.replyPort, fHeader.replyTarget, fHeader.replyTeam, 0,
		0, MessageBody::kBuckets, {}};
	header.table.fill(-1);
	if (fBody != nullptr) {
		const std::vector<FieldHeader>& fields = fBody->Fields();
		header.table = fBody->Table();
		header.fieldCount = uint32(fields.size());
		header.dataSize = uint32(fBody->Data().size());
		char* to = buffer + sizeof(header);
		if (!fields.empty()) {
			memcpy(to, fields.data(), fields.size() * sizeof(FieldHeader));
			memcpy(to + fields.size() * sizeof(FieldHeader), fBody->Data().data(),
				fBody->Data().size());
		}
	}
	memcpy(buffer, &header, sizeof(header));
	return B_OK;
}

status_t
BMessage::Flatten(BDataIO* stream, ssize_t* size) const
{
	if (stream == NULL)
		return B_BAD_VALUE;
	std::vector<char> bytes(static_cast<size_t>(FlattenedSize()));
	status_t error = Flatten(bytes.data(), ssize_t(bytes.size()));
	if (error != B_OK)
		return error;
	const ssize_t written = stream->Write(bytes.data(), bytes.size());
	if (written != ssize_t(bytes.size()))
		return written < 0 ? status_t(written) : B_ERROR;
	if (size != NULL)
		*size = written;
	return B_OK;
}

status_t
BMessage::Unflatten(const char* flattenedBuffer)
{
	if (flattenedBuffer == NULL)
		return B_BAD_VALUE;
	BMemoryIO stream(static_cast<const void*>(flattenedBuffer), announced_size(flattenedBuffer));
	return Unflatten(&stream);
}

status_t
BMessage::Unflatten(BDataIO* stream)
{
	if (stream == NULL)
		return B_BAD_VALUE;
	MessageReader reader(stream);
	uint32 magic;
	if (!reader.Read(&magic))
		return B_NOT_A_MESSAGE;

	BMessage fresh(what);
	status_t error = B_NOT_A_MESSAGE;
	try {
		if (magic == kNativeMagic)
			error = read_native_message(reader, &fresh);
		else if (magic == kR5Magic || magic == kR5SwappedMagic)
			error = read_r5_message(reader, magic == kR5SwappedMagic, &fresh);
		else if (magic == kDanoMagic)
			error = read_dano_message(reader, &fresh);
		else if (magic == kDanoSwappedMagic)
			error = B_BAD_DATA;
	} catch (const std::bad_alloc&) {
		error = B_NO_MEMORY;
	}
	if (error == B_NOT_A_MESSAGE)
		return error;
	if (error != B_OK)
		*this = BMessage(what);
	else
		MessageAccess::Move(fresh, *this);
	return error;
}
