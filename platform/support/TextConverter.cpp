#include "support/TextConverter.h"

#include <UTF8.h>

#include <algorithm>
#include <errno.h>
#include <iconv.h>
#include <iterator>
#include <string.h>

namespace BPrivate {

namespace {

// iconv's names, in the order of UTF8.h
constexpr const char* kNames[] = {"ISO-8859-1", "ISO-8859-2", "ISO-8859-3", "ISO-8859-4",
	"ISO-8859-5", "ISO-8859-6", "ISO-8859-7", "ISO-8859-8", "ISO-8859-9", "ISO-8859-10",
	"MACINTOSH", "CP932", "EUC-JP", nullptr, "CP1252", "UTF-16BE", "KOI8-R", "CP1251", "CP866",
	"CP437", "EUC-KR", "ISO-8859-13", "ISO-8859-14", "ISO-8859-15", "BIG5", "GBK"};
static_assert(std::size(kNames) == B_GBK_CONVERSION + 1);

constexpr size_t kPiece = 1024;
constexpr size_t kMinASCIIRun = 64; // shorter ones are left to iconv

/*!	The thread's converters: opening one costs a thousand times the conversion of a line. */
class Cache {
public:
	~Cache()
	{
		for (void*& handle : fHandles) {
			if (IsOpen(handle))
				iconv_close(handle);
			handle = nullptr;
		}
	}

	void* Get(uint32 encoding, bool toUTF8)
	{
		if (encoding >= std::size(kNames) || kNames[encoding] == nullptr)
			return nullptr;
		void*& handle = fHandles[2 * encoding + toUTF8];
		if (handle == nullptr)
			handle = toUTF8 ? iconv_open("UTF-8", kNames[encoding])
							: iconv_open(kNames[encoding], "UTF-8");
		return IsOpen(handle) ? handle : nullptr;
	}

private:
	static bool IsOpen(void* handle)
	{
		return handle != nullptr && handle != reinterpret_cast<void*>(-1);
	}

	void* fHandles[2 * std::size(kNames)] = {};
};

thread_local Cache sCache;

bool
in(uint8 byte, uint8 first, uint8 last)
{
	return byte >= first && byte <= last;
}

size_t
ascii_run(const char* text, size_t limit)
{
	size_t run = 0;
	uint64 word;
	for (; run + sizeof(word) <= limit; run += sizeof(word)) {
		memcpy(&word, text + run, sizeof(word));
		if ((word & 0x8080808080808080) != 0)
			break;
	}
	while (run < limit && static_cast<uint8>(text[run]) < 0x80)
		run++;
	return run;
}

//! How much of ill-formed UTF-8 is one error: the longest beginning of a character, as the Unicode
//! standard advises.
size_t
bad_utf8_length(const uint8* text, size_t left)
{
	const uint8 lead = text[0];
	size_t length = in(lead, 0xc2, 0xdf) ? 2
		: in(lead, 0xe0, 0xef)           ? 3
		: in(lead, 0xf0, 0xf4)           ? 4
										 : 1;
	length = std::min(length, left);
	const uint8 first = lead == 0xe0 ? 0xa0 : lead == 0xf0 ? 0x90 : 0x80;
	const uint8 last = lead == 0xed ? 0x9f : lead == 0xf4 ? 0x8f : 0xbf;
	if (length == 1 || !in(text[1], first, last))
		return 1;
	for (size_t i = 2; i < length; i++) {
		if (!in(text[i], 0x80, 0xbf))
			return i;
	}
	return length;
}

//! The length of a character that is formed as the encoding has it, known or not; else 1.
size_t
bad_length(uint32 encoding, const uint8* text, size_t left)
{
	if (encoding == B_UNICODE_CONVERSION)
		return std::min<size_t>(left, 2);
	if (left < 2)
		return 1;
	const uint8 lead = text[0], trail = text[1];
	switch (encoding) {
		case B_SJIS_CONVERSION:
			return (in(lead, 0x81, 0x9f) || in(lead, 0xe0, 0xfc)) && in(trail, 0x40, 0xfc)
					&& trail != 0x7f
				? 2
				: 1;
		case B_EUC_CONVERSION:
			if (lead == 0x8f && in(trail, 0xa1, 0xfe))
				return left > 2 && in(text[2], 0xa1, 0xfe) ? 3 : 1;
			[[fallthrough]];
		case B_EUC_KR_CONVERSION:
			return in(lead, 0xa1, 0xfe) && in(trail, 0xa1, 0xfe) ? 2 : 1;
		case B_BIG5_CONVERSION:
		case B_GBK_CONVERSION:
			return in(lead, 0x81, 0xfe) && in(trail, 0x40, 0xfe) && trail != 0x7f ? 2 : 1;
		default:
			return 1;
	}
}

} // namespace

bool
TextSpan::Put(std::string_view bytes)
{
	if (bytes.size() > Room())
		return false;
	dst = std::copy(bytes.begin(), bytes.end(), dst);
	return true;
}

TextConverter::TextConverter(uint32 encoding, bool toUTF8, char substitute)
	: fHandle(sCache.Get(encoding, toUTF8)),
	  fEncoding(encoding),
	  fToUTF8(toUTF8),
	  fSubstitute{substitute, 0},
	  fSubstituteLength(1)
{
	if (!toUTF8 && encoding == B_UNICODE_CONVERSION) {
		std::swap(fSubstitute[0], fSubstitute[1]);
		fSubstituteLength = 2;
	}
}

TextStop
TextConverter::Convert(TextSpan& text) const
{
	iconv(fHandle, nullptr, nullptr, nullptr, nullptr); // forgets what went wrong before
	while (text.src < text.srcEnd) {
		if (fEncoding != B_UNICODE_CONVERSION)
			CopyASCII(text);
		size_t left = std::min(text.SourceLeft(), kPiece);
		const char* const pieceEnd = text.src + left;
		size_t room = text.Room();
		char* src = const_cast<char*>(text.src);
		const size_t result = iconv(fHandle, &src, &left, &text.dst, &room);
		const bool moved = src != text.src;
		text.src = src;
		if (result != static_cast<size_t>(-1))
			continue;
		if (errno == E2BIG)
			return TextStop::kFull;
		if (errno == EINVAL && pieceEnd == text.srcEnd)
			return TextStop::kCutOff;
		// a character that only the piece cut off is the next piece's first
		if (errno == EINVAL && moved)
			continue;
		if (!ReplaceBad(text))
			return TextStop::kFull;
	}
	return TextStop::kDone;
}

void
TextConverter::CopyASCII(TextSpan& text) const
{
	const size_t run = ascii_run(text.src, std::min(text.SourceLeft(), text.Room()));
	if (run < kMinASCIIRun)
		return;
	memcpy(text.dst, text.src, run);
	text.src += run;
	text.dst += run;
}

bool
TextConverter::ReplaceBad(TextSpan& text) const
{
	if (!text.Put(Substitute()))
		return false;
	const uint8* bad = reinterpret_cast<const uint8*>(text.src);
	text.src += fToUTF8 ? bad_length(fEncoding, bad, text.SourceLeft())
						: bad_utf8_length(bad, text.SourceLeft());
	return true;
}

} // namespace BPrivate
