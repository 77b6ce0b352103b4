#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include <Window.h>
#include <dlfcn.h>
#include <image.h>

#include "host/GeneralPlugin.h"
#include "prefs/app_info.h"
#include "support/DisplayFixture.h"

// Everything through the add-on's file, as the host has it: nothing of the add-on is linked in but what the fixture needs.

namespace {

constexpr bigtime_t kRoundsTime = 80000000; // µs
constexpr int kFewestRounds = 20;

using Factory = GeneralPlugin* (*)(PluginConstructorStruct*);

/*!	The add-on, loaded; its plug-in object, made and deleted. */
class LoadedAddOn {
public:
	LoadedAddOn() : fImage(load_add_on(ADD_ON))
	{
		void* factory = nullptr;
		if (fImage >= 0
			&& get_image_symbol(fImage, "NewPlugin", B_SYMBOL_TYPE_TEXT, &factory) == B_OK)
			fFactory = reinterpret_cast<Factory>(factory);
	}
	~LoadedAddOn()
	{
		Delete();
		if (fImage >= 0)
			unload_add_on(fImage);
	}

	//! Named in lsan.supp: what the add-on keeps on purpose was made from here.
	[[gnu::noinline]] GeneralPlugin* MakePlugin() { return Make(); }
	GeneralPlugin* Make()
	{
		fPlugin = fFactory(&fConstruct);
		return fPlugin;
	}
	void Delete()
	{
		if (fPlugin == nullptr)
			return;
		// The host's to free: the object leaves them.
		char* texts[] = {fPlugin->name, fPlugin->infoLine};
		delete fPlugin;
		fPlugin = nullptr;
		for (char* text : texts)
			delete[] text;
	}

	bool IsLoaded() const { return fFactory != nullptr; }
	int32 VersionWritten() const { return fConstruct.version; }

private:
	image_id fImage;
	Factory fFactory = nullptr;
	PluginConstructorStruct fConstruct{77, {}};
	GeneralPlugin* fPlugin = nullptr;
};

bool
is_add_on_in_memory()
{
	int32 cookie = 0;
	image_info image;
	while (get_next_image_info(B_CURRENT_TEAM, &cookie, &image) == B_OK) {
		if (strstr(image.name, "gen_TavoraD") != nullptr)
			return true;
	}
	return false;
}

int
count_lyrics_windows()
{
	int count = 0;
	BWindow* window;
	for (int32 i = 0; (window = be_app->WindowAt(i)) != nullptr; i++) {
		if (!window->Lock())
			continue;
		count += strncmp(window->Title(), "Lyrics", 6) == 0;
		window->Unlock();
	}
	return count;
}

//! The files and folders that the kernel watches for this process.
int
count_watches()
{
	int count = 0;
	for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fdinfo")) {
		std::ifstream info(entry.path());
		for (std::string line; std::getline(info, line);)
			count += line.starts_with("inotify wd:");
	}
	return count;
}

class AddOnTest : public DisplayFixture {
protected:
	AddOnTest()
	{
		fHostWindow = new BWindow(BRect(50, 50, 249, 149), "Qubo", B_TITLED_WINDOW, 0);
		fHostWindow->Show();
		Save("a.lrc", "[00:00]of a\n[00:01]second");
		host().SetPlaylist({Song("a"), Song("b")});
	}
	~AddOnTest() override
	{
		if (fHostWindow->Lock())
			fHostWindow->Quit();
	}

	void MoveHost(float x)
	{
		ASSERT_TRUE(fHostWindow->Lock());
		fHostWindow->MoveTo(x, 50);
		fHostWindow->Unlock();
	}

	BWindow* fHostWindow;
};

} // namespace

TEST_F(AddOnTest, IsWhatTheHostExpects)
{
	LoadedAddOn addOn;
	ASSERT_TRUE(addOn.IsLoaded());
	GeneralPlugin* plugin = addOn.MakePlugin();
	EXPECT_EQ(addOn.VersionWritten(), 1);
	EXPECT_STREQ(plugin->name, "Tavora Displayer");
	EXPECT_STREQ(plugin->infoLine, "Tavora Displayer  by MERION");
	EXPECT_EQ(plugin->reserved, 0);
	EXPECT_FALSE(plugin->reservedFlag);
	EXPECT_EQ(plugin->GetFlags(), 0u);
	EXPECT_EQ(plugin->About(true), 1);
	EXPECT_EQ(plugin->Prefs(true), 1);
	EXPECT_GE(find_thread("TavoraD Communication Manager"), 0);
	EXPECT_EQ(count_lyrics_windows(), 0);
}

TEST_F(AddOnTest, ExportsItsFactoryOnly)
{
	FILE* nm = popen("nm -D --defined-only '" ADD_ON "'", "r");
	ASSERT_NE(nm, nullptr);
	char line[512];
	int symbols = 0;
	while (fgets(line, sizeof(line), nm) != nullptr) {
		symbols++;
		EXPECT_NE(strstr(line, " T NewPlugin"), nullptr) << line;
	}
	EXPECT_EQ(pclose(nm), 0);
	EXPECT_EQ(symbols, 1);
}

TEST_F(AddOnTest, ShowsItsWindowAndSavesItsPlace)
{
	const std::string settings = getenv("XDG_CONFIG_HOME");
	const std::string file = settings + "/MERION/TavoraD/TavoraD_ExitStates.arc";
	std::filesystem::remove(file);
	LoadedAddOn addOn;
	ASSERT_TRUE(addOn.IsLoaded());
	GeneralPlugin* plugin = addOn.MakePlugin();
	EXPECT_EQ(plugin->Init(), 1);
	EXPECT_TRUE(wait_until([] { return count_lyrics_windows() == 1; }));
	EXPECT_EQ(plugin->Init(), 1);
	plugin->Cleanup();
	EXPECT_TRUE(wait_until([] { return count_lyrics_windows() == 0; }));
	addOn.Delete();

	TExitState state;
	EXPECT_TRUE(state.Load(BEntry(file.c_str())));
	EXPECT_EQ(state.Version(), gAppVer);
	EXPECT_GT(state.WindowFrame().left, 249) << "not beside the host's window";
}

TEST_F(AddOnTest, NeedsNeitherInitNorCleanup)
{
	const int watches = count_watches();
	LoadedAddOn addOn;
	ASSERT_TRUE(addOn.IsLoaded());
	addOn.MakePlugin();
	EXPECT_GT(count_watches(), watches) << "the language files";
	addOn.Delete();
	EXPECT_EQ(count_watches(), watches);
	addOn.MakePlugin()->Cleanup();
	addOn.Delete();
	addOn.MakePlugin()->Init();
	ASSERT_TRUE(wait_until([] { return count_lyrics_windows() == 1; }));
	addOn.Delete();
	EXPECT_EQ(count_lyrics_windows(), 0);
	EXPECT_EQ(count_watches(), watches);
}

TEST_F(AddOnTest, IsGoneAfterEachUnloading)
{
	for (int round = 0; round < 50; round++) {
		{
			LoadedAddOn addOn;
			ASSERT_TRUE(addOn.IsLoaded());
			GeneralPlugin* plugin = addOn.MakePlugin();
			plugin->Init();
			host().Play(round % 2 == 0 ? "a" : "b", 0);
			if (round % 5 == 0) {
				ASSERT_TRUE(wait_until([] { return count_lyrics_windows() == 1; }));
			}
			if (round % 2 == 0)
				plugin->Cleanup();
		}
		ASSERT_FALSE(is_add_on_in_memory()) << "round " << round;
		MoveHost(50 + round);
	}
}

TEST_F(AddOnTest, QuitsAtAnyMomentOfASongChange)
{
	LoadedAddOn addOn;
	ASSERT_TRUE(addOn.IsLoaded());
	// A busy machine gets fewer rounds, so that the test ends in time.
	const bigtime_t end = system_time() + kRoundsTime;
	uint32 random = 1;
	for (int round = 0; round < 200 && (round < kFewestRounds || system_time() < end); round++) {
		GeneralPlugin* plugin = addOn.MakePlugin();
		plugin->Init();
		random = random * 1664525 + 1013904223;
		host().Play(round % 2 == 0 ? "a" : "b", round);
		snooze(random >> 17);
		host().Play(round % 2 == 0 ? "b" : "a", round);
		plugin->Cleanup();
		addOn.Delete();
		ASSERT_EQ(count_lyrics_windows(), 0);
	}
}

// The last one: the add-on stays in memory, and with it the names by which the leak sanitizer tells what is kept on purpose
// from what is forgotten.
TEST_F(AddOnTest, ForgetsNothing)
{
	ASSERT_NE(dlopen(ADD_ON, RTLD_NOW | RTLD_NODELETE), nullptr);
	LoadedAddOn addOn;
	ASSERT_TRUE(addOn.IsLoaded());
	for (int round = 0; round < 2; round++) {
		GeneralPlugin* plugin = addOn.Make();
		plugin->Init();
		plugin->Prefs(false);
		plugin->About(false);
		host().Play("a", 0);
		ASSERT_TRUE(wait_until([] { return count_lyrics_windows() == 1; }));
		addOn.Delete();
	}
}
