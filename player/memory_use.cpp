#include "memory_use.h"

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr int kArenas = 2;
// Set, it stays: else the first such block that is freed would make the allocator keep all later ones, once for each arena.
constexpr int kMappedFrom = 4 * 1024 * 1024;
constexpr int kKeptFree = 512 * 1024;

/*!	Code and constants: nobody can have written to them, so what is dropped is in the file. The segments that the loader writes to,
	and protects later, are marked writable. */
bool
is_unwritten(const ElfW(Phdr) & segment)
{
	return segment.p_type == PT_LOAD && (segment.p_flags & PF_W) == 0;
}

//! A debugger's breakpoints are written into the code.
bool
is_traced()
{
	std::ifstream status("/proc/self/status");
	int tracer = 0;
	for (std::string word; status >> word;) {
		if (word == "TracerPid:" && status >> tracer)
			break;
	}
	return tracer != 0;
}

int
drop_pages(dl_phdr_info* library, size_t, void*)
{
	const uintptr_t page = sysconf(_SC_PAGESIZE);
	// A copy: the table lies in the first of these segments, and a look at it would bring 64 KB of each library back.
	const std::vector<ElfW(Phdr)> segments(
		library->dlpi_phdr, library->dlpi_phdr + library->dlpi_phnum);
	for (const ElfW(Phdr) & segment : segments) {
		if (!is_unwritten(segment))
			continue;
		const uintptr_t begin = (library->dlpi_addr + segment.p_vaddr + page - 1) / page * page;
		const uintptr_t end
			= (library->dlpi_addr + segment.p_vaddr + segment.p_filesz) / page * page;
		if (begin < end) // what cannot be dropped simply stays
			madvise(reinterpret_cast<void*>(begin), end - begin, MADV_DONTNEED);
	}
	return 0;
}

} // namespace

void
tune_allocator()
{
	mallopt(M_ARENA_MAX, kArenas);
	mallopt(M_MMAP_THRESHOLD, kMappedFrom);
	mallopt(M_TRIM_THRESHOLD, kKeptFree);
}

void
release_start_memory()
{
	malloc_trim(0);
	if (!is_traced())
		dl_iterate_phdr(drop_pages, nullptr);
}
