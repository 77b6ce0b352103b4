#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

#include <Entry.h>
#include <Message.h>
#include <Path.h>

#include "prefs/TPref.h"
#include "prefs/presets.h"
#include "support/temp_folder.h"

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

namespace {

//! A settings directory of the test's own.
class Presets : public testing::Test {
protected:
	Presets() { setenv("XDG_CONFIG_HOME", (fFolder / "config").c_str(), 1); }
	~Presets() override { unsetenv("XDG_CONFIG_HOME"); }

	static std::string Path(const std::string& name)
	{
		return "config/MERION/Shared/Presets/" + name;
	}

	status_t Save(const std::string& name, float size)
	{
		TPref pref;
		pref.fFontSize = size;
		pref.fFontFamily = "Family";
		pref.fStayOnTop = true;
		return save_preset(name, pref);
	}

	size_t CountFiles()
	{
		return std::distance(fs::directory_iterator(fFolder / Path("")), fs::directory_iterator());
	}

	TempFolder fFolder;
};

} // namespace

TEST_F(Presets, AreSavedListedLoadedAndDeleted)
{
	EXPECT_EQ(list_presets(), Names{});
	BEntry folder;
	ASSERT_EQ(get_preset_folder(&folder), B_OK);
	BPath path;
	ASSERT_EQ(folder.GetPath(&path), B_OK);
	EXPECT_EQ(path.Path() + std::string("/"), fFolder / Path(""));

	const Names sorted = {"B", "b", "c d.arc", std::string(255, '~'), "夜"};
	for (const int i : {3, 0, 4, 2, 1})
		EXPECT_EQ(Save(sorted[i], 20), B_OK) << sorted[i];
	EXPECT_EQ(Save("b", 30), B_OK) << "over the old one";
	EXPECT_EQ(CountFiles(), 5u) << "what was written aside is gone";
	EXPECT_EQ(list_presets(), sorted);

	TPref pref;
	ASSERT_EQ(load_preset("b", &pref), B_OK);
	EXPECT_EQ(pref.fFontSize, 30.0f);
	EXPECT_EQ(pref.fFontFamily.Get(), "Family");
	EXPECT_FALSE(pref.fStayOnTop) << "not of the appearance";
	ASSERT_EQ(load_preset("夜", &pref), B_OK);
	EXPECT_EQ(pref.fFontSize, 20.0f);

	EXPECT_EQ(delete_preset("b"), B_OK);
	EXPECT_EQ(delete_preset("b"), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(load_preset("b", &pref), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(delete_all_presets(), B_OK);
	EXPECT_EQ(CountFiles(), 0u);
}

TEST_F(Presets, NamesThatAreNone)
{
	fFolder.Write("outside", "");
	const struct {
		std::string name;
		status_t status;
	} cases[] = {
		{"", B_BAD_VALUE},
		{".", B_BAD_VALUE},
		{"..", B_BAD_VALUE},
		{".hidden", B_BAD_VALUE},
		{"a/b", B_BAD_VALUE},
		{"../outside", B_BAD_VALUE},
		{"/outside", B_BAD_VALUE},
		{std::string("a\0b", 3), B_BAD_VALUE},
		{std::string(256, 'a'), B_NAME_TOO_LONG},
		{std::string(300, 'a'), B_NAME_TOO_LONG},
	};
	for (const auto& [name, status] : cases) {
		SCOPED_TRACE(name);
		TPref pref;
		EXPECT_EQ(Save(name, 20), status);
		EXPECT_EQ(load_preset(name, &pref), status);
		EXPECT_EQ(delete_preset(name), status);
	}
	BEntry folder;
	ASSERT_EQ(get_preset_folder(&folder), B_OK);
	EXPECT_EQ(CountFiles(), 0u);
	EXPECT_TRUE(fs::exists(fFolder / "outside"));
}

TEST_F(Presets, WhatIsNoneIsLeftOut)
{
	ASSERT_EQ(Save("good", 20), B_OK);
	const std::string bytes = fFolder.Read(Path("good"));
	BMessage partial;
	ASSERT_TRUE(TPref().ArchiveAppearance(&partial));
	partial.RemoveName("BGIF");
	std::string partialBytes(partial.FlattenedSize(), '\0');
	ASSERT_EQ(partial.Flatten(partialBytes.data(), partialBytes.size()), B_OK);

	const Names damaged = {"cut", "empty", "large", "partial", "text"};
	fFolder.Write(Path("cut"), bytes.substr(0, bytes.size() - 1));
	fFolder.Write(Path("empty"), "");
	fFolder.Write(Path("partial"), partialBytes);
	fFolder.Write(Path("text"), "no preset at all");
	fFolder.Write(Path("large"), bytes);
	fs::resize_file(fFolder / Path("large"), 4ull << 30);
	fFolder.Write(Path(".Aside-1-2"), bytes);
	fFolder.Write("outside", bytes);
	fs::create_symlink(fFolder / "outside", fFolder / Path("link"));
	fs::create_directory(fFolder / Path("folder"));
	ASSERT_EQ(mkfifo((fFolder / Path("pipe")).c_str(), 0600), 0);
	EXPECT_EQ(list_presets(), Names{"good"});

	TPref pref;
	for (const std::string& name : damaged)
		EXPECT_EQ(load_preset(name, &pref), B_BAD_DATA) << name;
	for (const std::string name : {"link", "folder", "pipe"}) {
		EXPECT_EQ(load_preset(name, &pref), B_ENTRY_NOT_FOUND) << name;
		EXPECT_EQ(delete_preset(name), B_ENTRY_NOT_FOUND) << name;
	}
	EXPECT_EQ(pref.fFontSize, TPref().fFontSize) << "a failure changes nothing";
	EXPECT_EQ(delete_preset("text"), B_OK) << "a damaged one can go";

	EXPECT_EQ(delete_all_presets(), B_OK);
	EXPECT_EQ(list_presets(), Names{});
	for (const char* name : {"cut", "link", "folder"})
		EXPECT_TRUE(fs::exists(fs::symlink_status(fFolder / Path(name)))) << name << " is none";
}

TEST_F(Presets, AFailureIsToldAndKeepsTheOldOne)
{
	ASSERT_EQ(Save("good", 20), B_OK);
	const std::string bytes = fFolder.Read(Path("good"));
	fs::create_directory(fFolder / Path("folder"));
	EXPECT_NE(Save("folder", 20), B_OK) << "something else has the name";
	EXPECT_TRUE(fs::is_directory(fFolder / Path("folder")));

	// for root too: no file may grow to its size, as on a full disk
	signal(SIGXFSZ, SIG_IGN);
	struct rlimit old;
	ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
	const struct rlimit small = {100, old.rlim_max};
	ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
	const status_t status = Save("good", 30);
	setrlimit(RLIMIT_FSIZE, &old);
	EXPECT_NE(status, B_OK);
	EXPECT_EQ(fFolder.Read(Path("good")), bytes);
	EXPECT_EQ(CountFiles(), 2u) << "what was written aside is gone";

	fs::remove_all(fFolder / "config");
	fFolder.Write("config", "a file where the folder should be");
	EXPECT_NE(Save("good", 30), B_OK);
	EXPECT_EQ(list_presets(), Names{});
}

TEST_F(Presets, NobodyReadsHalfOfOne)
{
	ASSERT_EQ(Save("one", 1), B_OK);
	std::atomic<bool> isDone = false;
	std::thread writers[2];
	for (std::thread& writer : writers)
		writer = std::thread([&] {
			for (int i = 0; i < 200; i++)
				EXPECT_EQ(Save("one", 1 + i % 2), B_OK);
		});
	std::thread reader([&] {
		while (!isDone) {
			TPref pref;
			EXPECT_EQ(load_preset("one", &pref), B_OK);
			EXPECT_EQ(list_presets(), Names{"one"});
		}
	});
	for (std::thread& writer : writers)
		writer.join();
	isDone = true;
	reader.join();
}
