#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include <Entry.h>
#include <UTF8.h>
#include <sys/stat.h>

#include "framework/text_detection.h"
#include "lyrics/TTimeTable.h"
#include "lyrics/lyrics_text.h"
#include "prefs/TPref.h"
#include "support/temp_folder.h"

using namespace std::string_literals;

namespace {

struct Decoded {
	std::vector<std::string> lines;
	int32 crType;
	int32 encoding;
};

std::vector<std::string>
strings_of(const TLineList& list)
{
	std::vector<std::string> lines;
	for (size_t i = 0; i < list.CountLines(); i++)
		lines.emplace_back(list[i]);
	return lines;
}

//! Loads bytes as a file through the whole way; nothing when the file does not load.
std::optional<Decoded>
load(const std::string& bytes, int32 readEncoding = kEncodingAuto)
{
	TempFolder folder;
	TPref pref;
	pref.fReadEncoding = readEncoding;
	gPref = &pref;
	entry_ref ref;
	Decoded decoded;
	TLineList lines;
	const bool loaded = get_ref_for_path(folder.Write("song.lrc", bytes).c_str(), &ref) == B_OK
		&& load_lyrics(ref, &lines, &decoded.crType, &decoded.encoding);
	gPref = nullptr;
	if (!loaded)
		return {};
	decoded.lines = strings_of(lines);
	return decoded;
}

using Lines = std::vector<std::string>;

} // namespace

TEST(TimeTag, ReadsByFirstDigitsOnly)
{
	struct Case {
		const char* line;
		int32 time; // -1: no tag
		bool hasHundredths;
	};
	const Case cases[] = {
		{"", -1, false},
		{"[1:23]", -1, false},
		{"[01:23", -1, false},
		{" [01:23]", -1, false},
		{"x01:23]", -1, false},
		{"[01:23]", 83000, false},
		{"[01:23]7", 83000, false},
		{"[01:23]78", 83780, true}, // the closing bracket is not looked at
		{"[01:23.4", 83000, false},
		{"[01:23.45", 83450, true},
		{"[01:23.45]", 83450, true},
		{"[01:23:45]", 83450, true},
		{"[01:23:45]la la", 83450, true},
		{"[01:23:4x]", 83000 + 10 * (40 + 'x' - '0'), true},
		{"[01:23:x4]", 83000, false},
		{"[0a:0b]", 2990000, false},
		{"[xy:zw] text", 0, false},
		{"[a1:b2]", 0, false},
		{"[00:75]", 75000, false},
		{"[99:59.99]", 5999990, true},
		{"[0\xff:00]", (255 - '0') * 60000, false}, // the second digit is an unsigned byte
		{"[0\x01:00]", (1 - '0') * 60000, false},
	};
	for (const Case& c : cases) {
		SCOPED_TRACE(c.line);
		int32 time = -77;
		bool hasHundredths = true;
		if (!time_tag_to_time(c.line, &time, &hasHundredths)) {
			EXPECT_EQ(c.time, -1);
			EXPECT_EQ(time, -77) << "the outputs of a line without a tag are touched";
			EXPECT_TRUE(hasHundredths);
			continue;
		}
		EXPECT_EQ(time, c.time);
		EXPECT_EQ(hasHundredths, c.hasHundredths);
	}
}

TEST(TimeTag, IsWrittenWithinItsLimits)
{
	struct Case {
		int32 time;
		const char* tag;
		const char* shortTag;
	};
	const Case cases[] = {
		{83456, "[01:23:45]", "[01:23]"},
		{-5, "[00:00:00]", "[00:00]"},
		{7000000, "[99:59:99]", "[99:59]"},
		{5999999, "[99:59:99]", "[99:59]"},
		{59999, "[00:59:99]", "[00:59]"},
		{60000, "[01:00:00]", "[01:00]"},
		{INT32_MIN, "[00:00:00]", "[00:00]"},
	};
	for (const Case& c : cases) {
		std::string tag = "left over";
		EXPECT_TRUE(time_to_time_tag(c.time, &tag, true));
		EXPECT_EQ(tag, c.tag);
		EXPECT_TRUE(time_to_time_tag(c.time, &tag, false));
		EXPECT_EQ(tag, c.shortTag);
	}
}

TEST(TimeTag, ReadsBackWhatItWrites)
{
	for (int32 time = 0; time <= 5999990; time += 4710) {
		std::string tag;
		int32 readBack = -1;
		bool hasHundredths = false;
		time_to_time_tag(time, &tag, true);
		ASSERT_TRUE(time_tag_to_time(tag, &readBack, &hasHundredths));
		ASSERT_EQ(readBack, time);
	}
}

TEST(TimeTable, KeepsTheLastLineOfATime)
{
	TTimeTable table;
	EXPECT_TRUE(table.IsEmpty());
	EXPECT_EQ(table.LineAfter(0, -1), -1);
	for (const auto& [time, line] : std::vector<std::pair<int32, int32>>{
			 {20000, 0}, {10000, 1}, {10000, 2}, {30000, 3}, {20000, 4}})
		table.Add(time, line);
	table.Complete();
	EXPECT_EQ(table.LineAt(9999, 0), 0);
	EXPECT_EQ(table.LineAt(10000, 0), 2);
	EXPECT_EQ(table.LineAt(19999, 0), 2);
	EXPECT_EQ(table.LineAt(20000, 0), 4);
	EXPECT_EQ(table.LineAt(INT32_MAX, 0), 3);
	EXPECT_EQ(table.LineAfter(9999, -1), 2);
	EXPECT_EQ(table.LineAfter(10000, -1), 4);
	EXPECT_EQ(table.LineAfter(30000, -1), -1);
}

TEST(Lines, EndAtLineFeedsAndTheFirstNul)
{
	struct Case {
		const char* text;
		Lines lines;
	};
	const Case cases[] = {
		{"", {}},
		{"\n", {""}},
		{"a", {"a"}},
		{"a\n", {"a"}},
		{"a\n\nb", {"a", "", "b"}},
		{"a\n\n", {"a", ""}},
		{"\n\na", {"", "", "a"}},
		{"a\rb\r\nc", {"a\rb\r", "c"}},
	};
	TLineList list;
	for (const Case& c : cases) {
		SCOPED_TRACE(c.text);
		EXPECT_EQ(text_to_lines(c.text, &list), 0);
		EXPECT_EQ(strings_of(list), c.lines);
	}
}

TEST(Detection, CountsLineEnds)
{
	struct Case {
		std::string text;
		int32 type;
	};
	const std::string longLines(1000, 'x');
	const Case cases[] = {
		{"", 0},
		{"abc", 0},
		{"a\nb", 0},
		{"a\r\nb\r\n", 1},
		{"a\rb\r", 2},
		{"\r", 2},
		{"\n\r", 1},
		{"a\r\nb\nc\n", 0},
		{"a\r\nb\rc\r", 2},
		// behind whole blocks of the counting loop, and inside of them
		{longLines + "\r\n" + longLines + "\r\n", 1},
		{longLines + "\r\n" + longLines + "\n", 0},
		{std::string(300, '\r') + std::string(299, '\n'), 2},
		{std::string(300, '\r') + std::string(301, '\n'), 0},
		{std::string(70000, '\n') + std::string(70000, '\r'), 1},
	};
	for (const Case& c : cases)
		EXPECT_EQ(merion::detect_cr_type(c.text), c.type)
			<< testing::PrintToString(c.text.substr(0, 40));
}

TEST(Detection, TellsUTF8FromTheJapaneseEncodings)
{
	struct Case {
		std::string text;
		uint32 conversion;
	};
	const Case cases[] = {
		{"", B_UNICODE_CONVERSION},
		{"plain ASCII that is longer than a word", B_UNICODE_CONVERSION},
		{"\xe3\x81\x82\xe3\x81\x84", B_UNICODE_CONVERSION},
		{"\xf0\x9f\x8e\xb5", B_UNICODE_CONVERSION},
		{"\x82\xa0\x82\xa2", B_SJIS_CONVERSION}, // lone continuations
		{"caf\xe9", B_SJIS_CONVERSION},          // cut off by the end
		{"\xe3\x81", B_SJIS_CONVERSION},
		{"\xc3(", B_SJIS_CONVERSION},
		{"\x1b$B$\"\x1b(B", B_JIS_CONVERSION},
		{"\x82\xa0 and an escape \x1b$B", B_JIS_CONVERSION}, // escapes win
		{"1234567\x1b", B_JIS_CONVERSION},                   // in the last byte of a word
		{"12345678\x1b", B_JIS_CONVERSION},
		{"\xc3\x1b plain", B_SJIS_CONVERSION},                        // swallowed by its lead byte
		{"\xff\x80\x80\x80\x80\x80\x80\x80 a", B_UNICODE_CONVERSION}, // seven announced
		{"\xff\x80\x80\x80\x80\x80\x80z a", B_SJIS_CONVERSION},
		{"\xff\x80\x80\x80\x80\x80\x80\x80\x80", B_SJIS_CONVERSION},
	};
	for (const Case& c : cases)
		EXPECT_EQ(merion::detect_charset(c.text), c.conversion) << testing::PrintToString(c.text);
}

// The word-wise walk against one that goes by the bytes.
TEST(Detection, AgreesWithAWalkByBytes)
{
	const auto slow = [](const std::string& text) -> uint32 {
		int escapes = 0;
		int bad = 0;
		for (size_t i = 0; i < text.size();) {
			const uint8 lead = text[i];
			if (lead < 0x80) {
				escapes += lead == 0x1b;
				i++;
				continue;
			}
			bad += (lead & 0xc0) != 0xc0;
			size_t k = 1;
			for (; k < 8 && (k == 1 ? lead & 0x40 : lead & (1 << (7 - k))); k++)
				bad += i + k >= text.size() || (text[i + k] & 0xc0) != 0x80;
			i += k;
		}
		return escapes > 0 ? B_JIS_CONVERSION : bad > 0 ? B_SJIS_CONVERSION : B_UNICODE_CONVERSION;
	};
	uint32 seed = 1;
	const auto next = [&seed] { return seed = seed * 1664525 + 1013904223; };
	const char* const pieces[] = {"a", "bcd", "12345678", "\u00e9", "\u00e9\u00e8\u00ea\u00eb",
		"\u3042", "\u3042\u3044", "\u3042\u3044\u3046\u3048", "\U0001f3b5", "\x80", "\xbf", "\xc3",
		"\xe3", "\xe3\x81", "\xf8\x81\x81\x81\x81", "\xff", "\x1a", "\x1c", "\x1b"};
	for (int round = 0; round < 20000; round++) {
		std::string text;
		// Mostly clean text: the faults and escapes are at the end of the list.
		const uint32 end = round % 4 == 0 ? std::size(pieces) : 9 + (next() >> 16) % 4;
		for (uint32 length = next() >> 26; text.size() < length;)
			text += pieces[(next() >> 16) % end];
		ASSERT_EQ(merion::detect_charset(text), slow(text)) << testing::PrintToString(text);
	}
}

TEST(LoadLyrics, TakesEveryLineEnd)
{
	for (const char* text : {"a\nb\n\nc", "a\r\nb\r\n\r\nc", "a\rb\r\rc"}) {
		const auto decoded = load(text);
		ASSERT_TRUE(decoded);
		EXPECT_EQ(decoded->lines, (Lines{"a", "b", "", "c"})) << testing::PrintToString(text);
	}
	EXPECT_EQ(load("a\r\nb\nc\n")->crType, 0);
	EXPECT_EQ(load("a\r\nb\nc\n")->lines, (Lines{"a", "b", "c"}));
	EXPECT_EQ(load("a\rb\nc\n\n")->lines, (Lines{"ab", "c", ""}));
	EXPECT_EQ(load("a\rb\r\nc\r")->crType, 2);
	EXPECT_EQ(load("a\rb\r\nc\r")->lines, (Lines{"a", "b", "", "c"}));
	EXPECT_EQ(load("\r\n")->lines, (Lines{""}));
	EXPECT_EQ(load("")->lines, (Lines{}));
	EXPECT_EQ(load("")->encoding, 0);
}

TEST(LoadLyrics, DecodesToUTF8)
{
	struct Case {
		const char* name;
		std::string bytes;
		int32 readEncoding;
		int32 encoding;
		Lines lines;
	};
	const Case cases[] = {
		{"UTF-8", "[00:01]\u3042\n", 4, 0, {"[00:01]\u3042"}},
		{"Shift-JIS", "[00:01]\x82\xa0\n\x82\xa2", 4, 1, {"[00:01]\u3042", "\u3044"}},
		{"half-width katakana takes three times the room", std::string(100, '\xb1'), 4, 1, {[] {
			 std::string text;
			 for (int i = 0; i < 100; i++)
				 text += "\uff71";
			 return text;
		 }()}},
		{"JIS", "\x1b$B$\"\x1b(B\r\nb", 4, 2, {"\u3042", "b"}},
		{"JIS with bytes above 0x7f", "\x1b$B$\"\x1b(B\xb1", 4, 2, {"\u3042\uff71"}},
		{"UTF-8 asked for", "\x82\xa0", 0, 0, {"\x82\xa0"}},
		{"Shift-JIS asked for", "plain", 1, 1, {"plain"}},
		{"Latin-1 for unknown numbers", "caf\xe9", 3, 3, {"caf\u00e9"}},
		{"Latin-1 for negative numbers", "caf\xe9", -7, -7, {"caf\u00e9"}},
		{"a character cut off by the end", "a\x82", 1, 1, {"a\x1a"}},
		{"a byte order mark stays", "\xef\xbb\xbf[00:01]a", 4, 0, {"\xef\xbb\xbf[00:01]a"}},
		{"lines end at a NUL", "a\nb\0c\nd"s, 4, 0, {"a", "b"}},
		{"guesses end at a NUL", "a\nb\0\x82\xa0\r\r\r"s, 4, 0, {"a", "b"}},
		{"only a NUL", "\0a"s, 4, 0, {}},
	};
	for (const Case& c : cases) {
		SCOPED_TRACE(c.name);
		const auto decoded = load(c.bytes, c.readEncoding);
		ASSERT_TRUE(decoded);
		EXPECT_EQ(decoded->encoding, c.encoding);
		EXPECT_EQ(decoded->lines, c.lines);
	}
}

TEST(LoadLyrics, RefusesWhatIsNoFile)
{
	TempFolder folder;
	const std::string pipe = folder / "pipe.txt";
	ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
	ASSERT_TRUE(std::filesystem::create_directory(folder / "folder.lrc"));
	std::filesystem::create_symlink(folder / "nowhere", folder / "dangling.lrc");
	for (const char* name : {"missing.txt", "folder.lrc", "pipe.txt", "dangling.lrc"}) {
		SCOPED_TRACE(name);
		TPref pref;
		gPref = &pref;
		entry_ref ref;
		ASSERT_EQ(get_ref_for_path((folder / name).c_str(), &ref), B_OK);
		TLineList lines;
		lines.SetTo("before");
		int32 crType = -1;
		int32 encoding = -1;
		EXPECT_FALSE(load_lyrics(ref, &lines, &crType, &encoding));
		EXPECT_EQ(strings_of(lines), (Lines{"before"}));
		EXPECT_EQ(crType, -1);
		EXPECT_EQ(encoding, -1);
		gPref = nullptr;
	}
}

TEST(LoadLyrics, TakesHugeFiles)
{
	const std::string line(5 << 20, 'x');
	EXPECT_EQ(load(line)->lines, (Lines{line}));

	std::string many;
	for (int i = 0; i < 200000; i++)
		many += "[00:01]\x82\xa0\r\n";
	const auto decoded = load(many);
	ASSERT_EQ(decoded->lines.size(), 200000u);
	EXPECT_EQ(decoded->crType, 1);
	EXPECT_EQ(decoded->lines.back(), "[00:01]\u3042");
}

TEST(EncodingNumbers, MapToConversionsAndBack)
{
	EXPECT_EQ(cvt_enum_ec_to_bconv(0), 15u);
	EXPECT_EQ(cvt_enum_ec_to_bconv(1), 11u);
	EXPECT_EQ(cvt_enum_ec_to_bconv(2), 13u);
	for (int32 other : {3, 4, -1, 99})
		EXPECT_EQ(cvt_enum_ec_to_bconv(other), 0u);
	EXPECT_EQ(cvt_enum_bconv_to_ec(13), 2);
	EXPECT_EQ(cvt_enum_bconv_to_ec(11), 1);
	for (uint32 other : {15u, 0u, 12u, 0xffffffffu})
		EXPECT_EQ(cvt_enum_bconv_to_ec(other), 0);
	for (int32 type : {-1, 0, 3})
		EXPECT_EQ(cvt_enum_cr_type_to_ct(type), 0);
	EXPECT_EQ(cvt_enum_cr_type_to_ct(1), 1);
	EXPECT_EQ(cvt_enum_cr_type_to_ct(2), 2);
}
