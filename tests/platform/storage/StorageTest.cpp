#include <Directory.h>
#include <Entry.h>
#include <File.h>
#include <FindDirectory.h>
#include <Path.h>

#include <fcntl.h>
#include <future>
#include <gmock/gmock.h>
#include <set>

#include "storage/RefTable.h"
#include "support/temp_folder.h"

using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace fs = std::filesystem;

namespace {

const std::string kLongestName(255, 'n');

std::string
path_of(const BEntry& entry)
{
	BPath path;
	return entry.GetPath(&path) == B_OK ? path.Path() : "none";
}

TEST(Entry, PathsAndWhatTheyAnswer)
{
	TempFolder folder;
	fs::create_directories(folder / "日本/歌詞");
	folder.Write("日本/歌詞/曲.lrc", "x");
	folder.Write("file", "");
	fs::create_symlink("日本/歌詞/曲.lrc", folder / "link");
	fs::create_symlink("日本/歌詞", folder / "folder link");
	fs::create_symlink("nothing", folder / "dangling");
	fs::create_symlink("loop b", folder / "loop a");
	fs::create_symlink("loop a", folder / "loop b");

	struct Case {
		std::string path;
		bool traverse;
		status_t status;
		bool exists;
		std::string result; // in the folder; "none" without one
	} const kCases[] = {
		{"日本/歌詞/曲.lrc", false, B_OK, true, "/日本/歌詞/曲.lrc"},
		{"日本//歌詞/./../歌詞/曲.lrc", false, B_OK, true, "/日本/歌詞/曲.lrc"},
		{"日本/歌詞/", false, B_OK, true, "/日本/歌詞"},
		{"日本/歌詞/..", false, B_OK, true, "/日本"},
		{"日本/歌詞/.", false, B_OK, true, "/日本/歌詞"},
		{"nothing", false, B_OK, false, "/nothing"},
		{kLongestName, false, B_OK, false, "/" + kLongestName},
		{kLongestName + "n", false, B_NAME_TOO_LONG, false, "none"},
		{"nothing/file", false, B_ENTRY_NOT_FOUND, false, "none"},
		{"file/file", false, B_NOT_A_DIRECTORY, false, "none"},
		{"link", false, B_OK, true, "/link"},
		{"link", true, B_OK, true, "/日本/歌詞/曲.lrc"},
		{"folder link/曲.lrc", false, B_OK, true, "/日本/歌詞/曲.lrc"},
		{"folder link", true, B_OK, true, "/日本/歌詞"},
		{"dangling", false, B_OK, true, "/dangling"},
		{"dangling", true, B_OK, false, "/nothing"},
		{"loop a", false, B_OK, true, "/loop a"},
		{"loop a", true, B_LINK_LIMIT, false, "none"},
		{"loop a/file", false, B_LINK_LIMIT, false, "none"},
		{std::string(5000, '/'), false, B_NAME_TOO_LONG, false, "none"},
	};
	for (const Case& each : kCases) {
		SCOPED_TRACE(each.path);
		BDirectory root(folder.Path().c_str());
		BEntry entry(&root, each.path.c_str(), each.traverse);
		EXPECT_EQ(entry.InitCheck(), each.status);
		EXPECT_EQ(entry.Exists(), each.exists);
		EXPECT_EQ(path_of(entry), each.status == B_OK ? folder.Path() + each.result : "none");
		if (each.status != B_OK)
			continue;

		entry_ref ref;
		EXPECT_EQ(entry.GetRef(&ref), B_OK);
		BEntry again(&ref);
		EXPECT_TRUE(again == entry);
		EXPECT_EQ(path_of(again), path_of(entry));
	}
	EXPECT_EQ(BEntry("").InitCheck(), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(BEntry(static_cast<const char*>(NULL)).InitCheck(), B_BAD_VALUE);
	EXPECT_EQ(BEntry().GetPath(NULL), B_BAD_VALUE);
	EXPECT_EQ(BEntry().InitCheck(), B_NO_INIT);
}

TEST(Entry, TheRootFolder)
{
	BEntry root("/");
	EXPECT_EQ(path_of(root), "/");
	BEntry parent;
	EXPECT_EQ(root.GetParent(&parent), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(parent.InitCheck(), B_NO_INIT);
	entry_ref ref;
	ASSERT_EQ(root.GetRef(&ref), B_OK);
	EXPECT_EQ(path_of(BEntry(&ref)), "/");
	EXPECT_EQ(BEntry("/proc").GetParent(&parent), B_OK);
	EXPECT_TRUE(parent == root);
	EXPECT_EQ(path_of(BEntry("/..")), "/");
}

TEST(Entry, RefsThatLeadNowhere)
{
	TempFolder folder;
	fs::create_directory(folder / "songs");
	folder.Write("songs/a.mp3", "");
	entry_ref ref;
	ASSERT_EQ(get_ref_for_path((folder / "songs/a.mp3").c_str(), &ref), B_OK);
	BEntry entry(&ref);

	EXPECT_EQ(BEntry(static_cast<const entry_ref*>(NULL)).InitCheck(), B_BAD_VALUE);
	entry_ref bad;
	EXPECT_EQ(BEntry(&bad).InitCheck(), B_BAD_VALUE);
	bad = ref;
	bad.directory += 1000000;
	EXPECT_EQ(BEntry(&bad).InitCheck(), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(BPath(&bad).InitCheck(), B_ENTRY_NOT_FOUND);
	bad = ref;
	bad.set_name("../songs/a.mp3");
	EXPECT_EQ(BEntry(&bad).InitCheck(), B_BAD_VALUE);

	// After the folder has moved the ref is stale, but who held the entry keeps it.
	fs::rename(folder / "songs", folder / "music");
	EXPECT_EQ(BEntry(&ref).InitCheck(), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(path_of(entry), folder / "music/a.mp3");
	// Another folder in its place is not taken for it.
	fs::create_directory(folder / "songs");
	EXPECT_EQ(BEntry(&ref).InitCheck(), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(get_ref_for_path((folder / "music/a.mp3").c_str(), &bad), B_OK);
	EXPECT_EQ(path_of(BEntry(&ref)), folder / "music/a.mp3");

	fs::remove_all(folder / "music");
	EXPECT_EQ(BEntry(&ref).InitCheck(), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(entry.Exists(), false);
	EXPECT_EQ(path_of(entry), "none");
}

TEST(Entry, RefsCompareAndCopy)
{
	entry_ref a(5, 7, "a"), b(5, 7, "b"), unset;
	entry_ref copy = a;
	EXPECT_TRUE(copy == a);
	EXPECT_NE(static_cast<void*>(copy.name), a.name);
	copy = copy;
	EXPECT_TRUE(copy == a);
	copy = unset;
	EXPECT_TRUE(copy == unset && copy != a);
	std::set<entry_ref> set{b, a, unset, a, entry_ref(4, 9, "z")};
	EXPECT_EQ(set.size(), 4u);
	EXPECT_TRUE(*std::next(set.begin()) == a);
	EXPECT_EQ(a.set_name(NULL), B_OK);
	EXPECT_EQ(a.name, nullptr);
}

TEST(Entry, MovingAndRemoving)
{
	TempFolder folder;
	folder.Write("a", "A");
	folder.Write("b", "B");
	fs::create_directories(folder / "sub/full");
	BEntry entry((folder / "a").c_str());

	EXPECT_EQ(entry.Rename("b"), B_FILE_EXISTS);
	EXPECT_EQ(folder.Read("b"), "B");
	EXPECT_EQ(entry.Rename("c"), B_OK);
	EXPECT_STREQ(entry.Name(), "c");
	EXPECT_EQ(entry.Rename("b", true), B_OK);
	EXPECT_EQ(folder.Read("b"), "A");
	EXPECT_EQ(entry.Rename("none/b"), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(entry.Rename(NULL), B_BAD_VALUE);

	BDirectory sub((folder / "sub").c_str());
	EXPECT_EQ(entry.MoveTo(&sub), B_OK);
	EXPECT_EQ(path_of(entry), folder / "sub/b");
	EXPECT_EQ(entry.Rename((folder / "back").c_str()), B_OK);
	EXPECT_EQ(path_of(entry), folder / "back");
	EXPECT_EQ(BEntry((folder / "sub").c_str()).Remove(), B_DIRECTORY_NOT_EMPTY);
	EXPECT_EQ(BEntry((folder / "sub/full").c_str()).Remove(), B_OK);
	EXPECT_EQ(entry.Remove(), B_OK);
	EXPECT_EQ(entry.Remove(), B_ENTRY_NOT_FOUND);
}

TEST(Statable, TimesPermissionsAndNodes)
{
	TempFolder folder;
	std::string path = folder.Write("file", "12345");
	fs::create_symlink("file", folder / "link");
	BEntry entry(path.c_str());
	BNode node(path.c_str());
	for (BStatable* statable : {static_cast<BStatable*>(&entry), static_cast<BStatable*>(&node)}) {
		time_t time = 0;
		mode_t mode = 0;
		off_t size = 0;
		EXPECT_EQ(statable->SetModificationTime(1000000000), B_OK);
		EXPECT_EQ(statable->GetModificationTime(&time), B_OK);
		EXPECT_EQ(time, 1000000000);
		EXPECT_EQ(statable->SetPermissions(0640), B_OK);
		EXPECT_EQ(statable->GetPermissions(&mode), B_OK);
		EXPECT_EQ(mode, 0640u);
		EXPECT_EQ(statable->GetSize(&size), B_OK);
		EXPECT_EQ(size, 5);
		EXPECT_EQ(statable->GetSize(NULL), B_BAD_VALUE);
		EXPECT_TRUE(statable->IsFile() && !statable->IsDirectory() && !statable->IsSymLink());
	}
	EXPECT_TRUE(BNode((folder / "link").c_str()).IsSymLink());
	EXPECT_TRUE(BEntry((folder / "link").c_str(), true).IsFile());
	EXPECT_TRUE(BNode(folder.Path().c_str()).IsDirectory());

	node_ref ref, other;
	EXPECT_EQ(entry.GetNodeRef(&ref), B_OK);
	EXPECT_EQ(node.GetNodeRef(&other), B_OK);
	EXPECT_TRUE(ref == other && BNode(&entry) == node);
	EXPECT_EQ(node.Sync(), B_OK);

	time_t time = 42;
	BEntry none((folder / "none").c_str());
	EXPECT_EQ(none.GetModificationTime(&time), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(none.GetNodeRef(&ref), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(none.SetModificationTime(0), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(BNode().GetModificationTime(&time), B_NO_INIT);
	EXPECT_EQ(time, 42);
}

TEST(File, OpenModes)
{
	TempFolder folder;
	folder.Write("file", "old content");
	fs::create_directory(folder / "folder");
	fs::create_symlink("file", folder / "link");
	fs::create_symlink("link to itself", folder / "link to itself");
	ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);

	const uint32 kNewFile = B_WRITE_ONLY | B_CREATE_FILE | B_ERASE_FILE;
	struct Case {
		const char* name;
		uint32 mode;
		status_t status;
	} const kCases[] = {
		{"file", B_READ_ONLY, B_OK},
		{"link", B_READ_WRITE, B_OK},
		{"file", B_WRITE_ONLY | B_CREATE_FILE, B_OK},
		{"file", B_WRITE_ONLY | B_CREATE_FILE | B_FAIL_IF_EXISTS, B_FILE_EXISTS},
		{"folder", B_WRITE_ONLY | B_CREATE_FILE | B_FAIL_IF_EXISTS, B_FILE_EXISTS},
		{"file", B_READ_ONLY | B_ERASE_FILE, B_NOT_ALLOWED},
		{"file", 3, B_BAD_VALUE},
		{"file", 0x10000, B_BAD_VALUE},
		{"none", B_READ_WRITE, B_ENTRY_NOT_FOUND},
		{"none/none", kNewFile, B_ENTRY_NOT_FOUND},
		{"file/none", kNewFile, B_NOT_A_DIRECTORY},
		{"folder", B_READ_ONLY, B_IS_A_DIRECTORY},
		{"folder", kNewFile, B_IS_A_DIRECTORY},
		{"link to itself", B_READ_ONLY, B_LINK_LIMIT},
		{"pipe", B_READ_ONLY, B_NOT_ALLOWED},
		{"pipe", kNewFile, B_NOT_ALLOWED},
		{"/dev/zero", B_READ_ONLY, B_NOT_ALLOWED},
	};
	BDirectory root(folder.Path().c_str());
	for (const Case& each : kCases) {
		SCOPED_TRACE(each.name);
		auto opened = std::async(std::launch::async, [&] {
			BFile file(&root, each.name, each.mode);
			return file.InitCheck();
		});
		ASSERT_EQ(opened.wait_for(std::chrono::seconds(20)), std::future_status::ready);
		EXPECT_EQ(opened.get(), each.status);
	}
	EXPECT_EQ(folder.Read("file"), "old content");

	BFile file;
	EXPECT_EQ(file.SetTo((folder / kLongestName).c_str(), kNewFile), B_OK);
	EXPECT_TRUE(file.IsWritable() && !file.IsReadable());
	EXPECT_EQ(file.SetTo((folder / (kLongestName + "n")).c_str(), kNewFile), B_NAME_TOO_LONG);
	EXPECT_FALSE(file.IsWritable());
	EXPECT_EQ(file.Write("x", 1), B_NAME_TOO_LONG);
	EXPECT_EQ(file.SetTo(static_cast<const char*>(NULL), B_READ_ONLY), B_BAD_VALUE);
	EXPECT_EQ(file.SetTo(static_cast<const BEntry*>(NULL), B_READ_ONLY), B_BAD_VALUE);
}

TEST(File, ReadingAndWriting)
{
	TempFolder folder;
	std::string path = folder.Write("file", "0123456789");
	BFile file(path.c_str(), B_READ_WRITE | B_OPEN_AT_END);
	EXPECT_EQ(file.Position(), 10);
	EXPECT_EQ(file.Write("AB", 2), 2);
	EXPECT_EQ(file.WriteAt(0, "ab", 2), 2); // not at the end
	EXPECT_EQ(file.Position(), 12);

	char buffer[100] = {};
	EXPECT_EQ(file.Read(buffer, 10), 0);
	EXPECT_EQ(file.ReadAt(8, buffer, 100), 4);
	EXPECT_STREQ(buffer, "89AB");
	EXPECT_EQ(file.Seek(-1, SEEK_SET), B_BAD_VALUE);
	EXPECT_EQ(file.Seek(0, 77), B_BAD_VALUE);
	EXPECT_EQ(file.ReadAt(-1, buffer, 1), B_BAD_VALUE);
	EXPECT_EQ(file.Read(NULL, 1), B_BAD_VALUE);
	EXPECT_EQ(file.Seek(-4, SEEK_END), 8);
	BFile copy = file;
	EXPECT_EQ(copy.Read(buffer, 2), 2);
	EXPECT_EQ(file.Position(), 10); // shared
	EXPECT_EQ(file.SetSize(3), B_OK);
	off_t size = 0;
	EXPECT_EQ(copy.GetSize(&size), B_OK);
	EXPECT_EQ(size, 3);
	file.Unset();
	EXPECT_EQ(file.Read(buffer, 1), B_NO_INIT);
	EXPECT_EQ(copy.InitCheck(), B_OK);
	EXPECT_EQ(folder.Read("file"), "ab2");

	// The open mode, not the file's permissions, decides: that holds for root, too.
	BFile readOnly(path.c_str(), B_READ_ONLY);
	EXPECT_LT(readOnly.Write("x", 1), B_OK);
	EXPECT_LT(readOnly.SetSize(0), B_OK);
	EXPECT_EQ(folder.Read("file"), "ab2");
}

TEST(Path, Normalizing)
{
	TempFolder folder;
	fs::create_directories(folder / "a/b");
	fs::create_symlink("a/b", folder / "link");
	const std::string& root = folder.Path();
	struct Case {
		std::string dir;
		const char* leaf;
		bool normalize;
		status_t status;
		std::string result;
	} const kCases[] = {
		{"/not/there/file", NULL, false, B_OK, "/not/there/file"},
		{"/not/there/file", NULL, true, B_ENTRY_NOT_FOUND, ""},
		{"/not/there/../file", NULL, false, B_ENTRY_NOT_FOUND, ""},
		{root, "a/b/file", false, B_OK, root + "/a/b/file"},
		{root + "//a", NULL, false, B_OK, root + "/a"},
		{root + "/a/", NULL, false, B_OK, root + "/a"},
		{root + "/a/b/..", NULL, false, B_OK, root + "/a"},
		{root + "/", "./a", false, B_OK, root + "/a"},
		{root + "/link/file", NULL, false, B_OK, root + "/link/file"},
		{root + "/link/file", NULL, true, B_OK, root + "/a/b/file"},
		{root + "/link", NULL, true, B_OK, root + "/link"},
		{root, "/absolute", false, B_BAD_VALUE, ""},
		{"/", NULL, false, B_OK, "/"},
		{"/", "..hidden", false, B_OK, "/..hidden"},
		{"", NULL, false, B_ENTRY_NOT_FOUND, ""},
		{".", NULL, false, B_OK, fs::current_path()},
		{"some name", NULL, false, B_OK, fs::current_path() / "some name"},
		{root, std::string(5000, 'x').c_str(), false, B_NAME_TOO_LONG, ""},
	};
	for (const Case& each : kCases) {
		SCOPED_TRACE(each.dir);
		BPath path("/before");
		// The last row's leaf is gone by now.
		const char* leaf = each.status == B_NAME_TOO_LONG ? NULL : each.leaf;
		std::string dir
			= each.status == B_NAME_TOO_LONG ? each.dir + std::string(5000, 'x') : each.dir;
		EXPECT_EQ(path.SetTo(dir.c_str(), leaf, each.normalize), each.status);
		EXPECT_EQ(path.InitCheck(), each.status);
		if (each.status == B_OK)
			EXPECT_EQ(path.Path(), each.result);
		else
			EXPECT_EQ(path.Path(), nullptr);
	}
}

TEST(Path, PartsAndAppending)
{
	BPath path("/日本/曲");
	EXPECT_STREQ(path.Leaf(), "曲");
	EXPECT_EQ(path.Append("歌詞.lrc"), B_OK);
	EXPECT_TRUE(path == "/日本/曲/歌詞.lrc");
	EXPECT_EQ(path.SetTo(path.Path(), "again"), B_OK); // of its own text
	EXPECT_TRUE(path == "/日本/曲/歌詞.lrc/again");
	EXPECT_EQ(path.GetParent(&path), B_OK);
	EXPECT_TRUE(path == "/日本/曲/歌詞.lrc");
	EXPECT_EQ(path.Append("/x"), B_BAD_VALUE);
	EXPECT_EQ(path.Append("y"), B_BAD_VALUE);
	EXPECT_TRUE(path == BPath() && path != "/" && path == static_cast<const char*>(NULL));

	BPath root("/"), parent;
	EXPECT_STREQ(root.Leaf(), "");
	EXPECT_EQ(BPath("/x").GetParent(&parent), B_OK);
	EXPECT_TRUE(parent == root);
	EXPECT_EQ(root.GetParent(&parent), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(parent.Path(), nullptr);
	EXPECT_EQ(BPath(static_cast<const char*>(NULL)).InitCheck(), B_BAD_VALUE);
}

TEST(Directory, ListsMakesAndFinds)
{
	TempFolder folder;
	fs::create_directory(folder / "sub");
	fs::create_symlink("sub", folder / "link");
	BDirectory dir(folder.Path().c_str());
	BFile file;
	EXPECT_EQ(dir.CreateFile("曲.lrc", &file), B_OK);
	EXPECT_EQ(file.Write("text", 4), 4);
	EXPECT_EQ(dir.CreateFile("曲.lrc", NULL, true), B_FILE_EXISTS);
	EXPECT_EQ(folder.Read("曲.lrc"), "text");
	EXPECT_EQ(dir.CreateFile("曲.lrc", &file), B_OK);
	EXPECT_EQ(folder.Read("曲.lrc"), "");
	BDirectory made;
	EXPECT_EQ(dir.CreateDirectory("made", &made), B_OK);
	EXPECT_EQ(made.CountEntries(), 0);
	EXPECT_EQ(dir.CreateDirectory("曲.lrc", &made), B_FILE_EXISTS);
	EXPECT_EQ(made.InitCheck(), B_NO_INIT);

	std::set<std::string> names;
	entry_ref ref;
	while (dir.GetNextRef(&ref) == B_OK) {
		EXPECT_TRUE(BEntry(&ref).Exists());
		names.insert(ref.name);
	}
	EXPECT_THAT(names, UnorderedElementsAre("sub", "link", "曲.lrc", "made"));
	EXPECT_EQ(dir.GetNextRef(&ref), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(dir.CountEntries(), 4);
	BEntry entry;
	names.clear();
	while (dir.GetNextEntry(&entry, true) == B_OK)
		names.insert(entry.Name());
	EXPECT_THAT(names, UnorderedElementsAre("sub", "曲.lrc", "made"));

	EXPECT_EQ(dir.FindEntry("none", &entry), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(entry.InitCheck(), B_NO_INIT);
	EXPECT_EQ(dir.FindEntry("sub", &entry), B_OK);
	EXPECT_TRUE(dir.Contains(&entry) && dir.Contains("link", B_SYMLINK_NODE));
	EXPECT_FALSE(dir.Contains("sub", B_FILE_NODE) || dir.Contains("none") || dir.Contains(".."));

	// Through the node, as long as it is where it was.
	node_ref node;
	EXPECT_EQ(entry.GetNodeRef(&node), B_OK);
	EXPECT_EQ(BDirectory(&node).InitCheck(), B_OK);
	fs::rename(folder / "sub", folder / "sub2");
	EXPECT_EQ(BDirectory(&node).InitCheck(), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(BDirectory(&dir, "曲.lrc").InitCheck(), B_NOT_A_DIRECTORY);
	EXPECT_EQ(BDirectory(static_cast<const char*>(NULL)).InitCheck(), B_BAD_VALUE);
	EXPECT_EQ(BDirectory().GetNextRef(&ref), B_NO_INIT);
}

TEST(Directory, MakesWholePaths)
{
	TempFolder folder;
	folder.Write("file", "");
	EXPECT_EQ(create_directory((folder / "a/b//c/").c_str(), 0700), B_OK);
	EXPECT_TRUE(fs::is_directory(folder / "a/b/c"));
	EXPECT_EQ(create_directory((folder / "a/b/c").c_str(), 0700), B_OK);
	EXPECT_EQ(create_directory((folder / "file").c_str(), 0700), B_NOT_A_DIRECTORY);
	EXPECT_EQ(create_directory((folder / "file/a").c_str(), 0700), B_NOT_A_DIRECTORY);
	EXPECT_EQ(create_directory((folder / (kLongestName + "n")).c_str(), 0700), B_NAME_TOO_LONG);
	EXPECT_EQ(create_directory("", 0700), B_BAD_VALUE);
	EXPECT_EQ(create_directory(NULL, 0700), B_BAD_VALUE);
	EXPECT_EQ(create_directory("/", 0700), B_OK);
}

//!	Sets a variable for as long as it lives; NULL removes it.
class Variable {
public:
	Variable(const char* name, const char* value) : fName(name)
	{
		const char* old = getenv(name);
		if (old != NULL)
			fOld = old;
		_Set(value);
	}
	~Variable() { _Set(fOld ? fOld->c_str() : NULL); }

private:
	void _Set(const char* value)
	{
		if (value != NULL)
			setenv(fName, value, 1);
		else
			unsetenv(fName);
	}

	const char* fName;
	std::optional<std::string> fOld;
};

TEST(FindDirectory, FollowsTheDesktopsVariables)
{
	TempFolder folder;
	std::string home = folder / "home";
	std::string config = folder / "config//settings/";
	Variable setHome("HOME", home.c_str());
	BPath path;
	{
		Variable set("XDG_CONFIG_HOME", config.c_str());
		EXPECT_EQ(find_directory(B_USER_SETTINGS_DIRECTORY, &path), B_OK);
		EXPECT_EQ(path.Path(), folder / "config/settings");
		EXPECT_FALSE(fs::exists(folder / "config"));
		EXPECT_EQ(find_directory(B_USER_SETTINGS_DIRECTORY, &path, true), B_OK);
		EXPECT_TRUE(fs::is_directory(folder / "config/settings"));
	}
	Variable relative("XDG_CONFIG_HOME", "relative/path");
	EXPECT_EQ(find_directory(B_USER_SETTINGS_DIRECTORY, &path), B_OK);
	EXPECT_EQ(path.Path(), home + "/.config");

	folder.Write("home", "in the way");
	EXPECT_EQ(find_directory(B_USER_SETTINGS_DIRECTORY, &path, true), B_NOT_A_DIRECTORY);
	EXPECT_EQ(path.Path(), nullptr);
	EXPECT_EQ(find_directory(static_cast<directory_which>(-3), &path), B_BAD_VALUE);
	EXPECT_EQ(find_directory(B_USER_DIRECTORY, NULL), B_BAD_VALUE);
	// Then the user data base knows, or nobody does.
	Variable noHome("HOME", NULL);
	status_t status = find_directory(B_USER_DIRECTORY, &path);
	EXPECT_TRUE(status == B_OK ? path.Path()[0] == '/' : status == B_ENTRY_NOT_FOUND);
}

TEST(RefTable, ForgetsOnlyWhatIsGone)
{
	TempFolder folder;
	BPrivate::RefTable table;
	std::vector<node_ref> kept;
	for (int i = 0; i < 3000; i++) {
		std::string path = folder / std::to_string(i);
		node_ref ref(1, i);
		if (i % 100 == 0) {
			struct stat stat;
			folder.Write(std::to_string(i), "");
			ASSERT_EQ(lstat(path.c_str(), &stat), 0);
			ref = node_ref(stat.st_dev, stat.st_ino);
			kept.push_back(ref);
		}
		table.Remember(ref, path);
	}
	EXPECT_LT(table.Count(), 2000u);
	std::string path;
	for (const node_ref& ref : kept)
		EXPECT_EQ(table.PathFor(ref, path), B_OK);
}

TEST(RefTable, IsUsedByManyThreads)
{
	TempFolder folder;
	folder.Write("a", "");
	std::vector<std::future<int>> threads;
	for (int i = 0; i < 4; i++) {
		threads.push_back(std::async(std::launch::async, [&] {
			int failures = 0;
			for (int n = 0; n < 300; n++) {
				entry_ref ref;
				node_ref node;
				BEntry entry((folder / "a").c_str());
				failures += entry.GetRef(&ref) != B_OK || entry.GetNodeRef(&node) != B_OK
					|| BEntry(&ref).InitCheck() != B_OK;
			}
			return failures;
		}));
	}
	for (auto& thread : threads)
		EXPECT_EQ(thread.get(), 0);
}

} // namespace
