#include <NodeMonitor.h>

#include <condition_variable>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <mutex>
#include <sys/inotify.h>
#include <thread>

#include <Directory.h>
#include <Entry.h>
#include <File.h>
#include <Looper.h>
#include <Message.h>

#include "storage/EventTranslator.h"
#include "storage/FileDescriptor.h"
#include "storage/RefTable.h"
#include "support/temp_folder.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

namespace fs = std::filesystem;

namespace {

const auto kWatchdog = std::chrono::seconds(20);

node_ref
node_of(const std::string& path)
{
	node_ref ref;
	BEntry(path.c_str()).GetNodeRef(&ref);
	return ref;
}

//!	"moved a to b" and the like; numbers of nodes as their names in a test.
std::string
describe(const BMessage& message)
{
	std::string name = message.GetString("name", "?");
	switch (message.GetInt32("opcode", 0)) {
		case B_ENTRY_CREATED:
			return "created " + name;
		case B_ENTRY_REMOVED:
			return "removed " + name;
		case B_ENTRY_MOVED:
			return std::string("moved ") + message.GetString("from name", "?") + " to " + name;
		case B_STAT_CHANGED:
			return "changed";
	}
	return "something else";
}

//!	Collects what the monitor tells it.
class Listener : public BLooper {
public:
	Listener() : BLooper("node monitor test") { }

	void MessageReceived(BMessage* message) override
	{
		if (message->what != B_NODE_MONITOR) {
			BLooper::MessageReceived(message);
			return;
		}
		std::lock_guard lock(fLock);
		fMessages.push_back(*message);
		fArrived.notify_all();
	}

	//!	Waits for the message; all before it and it are taken.
	std::vector<std::string> WaitFor(const std::string& text)
	{
		std::vector<std::string> texts;
		std::unique_lock lock(fLock);
		fArrived.wait_for(lock, kWatchdog, [&] {
			for (; fTaken < fMessages.size(); fTaken++) {
				texts.push_back(describe(fMessages[fTaken]));
				if (texts.back() == text) {
					fTaken++;
					return true;
				}
			}
			return false;
		});
		EXPECT_THAT(texts, Contains(text)) << "it did not come in time";
		return texts;
	}

	//!	The message taken last.
	BMessage Last() const
	{
		std::lock_guard lock(fLock);
		return fMessages[fTaken - 1];
	}

private:
	mutable std::mutex fLock;
	std::condition_variable fArrived;
	std::vector<BMessage> fMessages;
	size_t fTaken = 0;
};

class NodeMonitor : public testing::Test {
protected:
	void SetUp() override
	{
		fListener->Run();
		fFolder = node_of(fTemp.Path());
	}

	void TearDown() override
	{
		stop_watching(BMessenger(fListener));
		if (fListener->Lock())
			fListener->Quit();
	}

	status_t Watch(const node_ref& ref, uint32 flags = B_WATCH_ALL)
	{
		return watch_node(&ref, flags, fListener);
	}

	status_t WatchFile(const std::string& name) { return Watch(node_of(fTemp / name)); }

	//!	Makes an entry that everything that happened before is told ahead of.
	std::vector<std::string> AllSoFar()
	{
		std::string name = "fence " + std::to_string(++fFences);
		fs::create_directory(fTemp / name);
		std::vector<std::string> texts = fListener->WaitFor("created " + name);
		texts.pop_back();
		return texts;
	}

	TempFolder fTemp;
	Listener* fListener = new Listener; // quits itself
	node_ref fFolder;
	int fFences = 0;
};

TEST_F(NodeMonitor, EntriesOfAFolder)
{
	ASSERT_EQ(Watch(fFolder, B_WATCH_DIRECTORY), B_OK);
	fTemp.Write("新しい曲.lrc", "text");
	EXPECT_THAT(fListener->WaitFor("created 新しい曲.lrc"), ElementsAre("created 新しい曲.lrc"));
	node_ref file = node_of(fTemp / "新しい曲.lrc");
	BMessage created = fListener->Last();
	EXPECT_EQ(created.what, uint32(B_NODE_MONITOR));
	EXPECT_EQ(created.GetInt32("device", -1), int32(fFolder.device));
	EXPECT_EQ(created.GetInt64("directory", -1), int64(fFolder.node));
	EXPECT_EQ(created.GetInt64("node", -1), int64(file.node));

	fs::rename(fTemp / "新しい曲.lrc", fTemp / "b");
	EXPECT_THAT(
		fListener->WaitFor("moved 新しい曲.lrc to b"), ElementsAre("moved 新しい曲.lrc to b"));
	BMessage moved = fListener->Last();
	EXPECT_EQ(moved.GetInt64("from directory", -1), int64(fFolder.node));
	EXPECT_EQ(moved.GetInt64("to directory", -1), int64(fFolder.node));
	EXPECT_EQ(moved.GetInt64("node", -1), int64(file.node));

	fs::remove(fTemp / "b");
	fListener->WaitFor("removed b");
	BMessage removed = fListener->Last();
	EXPECT_EQ(removed.GetInt64("directory", -1), int64(fFolder.node));
	EXPECT_EQ(removed.GetInt64("node", -1), int64(file.node));

	// Links and folders are there at once, and so is what is moved in.
	TempFolder elsewhere;
	elsewhere.Write("c", "");
	fTemp.Write("target", "");
	fs::create_symlink("target", fTemp / "link");
	fs::create_hard_link(fTemp / "target", fTemp / "hard link");
	fs::rename(elsewhere / "c", fTemp / "c");
	EXPECT_THAT(fListener->WaitFor("created c"),
		ElementsAre("created target", "created link", "created hard link", "created c"));
	fs::rename(fTemp / "c", elsewhere / "c");
	EXPECT_THAT(fListener->WaitFor("removed c"), ElementsAre("removed c"));
}

TEST_F(NodeMonitor, AFileSavedInPlace)
{
	fTemp.Write("song.lrc", "old");
	ASSERT_EQ(WatchFile("song.lrc"), B_OK);
	ASSERT_EQ(Watch(fFolder), B_OK);
	{
		BFile file((fTemp / "song.lrc").c_str(), B_WRITE_ONLY | B_ERASE_FILE);
		for (int i = 0; i < 20; i++)
			EXPECT_EQ(file.Write("line\n", 5), 5);
		EXPECT_EQ(file.Sync(), B_OK);
		EXPECT_THAT(AllSoFar(), IsEmpty()); // half a file is nobody's business
	}
	EXPECT_THAT(fListener->WaitFor("changed"), ElementsAre("changed"));
	EXPECT_EQ(fListener->Last().GetInt64("node", -1), int64(node_of(fTemp / "song.lrc").node));
	EXPECT_EQ(BEntry((fTemp / "song.lrc").c_str()).SetModificationTime(1000000000), B_OK);
	EXPECT_THAT(fListener->WaitFor("changed"), ElementsAre("changed"));
	EXPECT_EQ(BEntry((fTemp / "song.lrc").c_str()).SetPermissions(0600), B_OK);
	EXPECT_THAT(fListener->WaitFor("changed"), ElementsAre("changed"));
}

TEST_F(NodeMonitor, AFileSavedAsideAndRenamed)
{
	fTemp.Write("song.lrc", "old");
	node_ref old = node_of(fTemp / "song.lrc");
	ASSERT_EQ(Watch(old), B_OK);
	ASSERT_EQ(Watch(fFolder), B_OK);
	fTemp.Write("song.tmp", "new");
	fListener->WaitFor("created song.tmp");
	fs::rename(fTemp / "song.tmp", fTemp / "song.lrc");
	EXPECT_THAT(AllSoFar(),
		UnorderedElementsAre("changed", "removed song.lrc", "moved song.tmp to song.lrc"));

	// The new one is another node.
	ASSERT_NE(old, node_of(fTemp / "song.lrc"));
	ASSERT_EQ(WatchFile("song.lrc"), B_OK);
	fTemp.Write("song.lrc", "in place");
	EXPECT_THAT(AllSoFar(), ElementsAre("changed"));
}

TEST_F(NodeMonitor, AFileDeletedAndMadeAgain)
{
	fTemp.Write("song.lrc", "old");
	ASSERT_EQ(Watch(fFolder, B_WATCH_DIRECTORY), B_OK);
	for (int i = 0; i < 5; i++) {
		ASSERT_EQ(WatchFile("song.lrc"), B_OK);
		fs::remove(fTemp / "song.lrc");
		fTemp.Write("song.lrc", "new");
		std::vector<std::string> texts = fListener->WaitFor("created song.lrc");
		EXPECT_THAT(texts, Contains("removed song.lrc"));

		// Its number is often the old one's: the new watch must be another all the same.
		ASSERT_EQ(WatchFile("song.lrc"), B_OK);
		AllSoFar();
		fTemp.Write("song.lrc", "newer");
		EXPECT_THAT(AllSoFar(), Contains("changed"));
	}
}

TEST_F(NodeMonitor, AHalfWrittenFileIsHeldBackForAMoment)
{
	ASSERT_EQ(Watch(fFolder), B_OK);
	BFile file((fTemp / "slow.lrc").c_str(), B_WRITE_ONLY | B_CREATE_FILE);
	EXPECT_EQ(file.Write("half", 4), 4);
	fListener->WaitFor("created slow.lrc");

	// Who watches it then is told of its end.
	ASSERT_EQ(WatchFile("slow.lrc"), B_OK);
	file.Unset();
	EXPECT_THAT(fListener->WaitFor("changed"), ElementsAre("changed"));
}

TEST_F(NodeMonitor, AFolderIsRenamed)
{
	fs::create_directory(fTemp / "songs");
	fTemp.Write("songs/a.lrc", "");
	node_ref songs = node_of(fTemp / "songs");
	ASSERT_EQ(Watch(songs), B_OK);
	ASSERT_EQ(WatchFile("songs/a.lrc"), B_OK);
	fs::rename(fTemp / "songs", fTemp / "music");
	EXPECT_THAT(fListener->WaitFor("moved songs to music"), ElementsAre("moved songs to music"));

	// What happens in it goes on being told, and can be found.
	fTemp.Write("music/b.lrc", "");
	fListener->WaitFor("created b.lrc");
	entry_ref ref(songs.device, songs.node, "b.lrc");
	EXPECT_TRUE(BEntry(&ref).Exists());
	fs::rename(fTemp / "music/a.lrc", fTemp / "music/c.lrc");
	EXPECT_THAT(fListener->WaitFor("moved a.lrc to c.lrc"), ElementsAre("moved a.lrc to c.lrc"));
	fs::remove(fTemp / "music/c.lrc");
	EXPECT_THAT(fListener->WaitFor("removed c.lrc"), Not(Contains("moved a.lrc to c.lrc")));
	fs::remove_all(fTemp / "music");
	fListener->WaitFor("removed music");
}

TEST_F(NodeMonitor, MovesBetweenFolders)
{
	fs::create_directory(fTemp / "from");
	fs::create_directory(fTemp / "to");
	fTemp.Write("from/a", "");
	node_ref from = node_of(fTemp / "from"), to = node_of(fTemp / "to");
	ASSERT_EQ(Watch(from, B_WATCH_DIRECTORY), B_OK);
	ASSERT_EQ(Watch(to, B_WATCH_DIRECTORY), B_OK);
	ASSERT_EQ(Watch(node_of(fTemp / "from/a"), B_WATCH_NAME), B_OK);
	fs::rename(fTemp / "from/a", fTemp / "to/b");
	fListener->WaitFor("moved a to b");
	BMessage moved = fListener->Last();
	EXPECT_EQ(moved.GetInt64("from directory", -1), int64(from.node));
	EXPECT_EQ(moved.GetInt64("to directory", -1), int64(to.node));
	ASSERT_EQ(Watch(from, B_STOP_WATCHING), B_OK);
	ASSERT_EQ(Watch(to, B_STOP_WATCHING), B_OK);
	// The file alone is still watched, by its name in the new folder; told once each time.
	fs::rename(fTemp / "to/b", fTemp / "to/c");
	fs::remove(fTemp / "to/c");
	EXPECT_THAT(fListener->WaitFor("removed c"), ElementsAre("moved b to c", "removed c"));
}

TEST_F(NodeMonitor, EveryCopyIsTold)
{
	const int kCount = 200;
	fTemp.Write("source", std::string(100000, 's'));
	ASSERT_EQ(Watch(fFolder), B_OK);
	for (int i = 0; i < kCount; i++)
		fs::copy_file(fTemp / "source", fTemp / ("copy " + std::to_string(i)));
	std::vector<std::string> texts = AllSoFar();
	for (int i = 0; i < kCount; i++)
		EXPECT_THAT(texts, Contains("created copy " + std::to_string(i)));
}

TEST_F(NodeMonitor, TheLastMessageComesAfterTheLastSave)
{
	// Reads the file at each message, as the display does: what it read last must be the last save.
	class Reader : public Listener {
	public:
		explicit Reader(std::string path) : fPath(std::move(path)) { }
		void MessageReceived(BMessage* message) override
		{
			if (message->what == B_NODE_MONITOR) {
				std::ifstream file(fPath);
				std::lock_guard lock(fReadLock);
				std::getline(file, fRead);
				fHasRead.notify_all();
			}
		}
		bool WaitUntilRead(const std::string& text)
		{
			std::unique_lock lock(fReadLock);
			return fHasRead.wait_for(lock, kWatchdog, [&] { return fRead == text; });
		}

	private:
		std::string fPath;
		std::mutex fReadLock;
		std::condition_variable fHasRead;
		std::string fRead;
	};

	std::string path = fTemp.Write("song.lrc", "");
	Reader* reader = new Reader(path);
	reader->Run();
	node_ref file = node_of(path);
	ASSERT_EQ(watch_node(&file, B_WATCH_STAT, reader), B_OK);
	for (int round = 0; round < 200; round++)
		fTemp.Write("song.lrc", "save " + std::to_string(round));
	EXPECT_TRUE(reader->WaitUntilRead("save 199"));
	fTemp.Write("other", "copied");
	for (int round = 0; round < 200; round++)
		fs::copy_file(fTemp / "other", path, fs::copy_options::overwrite_existing);
	EXPECT_TRUE(reader->WaitUntilRead("copied"));
	if (reader->Lock())
		reader->Quit();
}

TEST_F(NodeMonitor, AFullQueueIsFilledLater)
{
	fTemp.Write("file", "");
	ASSERT_EQ(Watch(fFolder), B_OK);
	ASSERT_EQ(WatchFile("file"), B_OK);
	ASSERT_TRUE(fListener->Lock()); // does not take any message
	const int kCount = 2000;
	for (int i = 0; i < kCount; i++) {
		fs::create_directory_symlink("x", fTemp / std::to_string(i));
		fTemp.Write("file", "");
	}
	fListener->Unlock();
	std::vector<std::string> texts = fListener->WaitFor("created " + std::to_string(kCount - 1));
	std::erase(texts, "changed");
	ASSERT_EQ(texts.size(), size_t(kCount));
	for (int i = 0; i < kCount; i++)
		EXPECT_EQ(texts[i], "created " + std::to_string(i));
	fTemp.Write("file", "");
	fListener->WaitFor("changed");
}

TEST_F(NodeMonitor, StartingAndStopping)
{
	fTemp.Write("file", "");
	node_ref file = node_of(fTemp / "file");
	EXPECT_EQ(watch_node(NULL, B_WATCH_ALL, fListener), B_BAD_VALUE);
	EXPECT_EQ(watch_node(&file, 0x10000, fListener), B_BAD_VALUE);
	EXPECT_EQ(watch_node(&file, B_WATCH_ALL, BMessenger()), B_BAD_VALUE);
	EXPECT_EQ(watch_node(&file, B_WATCH_ALL, static_cast<BHandler*>(NULL), NULL), B_BAD_VALUE);
	node_ref unknown(file.device, file.node + 1000000);
	EXPECT_EQ(Watch(unknown), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(Watch(node_ref()), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(Watch(file, B_STOP_WATCHING), B_BAD_VALUE);
	EXPECT_EQ(stop_watching(fListener), B_OK);

	Listener* other = new Listener;
	other->Run();
	ASSERT_EQ(Watch(fFolder), B_OK);
	ASSERT_EQ(Watch(file, B_WATCH_NAME), B_OK);
	ASSERT_EQ(Watch(file, B_WATCH_STAT), B_OK); // both now
	ASSERT_EQ(watch_node(&file, B_WATCH_STAT, other), B_OK);
	fTemp.Write("file", "");
	EXPECT_THAT(AllSoFar(), ElementsAre("changed"));
	EXPECT_THAT(other->WaitFor("changed"), ElementsAre("changed"));
	EXPECT_EQ(Watch(file, B_STOP_WATCHING), B_OK);
	fTemp.Write("file", "");
	EXPECT_THAT(other->WaitFor("changed"), ElementsAre("changed"));
	EXPECT_THAT(AllSoFar(), IsEmpty());

	// A target that goes without a word harms nobody.
	if (other->Lock())
		other->Quit();
	ASSERT_EQ(Watch(file), B_OK);
	fTemp.Write("file", "");
	EXPECT_THAT(AllSoFar(), ElementsAre("changed"));
}

TEST_F(NodeMonitor, ManyThreadsStartAndStop)
{
	for (int i = 0; i < 4; i++)
		fTemp.Write(std::to_string(i), "");
	std::vector<std::thread> threads;
	std::atomic<int> failures = 0;
	for (int i = 0; i < 4; i++) {
		threads.emplace_back([&, i] {
			node_ref ref = node_of(fTemp / std::to_string(i));
			for (int n = 0; n < 100; n++) {
				failures += watch_node(&ref, B_WATCH_ALL, fListener) != B_OK;
				fTemp.Write(std::to_string(i), "");
				failures += watch_node(&ref, B_STOP_WATCHING, fListener) != B_OK;
			}
		});
	}
	for (std::thread& thread : threads)
		thread.join();
	EXPECT_EQ(failures, 0);
}

/*!	Events in an order that cannot be had from the system at will. The messages are looked at before they are sent. */
class Translator : public testing::Test {
protected:
	void Handle(uint32 mask, int watch = -1, const std::string& name = "", uint32 cookie = 0)
	{
		alignas(inotify_event) char buffer[sizeof(inotify_event) + 256] = {};
		auto event = reinterpret_cast<inotify_event*>(buffer);
		event->wd = watch;
		event->mask = mask;
		event->cookie = cookie;
		event->len = name.empty() ? 0 : 256;
		name.copy(event->name, 255);
		fTranslator.Handle(*event);
	}

	int WatchOf(const node_ref& ref) { return fList.Find(ref)->watch; }

	std::vector<std::string> Messages()
	{
		std::vector<std::string> texts;
		for (const BPrivate::Delivery& delivery : fTranslator.TakeDeliveries())
			texts.push_back(describe(delivery.message));
		return texts;
	}

	TempFolder fTemp;
	BPrivate::FileDescriptor fInotify{inotify_init1(IN_CLOEXEC)};
	BPrivate::WatchList fList{fInotify.Get()};
	BPrivate::EventTranslator fTranslator{fList};
	BMessenger fTarget;
};

TEST_F(Translator, LostEventsAreMadeUpFor)
{
	for (const char* name : {"stays", "goes", "is replaced"})
		fTemp.Write(name, "");
	node_ref folder = node_of(fTemp.Path()), file = node_of(fTemp / "stays");
	ASSERT_EQ(fList.Add(folder, B_WATCH_DIRECTORY, fTarget), B_OK);
	ASSERT_EQ(fList.Add(file, B_WATCH_STAT, fTarget), B_OK);
	fs::remove(fTemp / "goes");
	fTemp.Write("aside", "");
	fs::rename(fTemp / "aside", fTemp / "is replaced");
	fTemp.Write("comes", "");
	Handle(IN_Q_OVERFLOW);
	EXPECT_THAT(Messages(),
		UnorderedElementsAre("changed", "changed", "removed goes", "removed is replaced",
			"created is replaced", "created comes"));
	Handle(IN_Q_OVERFLOW);
	EXPECT_THAT(Messages(), ElementsAre("changed", "changed"));
}

TEST_F(Translator, AFileIsHeldBackUntilItIsClosed)
{
	node_ref folder = node_of(fTemp.Path());
	ASSERT_EQ(fList.Add(folder, B_WATCH_DIRECTORY, fTarget), B_OK);
	int watch = WatchOf(folder);
	for (const char* name : {"a", "b", "c", "d"}) {
		fTemp.Write(name, "");
		Handle(IN_CREATE, watch, name);
	}
	bigtime_t now = system_time();
	EXPECT_LE(fTranslator.NextTime(), now + 100000);
	EXPECT_THAT(Messages(), IsEmpty());
	Handle(IN_CLOSE_WRITE, watch, "b");
	EXPECT_THAT(Messages(), ElementsAre("created b"));
	Handle(IN_CLOSE_WRITE, watch, "b"); // by another writer
	EXPECT_THAT(Messages(), IsEmpty());

	// A move or a removal does not wait.
	fs::rename(fTemp / "c", fTemp / "b");
	Handle(IN_MOVED_FROM, watch, "c", 1);
	Handle(IN_MOVED_TO, watch, "b", 1);
	EXPECT_THAT(Messages(), ElementsAre("created c", "removed b", "moved c to b"));
	fs::remove(fTemp / "d");
	Handle(IN_DELETE, watch, "d");
	EXPECT_THAT(Messages(), ElementsAre("created d", "removed d"));
	fTranslator.HandleTime(now + 100000);
	EXPECT_THAT(Messages(), ElementsAre("created a"));
	EXPECT_EQ(fTranslator.NextTime(), B_INFINITE_TIMEOUT);
}

TEST_F(Translator, HalfAMoveBecomesARemoval)
{
	fTemp.Write("a", "");
	fTemp.Write("b", "");
	node_ref folder = node_of(fTemp.Path());
	ASSERT_EQ(fList.Add(folder, B_WATCH_DIRECTORY, fTarget), B_OK);
	ASSERT_EQ(fList.Add(node_of(fTemp / "a"), B_WATCH_NAME, fTarget), B_OK);
	int watch = WatchOf(folder);

	// Other events come between the halves of a move.
	fs::rename(fTemp / "a", fTemp / "c");
	Handle(IN_MOVED_FROM, watch, "a", 1);
	Handle(IN_ATTRIB, watch, "b");
	Handle(IN_MOVED_TO, watch, "c", 1);
	EXPECT_THAT(Messages(), ElementsAre("moved a to c"));

	fs::remove(fTemp / "c");
	Handle(IN_MOVED_FROM, watch, "c", 2);
	EXPECT_THAT(Messages(), IsEmpty());
	fTranslator.HandleTime(fTranslator.NextTime());
	EXPECT_THAT(Messages(), ElementsAre("removed c"));
	EXPECT_EQ(fTranslator.NextTime(), B_INFINITE_TIMEOUT);

	// What was made in its place does not overtake it.
	fs::remove(fTemp / "b");
	fs::create_directory(fTemp / "b");
	Handle(IN_MOVED_FROM, watch, "b", 3);
	Handle(IN_CREATE | IN_ISDIR, watch, "b");
	EXPECT_THAT(Messages(), ElementsAre("removed b", "created b"));
}

TEST_F(Translator, EndingAMoveMayEndItsFoldersWatch)
{
	fTemp.Write("a", "");
	node_ref file = node_of(fTemp / "a"), folder = node_of(fTemp.Path());
	ASSERT_EQ(fList.Add(file, B_WATCH_NAME, fTarget), B_OK);
	int watch = WatchOf(folder); // for the file's sake only
	fs::remove(fTemp / "a");
	Handle(IN_MOVED_FROM, watch, "a", 1);
	Handle(IN_MOVED_FROM, watch, "b", 2);
	EXPECT_THAT(Messages(), ElementsAre("removed a"));
	EXPECT_EQ(fList.Find(folder), nullptr);
	Handle(IN_DELETE, watch, "b");
	Handle(IN_DELETE_SELF, WatchOf(file));
	Handle(IN_IGNORED, WatchOf(file));
	EXPECT_THAT(Messages(), IsEmpty());
	EXPECT_THAT(fList.All(), IsEmpty());
}

} // namespace
