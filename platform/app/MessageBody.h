#pragma once

#include <TypeConstants.h>
#include <array>
#include <atomic>
#include <vector>

namespace BPrivate {

//! As in the native flattened message.
struct FieldHeader {
	uint16 flags;
	uint16 nameLength; // with the NUL
	type_code type;
	uint32 count;    // items
	uint32 dataSize; // of all items, the lengths of variable ones included
	uint32 offset;   // of the name in the data, which the items follow
	int32 next;      // field of the same bucket, negative at the end
};
static_assert(sizeof(FieldHeader) == 24);

enum { kFieldValid = 0x0001, kFieldFixed = 0x0002 };

/*!	The fields of a message as the native format has them: hash table, field headers, data. Shared by copies of a message.
	The fields lie in the data in their order, without gaps. Items of a variable field have a uint32 length before them.
	Thread: the reference count any; changes only while not shared. */
class MessageBody {
public:
	static constexpr int32 kBuckets = 5;
	//! More than this is not taken, be it announced by a header or added.
	static constexpr uint64 kMaxSize = 512 * 1024 * 1024;

	MessageBody();
	//! A copy of its own; with one reference.
	MessageBody(const MessageBody& other);
	MessageBody& operator=(const MessageBody&) = delete;

	void Acquire() { fReferences.fetch_add(1, std::memory_order_relaxed); }
	//! The last one deletes it.
	void Release();
	bool IsShared() const { return fReferences.load(std::memory_order_acquire) > 1; }

	/*!	Takes over the parts of a flattened message, unless they are damaged: then false. What no field covers
		is dropped. The careful reader's rules; see the .cpp. */
	bool Adopt(const std::array<int32, kBuckets>& table, std::vector<FieldHeader>&& fields,
		std::vector<uint8>&& data);

	const std::array<int32, kBuckets>& Table() const { return fTable; }
	const std::vector<FieldHeader>& Fields() const { return fFields; }
	const std::vector<uint8>& Data() const { return fData; }

	const char* NameOf(const FieldHeader& field) const;
	//! Does `bytes` point into the data, so that a change would move it?
	bool Contains(const void* bytes) const;
	//! B_OK, B_NAME_NOT_FOUND or B_BAD_TYPE.
	status_t Find(const char* name, type_code type, int32* field) const;
	//! NULL when out of range.
	const uint8* ItemAt(int32 field, int32 index, size_t* size) const;

	//! `data` of the next two does not point into the data; names may.
	status_t AddItem(
		const char* name, type_code type, const void* data, size_t size, bool fixedSize);
	status_t ReplaceItem(int32 field, int32 index, const void* data, size_t size);
	status_t RemoveItem(int32 field, int32 index);
	void RemoveField(int32 field);
	status_t Rename(int32 field, const char* newName);

private:
	~MessageBody() = default;

	static uint32 BucketOf(const char* name);
	bool FieldIsSound(FieldHeader& field, const std::vector<uint8>& data) const;
	bool LinksAreSound() const;
	void Pack(std::vector<uint8>&& data);
	status_t AddField(const char* name, type_code type, bool fixedSize, int32* field);
	void Link(int32 field, uint32 bucket);
	void Unlink(int32 field);
	bool HasRoomFor(size_t more) const { return fData.size() + uint64(more) <= kMaxSize; }
	//! Replaces bytes that belong to `field` and moves what lies behind.
	void Splice(int32 field, size_t position, size_t oldSize, const void* bytes, size_t newSize);
	size_t PositionOf(int32 field, int32 index) const;

	std::atomic<int32> fReferences{1};
	std::array<int32, kBuckets> fTable;
	std::vector<FieldHeader> fFields;
	std::vector<uint8> fData;
};

} // namespace BPrivate
