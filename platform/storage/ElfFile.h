#pragma once

#include <SupportDefs.h>

class BFile;

namespace BPrivate {

//!	What there is to know of an ELF file for its resources; bytes from the start of the file.
struct ElfLayout {
	uint64 end;           // of everything the file needs, rounded up: there resources are appended
	uint64 sectionOffset; // of the section ".beresources"
	uint64 sectionSize;   // 0 without it
};

/*!	Reads the layout of a file of either class and byte order.
	B_ERROR: shorter than its header; B_UNSUPPORTED: unknown version, class or byte order;
	B_IO_ERROR: a table, segment or section outside the file. */
status_t read_elf_layout(BFile& file, ElfLayout& layout);

} // namespace BPrivate
