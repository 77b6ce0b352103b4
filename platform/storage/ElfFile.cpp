#include "storage/ElfFile.h"

#include <algorithm>
#include <cstring>
#include <elf.h>

#include <File.h>

#include "storage/ResourceFormat.h"

namespace BPrivate {

namespace {

const char kSectionName[] = ".beresources";
const uint64 kMinAlignment32 = 32;
const uint64 kMaxAlignment32 = 10 * 1024 * 1024;

struct Class32 {
	using Header = Elf32_Ehdr;
	using Segment = Elf32_Phdr;
	using Section = Elf32_Shdr;
};

struct Class64 {
	using Header = Elf64_Ehdr;
	using Segment = Elf64_Phdr;
	using Section = Elf64_Shdr;
};

template<typename Class> class ElfReader {
public:
	ElfReader(BFile& file, uint64 fileSize, bool swap)
		: fFile(file),
		  fFileSize(fileSize),
		  fOrder{swap}
	{ }

	status_t Read(ElfLayout& layout)
	{
		status_t status = read_exactly(fFile, 0, &fHeader, sizeof(fHeader));
		if (status == B_OK && fOrder(fHeader.e_ehsize) != sizeof(fHeader))
			status = B_IO_ERROR;
		fEnd = sizeof(fHeader);
		if (status == B_OK)
			status = _ReadSegments();
		if (status == B_OK)
			status = _ReadSections(layout);
		if (status == B_OK)
			status = _RoundUp(layout.end);
		return status;
	}

private:
	status_t _Cover(uint64 offset, uint64 size)
	{
		if (offset > fFileSize || size > fFileSize - offset)
			return B_IO_ERROR;
		fEnd = std::max(fEnd, offset + size);
		return B_OK;
	}

	//!	Calls a function for each row of a table.
	template<typename Row, typename Function>
	status_t _ForEach(uint64 offset, uint64 rowSize, uint64 count, Function function)
	{
		if (count == 0)
			return B_OK;
		status_t status = rowSize >= sizeof(Row) ? _Cover(offset, rowSize * count) : B_IO_ERROR;
		for (uint64 i = 0; status == B_OK && i < count; i++) {
			Row row;
			status = read_exactly(fFile, offset + i * rowSize, &row, sizeof(row));
			if (status == B_OK)
				status = function(row);
		}
		return status;
	}

	status_t _ReadSegments()
	{
		return _ForEach<typename Class::Segment>(fOrder(fHeader.e_phoff),
			fOrder(fHeader.e_phentsize), fOrder(fHeader.e_phnum), [this](const auto& segment) {
				if (fOrder(segment.p_type) == PT_NULL)
					return static_cast<status_t>(B_OK);
				fAlignment = std::max<uint64>(fAlignment, fOrder(segment.p_align));
				return _Cover(fOrder(segment.p_offset), fOrder(segment.p_filesz));
			});
	}

	status_t _ReadSections(ElfLayout& layout)
	{
		uint64 offset = fOrder(fHeader.e_shoff);
		uint64 rowSize = fOrder(fHeader.e_shentsize);
		uint64 namesIndex = fOrder(fHeader.e_shstrndx);
		uint64 count = fOrder(fHeader.e_shnum);
		typename Class::Section names = {};
		if (namesIndex < count && rowSize >= sizeof(names))
			fFile.ReadAt(offset + namesIndex * rowSize, &names, sizeof(names));

		return _ForEach<typename Class::Section>(offset, rowSize, count, [&](const auto& section) {
			uint32 type = fOrder(section.sh_type);
			if (type == SHT_NULL || type == SHT_NOBITS)
				return static_cast<status_t>(B_OK);
			if (_IsResources(section, names)) {
				layout.sectionOffset = fOrder(section.sh_offset);
				layout.sectionSize = fOrder(section.sh_size);
			}
			return _Cover(fOrder(section.sh_offset), fOrder(section.sh_size));
		});
	}

	bool _IsResources(const typename Class::Section& section, const typename Class::Section& names)
	{
		uint64 offset = fOrder(section.sh_name);
		uint64 size = fOrder(names.sh_size);
		if (offset >= size || size - offset < sizeof(kSectionName))
			return false;
		char name[sizeof(kSectionName)];
		offset += fOrder(names.sh_offset);
		return read_exactly(fFile, offset, name, sizeof(name)) == B_OK
			&& memcmp(name, kSectionName, sizeof(name)) == 0;
	}

	status_t _RoundUp(uint64& end)
	{
		uint64 unit = 8;
		if (sizeof(fHeader) == sizeof(Elf32_Ehdr)) {
			unit = std::max(fAlignment, kMinAlignment32);
			if (unit > kMaxAlignment32)
				return B_IO_ERROR;
		}
		end = (fEnd + unit - 1) / unit * unit;
		return B_OK;
	}

	BFile& fFile;
	uint64 fFileSize;
	ByteOrder fOrder;
	typename Class::Header fHeader;
	uint64 fEnd = 0;
	uint64 fAlignment = 0;
};

} // namespace

status_t
read_elf_layout(BFile& file, ElfLayout& layout)
{
	layout = {};
	unsigned char ident[EI_NIDENT];
	off_t fileSize;
	status_t status = file.GetSize(&fileSize);
	if (status == B_OK)
		status = read_exactly(file, 0, ident, sizeof(ident));
	if (status != B_OK)
		return status;

	bool known = ident[EI_VERSION] == EV_CURRENT
		&& (ident[EI_DATA] == ELFDATA2LSB || ident[EI_DATA] == ELFDATA2MSB);
	bool swap = (ident[EI_DATA] == ELFDATA2MSB) != kHostIsBigEndian;
	if (known && ident[EI_CLASS] == ELFCLASS32)
		return ElfReader<Class32>(file, fileSize, swap).Read(layout);
	if (known && ident[EI_CLASS] == ELFCLASS64)
		return ElfReader<Class64>(file, fileSize, swap).Read(layout);
	return B_UNSUPPORTED;
}

} // namespace BPrivate
