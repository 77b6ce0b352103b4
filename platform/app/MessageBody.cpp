#include "app/MessageBody.h"

#include <algorithm>
#include <functional>
#include <string.h>
#include <string>

namespace BPrivate {

namespace {

uint32
read_length(const uint8* at)
{
	uint32 length;
	memcpy(&length, at, sizeof(length));
	return length;
}

//! The sizes of a variable field's items, as far as they are right: bytes used, or -1.
int64
measure_items(const uint8* items, uint32 count, uint32 dataSize, bool strings)
{
	uint64 position = 0;
	for (uint32 i = 0; i < count; i++) {
		if (position + sizeof(uint32) > dataSize)
			return -1;
		const uint32 length = read_length(items + position);
		position += sizeof(uint32);
		if (position + length > dataSize)
			return -1;
		if (strings && (length == 0 || items[position + length - 1] != 0))
			return -1;
		position += length;
	}
	return int64(position);
}

bool
fixed_items_sound(const uint8* items, uint32 count, uint32 dataSize, bool strings)
{
	if (count == 0 || dataSize == 0 || dataSize % count != 0)
		return false;
	const uint32 itemSize = dataSize / count;
	for (uint32 end = itemSize; strings && end <= dataSize; end += itemSize) {
		if (items[end - 1] != 0)
			return false;
	}
	return true;
}

} // namespace

MessageBody::MessageBody()
{
	fTable.fill(-1);
}

MessageBody::MessageBody(const MessageBody& other)
	: fTable(other.fTable),
	  fFields(other.fFields),
	  fData(other.fData)
{ }

void
MessageBody::Release()
{
	if (fReferences.fetch_sub(1, std::memory_order_acq_rel) == 1)
		delete this;
}

/*	What is demanded: fields inside the data; at least one byte of name, with a NUL at its end (and only there); a fixed field has items,
	all of one size; a variable field's items lie inside it; strings end in NUL; the fields together need no more room than the
	data have; no link out of range, none that leads back. A chain that ends early is no fault: its fields are just not found. */
bool
MessageBody::Adopt(const std::array<int32, kBuckets>& table, std::vector<FieldHeader>&& fields,
	std::vector<uint8>&& data)
{
	fTable = table;
	fFields = std::move(fields);
	uint64 total = 0;
	for (FieldHeader& field : fFields) {
		if (!FieldIsSound(field, data))
			return false;
		total += uint64(field.nameLength) + field.dataSize;
	}
	if (total > data.size() || !LinksAreSound())
		return false;
	for (int32& first : fTable)
		first = std::max(first, -1);
	for (FieldHeader& field : fFields)
		field.next = std::max(field.next, -1);
	Pack(std::move(data));
	return true;
}

bool
MessageBody::FieldIsSound(FieldHeader& field, const std::vector<uint8>& data) const
{
	if (uint64(field.offset) + field.nameLength + field.dataSize > data.size())
		return false;
	const uint8* name = data.data() + field.offset;
	if (field.nameLength == 0 || memchr(name, 0, field.nameLength) != name + field.nameLength - 1)
		return false;

	const uint8* items = name + field.nameLength;
	const bool strings = field.type == B_STRING_TYPE;
	if (field.flags & kFieldFixed)
		return fixed_items_sound(items, field.count, field.dataSize, strings);
	const int64 used = measure_items(items, field.count, field.dataSize, strings);
	if (used < 0)
		return false;
	field.dataSize = uint32(used);
	return true;
}

bool
MessageBody::LinksAreSound() const
{
	const int32 count = int32(fFields.size());
	for (int32 first : fTable) {
		if (first >= count)
			return false;
	}
	enum : uint8 { kNew, kOnThisWay, kDone };
	std::vector<uint8> state(fFields.size(), kNew);
	for (int32 start = 0; start < count; start++) {
		int32 at = start;
		while (at >= 0 && state[at] == kNew) {
			state[at] = kOnThisWay;
			at = fFields[at].next;
			if (at >= count)
				return false;
		}
		if (at >= 0 && state[at] == kOnThisWay)
			return false;
		for (at = start; at >= 0 && state[at] == kOnThisWay; at = fFields[at].next)
			state[at] = kDone;
	}
	return true;
}

//! Lays the fields out in their order without gaps; mostly they are so already.
void
MessageBody::Pack(std::vector<uint8>&& data)
{
	uint64 end = 0;
	bool packed = true;
	for (const FieldHeader& field : fFields) {
		packed = packed && field.offset == end;
		end += uint64(field.nameLength) + field.dataSize;
	}
	if (packed) {
		fData = std::move(data);
		fData.resize(end);
		return;
	}
	fData.clear();
	fData.reserve(end);
	for (FieldHeader& field : fFields) {
		const uint8* from = data.data() + field.offset;
		field.offset = uint32(fData.size());
		fData.insert(fData.end(), from, from + field.nameLength + field.dataSize);
	}
}

const char*
MessageBody::NameOf(const FieldHeader& field) const
{
	return reinterpret_cast<const char*>(fData.data()) + field.offset;
}

bool
MessageBody::Contains(const void* bytes) const
{
	const uint8* at = static_cast<const uint8*>(bytes);
	return std::less_equal<>()(fData.data(), at) && std::less<>()(at, fData.data() + fData.size());
}

uint32
MessageBody::BucketOf(const char* name)
{
	// The format's hash sign-extends: a byte above 0x7f sets the upper bits.
	uint32 hash = 0;
	for (; *name != '\0'; name++) {
		hash = (hash << 7) ^ (hash >> 24);
		hash ^= uint32(int32(static_cast<signed char>(*name)));
	}
	hash ^= hash << 12;
	return hash % kBuckets;
}

status_t
MessageBody::Find(const char* name, type_code type, int32* found) const
{
	const size_t length = strlen(name) + 1;
	for (int32 at = fTable[BucketOf(name)]; at >= 0; at = fFields[at].next) {
		const FieldHeader& field = fFields[at];
		if (!(field.flags & kFieldValid))
			break;
		if (field.nameLength != length || memcmp(NameOf(field), name, length) != 0)
			continue;
		if (type != B_ANY_TYPE && type != field.type)
			return B_BAD_TYPE;
		*found = at;
		return B_OK;
	}
	return B_NAME_NOT_FOUND;
}

//! Of the item in the data; of a variable field that of its length. `index` may be one past the last.
size_t
MessageBody::PositionOf(int32 index, int32 item) const
{
	const FieldHeader& field = fFields[index];
	size_t position = field.offset + field.nameLength;
	if (item == int32(field.count))
		return position + field.dataSize;
	if (field.flags & kFieldFixed)
		return position + size_t(field.dataSize / field.count) * item;
	for (int32 i = 0; i < item; i++)
		position += sizeof(uint32) + read_length(&fData[position]);
	return position;
}

const uint8*
MessageBody::ItemAt(int32 index, int32 item, size_t* size) const
{
	const FieldHeader& field = fFields[index];
	if (item < 0 || uint32(item) >= field.count)
		return nullptr;
	const uint8* at = fData.data() + PositionOf(index, item);
	if (field.flags & kFieldFixed) {
		*size = field.dataSize / field.count;
		return at;
	}
	*size = read_length(at);
	return at + sizeof(uint32);
}

status_t
MessageBody::AddItem(
	const char* name, type_code type, const void* data, size_t size, bool fixedSize)
{
	int32 index;
	status_t error = Find(name, type, &index);
	if (error == B_BAD_TYPE)
		return error;
	if (!HasRoomFor(size + sizeof(uint32) + strlen(name) + 1))
		return B_NO_MEMORY;
	if (error == B_NAME_NOT_FOUND) {
		error = AddField(name, type, fixedSize, &index);
		if (error != B_OK)
			return error;
	}
	FieldHeader& field = fFields[index];
	const size_t end = PositionOf(index, int32(field.count));
	if (field.flags & kFieldFixed) {
		if (field.count > 0 && size != field.dataSize / field.count)
			return B_BAD_VALUE;
		Splice(index, end, 0, data, size);
	} else {
		const uint32 length = uint32(size);
		Splice(index, end, 0, &length, sizeof(length));
		Splice(index, end + sizeof(length), 0, data, size);
	}
	field.count++;
	return B_OK;
}

status_t
MessageBody::ReplaceItem(int32 index, int32 item, const void* data, size_t size)
{
	size_t oldSize;
	const uint8* old = ItemAt(index, item, &oldSize);
	if (old == nullptr)
		return B_BAD_INDEX;
	const FieldHeader& field = fFields[index];
	size_t position = old - fData.data();
	if ((field.flags & kFieldFixed) && size != oldSize)
		return B_BAD_VALUE;
	if (size > oldSize && !HasRoomFor(size - oldSize))
		return B_NO_MEMORY;
	if (!(field.flags & kFieldFixed)) {
		const uint32 length = uint32(size);
		memcpy(&fData[position - sizeof(length)], &length, sizeof(length));
	}
	Splice(index, position, oldSize, data, size);
	return B_OK;
}

status_t
MessageBody::RemoveItem(int32 index, int32 item)
{
	FieldHeader& field = fFields[index];
	if (item < 0 || uint32(item) >= field.count)
		return B_BAD_INDEX;
	if (field.count == 1) {
		RemoveField(index);
		return B_OK;
	}
	const size_t position = PositionOf(index, item);
	const size_t end = PositionOf(index, item + 1);
	Splice(index, position, end - position, nullptr, 0);
	field.count--;
	return B_OK;
}

void
MessageBody::RemoveField(int32 index)
{
	const FieldHeader field = fFields[index];
	Splice(index, field.offset, size_t(field.nameLength) + field.dataSize, nullptr, 0);
	Unlink(index);
	fFields.erase(fFields.begin() + index);
	for (int32& first : fTable)
		first -= first > index ? 1 : 0;
	for (FieldHeader& other : fFields)
		other.next -= other.next > index ? 1 : 0;
}

status_t
MessageBody::Rename(int32 index, const char* newName)
{
	const std::string ownName(newName);
	const size_t newLength = ownName.size() + 1;
	FieldHeader& field = fFields[index];
	if (newLength > UINT16_MAX)
		return B_BAD_VALUE;
	if (newLength > field.nameLength && !HasRoomFor(newLength - field.nameLength))
		return B_NO_MEMORY;
	Unlink(index);
	// Splice() counts what it moves as items.
	const uint32 dataSize = field.dataSize;
	Splice(index, field.offset, field.nameLength, ownName.c_str(), newLength);
	field.dataSize = dataSize;
	field.nameLength = uint16(newLength);
	Link(index, BucketOf(ownName.c_str()));
	return B_OK;
}

status_t
MessageBody::AddField(const char* name, type_code type, bool fixedSize, int32* index)
{
	const std::string ownName(name);
	const size_t nameLength = ownName.size() + 1;
	if (nameLength > UINT16_MAX)
		return B_BAD_VALUE;
	const FieldHeader field = {uint16(kFieldValid | (fixedSize ? kFieldFixed : 0)),
		uint16(nameLength), type, 0, 0, uint32(fData.size()), -1};
	fData.insert(fData.end(), ownName.c_str(), ownName.c_str() + nameLength);
	fFields.push_back(field);
	*index = int32(fFields.size()) - 1;
	Link(*index, BucketOf(ownName.c_str()));
	return B_OK;
}

//! At the end of the bucket's chain, as the format's writer does.
void
MessageBody::Link(int32 index, uint32 bucket)
{
	int32* link = &fTable[bucket];
	while (*link >= 0)
		link = &fFields[*link].next;
	*link = index;
	fFields[index].next = -1;
}

void
MessageBody::Unlink(int32 index)
{
	const int32 next = fFields[index].next;
	for (int32& first : fTable)
		first = first == index ? next : first;
	for (FieldHeader& field : fFields)
		field.next = field.next == index ? next : field.next;
}

void
MessageBody::Splice(int32 index, size_t position, size_t oldSize, const void* bytes, size_t newSize)
{
	const uint8* from = static_cast<const uint8*>(bytes);
	const size_t common = oldSize < newSize ? oldSize : newSize;
	if (common > 0)
		memcpy(&fData[position], from, common);
	if (newSize > oldSize)
		fData.insert(fData.begin() + position + common, from + common, from + newSize);
	else
		fData.erase(fData.begin() + position + common, fData.begin() + position + oldSize);

	const uint32 change = uint32(newSize - oldSize);
	fFields[index].dataSize += change;
	for (size_t i = index + 1; i < fFields.size(); i++)
		fFields[i].offset += change;
}

} // namespace BPrivate
