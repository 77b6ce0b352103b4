#include "app/MessageReader.h"

#include <algorithm>

/*	The flattened message of Dano: a header of 16 bytes, then sections of a code, a size and contents. */

namespace BPrivate {

namespace {

constexpr size_t kHeaderSize = 16;
constexpr size_t kSectionHeaderSize = 8;

enum : uint32 { kSingleItem = 'SGDa', kFixedItems = 'FADa', kVariableItems = 'VADa' };

size_t
round_up(size_t size)
{
	return (size + 7) & ~size_t(7);
}

bool
is_fixed_type(type_code type)
{
	switch (type) {
		case B_RECT_TYPE:
		case B_POINT_TYPE:
		case B_INT8_TYPE:
		case B_INT16_TYPE:
		case B_INT32_TYPE:
		case B_INT64_TYPE:
		case B_BOOL_TYPE:
		case B_FLOAT_TYPE:
		case B_DOUBLE_TYPE:
		case B_POINTER_TYPE:
		case B_MESSENGER_TYPE:
			return true;
		default:
			return false;
	}
}

/*!	The contents of one section, which is a field. Numbers and places are checked against their end. */
class DanoField {
public:
	explicit DanoField(const std::vector<uint8>& contents) : fBytes(contents) { }

	status_t AddTo(uint32 code, BMessage* message);

private:
	bool NumberAt(size_t position, uint32* number) const;
	bool Holds(size_t position, size_t size) const;
	bool ReadHeader();
	status_t AddSingle(BMessage* message);
	status_t AddFixed(BMessage* message);
	status_t AddVariable(BMessage* message);
	status_t Add(BMessage* message, size_t position, size_t size, bool fixedSize);

	const std::vector<uint8>& fBytes;
	uint32 fType = 0;
	uint32 fItemSize = 0;
	const char* fName = nullptr;
	size_t fItems = 0; // where they begin
};

bool
DanoField::Holds(size_t position, size_t size) const
{
	return position <= fBytes.size() && size <= fBytes.size() - position;
}

bool
DanoField::NumberAt(size_t position, uint32* number) const
{
	if (!Holds(position, sizeof(*number)))
		return false;
	memcpy(number, &fBytes[position], sizeof(*number));
	return true;
}

bool
DanoField::ReadHeader()
{
	constexpr size_t kName = 9; // after the type, the size and the name's length
	if (!NumberAt(0, &fType) || !NumberAt(4, &fItemSize) || !Holds(8, 1))
		return false;
	const size_t nameLength = fBytes[8];
	if (!Holds(kName, nameLength + 1) || fBytes[kName + nameLength] != '\0')
		return false;
	fName = reinterpret_cast<const char*>(&fBytes[kName]);
	fItems = round_up(kName + nameLength + 1);
	return true;
}

status_t
DanoField::AddTo(uint32 code, BMessage* message)
{
	if (!ReadHeader())
		return B_BAD_DATA;
	switch (code) {
		case kSingleItem:
			return AddSingle(message);
		case kFixedItems:
			return AddFixed(message);
		default:
			return AddVariable(message);
	}
}

status_t
DanoField::Add(BMessage* message, size_t position, size_t size, bool fixedSize)
{
	if (size == 0 || !Holds(position, size))
		return B_BAD_DATA;
	if (fType == B_STRING_TYPE && fBytes[position + size - 1] != '\0')
		return B_BAD_DATA;
	return message->AddData(fName, fType, &fBytes[position], ssize_t(size), fixedSize);
}

status_t
DanoField::AddSingle(BMessage* message)
{
	return Add(message, fItems, fItemSize, is_fixed_type(fType));
}

status_t
DanoField::AddFixed(BMessage* message)
{
	uint32 count;
	if (!NumberAt(fItems, &count))
		return B_BAD_DATA;
	size_t position = fItems + 8;
	for (uint32 i = 0; i < count; i++, position += fItemSize) {
		const status_t error = Add(message, position, fItemSize, true);
		if (error != B_OK)
			return error;
	}
	return B_OK;
}

status_t
DanoField::AddVariable(BMessage* message)
{
	uint32 count, itemsSize;
	if (!NumberAt(fItems, &count) || !NumberAt(fItems + 4, &itemsSize))
		return B_BAD_DATA;
	const size_t items = fItems + 8;
	const size_t ends = items + itemsSize;
	size_t start = 0;
	for (uint32 i = 0; i < count; i++) {
		uint32 end;
		if (!NumberAt(ends + i * sizeof(end), &end) || end < start || end > itemsSize)
			return B_BAD_DATA;
		const status_t error = Add(message, items + start, end - start, false);
		if (error != B_OK)
			return error;
		start = round_up(end);
	}
	return B_OK;
}

} // namespace

status_t
read_dano_message(MessageReader& reader, BMessage* message)
{
	int32 header[3]; // total size, what, padding
	if (!reader.Read(header, sizeof(header)))
		return B_ERROR;
	message->what = uint32(header[1]);
	size_t left = header[0] > int32(kHeaderSize) ? size_t(header[0]) - kHeaderSize : 0;

	std::vector<uint8> contents;
	while (left > 0) {
		uint32 code;
		int32 size;
		if (left < kSectionHeaderSize || !reader.Read(&code) || !reader.Read(&size) || size < 0)
			return B_BAD_DATA;
		const size_t whole = std::max(round_up(size_t(size)), kSectionHeaderSize);
		if (whole > left || !reader.Read(&contents, whole - kSectionHeaderSize))
			return B_BAD_DATA;
		left -= whole;
		if (contents.empty()
			|| (code != kSingleItem && code != kFixedItems && code != kVariableItems))
			continue;
		const status_t error = DanoField(contents).AddTo(code, message);
		if (error != B_OK)
			return error;
	}
	return B_OK;
}

} // namespace BPrivate
