#include "translation/ArchiveReader.h"

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>
#include <climits>
#include <cstring>
#include <vector>

#include <DataIO.h>

namespace BPrivate {

namespace {

constexpr size_t kBlockSize = 64 * 1024;
constexpr int kMaxEntries = 65536;
// Files of the wanted name that are unpacked: an archive may let very many mean the same bytes.
constexpr int kMaxTries = 16;

//! Writers on other systems separate folders by backslashes.
bool
is_separator(char c)
{
	return c == '/' || c == '\\';
}

std::string_view
last_component(std::string_view path)
{
	const auto begin = std::find_if(path.rbegin(), path.rend(), is_separator);
	return path.substr(path.rend() - begin);
}

// not by the locale: a Turkish one would tell I from i
char
small_letter(char c)
{
	return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool
is_same(std::string_view a, std::string_view b)
{
	return std::equal(a.begin(), a.end(), b.begin(), b.end(),
		[](char x, char y) { return small_letter(x) == small_letter(y); });
}

//! In how many folders a file named like this is; INT_MAX when it is none or has another name.
int
depth_of(archive_entry* entry, std::string_view name)
{
	const char* path = archive_entry_pathname(entry);
	if (path == NULL)
		path = archive_entry_pathname_utf8(entry);
	if (path == NULL || archive_entry_filetype(entry) != AE_IFREG
		|| !is_same(last_component(path), name))
		return INT_MAX;
	return static_cast<int>(std::count_if(path, path + strlen(path), is_separator));
}

} // namespace

struct ArchiveReader::Input {
	explicit Input(BPositionIO* io) : source(io), block(kBlockSize) { }

	static la_ssize_t Read(archive*, void* data, const void** buffer)
	{
		Input* input = static_cast<Input*>(data);
		*buffer = input->block.data();
		const ssize_t read
			= input->source->ReadAt(input->position, input->block.data(), input->block.size());
		if (read < 0)
			return ARCHIVE_FATAL;
		input->position += read;
		return read;
	}

	static la_int64_t Seek(archive*, void* data, la_int64_t offset, int whence)
	{
		Input* input = static_cast<Input*>(data);
		const off_t base
			= whence == SEEK_SET ? 0 : (whence == SEEK_CUR ? input->position : input->size);
		// the offset comes out of the archive
		if (offset < -base || offset > input->size - base)
			return ARCHIVE_FATAL;
		return input->position = base + offset;
	}

	BPositionIO* source;
	std::vector<char> block;
	off_t size = 0;
	off_t position = 0;
};

void
ArchiveReader::Deleter::operator()(archive* reader) const
{
	archive_read_free(reader);
}

ArchiveReader::ArchiveReader(BPositionIO* source)
	: fInput(std::make_unique<Input>(source)),
	  fReader(archive_read_new()),
	  fStatus(_Open(source))
{ }

ArchiveReader::~ArchiveReader() = default;

status_t
ArchiveReader::_Open(BPositionIO* source)
{
	if (fReader == nullptr)
		return B_NO_MEMORY;
	const status_t status = source->GetSize(&fInput->size);
	if (status != B_OK)
		return status;
	if (fInput->size > kMaxArchiveSize)
		return B_FILE_TOO_LARGE;
	// Only by the list at the archive's end: without it every file before the wanted one would have to be unpacked.
	archive* reader = fReader.get();
	const bool isOpen = archive_read_support_format_zip_seekable(reader) == ARCHIVE_OK
		&& archive_read_set_callback_data(reader, fInput.get()) == ARCHIVE_OK
		&& archive_read_set_read_callback(reader, Input::Read) == ARCHIVE_OK
		&& archive_read_set_seek_callback(reader, Input::Seek) == ARCHIVE_OK
		&& archive_read_open1(reader) == ARCHIVE_OK;
	return isOpen ? B_OK : B_NO_TRANSLATOR;
}

status_t
ArchiveReader::Read(std::string_view name, std::string* bytes)
{
	if (fStatus != B_OK)
		return fStatus;
	status_t status = B_ENTRY_NOT_FOUND;
	int depth = INT_MAX; // of what was read
	int result = ARCHIVE_OK;
	for (int entries = 0, tries = 0; entries < kMaxEntries && tries < kMaxTries; entries++) {
		archive_entry* entry;
		result = archive_read_next_header(fReader.get(), &entry);
		if (result == ARCHIVE_EOF || result < ARCHIVE_WARN)
			break;
		const int entryDepth = depth_of(entry, name);
		if (entryDepth >= depth)
			continue;
		tries++;
		const status_t read = _ReadFile(entry, bytes);
		if (read == B_OK)
			depth = entryDepth;
		if (read == B_OK || status == B_ENTRY_NOT_FOUND)
			status = read;
	}
	return status == B_ENTRY_NOT_FOUND && result < ARCHIVE_WARN ? B_ILLEGAL_DATA : status;
}

status_t
ArchiveReader::_ReadFile(archive_entry* entry, std::string* bytes)
{
	if (archive_entry_is_encrypted(entry))
		return B_NOT_ALLOWED;
	// The size that the archive tells is not relied on, but a large one is believed.
	if (archive_entry_size(entry) > static_cast<la_int64_t>(kMaxFileSize))
		return B_FILE_TOO_LARGE;
	std::string contents;
	std::vector<char> block(kBlockSize);
	while (contents.size() <= kMaxFileSize) {
		const la_ssize_t read = archive_read_data(fReader.get(), block.data(), block.size());
		if (read < 0)
			return B_ILLEGAL_DATA;
		if (read == 0) {
			bytes->swap(contents);
			return B_OK;
		}
		contents.append(block.data(), read);
	}
	return B_FILE_TOO_LARGE;
}

} // namespace BPrivate
