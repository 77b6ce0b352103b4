#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <SupportDefs.h>

struct archive;
struct archive_entry;
class BPositionIO;

namespace BPrivate {

/*!	Takes one file out of a ZIP archive, into memory. Names in the archive are compared, never used as paths; nothing in it
	makes the reader take more than some megabytes or a few seconds. Thread: one at a time. */
class ArchiveReader {
public:
	explicit ArchiveReader(BPositionIO* source);
	ArchiveReader(const ArchiveReader&) = delete;
	ArchiveReader& operator=(const ArchiveReader&) = delete;
	~ArchiveReader();

	//! B_NO_TRANSLATOR: the source is no ZIP archive; B_FILE_TOO_LARGE; errors of the source.
	status_t InitCheck() const { return fStatus; }

	/*!	Once. The file of that name in any case of ASCII letters, from the fewest folders, then the first. When there
		are such files but none can be read, the reason of the first: see BTranslatorRoster::Translate(). */
	status_t Read(std::string_view name, std::string* bytes);

	static constexpr size_t kMaxFileSize = 1024 * 1024;        // bytes
	static constexpr off_t kMaxArchiveSize = 64 * 1024 * 1024; // bytes

private:
	struct Input; // what the library's functions read from
	struct Deleter {
		void operator()(archive* reader) const;
	};

	status_t _Open(BPositionIO* source);
	status_t _ReadFile(archive_entry* entry, std::string* bytes);

	std::unique_ptr<Input> fInput; // outlives the reader
	std::unique_ptr<archive, Deleter> fReader;
	status_t fStatus;
};

} // namespace BPrivate
