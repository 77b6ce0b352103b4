#include <gtest/gtest.h>

#include <DataIO.h>
#include <Directory.h>
#include <Entry.h>
#include <climits>
#include <cmath>
#include <cstring>
#include <sys/stat.h>
#include <vector>

#include "framework/TIniFile.h"
#include "framework/TIniFileSection.h"
#include "support/temp_folder.h"

using merion::TIniFile;

namespace {

constexpr int kLineLength = 2048;
const std::string kNul("\0", 1);

//! A stream over a text, which cannot be read or written from some offset on.
class Stream : public BMallocIO {
public:
	explicit Stream(std::string_view text, off_t readLimit = LONG_MAX) : fReadLimit(readLimit)
	{
		BMallocIO::WriteAt(0, text.data(), text.size());
	}

	ssize_t ReadAt(off_t position, void* buffer, size_t size) override
	{
		const off_t end = std::min<off_t>(position + size, BufferLength());
		return end > fReadLimit ? B_IO_ERROR : BMallocIO::ReadAt(position, buffer, size);
	}
	ssize_t WriteAt(off_t position, const void* buffer, size_t size) override
	{
		if (position >= fWriteLimit)
			return B_DEVICE_FULL;
		return BMallocIO::WriteAt(position, buffer, std::min<size_t>(size, fWriteLimit - position));
	}

	std::string Text() const { return {static_cast<const char*>(Buffer()), BufferLength()}; }
	std::string Written() const { return Text().substr(0, Position()); }

	off_t fReadLimit;
	off_t fWriteLimit = LONG_MAX;
};

//! The text as it is written back after it was read.
std::string
written_back(std::string_view text, int lineLength = kLineLength)
{
	Stream stream(text);
	TIniFile ini(&stream, lineLength);
	EXPECT_EQ(stream.Position(), static_cast<off_t>(text.size()));
	EXPECT_TRUE(ini.Flush(true));
	return stream.Written();
}

std::string
value_of(TIniFile& ini, const char* key)
{
	std::vector<char> value(ini.LineLength() + 1);
	return ini.ReadValue(key, value.data()) ? value.data() : "(none)";
}

std::string
joined(void (TIniFile::*enumerate)(BList*), TIniFile& ini)
{
	BList names;
	(ini.*enumerate)(&names);
	std::string all;
	for (int32 i = 0; i < names.CountItems(); i++)
		all.append(static_cast<const char*>(names.ItemAt(i))).append(" ");
	return all;
}

} // namespace

TEST(IniText, IsReadAndWrittenBack)
{
	const struct {
		std::string in;
		const char* out;
	} rows[] = {
		{"", "\n"},
		{"key=value", "key = value\n\n"},
		{"\v\f  key =  value \t\nkey = value\n", "key = value\nkey = value\n\n"},
		{"a = b = c", "a = b = c\n\n"},
		{"a=1\r\n\r\n[ S ]\r\nb=2\r\n", "a = 1\n\n[ S ]\nb = 2\n\n"},
		{"a=1\rb=2\r", "a = 1\rb=2\n\n"},
		{"[Data]\n[ data ] a=1\n", "\n[ Data ]\n\n[ data ]\n\n"},
		{"[ S ]\na=1\n ; note \n;\nb=2\n; x", "\n[ S ]\n; note\n; \n; x\na = 1\nb = 2\n\n"},
		{"; top\na=1\n", "; top\na = 1\n\n"},
		{"[S\na=1\n[]\n", "\n[  ]\na = 1\n\n[  ]\n\n"},
		{" no sign \n=x\n", " = no sign\n = x\n\n"},
		{"a=1\n[_TIniF_GlobalSec]\nb=2\n", "a = 1\n\nb = 2\n\n"},
		{"a=1" + kNul + "2\n" + kNul + "\nb=3", "a = 1\nb = 3\n\n"},
		{"\xff\xfe=\x80\n", "\xff\xfe = \x80\n\n"},
		{"\n\r\n \n", "\n"},
	};
	for (const auto& row : rows)
		EXPECT_EQ(written_back(row.in), row.out) << row.in;
}

TEST(IniText, ALongerLineGoesOnAsTheNext)
{
	const std::string line = "k=" + std::string(18, 'v');
	EXPECT_EQ(written_back(line + "\nb=1\n", 20), "k = " + line.substr(2) + "\nb = 1\n\n");
	EXPECT_EQ(written_back(line + "w\nb=1\n", 20), "k = " + line.substr(2) + "\n = w\nb = 1\n\n");
	EXPECT_EQ(written_back(line + "\r\nb=1", 20), "k = " + line.substr(2) + "\nb = 1\n\n");
	EXPECT_EQ(written_back("[" + std::string(40, 'n') + "]", 20),
		"\n[  ]\n = " + std::string(20, 'n') + "\n = n]\n\n");
	// Raised to hold the global section's name.
	for (int lineLength : {INT_MIN, -1, 0, 1, 15}) {
		EXPECT_EQ(written_back("key=123456789012", lineLength), "key = 123456789012\n\n");
		EXPECT_EQ(written_back("key=1234567890123", lineLength), "key = 123456789012\n = 3\n\n");
	}
}

TEST(IniText, ThousandsOfSectionsAndEqualKeys)
{
	std::string text;
	for (int i = 0; i < 20000; i++)
		text += "[S" + std::to_string(i) + "]\nk=" + std::to_string(i) + "\n";
	text += "[All]\n";
	for (int i = 0; i < 200000; i++)
		text += "x\n";
	Stream stream(text);
	TIniFile ini(&stream, kLineLength);
	for (int i = 0; i < 20000; i++) {
		ASSERT_TRUE(ini.SectionExists(("s" + std::to_string(i)).c_str()));
		ini.ChangeSection(("S" + std::to_string(i)).c_str());
		ASSERT_EQ(value_of(ini, "K"), std::to_string(i));
	}
	ini.ChangeSection("ALL");
	EXPECT_EQ(value_of(ini, ""), "x");
	EXPECT_TRUE(ini.DeleteKey(""));
	EXPECT_EQ(value_of(ini, ""), "x");
}

TEST(IniStream, FailsInTheMiddle)
{
	const std::string text = "a=1\nbcd=234\ne=5\n";
	for (size_t limit = 0; limit <= text.size(); limit++) {
		Stream stream(text, limit);
		{
			TIniFile ini(&stream, kLineLength);
			EXPECT_EQ(stream.Position(), static_cast<off_t>(limit));
			stream.fReadLimit = LONG_MAX;
			ini.Flush(true);
		}
		EXPECT_EQ(stream.Written(), written_back(text.substr(0, limit))) << limit;
	}

	Stream stream(text);
	stream.fWriteLimit = 5;
	TIniFile ini(&stream, kLineLength);
	ini.WriteValue("a", "changed");
	EXPECT_TRUE(ini.Flush(false));
	EXPECT_EQ(stream.Text(), "a = c" + text.substr(5));
	EXPECT_EQ(value_of(ini, "a"), "changed");
}

TEST(IniStream, ReadLineTakesNoMoreThanTheLine)
{
	Stream stream("one\r\ntwo\n\nlast");
	TIniFile ini(16);
	char line[8] = "unset";
	EXPECT_EQ(ini.ReadLine(line, sizeof(line)), 0);
	ini.SetTo(&stream, 16);
	stream.Seek(0, SEEK_SET);
	const struct {
		int size, taken, position;
		const char* text;
	} rows[] = {{8, 5, 5, "one"}, {3, 2, 7, "tw"}, {1, 0, 7, ""}, {3, 2, 9, "o"}, {2, 1, 10, ""},
		{8, 4, 14, "last"}, {8, 0, 14, ""}};
	for (const auto& row : rows) {
		EXPECT_EQ(ini.ReadLine(line, row.size), row.taken);
		EXPECT_STREQ(line, row.text);
		EXPECT_EQ(stream.Position(), row.position);
	}
}

TEST(IniStream, AFolderIsNothing)
{
	struct Folder : BNode, Stream {
		explicit Folder(const char* path) : BNode(path), Stream("a=1") { }
	};
	TempFolder folder;
	Folder stream(folder.Path().c_str());
	TIniFile ini(&stream, kLineLength);
	EXPECT_EQ(joined(&TIniFile::EnumSections, ini), "");
	EXPECT_FALSE(ini.WriteValue("a", "1"));
}

TEST(IniValues, AreReadAsAStreamDoes)
{
	Stream stream("");
	TIniFile ini(&stream, kLineLength);
	const struct {
		const char* text;
		bool asBool;   // true where it does not parse
		long asLong;   // -7 where it does not parse
		float asFloat; // likewise
		rgb_color asColor;
	} rows[] = {
		{"", true, -7, -7, {0, 0, 0, 0}},
		{"0", false, 0, 0, {0, 0, 0, 0}},
		{"1", true, 1, 1, {1, 0, 0, 0}},
		{"2", true, 2, 2, {2, 0, 0, 0}},
		{"true", true, -7, -7, {0, 0, 0, 0}},
		{"+12abc", true, 12, 12, {12, 0, 0, 0}},
		{"0x10", false, 0, 0, {0, 0, 0, 0}},
		{"-1.5e3", true, -1, -1500, {255, 0, 0, 0}},
		{"1,5", true, 1, 1, {1, 0, 0, 0}},
		{"257 -1 3 4 5", true, 257, 257, {1, 255, 3, 4}},
		{"1 2\tx 4", true, 1, 1, {1, 2, 0, 0}},
		{"9223372036854775807", true, LONG_MAX, 9223372036854775807.f, {0, 0, 0, 0}},
		{"9223372036854775808", true, -7, 9223372036854775808.f, {0, 0, 0, 0}},
		{"1e39", true, 1, -7, {1, 0, 0, 0}},
		{"nan", true, -7, -7, {0, 0, 0, 0}},
	};
	for (const auto& row : rows) {
		SCOPED_TRACE(row.text);
		ini.WriteValue("k", row.text);
		bool asBool = true;
		long asLong = -7;
		long long asLongLong = -7;
		float asFloat = -7;
		rgb_color asColor = {9, 9, 9, 9};
		EXPECT_TRUE(ini.ReadValue("K", &asBool) && ini.ReadValue("K", &asLong)
			&& ini.ReadValue("K", &asLongLong) && ini.ReadValue("K", &asFloat)
			&& ini.ReadValue("K", &asColor));
		EXPECT_EQ(asBool, row.asBool);
		EXPECT_EQ(asLong, row.asLong);
		EXPECT_EQ(asLongLong, row.asLong);
		EXPECT_FLOAT_EQ(asFloat, row.asFloat);
		EXPECT_TRUE(asColor == row.asColor);
	}
	rgb_color color = {9, 9, 9, 9};
	EXPECT_FALSE(ini.ReadValue("other", &color));
	EXPECT_TRUE(color == (rgb_color{9, 9, 9, 9}));
}

TEST(IniValues, HaveTheirTexts)
{
	Stream stream("");
	TIniFile ini(&stream, kLineLength);
	const auto written = [&ini](auto value) {
		ini.WriteValue("k", value);
		return value_of(ini, "k");
	};
	EXPECT_EQ(written("Lyrics"), "Lyrics");
	EXPECT_EQ(written(static_cast<const char*>(nullptr)), "");
	EXPECT_EQ(written(true) + written(false), "10");
	EXPECT_EQ(written(-42L), "-42");
	EXPECT_EQ(written(LLONG_MIN), "-9223372036854775808");
	EXPECT_EQ(written(0.1f), "0.1");
	EXPECT_EQ(written(0.5f), "0.5");
	EXPECT_EQ(written(1234567.f), "1.23457e+06");
	EXPECT_EQ(written(-0.00001f), "-1e-05");
	EXPECT_EQ(written(INFINITY), "inf");
	EXPECT_EQ(written(rgb_color{255, 128, 0, 255}), "255 128 0 255");
	EXPECT_EQ(written(rgb_color{255, 255, 255, 255}), "255 255 255 255");
}

TEST(IniValues, LongTextsAreCut)
{
	Stream stream("");
	TIniFile ini(&stream, 16);
	const std::string text(40, 'x');
	const std::string cut(16, 'x');
	ini.ChangeSection((text + "1").c_str());
	ini.WriteValue(text.c_str(), text.c_str());
	ini.WriteValue((text + "2").c_str(), LLONG_MIN);
	ini.WriteComment((text + "\nsecond").c_str());
	EXPECT_EQ(joined(&TIniFile::EnumKeys, ini), cut + " ");
	EXPECT_TRUE(ini.SectionExists(cut.c_str()));
	char buffer[18];
	buffer[17] = '!';
	EXPECT_TRUE(ini.ReadValue(cut.c_str(), buffer));
	EXPECT_STREQ(buffer, "-922337203685477");
	EXPECT_TRUE(ini.ReadComment(buffer));
	EXPECT_EQ(buffer, cut);
	EXPECT_EQ(buffer[17], '!');
	ini.Flush(false);
	EXPECT_EQ(stream.Text(),
		"\n[ " + cut + " ]\n; " + cut + "\n; second\n" + cut + " = -922337203685477\n\n");
}

TEST(IniSections, AreMadeFoundAndDeleted)
{
	Stream stream("g=0\n[Data]\na=1\n[data]\na=2\n[Other]\n");
	TIniFile ini(&stream, kLineLength);
	EXPECT_EQ(joined(&TIniFile::EnumSections, ini), "_TIniF_GlobalSec Data data Other ");
	EXPECT_TRUE(ini.ChangeSection("DATA"));
	EXPECT_EQ(value_of(ini, "A"), "1");
	EXPECT_TRUE(ini.ChangeSection("New"));
	EXPECT_FALSE(ini.Flush(false)) << "making a section is no change";
	EXPECT_FALSE(ini.DeleteSection("missing"));
	EXPECT_FALSE(ini.DeleteKey("missing"));
	EXPECT_FALSE(ini.Flush(false));

	EXPECT_TRUE(ini.DeleteSection("DATA"));
	EXPECT_EQ(value_of(ini, "g"), "(none)") << "the current section stays";
	ini.ChangeSection("DATA");
	EXPECT_EQ(value_of(ini, "a"), "2");
	EXPECT_TRUE(ini.DeleteSection("DaTa"));
	EXPECT_EQ(value_of(ini, "g"), "0") << "the first is current";
	EXPECT_TRUE(ini.DeleteSection("_tinif_GLOBALsec"));
	EXPECT_EQ(joined(&TIniFile::EnumSections, ini), "_TIniF_GlobalSec Other New ");
	EXPECT_EQ(value_of(ini, "g"), "(none)");
	EXPECT_TRUE(ini.WriteValue("h", 1L));
	ini.Flush(false);
	EXPECT_EQ(stream.Written(), "h = 1\n\n[ Other ]\n\n[ New ]\n\n");

	ini.ChangeSection("Other");
	ini.CreateSection("Other", 0);
	EXPECT_TRUE(ini.DeleteSection("Other")) << "the one in front";
	EXPECT_EQ(value_of(ini, "h"), "1");
	EXPECT_TRUE(ini.SectionExists("other"));
}

TEST(IniSections, KeysOfALargeOne)
{
	constexpr int kPairs = 30000;
	std::string text;
	for (int i = 0; i < kPairs; i++)
		text += "Key" + std::to_string(i / 2) + "=" + std::to_string(i) + "\n";
	Stream stream(text);
	TIniFile ini(&stream, kLineLength);
	BList keys;
	ini.EnumKeys(&keys);
	ASSERT_EQ(keys.CountItems(), kPairs);
	EXPECT_STREQ(static_cast<const char*>(keys.ItemAt(kPairs - 1)), "Key14999");
	for (int i = 0; i < kPairs / 2; i++) {
		const std::string key = "kEY" + std::to_string(i);
		ASSERT_EQ(value_of(ini, key.c_str()), std::to_string(2 * i));
		ASSERT_TRUE(ini.DeleteKey(key.c_str()));
		ASSERT_EQ(value_of(ini, key.c_str()), std::to_string(2 * i + 1));
		if (i % 2 == 0)
			continue;
		ASSERT_TRUE(ini.DeleteKey(key.c_str()));
		ASSERT_FALSE(ini.KeyExists(key.c_str()));
		ASSERT_FALSE(ini.DeleteKey(key.c_str()));
		ini.WriteValue(key.c_str(), "again");
	}
	keys.MakeEmpty();
	ini.EnumKeys(&keys);
	ASSERT_EQ(keys.CountItems(), kPairs / 2);
	EXPECT_STREQ(static_cast<const char*>(keys.ItemAt(1)), "Key2");
	EXPECT_STREQ(static_cast<const char*>(keys.LastItem()), "kEY14999");
	EXPECT_EQ(value_of(ini, "key14999"), "again");
}

TEST(IniSections, CommentsAreGivenOnce)
{
	Stream stream("; one\n;\n[S]\n; two");
	TIniFile ini(&stream, kLineLength);
	char comment[kLineLength + 1];
	for (int i = 0; i < 2; i++) {
		EXPECT_TRUE(ini.ReadComment(comment));
		EXPECT_STREQ(comment, "one");
		EXPECT_TRUE(ini.ReadComment(comment));
		EXPECT_STREQ(comment, "");
		EXPECT_FALSE(ini.ReadComment(comment));
		ini.ChangeSection("S");
		ini.ChangeSection("_TIniF_GlobalSec");
		EXPECT_FALSE(ini.ReadComment(comment));
		ini.Flush(true);
	}
	ini.ChangeSection("S");
	ini.WriteComment("three");
	EXPECT_TRUE(ini.Flush(false));
	EXPECT_EQ(stream.Written(), "; one\n; \n\n[ S ]\n; two\n; three\n\n");
}

TEST(IniFile, WithoutAStreamNothingIsThere)
{
	TIniFile ini(kLineLength);
	char text[] = "same";
	const auto expectNothing = [&] {
		EXPECT_FALSE(ini.KeyExists("k") || ini.ReadValue("k", text) || ini.ReadComment(text));
		EXPECT_FALSE(ini.WriteValue("k", true) || ini.DeleteKey("k") || ini.WriteComment("c"));
		EXPECT_FALSE(ini.SectionExists("_TIniF_GlobalSec") || ini.DeleteSection("s"));
		EXPECT_EQ(joined(&TIniFile::EnumKeys, ini) + joined(&TIniFile::EnumSections, ini), "");
		EXPECT_FALSE(ini.Flush(true));
	};
	expectNothing();
	EXPECT_EQ(ini.SetTo(static_cast<BPositionIO*>(nullptr), kLineLength), B_OK);
	expectNothing();
	Stream stream("k=1");
	ini.SetTo(&stream, kLineLength);
	EXPECT_TRUE(ini.KeyExists("k"));
	EXPECT_FALSE(ini.KeyExists(nullptr) || ini.WriteValue(nullptr, 1L) || ini.DeleteKey(nullptr));
	ini.Unset();
	expectNothing();
	EXPECT_STREQ(text, "same");
}

TEST(IniFile, IsWrittenBackWhenItEnds)
{
	TempFolder folder;
	const std::string path = folder.Write("a.ini", "key = a long value\n\nrest = of it\n");
	const BEntry entry(path.c_str());
	entry_ref ref;
	ASSERT_EQ(entry.GetRef(&ref), B_OK);
	const BDirectory directory(folder.Path().c_str());
	folder.Write("b.ini", "");
	{
		TIniFile ini(path.c_str(), B_READ_WRITE, kLineLength);
		EXPECT_EQ(value_of(ini, "rest"), "of it");
		ini.DeleteKey("rest");
		ini.WriteValue("key", "v");
		EXPECT_EQ(ini.SetTo(&directory, "b.ini", B_READ_WRITE, kLineLength), B_OK);
		EXPECT_EQ(folder.Read("a.ini"), "key = v\n\nong value\n\nrest = of it\n")
			<< "not truncated";
		ini.WriteValue("b", 1L);
		ini.Unset();
		EXPECT_EQ(folder.Read("b.ini"), "b = 1\n\n");
		EXPECT_EQ(ini.SetTo(&ref, B_READ_WRITE | B_ERASE_FILE, kLineLength), B_OK);
		ini.WriteValue("c", 2L);
	}
	EXPECT_EQ(folder.Read("a.ini"), "c = 2\n\n");
	{
		TIniFile ini(&entry, B_READ_ONLY, kLineLength);
		ini.WriteValue("c", 3L);
	}
	EXPECT_EQ(folder.Read("a.ini"), "c = 2\n\n");
	TIniFile byRef(&ref, B_READ_ONLY, kLineLength);
	TIniFile byFolder(&directory, "a.ini", B_READ_ONLY, kLineLength);
	EXPECT_EQ(value_of(byRef, "c") + value_of(byFolder, "c"), "22");
}

TEST(IniFile, WhatCannotBeOpenedIsEmpty)
{
	TempFolder folder;
	TIniFile ini(kLineLength);
	const std::string missing = folder / "missing";
	EXPECT_EQ(ini.SetTo(missing.c_str(), B_READ_ONLY, kLineLength), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(joined(&TIniFile::EnumSections, ini), "_TIniF_GlobalSec ");
	EXPECT_TRUE(ini.WriteValue("k", 1L));
	EXPECT_EQ(value_of(ini, "k"), "1");
	EXPECT_NE(ini.SetTo(folder.Path().c_str(), B_READ_ONLY, kLineLength), B_OK);
	EXPECT_FALSE(ini.KeyExists("k"));
	EXPECT_FALSE(BEntry(missing.c_str()).Exists());

	const std::string path = folder.Write("unreadable", "k=1");
	ASSERT_EQ(chmod(path.c_str(), 0), 0);
	if (geteuid() != 0) {
		EXPECT_EQ(ini.SetTo(path.c_str(), B_READ_ONLY, kLineLength), B_PERMISSION_DENIED);
		EXPECT_FALSE(ini.KeyExists("k"));
	}
	ASSERT_EQ(chmod(path.c_str(), 0600), 0);
	EXPECT_EQ(ini.SetTo(path.c_str(), B_WRITE_ONLY, kLineLength), B_OK);
	EXPECT_EQ(joined(&TIniFile::EnumSections, ini), "_TIniF_GlobalSec ") << "cannot be read";
}
