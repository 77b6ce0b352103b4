#include <UTF8.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <iconv.h>
#include <set>
#include <string>
#include <thread>
#include <vector>

using namespace std::string_literals;

struct Converted {
	status_t status;
	std::string text;
	int32 used;
};

static Converted
convert_once(bool toUTF8, uint32 encoding, const std::string& source, int32 room, int32* state,
	char substitute = 0x1a)
{
	constexpr char kGuard = 0x55;
	std::string buffer(room + 16, kGuard);
	int32 used = static_cast<int32>(source.size());
	int32 written = room;
	const auto convert = toUTF8 ? convert_to_utf8 : convert_from_utf8;
	const status_t status
		= convert(encoding, source.data(), &used, buffer.data(), &written, state, substitute);
	EXPECT_TRUE(written >= 0 && written <= room);
	EXPECT_EQ(buffer.substr(room), std::string(16, kGuard)) << "written beyond the room";
	return {status, buffer.substr(0, written), used};
}

//! The whole text, as a caller does it who has all of it.
static std::string
convert_all(bool toUTF8, uint32 encoding, const std::string& source, char substitute = 0x1a)
{
	std::string rest = source, result;
	int32 state = 0;
	while (!rest.empty()) {
		const Converted part = convert_once(
			toUTF8, encoding, rest, static_cast<int32>(4 * rest.size() + 8), &state, substitute);
		EXPECT_EQ(part.status, B_OK);
		EXPECT_GT(part.used, 0);
		if (part.used <= 0)
			break;
		result += part.text;
		rest.erase(0, part.used);
	}
	return result;
}

static std::string
to_utf8(uint32 encoding, const std::string& source)
{
	return convert_all(true, encoding, source, '?');
}

static std::string
from_utf8(uint32 encoding, const std::string& source)
{
	return convert_all(false, encoding, source, '?');
}

TEST(TextEncoding, ReadsAndWritesTheTables)
{
	const struct {
		uint32 encoding;
		std::string text, utf8;
	} kCases[] = {
		{B_ISO1_CONVERSION, "caf\xe9 \xa9", "café ©"}, {B_ISO2_CONVERSION, "\xb3\xf3\xbc", "łóź"},
		{B_ISO5_CONVERSION, "\xbf\xd5\xe1\xdd\xef", "Песня"},
		{B_ISO7_CONVERSION, "\xe1\xe2\xe3", "αβγ"}, {B_ISO9_CONVERSION, "\xfe\xfd", "şı"},
		{B_ISO15_CONVERSION, "\xa4", "€"}, {B_MAC_ROMAN_CONVERSION, "\x8e", "é"},
		{B_MS_WINDOWS_CONVERSION, "\x93\x80\x94", "“€”"},
		{B_MS_WINDOWS_1251_CONVERSION, "\xcf\xe5", "Пе"},
		{B_MS_DOS_866_CONVERSION, "\x8f\xa5", "Пе"}, {B_MS_DOS_CONVERSION, "\x82", "é"},
		{B_KOI8R_CONVERSION, "\xf0\xc5", "Пе"}, {B_EUC_CONVERSION, "\xb2\xce\x8e\xb1", "歌ｱ"},
		{B_EUC_KR_CONVERSION, "\xb3\xeb", "노"}, {B_BIG5_CONVERSION, "\xba\x71", "歌"},
		{B_GBK_CONVERSION, "\xb8\xe8", "歌"},
		{B_UNICODE_CONVERSION, "\x6b\x4c\xd8\x3c\xdf\xb5\x00\x61"s, "歌🎵a"},
		{B_SJIS_CONVERSION, "\x89\xcc [00:01] \xb1\xb2\xb3\xde", "歌 [00:01] ｱｲｳﾞ"},
		{B_SJIS_CONVERSION, "\x83\x5c\x95\x5c\x5c~", "ソ表\\~"}, // second bytes like ASCII
		{B_SJIS_CONVERSION, "\x87\x40\x87\x54\x87\x8a\x81\x60", "①Ⅰ㈱～"},
		{B_SJIS_CONVERSION, "\xfb\xfc\xfa\x40", "髙ⅰ"}, // beyond JIS's rows
		{B_JIS_CONVERSION, "a\x1b$B2N\x1b(B b", "a歌 b"},
		{B_JIS_CONVERSION, "\x1b$B-!-5-j!A\x1b(B", "①Ⅰ㈱～"}, // row 13
		{B_JIS_CONVERSION, "\x1b(I123^\x1b(B!", "ｱｲｳﾞ!"},
		{B_JIS_CONVERSION, "\x1b$B|q|b\x1b(B", "ⅰ髙"}, // rows 89 to 92
	};
	for (const auto& row : kCases) {
		EXPECT_EQ(to_utf8(row.encoding, row.text), row.utf8) << row.encoding;
		EXPECT_EQ(from_utf8(row.encoding, row.utf8), row.text) << row.encoding;
	}
}

TEST(TextEncoding, ReadsAllFormsOfJIS)
{
	const struct {
		const char* what;
		std::string text, utf8;
	} kCases[] = {
		{"1978 edition", "\x1b$@2N\x1b(J.", "歌."},
		{"long designation", "\x1b$(B2N\x1b(B.", "歌."},
		{"1990 edition", "\x1b&@\x1b$B2N\x1b(B.", "歌."},
		{"JIS-Roman", "\x1b(J\\~a\x1b(B\\~", "¥‾a\\~"},
		{"shift out",
			"a\x0e\x31\x32\x0f"
			"12",
			"aｱｲ12"},
		{"shift out ended by a designation", "\x0e\x31\x1b$B2N\x1b(B", "ｱ歌"},
		{"eight bits", "a\xb1\xb2z", "aｱｲz"},
		{"no return to ASCII at the line's end", "\x1b$B2N\n2N\x1b(B", "歌\n歌"},
		{"blank within", "\x1b$B2N 2N", "歌 歌"},
		{"unknown set of pairs", "\x1b$(D\x30\x21\x30\x22\x1b(Ba", "???a"},
		{"unknown set", "\x1b(H[a", "?[a"},
		{"not a designation", "a\x1b[31mb", "a?31mb"},
		{"escape cut off by a control", "a\x1b$\nb", "a?\nb"},
		{"escape without end", "\x1b$$$$$a", "?$$a"},
		{"unassigned",
			"\x1b$B\x29\x21"
			"2N",
			"?歌"},
		{"second byte is an escape", "\x1b$B2\x1b(Ba", "?a"},
		{"second byte is a line end", "\x1b$B2\na", "?\n?"},
		{"katakana out of range", "\x1b(Ia", "?"},
		{"half an escape at the end", "a\x1b$", "a?"},
		{"half a character at the end", "a\x1b$B2", "a?"},
	};
	for (const auto& row : kCases)
		EXPECT_EQ(to_utf8(B_JIS_CONVERSION, row.text), row.utf8) << row.what;
}

TEST(TextEncoding, ReplacesWhatIsIllFormedOrUnknown)
{
	const struct {
		const char* what;
		bool toUTF8;
		uint32 encoding;
		std::string text, result;
	} kCases[] = {
		{"pair without a character", true, B_SJIS_CONVERSION, "a\x85\x40z", "a?z"},
		{"no second byte", true, B_SJIS_CONVERSION, "a\x81\n", "a?\n"},
		{"no first byte", true, B_SJIS_CONVERSION, "\x80\xa0\xfd\xfez", "????z"},
		{"cut off", true, B_SJIS_CONVERSION, "a\x89", "a?"},
		{"nothing but a beginning", true, B_SJIS_CONVERSION, "\x89", "?"},
		{"bad second byte of EUC", true, B_EUC_CONVERSION, "\xb2z", "?z"},
		{"three-byte EUC cut", true, B_EUC_CONVERSION, "\x8f\xa2\xb7\x8f\xa2", "～?"},
		{"lone surrogate", true, B_UNICODE_CONVERSION, "\xdc\x00\x00\x61"s, "?a"},
		{"half a unit", true, B_UNICODE_CONVERSION, "\x00\x61\x00"s, "a?"},
		{"not in Latin-1", false, B_ISO1_CONVERSION, "a歌é", "a?\xe9"},
		{"not in JIS", false, B_JIS_CONVERSION, "歌🎵", "\x1b$B2N\x1b(B?"},
		{"user's own", false, B_JIS_CONVERSION, "\ue000a", "?a"},
		{"UTF-8 too long", false, B_ISO1_CONVERSION, "\xc0\xafz", "??z"},
		{"UTF-8 cut within", false, B_ISO1_CONVERSION, "\xe6\xadz", "?z"},
		{"UTF-8 cut at the end", false, B_SJIS_CONVERSION, "z\xe6\xad", "z?"},
		{"UTF-8 surrogate", false, B_ISO1_CONVERSION, "\xed\xa0\x80z", "???z"},
		{"to UTF-16", false, B_UNICODE_CONVERSION, "\xffz", "\0?\0z"s},
	};
	for (const auto& row : kCases)
		EXPECT_EQ(convert_all(row.toUTF8, row.encoding, row.text, '?'), row.result) << row.what;
}

//! What iconv makes of one character, or empty.
static std::string
iconv_one(iconv_t converter, std::string text)
{
	char buffer[32];
	char *in = text.data(), *out = buffer;
	size_t left = text.size(), room = sizeof(buffer);
	iconv(converter, nullptr, nullptr, nullptr, nullptr);
	const size_t result = iconv(converter, &in, &left, &out, &room);
	return result == 0 ? std::string(buffer, out) : "";
}

// every pair of JIS X 0208 against another converter's table, which knows nothing of Shift-JIS
TEST(TextEncoding, AgreesWithEUCInEveryRowOfJIS)
{
	const iconv_t euc = iconv_open("UTF-8", "EUC-JP");
	ASSERT_NE(euc, reinterpret_cast<iconv_t>(-1));
	// Windows-31J takes the full-width forms: \ ~ || - cent pound not
	const std::set<std::string> kOtherwise = {"＼", "～", "∥", "－", "￠", "￡", "￢", "―"};
	int compared = 0;
	for (char row = 0x21; row < 0x7f; row++) {
		for (char cell = 0x21; cell < 0x7f; cell++) {
			const std::string expected
				= iconv_one(euc, {static_cast<char>(row | 0x80), static_cast<char>(cell | 0x80)});
			if (expected.empty())
				continue;
			const std::string read = to_utf8(B_JIS_CONVERSION, "\x1b$B"s + row + cell);
			EXPECT_TRUE(read == expected || kOtherwise.contains(read)) << read << expected;
			compared++;
		}
	}
	iconv_close(euc);
	EXPECT_EQ(compared, 6879) << "the characters of JIS X 0208";
}

// whatever Shift-JIS can be read, JIS can be written and read again
TEST(TextEncoding, TakesShiftJISThroughJIS)
{
	int characters = 0;
	for (int lead = 0x81; lead <= 0xfc; lead++) {
		for (int trail = 0x40; trail <= 0xfc; trail++) {
			const bool isUsers = lead >= 0xf0 && lead <= 0xf9;
			if ((lead >= 0xa0 && lead < 0xe0) || isUsers)
				continue;
			const std::string utf8
				= to_utf8(B_SJIS_CONVERSION, {static_cast<char>(lead), static_cast<char>(trail)});
			if (utf8.find('?') != std::string::npos)
				continue;
			characters++;
			const std::string jis = from_utf8(B_JIS_CONVERSION, utf8);
			EXPECT_TRUE(std::all_of(jis.begin(), jis.end(), [](char c) { return c > 0; })) << utf8;
			EXPECT_EQ(to_utf8(B_JIS_CONVERSION, jis), utf8);
		}
	}
	EXPECT_GT(characters, 7500);
}

// shortcuts for plain text must not change it
TEST(TextEncoding, LeavesASCIIAlone)
{
	std::string ascii;
	for (int i = 0; i < 300; i++)
		ascii += static_cast<char>(i % 128);
	for (uint32 encoding = B_ISO1_CONVERSION; encoding <= B_GBK_CONVERSION; encoding++) {
		if (encoding == B_UNICODE_CONVERSION || encoding == B_JIS_CONVERSION)
			continue;
		EXPECT_EQ(to_utf8(encoding, ascii), ascii) << encoding;
		EXPECT_EQ(from_utf8(encoding, ascii), ascii) << encoding;
		for (char c = 0; c < 127; c++)
			EXPECT_EQ(to_utf8(encoding, {&c, 1}), std::string(1, c)) << encoding << " " << int(c);
	}
}

//! Text with one of everything, long enough to go through all inner buffers.
static std::string
mixed_text(uint32 encoding)
{
	std::string text = "[00:12.34]";
	switch (encoding) {
		case B_SJIS_CONVERSION:
			text += "\x89\xcc\x83\x5c\xb1\xb2 \x87\x40\x81\xff\x85\x40\xfa\x40\n";
			break;
		case B_JIS_CONVERSION:
			text += "\x1b$B2N-!\x1b(I12\x1b(J\\\x0e"
					"4\x0f\x1b$(D0!\x1b[x\x1b$@2N\n\x1b(Bz\xb1";
			break;
		case B_EUC_CONVERSION:
			text += "\xb2\xce\x8e\xb1\x8f\xb0\xa1\xff\xa4z\n";
			break;
		case B_UNICODE_CONVERSION:
			text = "\x6b\x4c\xd8\x3c\xdf\xb5\x00\x61\xdc\x00\x00\x62"s;
			break;
		default:
			text += "\xe9\xff\x80\n";
	}
	std::string all;
	for (int i = 0; i < 3; i++)
		all += text;
	return all;
}

static const uint32 kEncodings[] = {B_SJIS_CONVERSION, B_JIS_CONVERSION, B_EUC_CONVERSION,
	B_UNICODE_CONVERSION, B_MS_WINDOWS_CONVERSION};

// what is left unused is put before the next piece
static std::string
convert_in_two(bool toUTF8, uint32 encoding, const std::string& text, size_t split)
{
	int32 state = 0;
	const int32 room = static_cast<int32>(8 * text.size() + 64);
	const Converted first = convert_once(toUTF8, encoding, text.substr(0, split), room, &state);
	const std::string rest = text.substr(first.used);
	return first.text + convert_once(toUTF8, encoding, rest, room, &state).text;
}

TEST(TextEncoding, GivesTheSameInPiecesWhereverTheyAreCut)
{
	for (const uint32 encoding : kEncodings) {
		const std::string text = mixed_text(encoding);
		const std::string whole = convert_all(true, encoding, text);
		// a piece must hold more than the beginning of a character
		for (size_t split = 4; split < text.size(); split++)
			EXPECT_EQ(convert_in_two(true, encoding, text, split), whole)
				<< encoding << " " << split;
		// what is written in pieces reads the same as what is written at once
		const std::string again = convert_all(true, encoding, convert_all(false, encoding, whole));
		for (size_t split = 4; split < whole.size(); split++) {
			const std::string written = convert_in_two(false, encoding, whole, split);
			EXPECT_EQ(convert_all(true, encoding, written), again) << encoding << " " << split;
		}
	}
}

static std::string
convert_with_room(bool toUTF8, uint32 encoding, const std::string& text, int32 room)
{
	int32 state = 0;
	std::string rest = text, result;
	while (!rest.empty()) {
		const Converted part = convert_once(toUTF8, encoding, rest, room, &state);
		if (part.status != B_OK) {
			EXPECT_EQ(part.used, 0);
			EXPECT_EQ(part.text, "");
			return "stuck";
		}
		result += part.text;
		rest.erase(0, part.used);
	}
	return result;
}

TEST(TextEncoding, FitsIntoAnyRoom)
{
	for (const uint32 encoding : kEncodings) {
		const std::string text = mixed_text(encoding);
		const std::string whole = convert_all(true, encoding, text);
		const int32 largest = encoding == B_UNICODE_CONVERSION ? 4 : 3;
		for (int32 room = 0; room < static_cast<int32>(whole.size()) + 2; room++) {
			const std::string result = convert_with_room(true, encoding, text, room);
			EXPECT_EQ(result, room < largest ? "stuck" : whole) << encoding << " " << room;
		}
		const std::string again = convert_all(true, encoding, convert_all(false, encoding, whole));
		// JIS goes there and back for each character
		const int32 needed = encoding == B_JIS_CONVERSION ? 8 : 4;
		for (int32 room = needed; room < static_cast<int32>(text.size()) * 2; room++) {
			const std::string result = convert_with_room(false, encoding, whole, room);
			EXPECT_EQ(convert_all(true, encoding, result), again) << encoding << " " << room;
		}
	}
}

TEST(TextEncoding, TakesALongText)
{
	for (const uint32 encoding : kEncodings) {
		std::string text;
		while (text.size() < 100000)
			text += mixed_text(encoding) + std::string(text.size() % 300, 'x')
				+ std::string(encoding == B_UNICODE_CONVERSION ? text.size() % 2 : 0, '\0');
		int32 state = 0;
		const Converted whole
			= convert_once(true, encoding, text, static_cast<int32>(3 * text.size() + 1), &state);
		EXPECT_EQ(whole.status, B_OK);
		EXPECT_EQ(whole.used, static_cast<int32>(text.size())) << encoding;
		EXPECT_EQ(convert_with_room(true, encoding, text, 1000), whole.text) << encoding;
	}
}

TEST(TextEncoding, RefusesBadArguments)
{
	char buffer[8];
	int32 used = 1, room = 8, state = 0, negative = -1;
	EXPECT_EQ(convert_to_utf8(0, nullptr, &used, buffer, &room, &state), B_BAD_VALUE);
	EXPECT_EQ(convert_to_utf8(0, "a", nullptr, buffer, &room, &state), B_BAD_VALUE);
	EXPECT_EQ(convert_to_utf8(0, "a", &used, nullptr, &room, &state), B_BAD_VALUE);
	EXPECT_EQ(convert_to_utf8(0, "a", &used, buffer, nullptr, &state), B_BAD_VALUE);
	EXPECT_EQ(convert_to_utf8(0, "a", &used, buffer, &room, nullptr), B_BAD_VALUE);
	EXPECT_EQ(convert_to_utf8(0, "a", &negative, buffer, &room, &state), B_BAD_VALUE);
	EXPECT_EQ(convert_from_utf8(0, "a", &used, buffer, &negative, &state), B_BAD_VALUE);
	for (const uint32 unknown : {uint32(B_GBK_CONVERSION) + 1, 0xffffffffu}) {
		const Converted result = convert_once(true, unknown, "a", 8, &state);
		EXPECT_EQ(result.status, B_ERROR);
		EXPECT_EQ(result.used, 0);
		EXPECT_EQ(result.text, "");
	}
	EXPECT_EQ(convert_once(true, B_JIS_CONVERSION, "", 0, &state).status, B_OK);
	// a state that is not ours is no reason to stop
	state = 0x7fffffff;
	EXPECT_EQ(convert_once(true, B_JIS_CONVERSION, "\x1b(Ba", 8, &state).text, "a");
	EXPECT_EQ(convert_all(true, B_ISO1_CONVERSION, "a", '\xff'), "a");
	EXPECT_EQ(convert_all(true, B_SJIS_CONVERSION, "\x80", '\xff'), "\x1a");
}

TEST(TextEncoding, EveryThreadHasItsOwnConverters)
{
	std::vector<std::thread> threads;
	for (int i = 0; i < 4; i++) {
		threads.emplace_back([=] {
			const uint32 encoding = kEncodings[i];
			const std::string text = mixed_text(encoding),
							  whole = convert_all(true, encoding, text);
			for (int round = 0; round < 200; round++)
				ASSERT_EQ(convert_all(true, encoding, text), whole);
		});
	}
	for (std::thread& thread : threads)
		thread.join();
}
