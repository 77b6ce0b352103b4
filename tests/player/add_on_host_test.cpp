#include "player/AddOnHost.h"

#include "support/temp_folder.h"

#include <gmock/gmock.h>

#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <thread>

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr auto kPatience = std::chrono::seconds(20); // then a test fails

class Recorder : public AddOnHost::Listener {
public:
	void AddOnsLoaded(const std::vector<AddOnHost::Info>& addOns) override
	{
		std::lock_guard lock(fLock);
		loaded = addOns;
		fIsLoaded = true;
		fChanged.notify_all();
	}
	void AddOnFailed(const std::string& path, const std::string& reason) override
	{
		std::lock_guard lock(fLock);
		failed.push_back(path.substr(path.rfind('/') + 1) + ": " + reason);
	}
	void AddOnsGone() override
	{
		std::lock_guard lock(fLock);
		fIsGone = true;
		fChanged.notify_all();
	}

	[[nodiscard]] bool WaitForLoaded() { return WaitFor(fIsLoaded); }
	[[nodiscard]] bool WaitForGone() { return WaitFor(fIsGone); }

	std::vector<AddOnHost::Info> loaded;
	std::vector<std::string> failed;

private:
	bool WaitFor(const bool& flag)
	{
		std::unique_lock lock(fLock);
		return fChanged.wait_for(lock, kPatience, [&] { return flag; });
	}

	std::mutex fLock;
	std::condition_variable fChanged;
	bool fIsLoaded = false;
	bool fIsGone = false;
};

class AddOnHostTest : public testing::Test {
protected:
	void SetUp() override
	{
		setenv("LC_ALL", "C.UTF-8", 1);
		setenv("ADD_ON_LOG", LogPath().c_str(), 1);
	}

	std::string LogPath() const { return fDir.Path() + "/log"; }
	std::string Folder() const { return fDir.Path() + "/add-ons"; }

	void Install(const std::string& module, const std::string& name)
	{
		std::filesystem::create_directories(Folder());
		std::filesystem::copy_file(module, Folder() + "/" + name);
	}

	//! What the add-ons noted; their threads go to fThreads.
	std::vector<std::string> Log()
	{
		std::vector<std::string> calls;
		std::ifstream file(LogPath());
		std::string what;
		std::string thread;
		while (file >> what >> thread) {
			calls.push_back(what);
			fThreads.insert(thread);
		}
		return calls;
	}

	TempFolder fDir;
	Recorder fTold;
	std::set<std::string> fThreads;
};

TEST_F(AddOnHostTest, DrivesAnAddOnFromFirstToLastOnOneThread)
{
	Install(SIMPLE_ADD_ON, "gen_simple.so");
	AddOnHost host(Folder(), fTold);
	ASSERT_TRUE(fTold.WaitForLoaded());
	ASSERT_EQ(fTold.loaded.size(), 1u);
	EXPECT_EQ(fTold.loaded[0].name, "Simple");
	EXPECT_EQ(fTold.loaded[0].infoLine, "Simple  for tests");
	EXPECT_TRUE(fTold.loaded[0].hasAbout);
	EXPECT_FALSE(fTold.loaded[0].hasPreferences);

	host.Show(0);
	host.ShowAbout(0);
	host.ShowPreferences(0);
	host.Show(1); // there is none
	host.Quit();
	ASSERT_TRUE(fTold.WaitForGone());
	EXPECT_THAT(Log(),
		ElementsAre("NewPlugin", "Init", "About?", "Prefs?", "Init", "About", "Prefs", "Cleanup",
			"delete", "unload"));
	std::ostringstream self;
	self << std::this_thread::get_id();
	EXPECT_EQ(fThreads.size(), 1u);
	EXPECT_EQ(fThreads.count(self.str()), 0u);
}

TEST_F(AddOnHostTest, TakesOnlyAddOnsInTheOrderOfTheirNames)
{
	Install(SIMPLE_ADD_ON, "gen_10.so");
	Install(SIMPLE_ADD_ON, "gen_9.so");
	Install(SIMPLE_ADD_ON, "other.so");
	Install(SIMPLE_ADD_ON, "gen_8.so.bak");
	AddOnHost host(Folder(), fTold);
	ASSERT_TRUE(fTold.WaitForLoaded());
	EXPECT_EQ(fTold.loaded.size(), 2u);
	EXPECT_TRUE(fTold.failed.empty());
}

TEST_F(AddOnHostTest, GoesOnWithoutThoseThatFail)
{
	Install(SIMPLE_ADD_ON, "gen_good.so");
	Install(THROWING_ADD_ON, "gen_1_throws.so");
	Install(NEWER_ADD_ON, "gen_2_newer.so");
	Install(EMPTY_ADD_ON, "gen_3_empty.so");
	std::ofstream(Folder() + "/gen_4_text.so") << "This is no library.\n";
	AddOnHost host(Folder(), fTold);
	ASSERT_TRUE(fTold.WaitForLoaded());
	EXPECT_EQ(fTold.loaded.size(), 1u);
	EXPECT_THAT(fTold.failed,
		ElementsAre(HasSubstr("gen_1_throws.so: no room"),
			HasSubstr("gen_2_newer.so: it is made for another"),
			HasSubstr("gen_3_empty.so: it has no NewPlugin"),
			HasSubstr("gen_4_text.so: it cannot be loaded")));
}

TEST_F(AddOnHostTest, NeedsNoFolder)
{
	AddOnHost host(Folder(), fTold);
	ASSERT_TRUE(fTold.WaitForLoaded());
	EXPECT_TRUE(fTold.loaded.empty());
}

TEST_F(AddOnHostTest, PutsAwayWhatIsLoadedWhenItIsDeletedAtOnce)
{
	Install(SIMPLE_ADD_ON, "gen_simple.so");
	for (int i = 0; i < 50; i++) {
		std::filesystem::remove(LogPath());
		Recorder told;
		{
			AddOnHost host(Folder(), told);
		}
		std::vector<std::string> calls = Log();
		ASSERT_GE(calls.size(), 3u);
		EXPECT_THAT(std::vector<std::string>(calls.end() - 3, calls.end()),
			ElementsAre("Cleanup", "delete", "unload"));
	}
}

} // namespace
