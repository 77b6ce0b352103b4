#include "framework/text_detection.h"

#include <algorithm>
#include <cstring>

#include <UTF8.h>

namespace merion {

namespace {

constexpr char kEscape = 0x1b;

size_t
count_byte(std::string_view text, char byte)
{
	// Blocks of a known length, so that the compiler counts sixteen bytes at a time.
	constexpr size_t kBlock = 128;
	size_t count = 0;
	size_t position = 0;
	for (; position + kBlock <= text.size(); position += kBlock) {
		uint8 inBlock = 0;
		for (size_t i = 0; i < kBlock; i++)
			inBlock += text[position + i] == byte;
		count += inBlock;
	}
	return count + std::count(text.begin() + position, text.end(), byte);
}

uint64
load_word(const char* text)
{
	uint64 word;
	memcpy(&word, text, sizeof(word));
	return word;
}

// Whether all eight bytes are below 0x80 and none is an escape.
bool
is_plain(uint64 word)
{
	constexpr uint64 kOnes = 0x0101010101010101;
	constexpr uint64 kHighBits = kOnes * 0x80;
	// Bytes below 0x80 leave no carry into their neighbours: exact for such words.
	const uint64 escapes = (word ^ (kOnes * kEscape)) + kOnes * 0x7f;
	return (word & kHighBits) == 0 && (escapes & kHighBits) == kHighBits;
}

/*!	Characters of one length, as many whole ones as a word holds: the bits that their lead and continuation bytes have. */
struct WholeCharacters {
	char mask[9];
	char bits[9];
	size_t length; // bytes of them all
};

constexpr WholeCharacters kTwoByteCharacters{
	"\xe0\xc0\xe0\xc0\xe0\xc0\xe0\xc0", "\xc0\x80\xc0\x80\xc0\x80\xc0\x80", 8};
constexpr WholeCharacters kThreeByteCharacters{
	"\xf0\xc0\xc0\xf0\xc0\xc0\0\0", "\xe0\x80\x80\xe0\x80\x80\0\0", 6};

// Skips such characters, a word at a time: most text in other scripts than Latin is made of them.
const char*
skip_whole(const char* byte, const char* end, const WholeCharacters& characters)
{
	const uint64 mask = load_word(characters.mask);
	const uint64 bits = load_word(characters.bits);
	while (end - byte >= 8 && (load_word(byte) & mask) == bits)
		byte += characters.length;
	return byte;
}

const char*
skip_plain(const char* byte, const char* end)
{
	while (end - byte >= 8 && is_plain(load_word(byte)))
		byte += 8;
	return byte;
}

bool
continues(const char* byte, const char* end)
{
	return byte < end && (*byte & 0xc0) == 0x80;
}

// Bytes that the lead byte announces behind itself: its bit 6 one, its bit 5 another, down to the first that is clear.
int32
continuation_count(uint8 lead)
{
	int32 count = 0;
	for (uint8 bit = 0x40; bit != 0 && (lead & bit) != 0; bit >>= 1)
		count++;
	return count;
}

} // namespace

int32
detect_cr_type(std::string_view text)
{
	// Most files have no CR at all.
	if (memchr(text.data(), '\r', text.size()) == nullptr)
		return kCRTypeLF;
	const size_t lfs = count_byte(text, '\n');
	const size_t crs = count_byte(text, '\r');
	if (lfs == crs)
		return kCRTypeCRLF;
	return crs > lfs ? kCRTypeCR : kCRTypeLF;
}

uint32
detect_charset(std::string_view text)
{
	bool hasBadByte = false;
	const char* byte = text.data();
	const char* const end = byte + text.size();
	while (byte < end) {
		const uint8 lead = *byte;
		if (lead == kEscape)
			return B_JIS_CONVERSION;
		if (lead < 0x80) {
			byte = skip_plain(byte + 1, end);
			continue;
		}
		const char* const start = byte;
		byte = skip_whole(byte, end, lead < 0xe0 ? kTwoByteCharacters : kThreeByteCharacters);
		if (byte > start)
			continue;
		// An escape among the announced bytes is one of theirs and does not count.
		const int32 count = continuation_count(lead);
		hasBadByte |= count == 0;
		for (int32 i = 1; i <= count; i++)
			hasBadByte |= !continues(byte + i, end);
		byte += std::min<ptrdiff_t>(1 + count, end - byte);
	}
	return hasBadByte ? B_SJIS_CONVERSION : B_UNICODE_CONVERSION;
}

int32
detect_cr_type(const char* text)
{
	return detect_cr_type(std::string_view(text));
}

uint32
detect_charset(const char* text)
{
	return detect_charset(std::string_view(text));
}

} // namespace merion
