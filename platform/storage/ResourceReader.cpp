#include <File.h>

#include "storage/ResourceFile.h"
#include "storage/ResourceFormat.h"

namespace BPrivate {

namespace {

struct Entry {
	uint32 offset = 0;
	uint32 size = 0;
	std::unique_ptr<ResourceItem> item; // NULL as long as the info table has not named it
};

//!	The info table's blocks, without its end.
class TableParser {
public:
	TableParser(const uint8* bytes, size_t size, ByteOrder order, std::vector<Entry>& entries)
		: fBytes(bytes),
		  fLeft(size),
		  fOrder(order),
		  fEntries(entries)
	{ }

	bool Parse()
	{
		// Without resources there is a separator and no block.
		if (fLeft == kSeparatorSize && _IsSeparator())
			return true;
		do {
			type_code type;
			if (!_Take(type) || !_ParseBlock(type))
				return false;
		} while (fLeft > 0);
		return true;
	}

private:
	bool _ParseBlock(type_code type)
	{
		while (fLeft >= kSeparatorSize) {
			if (_IsSeparator()) {
				_Skip(kSeparatorSize);
				return true;
			}
			if (!_ParseInfo(type))
				return false;
		}
		return false;
	}

	bool _ParseInfo(type_code type)
	{
		int32 id;
		uint32 index;
		uint16 nameSize;
		if (!_Take(id) || !_Take(index) || !_Take(nameSize) || nameSize > fLeft)
			return false;
		const char* name = reinterpret_cast<const char*>(fBytes);
		std::string text(name, strnlen(name, nameSize));
		_Skip(nameSize);

		if (index == 0 || index > fEntries.size())
			return true; // the platform passes over it, too
		Entry& entry = fEntries[index - 1];
		if (entry.item)
			return false;
		entry.item = std::make_unique<ResourceItem>();
		entry.item->type = type;
		entry.item->id = id;
		entry.item->name = std::move(text);
		return true;
	}

	bool _IsSeparator() const
	{
		const uint8* end = fBytes + kSeparatorSize;
		return std::all_of(fBytes, end, [](uint8 byte) { return byte == 0xff; });
	}

	template<typename Number> bool _Take(Number& number)
	{
		if (fLeft < sizeof(number))
			return false;
		number = fOrder.Load<Number>(fBytes);
		_Skip(sizeof(number));
		return true;
	}

	void _Skip(size_t size)
	{
		fBytes += size;
		fLeft -= size;
	}

	const uint8* fBytes;
	size_t fLeft;
	ByteOrder fOrder;
	std::vector<Entry>& fEntries;
};

/*!	The checks are those of the platform, its sums of 32 bits included: what it takes is taken, and
	what it refuses is refused with the same error. But nothing is read outside the range. */
class ResourceReader {
public:
	ResourceReader(BFile& file, const ResourcePlace::Range& range)
		: fFile(file),
		  fStart(range.start),
		  fSize(range.end - range.start)
	{ }

	status_t Read(ResourceContainer& container)
	{
		status_t status = _ReadHeader();
		if (status == B_OK)
			status = _ReadIndexHeader();
		if (status == B_OK)
			status = _ReadEntries();
		if (status == B_OK)
			status = _ReadTable();
		if (status != B_OK)
			return status;
		for (Entry& entry : fEntries) {
			if (!entry.item)
				continue;
			entry.item->offset = fStart + entry.offset;
			entry.item->size = entry.size;
			container.Append(std::move(entry.item));
		}
		return B_OK;
	}

private:
	status_t _ReadHeader()
	{
		uint32 words[kIndexOffset / 4];
		status_t status = _ReadAt(0, words, sizeof(words));
		if (status != B_OK)
			return status;
		fOrder.swap = words[0] != kResourcesMagic;
		if (fOrder(words[0]) != kResourcesMagic)
			return B_IO_ERROR;
		fCount = fOrder(words[1]);
		if (fCount > kMaxResources || fOrder(words[2]) != kIndexOffset)
			return B_IO_ERROR;
		fIndexSize = index_section_size(fCount);
		if (fOrder(words[3]) != kIndexOffset + fIndexSize)
			return B_IO_ERROR;
		return B_OK;
	}

	status_t _ReadIndexHeader()
	{
		uint32 words[kIndexHeaderSize / 4];
		status_t status = _ReadAt(kIndexOffset, words, sizeof(words));
		if (status != B_OK)
			return status;
		if (fOrder(words[kIndexWordOffset]) != kIndexOffset
			|| fOrder(words[kIndexWordSize]) != fIndexSize
			|| fOrder(words[kIndexWordUnknownOffset]) != kIndexOffset + fIndexSize
			|| fOrder(words[kIndexWordUnknownSize]) != kUnknownSectionSize)
			return B_IO_ERROR;
		fTableOffset = fOrder(words[kIndexWordTableOffset]);
		fTableSize = fOrder(words[kIndexWordTableSize]);
		if (uint64(fTableOffset) + fTableSize > fSize || fTableSize < kSeparatorSize)
			return B_IO_ERROR;
		return B_OK;
	}

	//!	There may be more or fewer than the header says: the filler ends them.
	status_t _ReadEntries()
	{
		uint32 offset = kIndexOffset + kIndexHeaderSize;
		uint32 end = kIndexOffset + fIndexSize;
		for (; offset + kIndexEntrySize <= end; offset += kIndexEntrySize) {
			uint32 words[kIndexEntrySize / 4];
			status_t status = _ReadAt(offset, words, sizeof(words));
			if (status != B_OK)
				return status;
			Entry entry;
			entry.offset = fOrder(words[0]);
			entry.size = fOrder(words[1]);
			if (entry.offset == filler_word(offset) && entry.size == filler_word(offset + 4)
				&& fOrder(words[2]) == filler_word(offset + 8))
				break;
			if (entry.offset + entry.size > fSize) {
				if (fEntries.size() < fCount)
					return B_IO_ERROR;
				break;
			}
			fEntries.push_back(std::move(entry));
		}
		return B_OK;
	}

	status_t _ReadTable()
	{
		std::vector<uint8> table(fTableSize);
		status_t status = _ReadAt(fTableOffset, table.data(), table.size());
		if (status != B_OK)
			return status;
		size_t size = table.size();
		// When it does not end with 0, it has no end: then the last block's separator is the last.
		if (fOrder.Load<uint32>(table.data() + size - 4) == 0) {
			size -= kTableEndSize;
			uint32 checksum = fOrder.Load<uint32>(table.data() + size);
			if (size < kSeparatorSize || checksum != table_checksum(table.data(), size))
				return B_IO_ERROR;
		}
		if (!TableParser(table.data(), size, fOrder, fEntries).Parse())
			return B_IO_ERROR;
		return B_OK;
	}

	status_t _ReadAt(uint64 offset, void* buffer, size_t size)
	{
		if (offset > fSize || size > fSize - offset)
			return B_ERROR;
		return read_exactly(fFile, fStart + offset, buffer, size);
	}

	BFile& fFile;
	uint64 fStart;
	uint64 fSize;
	ByteOrder fOrder{false};
	uint32 fCount = 0;
	uint32 fIndexSize = 0;
	uint32 fTableOffset = 0;
	uint32 fTableSize = 0;
	std::vector<Entry> fEntries;
};

} // namespace

status_t
read_resources(BFile& file, const ResourcePlace::Range& range, ResourceContainer& container)
{
	container.MakeEmpty();
	return ResourceReader(file, range).Read(container);
}

} // namespace BPrivate
