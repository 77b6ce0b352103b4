#include "app/MessageReader.h"

#include "app/MessageAccess.h"
#include <ByteOrder.h>
#include <algorithm>

/*	The flattened message of R5: a packed header, then fields one after the other up to a byte without the lowest bit. */

namespace BPrivate {

namespace {

enum { // flags of the message
	kR5Target = 2,
	kR5ReplyInfo = 4,
	kR5HasSpecifiers = 8
};
enum { // flags of a field
	kR5FieldValid = 1,
	kR5FieldMini = 2, // count and size are one byte
	kR5FieldFixed = 4,
	kR5FieldSingle = 8 // no count
};

//! Numbers that one value of the type consists of, by their size: what a byte-swapped message has to be swapped by.
size_t
number_size(type_code type)
{
	switch (type) {
		case B_INT16_TYPE:
		case B_UINT16_TYPE:
			return 2;
		case B_INT32_TYPE:
		case B_UINT32_TYPE:
		case B_FLOAT_TYPE:
		case B_RECT_TYPE:
		case B_POINT_TYPE:
		case B_TIME_TYPE:
		case B_SIZE_T_TYPE:
		case B_SSIZE_T_TYPE:
		case B_POINTER_TYPE:
			return 4;
		case B_INT64_TYPE:
		case B_UINT64_TYPE:
		case B_DOUBLE_TYPE:
		case B_OFF_T_TYPE:
			return 8;
		default:
			return 1;
	}
}

class R5Reader {
public:
	R5Reader(MessageReader& reader, bool swapped, BMessage* message)
		: fReader(reader),
		  fSwapped(swapped),
		  fMessage(message)
	{ }

	status_t Run();

private:
	bool ReadNumber(int32* number);
	bool ReadLength(bool mini, int32* length);
	bool ReadHeader();
	status_t ReadField(uint8 flags);
	status_t AddFixed(type_code type, int32 count);
	status_t AddVariable(type_code type, int32 count);
	status_t Add(type_code type, uint8* data, size_t size, bool fixedSize);

	MessageReader& fReader;
	bool fSwapped;
	BMessage* fMessage;
	char fName[256];
	std::vector<uint8> fData;
};

bool
R5Reader::ReadNumber(int32* number)
{
	if (!fReader.Read(number))
		return false;
	if (fSwapped)
		*number = int32(B_SWAP_INT32(uint32(*number)));
	return true;
}

bool
R5Reader::ReadLength(bool mini, int32* length)
{
	if (!mini)
		return ReadNumber(length);
	uint8 byte;
	if (!fReader.Read(&byte))
		return false;
	*length = byte;
	return true;
}

bool
R5Reader::ReadHeader()
{
	int32 numbers[3]; // checksum and size, which nobody has ever checked, and what
	uint8 flags;
	if (!fReader.Read(numbers, sizeof(numbers)) || !fReader.Read(&flags))
		return false;
	fMessage->what = uint32(numbers[2]);

	MessageAccess::Header& header = MessageAccess::HeaderOf(*fMessage);
	if ((flags & kR5Target) && !ReadNumber(&header.target))
		return false;
	if (flags & kR5ReplyInfo) {
		uint8 bits[4]; // preferred target, reply required, reply done, is reply
		if (!ReadNumber(&header.replyPort) || !ReadNumber(&header.replyTarget)
			|| !ReadNumber(&header.replyTeam) || !fReader.Read(bits, sizeof(bits)))
			return false;
		if (bits[0] != 0)
			header.target = kPreferredToken;
		header.flags |= (bits[1] != 0 ? kMessageReplyRequired : 0)
			| (bits[2] != 0 ? kMessageReplyDone : 0) | (bits[3] != 0 ? kMessageIsReply : 0);
	}
	if (flags & kR5HasSpecifiers)
		header.flags |= kMessageHasSpecifiers;
	return true;
}

status_t
R5Reader::Run()
{
	if (!ReadHeader())
		return B_ERROR;
	for (;;) {
		uint8 flags;
		if (!fReader.Read(&flags))
			return B_ERROR;
		if (!(flags & kR5FieldValid))
			return B_OK;
		const status_t error = ReadField(flags);
		if (error != B_OK)
			return error;
	}
}

status_t
R5Reader::ReadField(uint8 flags)
{
	int32 type;
	int32 count = 1;
	int32 size;
	uint8 nameLength;
	const bool mini = flags & kR5FieldMini;
	if (!ReadNumber(&type) || (!(flags & kR5FieldSingle) && !ReadLength(mini, &count))
		|| !ReadLength(mini, &size) || size <= 0)
		return B_ERROR;
	if (!fReader.Read(&nameLength) || !fReader.Read(fName, nameLength)
		|| !fReader.Read(&fData, size_t(size)))
		return B_ERROR;
	fName[nameLength] = '\0';
	if (count < 1)
		return B_BAD_VALUE;
	return flags & kR5FieldFixed ? AddFixed(type_code(type), count)
								 : AddVariable(type_code(type), count);
}

status_t
R5Reader::AddFixed(type_code type, int32 count)
{
	if (fData.size() % size_t(count) != 0)
		return B_BAD_VALUE;
	const size_t itemSize = fData.size() / size_t(count);
	for (int32 i = 0; i < count; i++) {
		const status_t error = Add(type, &fData[i * itemSize], itemSize, true);
		if (error != B_OK)
			return error;
	}
	return B_OK;
}

status_t
R5Reader::AddVariable(type_code type, int32 count)
{
	size_t position = 0;
	for (int32 i = 0; i < count; i++) {
		uint32 length;
		if (position > fData.size() || fData.size() - position < sizeof(length))
			return B_BAD_VALUE;
		memcpy(&length, &fData[position], sizeof(length));
		length = fSwapped ? B_SWAP_INT32(length) : length;
		if (length > fData.size() - position - sizeof(length))
			return B_BAD_VALUE;
		const status_t error = Add(type, &fData[position + sizeof(length)], length, false);
		if (error != B_OK)
			return error;
		// each item is padded to 8 bytes, its length included
		position += (sizeof(length) + size_t(length) + 7) & ~size_t(7);
	}
	return B_OK;
}

status_t
R5Reader::Add(type_code type, uint8* data, size_t size, bool fixedSize)
{
	const size_t step = number_size(type);
	for (size_t at = 0; fSwapped && at + step <= size; at += step)
		std::reverse(data + at, data + at + step);
	if (type == B_STRING_TYPE && (size == 0 || data[size - 1] != '\0'))
		return B_BAD_VALUE;
	return fMessage->AddData(fName, type, data, ssize_t(size), fixedSize);
}

} // namespace

status_t
read_r5_message(MessageReader& reader, bool swapped, BMessage* message)
{
	return R5Reader(reader, swapped, message).Run();
}

} // namespace BPrivate
