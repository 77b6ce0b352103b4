#include "lyrics/dropped_file.h"

#include <algorithm>
#include <string_view>

#include <Entry.h>
#include <File.h>
#include <Node.h>

#include "framework/TNameIndex.h"
#include "framework/file_utils.h"
#include "prefs/skin_colors.h"

namespace {

using namespace std::literals;

constexpr size_t kMaxLyricsFileSize = 16 * 1024 * 1024; // bytes
constexpr size_t kSignatureRoom = 16;

// How files of pictures begin, by their formats' own definitions.
constexpr struct {
	size_t offset;
	std::string_view bytes;
} kImageSignatures[] = {
	{0, "\x89PNG\r\n\x1a\n"sv}, {0, "\xff\xd8\xff"sv}, // JPEG
	{0, "GIF87a"sv}, {0, "GIF89a"sv}, {8, "WEBP"sv}, {4, "ftypavif"sv},
	{0, "II*\0"sv},                    // TIFF, of either byte order
	{0, "MM\0*"sv}, {0, "\0\0\1\0"sv}, // icons
};

//! "BM" alone may begin a text: what follows are the file's size and four bytes of zero.
bool
is_bmp(std::string_view begin)
{
	return begin.starts_with("BM")
		&& begin.substr(std::min<size_t>(6, begin.size())).starts_with("\0\0\0\0"sv);
}

//! Portable maps: P1 to P6 and a blank.
bool
is_portable_map(std::string_view begin)
{
	return begin.size() > 2 && begin[0] == 'P' && begin[1] >= '1' && begin[1] <= '6'
		&& (begin[2] == '\n' || begin[2] == ' ' || begin[2] == '\r' || begin[2] == '\t');
}

bool
is_image(const BEntry& entry)
{
	BFile file(&entry, B_READ_ONLY);
	char bytes[kSignatureRoom];
	const ssize_t size = file.InitCheck() == B_OK ? file.Read(bytes, sizeof(bytes)) : 0;
	const std::string_view begin(bytes, std::max<ssize_t>(size, 0));
	return is_bmp(begin) || is_portable_map(begin)
		|| std::any_of(
			std::begin(kImageSignatures), std::end(kImageSignatures), [&](const auto& signature) {
				return begin.size() >= signature.offset
					&& begin.substr(signature.offset).starts_with(signature.bytes);
			});
}

} // namespace

dropped_file
classify_dropped_file(const entry_ref& ref)
{
	const BEntry entry(&ref, true);
	if (entry.IsFile()) {
		if (!lyrics_extension(ref.name).empty())
			return dropped_file::kLyrics;
		if (is_image(entry))
			return dropped_file::kImage;
	}
	return is_skin(ref) ? dropped_file::kSkin : dropped_file::kOther;
}

std::string
lyrics_extension(const char* name)
{
	const std::string_view text(name);
	const size_t dot = text.rfind('.');
	if (dot == std::string_view::npos)
		return {};
	for (const char* extension : {"lrc", "txt"}) {
		if (merion::is_same_name(text.substr(dot + 1), extension))
			return extension;
	}
	return {};
}

bool
is_same_file(const entry_ref& ref, const std::string& path)
{
	node_ref first;
	node_ref second;
	return BEntry(&ref, true).GetNodeRef(&first) == B_OK
		&& BEntry(path.c_str(), true).GetNodeRef(&second) == B_OK && first == second;
}

status_t
copy_lyrics(const entry_ref& source, const std::string& target, bool mayReplace)
{
	std::string bytes;
	const status_t status = merion::read_file(BEntry(&source, true), kMaxLyricsFileSize, &bytes);
	return status == B_OK ? merion::save_bytes(bytes, BEntry(target.c_str()), mayReplace) : status;
}
