#include "storage/ResourceFile.h"

#include <cstring>
#include <elf.h>

#include <File.h>

#include "storage/ElfFile.h"
#include "storage/ResourceFormat.h"

namespace BPrivate {

namespace {

const char kFileMagic[] = {'R', 'S', 0, 0};

//!	A section may hold a whole resource file.
void
skip_file_magic(BFile& file, ResourcePlace::Range& range)
{
	char magic[sizeof(kFileMagic)];
	if (range.end - range.start >= sizeof(magic)
		&& read_exactly(file, range.start, magic, sizeof(magic)) == B_OK
		&& memcmp(magic, kFileMagic, sizeof(magic)) == 0)
		range.start += sizeof(magic);
}

status_t
find_in_elf(BFile& file, uint64 fileSize, ResourcePlace& place)
{
	ElfLayout layout;
	status_t status = read_elf_layout(file, layout);
	if (status != B_OK)
		return status;
	place.isElf = true;
	place.writeStart = layout.end;
	if (layout.end < fileSize)
		place.appended = ResourcePlace::Range{layout.end, fileSize};
	if (layout.sectionSize > 0) {
		ResourcePlace::Range range
			= {layout.sectionOffset, layout.sectionOffset + layout.sectionSize};
		skip_file_magic(file, range);
		place.section = range;
	}
	return B_OK;
}

//!	Collects the bytes of the file; offsets count from the start of the resources.
class ResourceWriter {
public:
	explicit ResourceWriter(const ResourceContainer& container) : fItems(container.All()) { }

	status_t Write(BFile& file, uint64 start)
	{
		if (fItems.size() > kMaxResources)
			return B_BAD_VALUE;
		fIndexSize = index_section_size(fItems.size());
		_WriteTable();
		if (_Layout() > UINT32_MAX)
			return B_FILE_TOO_LARGE;
		_WriteHead();

		status_t status = _Append(file, start, fHead.data(), fHead.size());
		for (size_t i = 0; status == B_OK && i < fItems.size(); i++)
			status = _Append(file, start, fItems[i]->data.get(), fItems[i]->size);
		if (status == B_OK)
			status = _Append(file, start, fTable.data(), fTable.size());
		return status == B_OK ? file.SetSize(start) : status;
	}

private:
	static status_t _Append(BFile& file, uint64& position, const void* bytes, size_t size)
	{
		ssize_t written = size > 0 ? file.WriteAt(position, bytes, size) : 0;
		if (written < 0)
			return written;
		if (static_cast<size_t>(written) != size)
			return B_DEVICE_FULL;
		position += size;
		return B_OK;
	}

	template<typename Number> static void _Add(std::vector<uint8>& to, Number number)
	{
		const uint8* bytes = reinterpret_cast<const uint8*>(&number);
		to.insert(to.end(), bytes, bytes + sizeof(number));
	}

	uint64 _Layout()
	{
		uint64 offset = _DataOffset();
		for (const auto& item : fItems)
			offset += item->size;
		fTableOffset = offset;
		return offset + fTable.size();
	}

	uint32 _DataOffset() const { return kIndexOffset + fIndexSize + kUnknownSectionSize; }

	void _WriteTable()
	{
		const type_code* type = NULL;
		for (size_t i = 0; i < fItems.size(); i++) {
			const ResourceItem& item = *fItems[i];
			if (type == NULL || *type != item.type) {
				if (type != NULL)
					fTable.insert(fTable.end(), kSeparatorSize, 0xff);
				type = &item.type;
				_Add(fTable, item.type);
			}
			_Add(fTable, item.id);
			_Add(fTable, static_cast<uint32>(i + 1));
			const char* name = item.name.c_str();
			size_t size = item.name.empty() ? 0 : item.name.size() + 1;
			_Add(fTable, static_cast<uint16>(size));
			fTable.insert(fTable.end(), name, name + size);
		}
		fTable.insert(fTable.end(), kSeparatorSize, 0xff);
		_Add(fTable, table_checksum(fTable.data(), fTable.size()));
		_Add(fTable, uint32(0));
	}

	//!	Header, index section and unknown section.
	void _WriteHead()
	{
		std::vector<uint32> words(_DataOffset() / 4);
		uint32* header = words.data();
		uint32* index = header + kIndexOffset / 4;
		for (size_t i = kIndexOffset / 4; i < words.size(); i++)
			words[i] = filler_word(i * 4);

		header[0] = kResourcesMagic;
		header[1] = fItems.size();
		header[2] = kIndexOffset;
		header[3] = kIndexOffset + fIndexSize;
		index[kIndexWordOffset] = kIndexOffset;
		index[kIndexWordSize] = fIndexSize;
		index[kIndexWordUnknownOffset] = kIndexOffset + fIndexSize;
		index[kIndexWordUnknownSize] = kUnknownSectionSize;
		index[kIndexWordTableOffset] = fTableOffset;
		index[kIndexWordTableSize] = fTable.size();

		uint32* entry = index + kIndexHeaderSize / 4;
		uint32 offset = _DataOffset();
		for (const auto& item : fItems) {
			*entry++ = offset;
			*entry++ = item->size;
			*entry++ = 0;
			offset += item->size;
		}
		for (uint32 word : words)
			_Add(fHead, word);
	}

	const ResourceContainer::Items& fItems;
	uint32 fIndexSize = 0;
	uint32 fTableOffset = 0;
	std::vector<uint8> fHead;
	std::vector<uint8> fTable;
};

} // namespace

uint32
table_checksum(const uint8* table, size_t size)
{
	uint32 sum = 0;
	for (size_t i = 0; i < size; i += 4) {
		uint32 word = 0;
		for (size_t j = i; j < std::min(i + 4, size); j++)
			word = word << 8 | table[j];
		sum += word;
	}
	return sum;
}

status_t
read_exactly(BFile& file, uint64 offset, void* buffer, size_t size)
{
	ssize_t bytes = file.ReadAt(offset, buffer, size);
	if (bytes < 0)
		return bytes;
	if (static_cast<size_t>(bytes) != size)
		return B_ERROR;
	return B_OK;
}

status_t
find_resources(BFile& file, bool clobber, ResourcePlace& place)
{
	place = {};
	place.writeStart = sizeof(kFileMagic);
	off_t fileSize;
	status_t status = file.GetSize(&fileSize);
	if (status != B_OK || fileSize == 0)
		return status;

	char magic[sizeof(kFileMagic)] = {};
	file.ReadAt(0, magic, sizeof(magic));
	if (fileSize >= SELFMAG && memcmp(magic, ELFMAG, SELFMAG) == 0)
		return find_in_elf(file, fileSize, place);
	if (fileSize >= static_cast<off_t>(sizeof(magic)) && memcmp(magic, kFileMagic, 2) == 0) {
		// With something else behind "RS" it is a resource file that holds nothing.
		if (memcmp(magic, kFileMagic, sizeof(magic)) == 0)
			place.appended = ResourcePlace::Range{sizeof(magic), static_cast<uint64>(fileSize)};
		return B_OK;
	}
	if (!clobber)
		return B_IO_ERROR;
	return B_OK;
}

status_t
write_resources(BFile& file, const ResourcePlace& place, const ResourceContainer& container)
{
	if (!place.isElf) {
		ssize_t written = file.WriteAt(0, kFileMagic, sizeof(kFileMagic));
		if (written != static_cast<ssize_t>(sizeof(kFileMagic)))
			return written < 0 ? static_cast<status_t>(written) : B_DEVICE_FULL;
	}
	// A gap is cut out first, so that it is zeros and not what was written there before.
	off_t fileSize;
	status_t status = file.GetSize(&fileSize);
	if (status == B_OK && static_cast<uint64>(fileSize) < place.writeStart)
		status = file.SetSize(place.writeStart);
	if (status != B_OK)
		return status;
	return ResourceWriter(container).Write(file, place.writeStart);
}

} // namespace BPrivate
