#include <gtest/gtest.h>

#include <archive.h>
#include <archive_entry.h>
#include <chrono>
#include <cstring>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <vector>

#include <DataIO.h>
#include <Entry.h>
#include <Message.h>
#include <TranslatorRoster.h>

#include "prefs/TPref.h"
#include "prefs/skin_colors.h"
#include "support/temp_folder.h"

namespace fs = std::filesystem;

namespace {

const std::string kText
	= "[Text]\r\nNormal=#00FF80\r\nCurrent=#102030\r\nNormalBG=#0a0B0c\r\nSelectedBG=#ffFFfe\r\n";
const std::string kTaken = "00ff80 0a0b0c 102030 fffffe ffff99";
const std::string kDefaults = "ffffff 000000 ffffcc 333300 ffff99";

//! The five colours in the order of their indices.
std::string
colors_of(TPref& pref)
{
	std::string text;
	for (int32 i = 0; i < kColorCount; i++) {
		const rgb_color color = pref.Color(i);
		EXPECT_EQ(color.alpha, 255);
		char digits[8];
		snprintf(digits, sizeof(digits), "%02x%02x%02x ", color.red, color.green, color.blue);
		text += digits;
	}
	text.pop_back();
	return text;
}

std::string
colors_of_text(const std::string& text)
{
	TPref pref;
	std::istringstream stream(text);
	read_skin_colors(stream, &pref);
	return colors_of(pref);
}

// How what is told of a file begins.
constexpr const char* kListed = "PK\1\2";
constexpr const char* kFile = "PK\3\4";

struct File {
	std::string name;
	std::string bytes;
};
using Files = std::vector<File>;

struct Options {
	const char* method = "deflate"; // or "store"
	bool isEncrypted = false;
	mode_t type = AE_IFREG;
};

std::string
zip_of(const Files& files, const Options& options = {})
{
	size_t room = 64 * 1024;
	for (const File& file : files)
		room += 256 + 2 * file.name.size() + file.bytes.size();
	std::string bytes(room, '\0');
	size_t used = 0;
	archive* writer = archive_write_new();
	archive_write_set_format_zip(writer);
	archive_write_set_format_option(writer, "zip", "compression", options.method);
	if (options.isEncrypted) {
		archive_write_set_passphrase(writer, "secret");
		archive_write_set_format_option(writer, "zip", "encryption", "traditional");
	}
	archive_write_set_bytes_in_last_block(writer, 1);
	EXPECT_EQ(archive_write_open_memory(writer, bytes.data(), bytes.size(), &used), ARCHIVE_OK);
	for (const File& file : files) {
		archive_entry* entry = archive_entry_new();
		archive_entry_set_pathname(entry, file.name.c_str());
		archive_entry_set_filetype(entry, options.type);
		archive_entry_set_perm(entry, 0777);
		archive_entry_set_size(entry, file.bytes.size());
		if (options.type == AE_IFLNK)
			archive_entry_set_symlink(entry, file.bytes.c_str());
		archive_write_header(writer, entry);
		archive_write_data(writer, file.bytes.data(), file.bytes.size());
		archive_entry_free(entry);
	}
	EXPECT_EQ(archive_write_close(writer), ARCHIVE_OK);
	archive_write_free(writer);
	bytes.resize(used);
	bytes.shrink_to_fit();
	return bytes;
}

//! Puts a number into what is told of the last file: in the list at the archive's end, or before the file.
std::string
with_number(std::string zip, const char* signature, size_t offset, uint32 number)
{
	memcpy(&zip[zip.rfind(signature) + offset], &number, sizeof(number));
	return zip;
}

std::string
with_size(const std::string& zip, uint32 size)
{
	return with_number(with_number(zip, kListed, 24, size), kFile, 22, size);
}

std::string
red(const char* digits = "ff0000")
{
	return std::string("[Text] Normal=#") + digits;
}

const std::string kRed = "ff0000 000000 ffffcc 333300 ffff99";

//! The temporary files are in a folder of the test's own, which has to be empty again.
class Skins : public testing::Test {
protected:
	Skins()
	{
		fs::create_directory(fFolder / "tmp");
		setenv("TMPDIR", (fFolder / "tmp").c_str(), 1);
	}

	~Skins() override
	{
		EXPECT_TRUE(fs::is_empty(fFolder / "tmp"));
		unsetenv("TMPDIR");
	}

	status_t Import(const std::string& name, std::string* colors)
	{
		TPref pref;
		entry_ref ref;
		EXPECT_EQ(get_ref_for_path((fFolder / name).c_str(), &ref), B_OK);
		const status_t status = import_skin_colors(ref, &pref);
		*colors = colors_of(pref);
		return status;
	}

	bool IsSkin(const std::string& name)
	{
		entry_ref ref;
		EXPECT_EQ(get_ref_for_path((fFolder / name).c_str(), &ref), B_OK);
		return is_skin(ref);
	}

	TempFolder fFolder;
};

} // namespace

TEST(SkinColors, AreTakenOutOfTheText)
{
	const struct {
		const char* what;
		std::string text;
		std::string colors;
	} cases[] = {
		{"all four", kText, kTaken},
		{"lower case, other sections", "[A]\nNormal=#111111\n[Text]\nNormal=#ff0000\n[B]", kRed},
		{"no section", "Normal=#ff0000", kDefaults},
		{"a section of another case", "[text] Normal=#ff0000", kDefaults},
		{"the background's key alone", "[Text] NormalBG=#ff0000",
			"ffffff ff0000 ffffcc 333300 ffff99"},
		{"keys are told by case", "[Text] normal=#ff0000", kDefaults},
		{"the tenth word", "[Text] 1 2 3 4 5 6 7 8 9 Normal=#ff0000", kRed},
		{"the eleventh word", "[Text] 1 2 3 4 5 6 7 8 9 10 Normal=#ff0000", kDefaults},
		{"blanks", "[Text] Normal = #ff0000", kDefaults},
		{"a blank before the digits", "[Text] Normal=# ff0000", kDefaults},
		{"five digits", "[Text] Normal=#ff000", kDefaults},
		{"seven digits", "[Text] Normal=#ff00001", kRed},
		{"the first word counts, short or not", "[Text] Normal=#ff Normal=#ff0000", kDefaults},
		{"the first word counts", "[Text] Normal=#ff0000 Normal=#00ff00", kRed},
		{"within a word", "[Text] ;Normal=#ff0000;", kRed},
		{"no digits at all", "[Text] Normal=#GZgz:/", "23232f 000000 ffffcc 333300 ffff99"},
		{"empty", "", kDefaults},
		{"bytes", std::string("\0\xff[Text]\0 [Text] \0Normal=#ff0000", 33), kRed},
		{"UTF-16", std::string("\xff\xfe[\0T\0e\0x\0t\0]\0", 14), kDefaults},
	};
	for (const auto& [what, text, colors] : cases) {
		SCOPED_TRACE(what);
		EXPECT_EQ(colors_of_text(text), colors);
	}
}

TEST_F(Skins, OfAFolder)
{
	std::string colors;
	fs::create_directory(fFolder / "skin");
	EXPECT_EQ(Import("skin", &colors), B_ENTRY_NOT_FOUND);
	fs::create_directories(fFolder / "skin/sub");
	fFolder.Write("skin/sub/PLEDIT.TXT", kText);
	EXPECT_EQ(Import("skin", &colors), B_ENTRY_NOT_FOUND) << "in a folder of the folder";
	EXPECT_FALSE(IsSkin("skin"));

	fs::create_directory(fFolder / "skin/Pledit.TXT");
	ASSERT_EQ(mkfifo((fFolder / "skin/PLedit.TXT").c_str(), 0600), 0);
	fFolder.Write("skin/pledit.txt", kText);
	EXPECT_TRUE(IsSkin("skin"));
	EXPECT_EQ(Import("skin", &colors), B_OK);
	EXPECT_EQ(colors, kTaken);
	fFolder.Write("skin/PLEDIT.TXT", red());
	EXPECT_EQ(Import("skin", &colors), B_OK);
	EXPECT_EQ(colors, kRed) << "the usual name goes first";

	fs::create_symlink("skin", fFolder / "link");
	EXPECT_EQ(Import("link", &colors), B_OK);
	EXPECT_EQ(colors, kRed);

	fs::resize_file(fFolder / "skin/PLEDIT.TXT", 1024 * 1024);
	EXPECT_EQ(Import("skin", &colors), B_OK);
	fs::resize_file(fFolder / "skin/PLEDIT.TXT", 1024 * 1024 + 1);
	EXPECT_EQ(Import("skin", &colors), B_FILE_TOO_LARGE);
	EXPECT_EQ(colors, kDefaults);
}

TEST_F(Skins, OfAnArchive)
{
	const std::string big = red() + std::string(1024 * 1024, ' ');
	const std::string whole = zip_of({{"PLEDIT.TXT", red()}});
	std::string wrongSum = zip_of({{"PLEDIT.TXT", red()}}, {.method = "store"});
	wrongSum[wrongSum.find("ff0000")] = '0';
	std::string badStream = whole;
	badStream[30 + strlen("PLEDIT.TXT") + 40] ^= 0x55;
	Files many(70000, File{"x", ""}); // stored: to begin packing so often takes long
	many.push_back({"PLEDIT.TXT", red()});

	const struct {
		const char* what;
		std::string bytes;
		status_t status;
	} cases[] = {
		{"packed", whole, B_OK},
		{"stored", zip_of({{"PLEDIT.TXT", red()}}, {.method = "store"}), B_OK},
		{"any case, a folder", zip_of({{"My Skin/pledit.Txt", red()}}), B_OK},
		{"a Japanese folder", zip_of({{"スキン/PLEDIT.TXT", red()}}), B_OK},
		{"a folder by backslash", zip_of({{"Skin\\PLEDIT.TXT", red()}}), B_OK},
		{"the outermost of two",
			zip_of({{"a/b/pledit.txt", kText}, {"PLEDIT.TXT", red()}, {"a/pledit.txt", kText}}),
			B_OK},
		{"the first of two", zip_of({{"a/pledit.txt", red()}, {"b/PLEDIT.TXT", kText}}), B_OK},
		{"the one that can be read", zip_of({{"PLEDIT.TXT", big}, {"a/PLEDIT.TXT", red()}}), B_OK},
		{"bytes before it", "#!/bin/sh\n" + whole, B_OK},
		{"a path out of it", zip_of({{"../../../../PLEDIT.TXT", red()}}), B_OK},
		{"an absolute path", zip_of({{"/tmp/PLEDIT.TXT", red()}}), B_OK},
		{"none", zip_of({{"other.txt", red()}, {"xPLEDIT.TXT", red()}, {"PLEDIT.TXT/a", red()}}),
			B_ENTRY_NOT_FOUND},
		{"empty", zip_of({}), B_NO_TRANSLATOR},
		{"nested", zip_of({{"skin.zip", whole}}, {.method = "store"}), B_ENTRY_NOT_FOUND},
		{"a link", zip_of({{"PLEDIT.TXT", "/etc/passwd"}}, {.type = AE_IFLNK}), B_ENTRY_NOT_FOUND},
		{"encrypted", zip_of({{"PLEDIT.TXT", red()}}, {.isEncrypted = true}), B_NOT_ALLOWED},
		{"too large", zip_of({{"PLEDIT.TXT", big}}), B_FILE_TOO_LARGE},
		{"too large, but claims little", with_size(zip_of({{"PLEDIT.TXT", big}}), 5),
			B_ILLEGAL_DATA},
		{"claims 2 GB", with_size(whole, 0x80000000), B_FILE_TOO_LARGE},
		{"its packed bytes claim 2 GB", with_number(whole, kListed, 20, 0x7fffffff),
			B_ILLEGAL_DATA},
		{"begins at 4 GB", with_number(whole, kListed, 42, 0xfffffff0), B_ILLEGAL_DATA},
		{"more files than a skin has", zip_of(many, {.method = "store"}), B_ENTRY_NOT_FOUND},
		{"a wrong sum", wrongSum, B_ILLEGAL_DATA},
		{"damaged bytes", badStream, B_ILLEGAL_DATA},
		{"without its end", whole.substr(0, whole.size() - 30), B_NO_TRANSLATOR},
		{"no archive", kText, B_NO_TRANSLATOR},
		{"nothing", "", B_NO_TRANSLATOR},
	};
	for (const auto& [what, bytes, status] : cases) {
		SCOPED_TRACE(what);
		fFolder.Write("skin.sk", bytes);
		const auto begin = std::chrono::steady_clock::now();
		std::string colors;
		EXPECT_EQ(Import("skin.sk", &colors), status);
		EXPECT_EQ(colors, status == B_OK ? kRed : kDefaults);
		EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
		EXPECT_TRUE(fs::is_empty(fFolder / "tmp"));
	}
	fFolder.Write("skin.sk", whole);
	EXPECT_TRUE(IsSkin("skin.sk"));
	fFolder.Write("skin.sk", kText);
	EXPECT_FALSE(IsSkin("skin.sk"));
	EXPECT_FALSE(IsSkin("missing"));
	std::string colors;
	EXPECT_EQ(Import("missing", &colors), B_ENTRY_NOT_FOUND);

	// cut anywhere it is no archive, and nothing stays behind
	for (size_t length = 0; length < whole.size(); length++) {
		fFolder.Write("cut", whole.substr(0, length));
		EXPECT_NE(Import("cut", &colors), B_OK) << length;
		EXPECT_EQ(colors, kDefaults) << length;
	}
}

TEST_F(Skins, AFolderForTheTemporaryFileIsNeeded)
{
	fFolder.Write("skin.zip", zip_of({{"PLEDIT.TXT", red()}}));
	fFolder.Write("file", "");
	setenv("TMPDIR", (fFolder / "file").c_str(), 1);
	std::string colors;
	EXPECT_NE(Import("skin.zip", &colors), B_OK);
	EXPECT_EQ(colors, kDefaults);
}

TEST_F(Skins, TheTranslatorsRequest)
{
	const std::string zip = zip_of({{"a.txt", "text"}});
	const std::string target = fFolder / "target";
	const std::string taken = fFolder.Write("taken", "old");
	const struct {
		const char* entry;
		std::string target;
		status_t status;
	} cases[] = {
		{"A.TXT", target, B_OK},
		{"A.TXT", taken, B_FILE_EXISTS},
		{"A.TXT", fFolder / "no/folder", B_ENTRY_NOT_FOUND},
		{"A.TXT", "relative", B_BAD_VALUE},
		{"", target, B_BAD_VALUE},
		{nullptr, target, B_NO_TRANSLATOR},
		{"A.TXT", "", B_BAD_VALUE},
	};
	BTranslatorRoster* roster = BTranslatorRoster::Default();
	BMallocIO out;
	for (const auto& [entry, path, status] : cases) {
		BMemoryIO source(zip.data(), zip.size());
		BMessage request;
		if (entry != nullptr)
			request.AddString("Arc/entry", entry);
		request.AddString("Arc/target", path.c_str());
		EXPECT_EQ(roster->Translate(&source, NULL, &request, &out, 0), status) << path;
		EXPECT_EQ(roster->Translate(NULL, NULL, &request, &out, 0), B_BAD_VALUE);
		EXPECT_EQ(roster->Translate(&source, NULL, &request, NULL, 0), B_BAD_VALUE);
		EXPECT_EQ(roster->Translate(&source, NULL, NULL, &out, 0), B_NO_TRANSLATOR);
		EXPECT_EQ(fs::exists(target), status == B_OK);
		if (status == B_OK) {
			EXPECT_EQ(fFolder.Read("target"), "text");
			EXPECT_EQ(fs::status(target).permissions(), fs::perms(0600));
			fs::remove(target);
		}
	}
	EXPECT_EQ(fFolder.Read("taken"), "old");
}
