#include "lyrics/lyrics_text.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>

#include <Entry.h>
#include <File.h>
#include <UTF8.h>

#include "framework/text_detection.h"
#include "prefs/TPref.h"

namespace {

// The converters count in 32 bits, and UTF-8 may take three times the room of the source.
constexpr off_t kMaxFileSize = std::numeric_limits<int32>::max() / 3 - 1;
constexpr int32 kMaxTagTime = 5999990; // 99:59.99
constexpr char kSubstitute = 0x1a;

//! A text on its way from the file to the lines; there is room for a NUL behind it.
struct Text {
	std::unique_ptr<char[]> bytes;
	size_t length = 0;
};

bool
read_file(const entry_ref& ref, Text* text)
{
	// A folder or a pipe of that name is no lyrics file, and opening a pipe would wait for its writer.
	const BEntry entry(&ref, true);
	off_t size;
	if (!entry.IsFile())
		return false;
	BFile file(&ref, B_READ_ONLY);
	if (file.InitCheck() != B_OK || file.GetSize(&size) != B_OK || size > kMaxFileSize)
		return false;

	text->bytes = std::make_unique_for_overwrite<char[]>(size + 1);
	const ssize_t read = file.Read(text->bytes.get(), size);
	text->length = std::max<ssize_t>(read, 0);
	return read >= 0;
}

size_t
remove_crs(char* text, size_t length)
{
	char* const end = text + length;
	char* from = static_cast<char*>(memchr(text, '\r', length));
	if (from == nullptr)
		return length;
	char* to = from;
	while (from < end) {
		from++;
		char* cr = static_cast<char*>(memchr(from, '\r', end - from));
		char* const runEnd = cr != nullptr ? cr : end;
		memmove(to, from, runEnd - from);
		to += runEnd - from;
		from = runEnd;
	}
	return to - text;
}

void
make_line_ends_lf(Text* text, int32 crType)
{
	if (crType == merion::kCRTypeCR)
		std::replace(text->bytes.get(), text->bytes.get() + text->length, '\r', '\n');
	else
		text->length = remove_crs(text->bytes.get(), text->length);
}

// Converts the whole text; false, with `text` untouched, when the converter refuses.
bool
decode(Text* text, uint32 conversion)
{
	Text decoded;
	// Half-width katakana take three times their size.
	const size_t room = 3 * text->length;
	decoded.bytes = std::make_unique_for_overwrite<char[]>(room + 1);
	int32 state = 0;
	size_t used = 0;
	// A second round comes when the text ends in the middle of a character.
	while (used < text->length) {
		int32 sourceLength = text->length - used;
		int32 length = room - decoded.length;
		if (convert_to_utf8(conversion, text->bytes.get() + used, &sourceLength,
				decoded.bytes.get() + decoded.length, &length, &state, kSubstitute)
			!= B_OK)
			return false;
		decoded.length += length;
		if (sourceLength == 0)
			break;
		used += sourceLength;
	}
	*text = std::move(decoded);
	return true;
}

bool
is_digit(char byte)
{
	return byte >= '0' && byte <= '9';
}

// Two digits of a tag. Only the first is tested; the second counts whatever it is.
int32
tag_number(std::string_view line, size_t position)
{
	if (!is_digit(line[position]))
		return 0;
	return 10 * (line[position] - '0') + static_cast<uint8>(line[position + 1]) - '0';
}

} // namespace

bool
load_lyrics(const entry_ref& ref, TLineList* lines, int32* crType, int32* encoding)
{
	Text raw;
	if (!read_file(ref, &raw))
		return false;
	bytes_to_lines(std::move(raw.bytes), raw.length, gPref->fReadEncoding, lines, crType, encoding);
	return true;
}

void
bytes_to_lines(std::unique_ptr<char[]> raw, size_t size, int32 readEncoding, TLineList* lines,
	int32* crType, int32* encoding)
{
	Text text{std::move(raw), size};
	text.bytes[size] = '\0';
	// Guesses are made up to the first NUL, and so end all the lines; decoding takes everything.
	const std::string_view guessed(text.bytes.get(), strlen(text.bytes.get()));
	*crType = cvt_enum_cr_type_to_ct(merion::detect_cr_type(guessed));
	*encoding = readEncoding == kEncodingAuto
		? cvt_enum_bconv_to_ec(merion::detect_charset(guessed))
		: readEncoding;

	make_line_ends_lf(&text, *crType);
	if (*encoding != kEncodingUTF8)
		decode(&text, cvt_enum_ec_to_bconv(*encoding));
	lines->Adopt(std::move(text.bytes), text.length);
}

int32
text_to_lines(const char* text, TLineList* lines)
{
	lines->SetTo(text);
	return 0;
}

bool
time_tag_to_time(std::string_view line, int32* time, bool* hasHundredths)
{
	constexpr size_t kShortTagLength = 7;
	constexpr size_t kMinutes = 1;
	constexpr size_t kSeconds = 4;
	constexpr size_t kHundredths = 7;
	if (line.size() < kShortTagLength || line[0] != '[')
		return false;

	const bool withHundredths = line.size() > kHundredths + 1 && is_digit(line[kHundredths]);
	const int32 hundredths = withHundredths ? tag_number(line, kHundredths) : 0;
	*time
		= tag_number(line, kMinutes) * 60000 + tag_number(line, kSeconds) * 1000 + hundredths * 10;
	*hasHundredths = withHundredths;
	return true;
}

bool
time_to_time_tag(int32 time, std::string* tag, bool withHundredths)
{
	time = std::clamp<int32>(time, 0, kMaxTagTime);
	const int32 inMinute = time % 60000;
	char text[16];
	int length = snprintf(text, sizeof(text), "[%02d:%02d", time / 60000, inMinute / 1000);
	if (withHundredths)
		length += snprintf(text + length, sizeof(text) - length, ":%02d", inMinute % 1000 / 10);
	tag->assign(text, length).append("]");
	return true;
}

uint32
cvt_enum_ec_to_bconv(int32 encoding)
{
	switch (encoding) {
		case kEncodingUTF8:
			return B_UNICODE_CONVERSION;
		case kEncodingSJIS:
			return B_SJIS_CONVERSION;
		case kEncodingJIS:
			return B_JIS_CONVERSION;
		default:
			return B_ISO1_CONVERSION;
	}
}

int32
cvt_enum_bconv_to_ec(uint32 conversion)
{
	switch (conversion) {
		case B_JIS_CONVERSION:
			return kEncodingJIS;
		case B_SJIS_CONVERSION:
			return kEncodingSJIS;
		default:
			return kEncodingUTF8;
	}
}

int32
cvt_enum_cr_type_to_ct(int32 crType)
{
	switch (crType) {
		case merion::kCRTypeCRLF:
		case merion::kCRTypeCR:
			return crType;
		default:
			return 0;
	}
}
