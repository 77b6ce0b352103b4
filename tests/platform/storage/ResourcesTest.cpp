#include <Resources.h>

#include <dlfcn.h>
#include <gmock/gmock.h>

#include <Entry.h>

#include "support/temp_folder.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::string
content_of(const std::string& path)
{
	std::ifstream file(path, std::ios::binary);
	return {std::istreambuf_iterator<char>(file), {}};
}

const std::string kGolden = TEST_DATA "/golden/";

struct Description {
	type_code type;
	int32 id;
	std::string name;
	size_t size;

	bool operator==(const Description&) const = default;
};

std::vector<Description>
list(BResources& resources)
{
	std::vector<Description> result;
	Description item;
	const char* name;
	for (int32 i = 0; resources.GetResourceInfo(i, &item.type, &item.id, &name, &item.size); i++) {
		item.name = name;
		result.push_back(item);
	}
	return result;
}

std::string
load(BResources& resources, type_code type, int32 id)
{
	size_t size = 12345;
	const void* data = resources.LoadResource(type, id, &size);
	return data != NULL ? std::string(static_cast<const char*>(data), size) : "cannot be loaded";
}

const Description kEnglish = {'CSTR', 1, "English", 30};
const Description kLayout = {'ARCV', 1, "PrefViewRsrc", 798};
const Description kJapanese = {'CSTR', 2, "Japanese", 21};
const std::string kEnglishText = "Lyrics add-on\nFont\nSize\nColor\n";

TEST(Resources, ReadsWhatThePlatformWrote)
{
	for (const char* name : {"plain.rsrc", "elf32.so", "elf64.so", "elf64_symbols.so"}) {
		SCOPED_TRACE(name);
		BFile file((kGolden + "resources/" + name).c_str(), B_READ_ONLY);
		BResources resources(&file);
		ASSERT_EQ(resources.InitCheck(), B_OK);
		EXPECT_THAT(list(resources), ElementsAre(kEnglish, kLayout, kJapanese));
		EXPECT_EQ(load(resources, 'CSTR', 1), kEnglishText);
		EXPECT_EQ(load(resources, 'ARCV', 1), content_of(kGolden + "messages/preferences.hmf1"));
	}
	for (const char* name : {"empty.rsrc", "elf32_none.so", "elf64_none.so"}) {
		SCOPED_TRACE(name);
		BResources resources((kGolden + "resources/" + name).c_str());
		EXPECT_EQ(resources.InitCheck(), B_OK);
		EXPECT_THAT(list(resources), IsEmpty());
	}
	BResources grouped((kGolden + "resources/grouped.rsrc").c_str());
	EXPECT_THAT(
		list(grouped), ElementsAre(kEnglish, kJapanese, kLayout, Description{'ARCV', 2, "", 150}));
	BResources unnamed((kGolden + "resources/noname.rsrc").c_str());
	EXPECT_THAT(list(unnamed),
		ElementsAre(Description{'CSTR', -5, "", 30}, Description{'RAWT', INT32_MAX, "歌", 0}));
	EXPECT_EQ(load(unnamed, 'RAWT', INT32_MAX), "");
}

TEST(Resources, DamagedFilesAnswerAsThePlatformDoes)
{
	struct Case {
		const char* name;
		status_t status;
		size_t count;
	} const kCases[] = {
		{"p_zero_bytes", B_OK, 0}, // empty file
		{"p_magic_only", B_ERROR, 0},
		{"p_magic_wrong", B_IO_ERROR, 0},
		{"p_magic_half", B_OK, 0}, // RSXX
		{"p_two_bytes", B_IO_ERROR, 0},
		{"p_header_cut", B_ERROR, 0},
		{"p_index_cut", B_ERROR, 0},
		{"p_entries_cut", B_IO_ERROR, 0},
		{"p_data_cut", B_IO_ERROR, 0},
		{"p_table_cut", B_IO_ERROR, 0},
		{"p_end_cut", B_IO_ERROR, 0},
		{"p_extra_bytes", B_OK, 3},
		{"p_resmagic_wrong", B_IO_ERROR, 0},
		{"p_count_4", B_OK, 3},
		{"p_count_2", B_OK, 3},
		{"p_count_0", B_OK, 3},
		{"p_count_10001", B_IO_ERROR, 0},
		{"p_count_200", B_IO_ERROR, 0},
		{"p_index_offset", B_IO_ERROR, 0},
		{"p_admin_size", B_IO_ERROR, 0},
		{"p_index_offset2", B_IO_ERROR, 0},
		{"p_index_size2", B_IO_ERROR, 0},
		{"p_unknown_offset", B_IO_ERROR, 0},
		{"p_unknown_size", B_IO_ERROR, 0},
		{"p_table_offset", B_IO_ERROR, 0},
		{"p_table_size_huge", B_IO_ERROR, 0}, // the platform runs into a read error
		{"p_table_size_0", B_IO_ERROR, 0},
		{"p_entry_offset", B_IO_ERROR, 0},
		{"p_entry_size", B_IO_ERROR, 0},
		{"p_entry_wraps", B_OK, 3},
		{"p_entry_size_minus1", B_OK, 3},
		{"p_checksum", B_IO_ERROR, 0},
		{"p_terminator", B_IO_ERROR, 0},
		{"p_no_table_end", B_OK, 3},
		{"p_info_index_0", B_OK, 2},
		{"p_info_index_9", B_OK, 2},
		{"p_info_index_dup", B_IO_ERROR, 0},
		{"p_name_too_long", B_IO_ERROR, 0},
		{"p_name_no_nul", B_OK, 3},
		{"p_name_size_0", B_IO_ERROR, 0},
		{"p_separator", B_IO_ERROR, 0},
		{"e_elf_cut", B_IO_ERROR, 0},
		{"e_elf_no_resources", B_OK, 0},
		{"e_elf_short_ident", B_ERROR, 0},
		{"e_res_magic", B_IO_ERROR, 0},
		{"e_res_cut", B_IO_ERROR, 0},
		{"e_elf_version", B_UNSUPPORTED, 0},
		{"e_elf_class", B_UNSUPPORTED, 0},
		{"e_elf_phoff", B_IO_ERROR, 0},
		{"e_elf_shoff", B_IO_ERROR, 0},
		{"e_elf_pad", B_ERROR, 0},
	};
	for (const Case& each : kCases) {
		SCOPED_TRACE(each.name);
		BFile file((kGolden + "damaged/" + each.name).c_str(), B_READ_ONLY);
		ASSERT_EQ(file.InitCheck(), B_OK);
		BResources resources;
		EXPECT_EQ(resources.SetTo(&file), each.status);
		EXPECT_EQ(list(resources).size(), each.count);
		resources.PreloadResourceType();
	}
	BResources wraps((kGolden + "damaged/p_entry_wraps").c_str());
	EXPECT_EQ(wraps.PreloadResourceType(), -1);
	EXPECT_EQ(load(wraps, 'ARCV', 1), "cannot be loaded");
	EXPECT_EQ(load(wraps, 'CSTR', 1), kEnglishText);
}

TEST(Resources, WritesTheSameBytesAsThePlatform)
{
	TempFolder folder;
	for (const char* name : {"plain.rsrc", "grouped.rsrc", "noname.rsrc", "many.rsrc"}) {
		SCOPED_TRACE(name);
		std::string path = folder.Write(name, "");
		BResources from((kGolden + "resources/" + name).c_str());
		BResources to(path.c_str());
		for (const Description& item : list(from)) {
			std::string data = load(from, item.type, item.id);
			ASSERT_EQ(
				to.AddResource(item.type, item.id, data.data(), data.size(), item.name.c_str()),
				B_OK);
		}
		EXPECT_EQ(to.Sync(), B_OK);
		EXPECT_EQ(content_of(path), content_of(kGolden + "resources/" + name));
	}
	std::string path = folder.Write("empty", "");
	BResources emptied(path.c_str());
	emptied.AddResource('CSTR', 1, "text", 4);
	EXPECT_EQ(emptied.RemoveResource('CSTR', 1), B_OK);
	EXPECT_EQ(emptied.Sync(), B_OK);
	EXPECT_EQ(content_of(path), content_of(kGolden + "resources/empty.rsrc"));
}

TEST(Resources, AnElfFileStaysLoadableWithThem)
{
	TempFolder folder;
	BFile plain((kGolden + "resources/plain.rsrc").c_str(), B_READ_ONLY);
	for (const std::string name : {"elf32", "elf64"}) {
		SCOPED_TRACE(name);
		std::string path
			= folder.Write(name, content_of(kGolden + "resources/" + name + "_none.so"));
		BResources resources(path.c_str());
		EXPECT_EQ(resources.MergeFrom(&plain), B_OK);
		EXPECT_EQ(resources.Sync(), B_OK);
		EXPECT_EQ(content_of(path), content_of(kGolden + "resources/" + name + ".so"));
	}
	void* image = dlopen((folder / "elf64").c_str(), RTLD_NOW);
	EXPECT_NE(image, nullptr) << dlerror();
	if (image != NULL)
		dlclose(image);
}

TEST(Resources, TheSectionIsReadUntilSomethingIsWritten)
{
	TempFolder folder;
	std::string path = folder / "with_section.so";
	std::string command = "objcopy --add-section .beresources=" + kGolden + "resources/plain.rsrc "
		+ "--set-section-flags .beresources=noload,readonly " + kGolden
		+ "resources/elf64_symbols.so " + path + " && strip " + path;
	if (system("objcopy --version >/dev/null 2>&1") != 0)
		GTEST_SKIP() << "no objcopy here";
	ASSERT_EQ(system(command.c_str()), 0);
	{
		BResources resources(path.c_str());
		ASSERT_EQ(resources.InitCheck(), B_OK);
		EXPECT_THAT(list(resources), ElementsAre(kEnglish, kLayout, kJapanese));
		EXPECT_EQ(load(resources, 'CSTR', 1), kEnglishText);
		resources.RemoveResource('ARCV', 1);
		resources.AddResource('CSTR', 1, "new", 3, "English");
	} // writes
	BResources resources(path.c_str());
	EXPECT_THAT(list(resources), ElementsAre(kJapanese, Description{'CSTR', 1, "English", 3}));
	EXPECT_EQ(load(resources, 'CSTR', 1), "new");

	// What somebody else appended hides the section, but it cannot be read: the section is.
	std::filesystem::resize_file(path, 0);
	ASSERT_EQ(system(command.c_str()), 0);
	std::ofstream(path, std::ios::app | std::ios::binary) << std::string(5000, 'x');
	EXPECT_EQ(resources.SetTo(path.c_str()), B_OK);
	EXPECT_THAT(list(resources), ElementsAre(kEnglish, kLayout, kJapanese));
}

TEST(Resources, TheOtherByteOrderIsRead)
{
	// Big-endian numbers, one resource; the checksum is big-endian sums in both orders.
	auto word = [](std::string& to, uint32 value) {
		for (int shift = 24; shift >= 0; shift -= 8)
			to += static_cast<char>(value >> shift);
	};
	std::string table, file("RS\0\0", 4);
	word(table, 'CSTR');
	word(table, 7);
	word(table, 1);
	table += std::string("\0\3ab\0", 5) + std::string(8, '\xff');
	uint32 sum = 'CSTR' + 7 + 1 + 0x00036162 + 0x00ffffff + 0xffffffff + 0xff;
	word(table, sum);
	word(table, 0);
	for (uint32 value : {0x444f1000, 1, 0x44, 0x644})
		word(file, value);
	file += std::string(13 * 4, '\0');
	for (uint32 i = 0; i < 33; i++)
		word(file,
			i == 0        ? 0x44
				: i == 1  ? 0x600
				: i == 3  ? 0x644
				: i == 4  ? 0x168
				: i == 30 ? 0x7b1
				: i == 31 ? table.size()
						  : 0);
	for (uint32 value : {0x7ac, 5, 0})
		word(file, value);
	while (file.size() < 4 + 0x7ac)
		word(file, uint32(0x3e9ffff)); // impossible as an entry
	file += "hello" + table;

	TempFolder folder;
	BResources resources(folder.Write("big", file).c_str());
	EXPECT_EQ(resources.InitCheck(), B_OK);
	EXPECT_THAT(list(resources), ElementsAre(Description{'CSTR', 7, "ab", 5}));
	EXPECT_EQ(load(resources, 'CSTR', 7), "hello");
}

TEST(Resources, AddingReplacesAndFindingTakesTypeIdAndName)
{
	BResources resources; // in memory
	EXPECT_EQ(resources.AddResource('CSTR', 1, "one", 3, "first"), B_OK);
	EXPECT_EQ(resources.AddResource('CSTR', 2, "two", 3), B_OK);
	EXPECT_EQ(resources.AddResource('RAWT', 1, NULL, 0, "first"), B_OK);
	EXPECT_EQ(resources.AddResource('RAWT', 1, NULL, 1), B_BAD_VALUE);
	EXPECT_EQ(
		resources.AddResource('RAWT', 1, "", 0, std::string(70000, 'x').c_str()), B_NAME_TOO_LONG);
	EXPECT_EQ(resources.AddResource('CSTR', 1, "ONE!", 4, "first"), B_OK);
	EXPECT_THAT(list(resources),
		ElementsAre(Description{'CSTR', 2, "", 3}, Description{'RAWT', 1, "first", 0},
			Description{'CSTR', 1, "first", 4}));

	size_t size = 0;
	EXPECT_EQ(memcmp(resources.LoadResource('CSTR', "", &size), "two", 3), 0);
	EXPECT_EQ(resources.LoadResource('CSTR', static_cast<const char*>(NULL), &size), nullptr);
	EXPECT_EQ(resources.LoadResource('LONG', 1, &size), nullptr);
	EXPECT_EQ(size, 3u);
	const void* empty = resources.LoadResource('RAWT', "first", &size);
	EXPECT_NE(empty, nullptr);
	EXPECT_EQ(size, 0u);

	int32 id = -1;
	const char* name = NULL;
	EXPECT_TRUE(resources.GetResourceInfo('CSTR', 1, &id, &name, &size));
	EXPECT_EQ(id, 1);
	EXPECT_FALSE(resources.GetResourceInfo('CSTR', 2, &id, &name, &size));
	EXPECT_FALSE(resources.GetResourceInfo(-1, NULL, &id, &name, &size));
	EXPECT_TRUE(resources.GetResourceInfo(empty, NULL, &id, NULL, NULL));
	EXPECT_TRUE(resources.HasResource('RAWT', "first"));
	EXPECT_EQ(resources.RemoveResource(empty), B_OK);
	EXPECT_EQ(resources.RemoveResource('RAWT', 1), B_BAD_VALUE);
	EXPECT_EQ(resources.Sync(), B_NO_INIT);
}

TEST(Resources, FilesThatCannotBeUsed)
{
	TempFolder folder;
	BResources resources;
	EXPECT_EQ(resources.SetTo(static_cast<const char*>(NULL)), B_BAD_VALUE);
	EXPECT_EQ(resources.SetTo(static_cast<const BFile*>(NULL)), B_BAD_VALUE);
	BFile closed;
	EXPECT_EQ(resources.SetTo(&closed), B_BAD_VALUE);
	EXPECT_EQ(resources.SetTo((folder / "none").c_str()), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(resources.SetTo(folder.Path().c_str()), B_IS_A_DIRECTORY);
	EXPECT_EQ(resources.InitCheck(), B_IS_A_DIRECTORY);

	std::string path = folder.Write("text", "just text");
	EXPECT_EQ(resources.SetTo(path.c_str()), B_IO_ERROR);
	BFile readOnly(path.c_str(), B_READ_ONLY);
	EXPECT_EQ(resources.SetTo(&readOnly, true), B_NOT_ALLOWED);
	BFile golden((kGolden + "resources/plain.rsrc").c_str(), B_READ_ONLY);
	EXPECT_EQ(resources.SetTo(&golden), B_OK);
	EXPECT_EQ(resources.AddResource('CSTR', 9, "x", 1), B_NOT_ALLOWED);
	EXPECT_EQ(resources.RemoveResource('CSTR', 1), B_NOT_ALLOWED);
	EXPECT_EQ(resources.Sync(), B_NOT_ALLOWED);

	// To another file, whatever it holds: that one is used from then on.
	BFile other(path.c_str(), B_READ_WRITE);
	EXPECT_EQ(resources.WriteTo(&other), B_OK);
	EXPECT_EQ(content_of(path), content_of(kGolden + "resources/plain.rsrc"));
	EXPECT_EQ(resources.AddResource('CSTR', 9, "x", 1), B_OK);
	EXPECT_EQ(resources.SetTo(path.c_str(), true), B_OK); // had been written, is clobbered
	resources.Unset();
	EXPECT_EQ(content_of(path), content_of(kGolden + "resources/empty.rsrc"));
}

//!	The exit code of the tool with these arguments.
int
run_tool(const std::string& arguments)
{
	int status = system((TEST_TOOL " " + arguments + " 2>/dev/null").c_str());
	return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(ResourceTool, AddsListsAndRefuses)
{
	TempFolder folder;
	std::string text = folder.Write("text", kEnglishText);
	std::string target = folder / "target";
	EXPECT_EQ(run_tool(target + " CSTR 1 English " + text + " RAWT -2 '' /dev/null"), 1);
	EXPECT_FALSE(std::filesystem::exists(target));
	EXPECT_EQ(run_tool(target + " CSTR 1 English " + text + " RAWT -2 '' " + text), 0);
	EXPECT_EQ(run_tool("--list " + target + " >" + (folder / "list")), 0);
	EXPECT_EQ(
		folder.Read("list"), "'CSTR'\t1\t30 bytes\t\"English\"\n'RAWT'\t-2\t30 bytes\t\"\"\n");

	EXPECT_EQ(run_tool(""), 2);
	EXPECT_EQ(run_tool(target + " CSTR 1 English"), 2);
	EXPECT_EQ(run_tool(target + " CSTRX 1 English " + text), 2);
	EXPECT_EQ(run_tool(target + " CSTR 4294967296 English " + text), 2);
	EXPECT_EQ(run_tool(target + " CSTR 1x English " + text), 2);
	EXPECT_EQ(run_tool(text + " CSTR 1 English " + text), 1);
	EXPECT_EQ(folder.Read("text"), kEnglishText);
	EXPECT_EQ(run_tool("--list " + (folder / "none")), 1);
}

TEST(ResourceTool, TheBuildPutsThemIntoALibrary)
{
	BResources resources(TEST_LIBRARY);
	EXPECT_EQ(resources.InitCheck(), B_OK);
	EXPECT_EQ(load(resources, 'CSTR', 1), content_of(kGolden + "README.md"));
	EXPECT_TRUE(resources.HasResource('CSTR', "with a blank"));
	EXPECT_EQ(load(resources, 'ARCV', -7), content_of(kGolden + "messages/preferences.hmf1"));

	void* image = dlopen(TEST_LIBRARY, RTLD_NOW);
	ASSERT_NE(image, nullptr) << dlerror();
	auto answer = reinterpret_cast<int (*)()>(dlsym(image, "answer"));
	EXPECT_EQ(answer(), 42);
	dlclose(image);
}

} // namespace
