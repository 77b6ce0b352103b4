#pragma once

#include <optional>

#include "storage/ResourceContainer.h"

namespace BPrivate {

//!	Where a file has its resources.
struct ResourcePlace {
	struct Range {
		uint64 start = 0;
		uint64 end = 0;
	};

	std::optional<Range> appended;
	std::optional<Range> section; // of an ELF file; used when nothing can be read behind its end
	uint64 writeStart = 0;
	bool isElf = false;
};

/*!	Finds out what kind of file it is. An empty file becomes a resource file, with clobber an
	unknown one too. B_IO_ERROR: unknown; else see read_elf_layout(). */
status_t find_resources(BFile& file, bool clobber, ResourcePlace& place);

/*!	Reads what the resources are, not their data; on failure the container is empty.
	B_ERROR: the file is too short; B_IO_ERROR: it makes no sense. Nothing outside the range is read,
	but an item's place may be outside of it. */
status_t read_resources(
	BFile& file, const ResourcePlace::Range& range, ResourceContainer& container);

/*!	Writes the resources, all loaded, to the place and ends the file behind them.
	B_BAD_VALUE: too many of them; B_FILE_TOO_LARGE; an error of writing. */
status_t write_resources(
	BFile& file, const ResourcePlace& place, const ResourceContainer& container);

} // namespace BPrivate
