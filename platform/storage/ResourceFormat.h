#pragma once

#include <algorithm>
#include <bit>
#include <cstring>

#include <SupportDefs.h>

class BFile;

namespace BPrivate {

/*	The platform's resources format. All offsets count from the start of the resources:
	header, index section, unknown section, the data in the index's order, info table.
	The checksum apart, numbers are in the byte order of the machine that wrote them. */

const uint32 kResourcesMagic = 0x444f1000;
const uint32 kMaxResources = 10000; // more are taken for damage

// The header is words: magic, number of resources, kIndexOffset, kIndexOffset + size of the index
// section, and zeros.
const uint32 kIndexOffset = 0x44;

// The index section begins with words, those not named here are filler; index entries follow
// (offset and size of the data, 0), then filler up to a multiple of kIndexUnit.
const uint32 kIndexHeaderSize = 33 * 4;
const uint32 kIndexEntrySize = 3 * 4;
const uint32 kIndexUnit = 0x600;
enum {
	kIndexWordOffset = 0, // kIndexOffset
	kIndexWordSize = 1,   // of the index section
	kIndexWordUnknownOffset = 3,
	kIndexWordUnknownSize = 4,
	kIndexWordTableOffset = 30,
	kIndexWordTableSize = 31
};
const uint32 kUnknownSectionSize = 0x168;

// The info table: blocks of a type and its resources (id, index from 1, 16 bits of the name's size
// with its NUL, name), each block ending with 8 bytes 0xff; at the end the checksum and 0.
const uint32 kTableEndSize = 8;
const uint32 kSeparatorSize = 8;

const bool kHostIsBigEndian = std::endian::native == std::endian::big;

//!	What stands at an offset that nothing else uses.
inline uint32
filler_word(uint32 offset)
{
	const uint32 kFiller[] = {0xffffffff, 0x3e9, 0};
	return kFiller[offset / 4 % 3];
}

inline uint32
index_section_size(uint32 count)
{
	uint32 size = kIndexHeaderSize + count * kIndexEntrySize;
	return (size + kIndexUnit - 1) / kIndexUnit * kIndexUnit;
}

//!	The sum of big-endian words; the bytes of a last, shorter one are its lowest.
uint32 table_checksum(const uint8* table, size_t size);

//!	Turns numbers of a file into the machine's.
struct ByteOrder {
	bool swap;

	template<typename Number> Number operator()(Number number) const
	{
		if (swap) {
			char* bytes = reinterpret_cast<char*>(&number);
			std::reverse(bytes, bytes + sizeof(number));
		}
		return number;
	}

	template<typename Number> Number Load(const void* bytes) const
	{
		Number number;
		memcpy(&number, bytes, sizeof(number));
		return (*this)(number);
	}
};

//!	B_ERROR when the file ends before.
status_t read_exactly(BFile& file, uint64 offset, void* buffer, size_t size);

} // namespace BPrivate
