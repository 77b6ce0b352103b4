#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>

#include <File.h>
#include <Looper.h>
#include <Message.h>
#include <Resources.h>

#include "framework/TAppPrivacy.h"
#include "framework/TLLT.h"
#include "framework/TNodeMonitorHandler.h"
#include "player/Child.h"
#include "plugin/helpers/load_language.h"
#include "plugin/helpers/settings_files.h"
#include "prefs/TPref.h"
#include "support/temp_folder.h"
#include "support/wait_until.h"

using namespace merion;
using testing::ElementsAre;

namespace {

constexpr uint32 kNotice = '_nlc';

//! "日本語" in Shift-JIS.
constexpr const char* kShiftJis = "\x93\xfa\x96\x7b\x8c\xea";

std::string
language(const std::string& name, const std::string& data)
{
	return "[Informations]\nHeader=LLT File Format 100\n"
		+ (name.empty() ? "" : "Language=" + name + "\n") + "[Data]\n" + data + "\n";
}

/*!	Goes by what the watcher tells, as the manager does. */
class Manager : public BLooper {
public:
	explicit Manager(std::string addOn)
		: BLooper("Manager"),
		  fAddOn(std::move(addOn)),
		  fWatcher(kNotice)
	{
		AddHandler(&fWatcher);
		set_node_monitor_language(fAddOn.c_str(), &fWatcher);
		Run();
	}

	~Manager() override { RemoveHandler(&fWatcher); }

	void MessageReceived(BMessage* message) override
	{
		if (message->what != kNotice) {
			BLooper::MessageReceived(message);
			return;
		}
		fNotices++;
		set_node_monitor_language(fAddOn.c_str(), &fWatcher);
		if (gAppPrivacy->ShouldBeLanguageChanged())
			load_language(fAddOn.c_str());
	}

	int Notices() const { return fNotices; }

private:
	const std::string fAddOn;
	TNodeMonitorHandler fWatcher;
	std::atomic<int> fNotices = 0;
};

/*!	An add-on with its built-in texts, and what it loads languages into. */
class LanguageSwitch : public testing::Test {
protected:
	LanguageSwitch() : fAddOn(fFolder / "add-ons/add-on")
	{
		setenv("XDG_CONFIG_HOME", (fFolder / "config").c_str(), 1);
		SetDesktop({});
		std::filesystem::create_directories(fFolder / "add-ons/Language");
		const std::string builtIn = language("Built-in", "Open=open\nHide=hide");
		BFile file(fAddOn.c_str(), B_READ_WRITE | B_CREATE_FILE);
		BResources resources(&file, true);
		resources.AddResource('CSTR', 1, builtIn.data(), builtIn.size(), "DefaultLanguage");

		gPref = new TPref;
		gLLT = new TLLT;
		gAppPrivacy = new TAppPrivacy([] { return gPref->fLanguageFile.Get(); });
	}

	~LanguageSwitch() override
	{
		if (fManager != nullptr && fManager->Lock())
			fManager->Quit();
		delete gAppPrivacy;
		delete gLLT;
		delete gPref;
		gAppPrivacy = nullptr;
		gLLT = nullptr;
		gPref = nullptr;
	}

	static void SetDesktop(const std::map<std::string, std::string>& variables)
	{
		for (const char* name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
			const auto found = variables.find(name);
			found != variables.end() ? setenv(name, found->second.c_str(), 1) : unsetenv(name);
		}
	}

	std::string Write(const std::string& name, const std::string& bytes) const
	{
		return fFolder.Write("add-ons/Language/" + name, bytes);
	}

	void WriteAll() const
	{
		for (const char* name :
			{"English", "Japanese", "German", "French", "Spanish", "SimplifiedChinese"})
			Write(std::string(name) + ".llt", language(name, "Open=" + std::string(name)));
	}

	bool Load() const { return load_language(fAddOn.c_str()); }

	void Choose(const std::string& name) const
	{
		gPref->fLanguageFile = name;
		Load();
	}

	void Watch() { fManager = new Manager(fAddOn); }

	//! Whether the label becomes that, and how long it took.
	static bool IsShown(const std::string& text, double* seconds = nullptr)
	{
		const double start = Child::Now();
		const bool is = wait_until([&] { return gLLT->Text("Open") == text; });
		if (seconds != nullptr)
			*seconds = std::min(*seconds, Child::Now() - start);
		return is;
	}

	TempFolder fFolder;
	const std::string fAddOn;
	Manager* fManager = nullptr;
};

} // namespace

TEST_F(LanguageSwitch, ListsWhatIsALanguageByItsName)
{
	EXPECT_TRUE(gAppPrivacy->Languages().empty()) << "before anything is known";
	Write("Japanese.llt", language("日本語", ""));
	Write("German.llt", language("deutsch", ""));
	Write("English.llt", language("English", ""));
	Write("British.llt", language("English", ""));
	Write("Nameless.llt", language("", ""));
	Write("Marked.llt", "\xef\xbb\xbf" + language("Byte order mark", ""));

	Write("ShiftJis.llt", language(kShiftJis, ""));
	Write("Overlong.llt", language("x\xc0\xaf", ""));
	Write("Cut.llt", language("x", "Open=\xe6\x97"));
	Write("Nul.llt", language("x", std::string("Open=\0x", 7)));
	Write("Old.llt", "[Informations]\nHeader=LLT File Format 99\nLanguage=x\n");
	Write("Empty.llt", "");
	Write("Huge.llt", language("x", std::string(2000000, 'x')));
	Write("README.txt", language("x", ""));
	Write(".llt", language("x", ""));
	std::filesystem::create_directory(fFolder / "add-ons/Language/Folder.llt");
	std::filesystem::create_symlink("nowhere", fFolder / "add-ons/Language/Link.llt");

	Load();
	std::vector<std::string> names;
	for (const language_file& file : gAppPrivacy->Languages())
		names.push_back(file.name + " " + file.language);
	EXPECT_THAT(names,
		ElementsAre("Marked.llt Byte order mark", "German.llt deutsch", "British.llt English",
			"English.llt English", "Nameless.llt Nameless", "Japanese.llt 日本語"));
}

TEST_F(LanguageSwitch, KnowsTheDesktopsLanguage)
{
	WriteAll();
	gAppPrivacy->SetApplicationPath(fAddOn);
	const struct {
		std::map<std::string, std::string> desktop;
		const char* file;
	} kCases[] = {
		{{}, "English.llt"},
		{{{"LANG", "ja_JP.UTF-8"}}, "Japanese.llt"},
		{{{"LANG", "de_AT@euro"}}, "German.llt"},
		{{{"LANG", "fr"}}, "French.llt"},
		{{{"LANG", "es_ES"}, {"LC_MESSAGES", ""}}, "Spanish.llt"},
		{{{"LANG", "ja_JP"}, {"LC_MESSAGES", "fr_FR"}, {"LC_ALL", "de_DE"}}, "German.llt"},
		{{{"LANG", "ja_JP"}, {"LC_MESSAGES", "fr_FR"}}, "French.llt"},
		{{{"LANG", "zh_CN.UTF-8"}}, "SimplifiedChinese.llt"},
		{{{"LANG", "zh_TW.UTF-8"}, {"LANGUAGE", "zh_TW:zh_HK:ja"}}, "Japanese.llt"},
		{{{"LANG", "zh_TW.UTF-8"}}, ""},
		{{{"LANG", "en_US"}, {"LANGUAGE", "pt_BR::es:en"}}, "Spanish.llt"},
		{{{"LANG", "C.UTF-8"}, {"LANGUAGE", "ja"}}, "English.llt"},
		{{{"LANG", "sv_SE"}, {"LANGUAGE", ":::"}}, ""},
		{{{"LANG", "japanese"}}, ""},
	};
	for (const auto& each : kCases) {
		SetDesktop(each.desktop);
		EXPECT_EQ(gAppPrivacy->DesktopLanguage(), each.file)
			<< testing::PrintToString(each.desktop);
	}
	SetDesktop({{"LANG", "ja_JP"}});
	std::filesystem::remove(fFolder / "add-ons/Language/Japanese.llt");
	EXPECT_EQ(gAppPrivacy->DesktopLanguage(), "") << "there is no file for it";
}

TEST_F(LanguageSwitch, AFirstStartSpeaksTheDesktopsLanguage)
{
	WriteAll();
	SetDesktop({{"LANG", "ja_JP.UTF-8"}});
	EXPECT_TRUE(Load());
	EXPECT_STREQ(gLLT->Text("Open"), "Japanese");
	EXPECT_EQ(gPref->fLanguageFile.Get(), "Japanese.llt");
	Choose("French.llt");
	EXPECT_STREQ(gLLT->Text("Open"), "French") << "chosen by the user, not saved yet";

	gPref->fLanguageFile = "German.llt";
	ASSERT_TRUE(save_pref(true));
	delete gAppPrivacy;
	gAppPrivacy = new TAppPrivacy([] { return gPref->fLanguageFile.Get(); });
	Load();
	EXPECT_STREQ(gLLT->Text("Open"), "German") << "settings are there";
}

TEST_F(LanguageSwitch, BuiltInTextsStandIn)
{
	Write("Partial.llt", language("Partial", "Open=offen"));
	Write("ShiftJis.llt", language("x", "Open=" + std::string(kShiftJis)));
	fFolder.Write("add-ons/Beside.llt", language("x", "Open=x"));
	Choose("Partial.llt");
	EXPECT_STREQ(gLLT->Text("Open"), "offen");
	EXPECT_STREQ(gLLT->Text("Hide"), "hide");

	for (const char* name : {"Missing.llt", "ShiftJis.llt", "../Beside.llt", "", ".", "/"}) {
		gPref->fLanguageFile = name;
		EXPECT_TRUE(gAppPrivacy->ShouldBeLanguageChanged()) << name;
		EXPECT_FALSE(Load()) << name;
		EXPECT_STREQ(gLLT->Text("Open"), "open") << name;
		EXPECT_FALSE(gAppPrivacy->ShouldBeLanguageChanged()) << name;
	}

	gPref->fLanguageFile = "Partial.llt";
	std::filesystem::remove_all(fFolder / "add-ons/Language");
	EXPECT_FALSE(Load()) << "no folder";
	EXPECT_TRUE(gAppPrivacy->Languages().empty());
	fFolder.Write("add-ons/Language", "a file");
	EXPECT_FALSE(Load()) << "no folder";
	EXPECT_TRUE(gAppPrivacy->Languages().empty());
	std::filesystem::remove(fAddOn);
	EXPECT_FALSE(Load());
	EXPECT_STREQ(gLLT->Text("Hide"), "hide") << "the add-on's file is gone, the texts are known";
	EXPECT_FALSE(load_language(""));
}

TEST_F(LanguageSwitch, ASavedFileChangesTheLabelsWithinASecond)
{
	Write("German.llt", language("German", "Open=1"));
	Choose("German.llt");
	Watch();
	double fastest = 1e9; // a busy machine is no fault
	Write("German.llt", language("German", "Open=2"));
	EXPECT_TRUE(IsShown("2", &fastest)) << "saved in place";
	Write("aside", language("German", "Open=3"));
	std::filesystem::rename(
		fFolder / "add-ons/Language/aside", fFolder / "add-ons/Language/German.llt");
	EXPECT_TRUE(IsShown("3", &fastest)) << "saved aside and renamed";
	Write("German.llt", language("German", "Open=4"));
	EXPECT_TRUE(IsShown("4", &fastest)) << "in place, after it was renamed";
	Write("German.llt", language(kShiftJis, "Open=5"));
	EXPECT_TRUE(IsShown("open", &fastest)) << "saved in the wrong encoding";
	Write("German.llt", language("German", "Open=6"));
	EXPECT_TRUE(IsShown("6", &fastest)) << "and repaired";
	std::filesystem::remove(fFolder / "add-ons/Language/German.llt");
	EXPECT_TRUE(IsShown("open", &fastest)) << "deleted";
	Write("German.llt", language("German", "Open=7"));
	EXPECT_TRUE(IsShown("7", &fastest)) << "there again";
	EXPECT_LT(fastest, 1);
}

TEST_F(LanguageSwitch, TheFolderMayComeAndGo)
{
	Write("German.llt", language("German", "Open=1"));
	const std::string folder = fFolder / "add-ons/Language";
	std::filesystem::rename(folder, fFolder / "away");
	Choose("German.llt");
	EXPECT_STREQ(gLLT->Text("Open"), "open");
	Watch();
	std::filesystem::rename(fFolder / "away", folder);
	EXPECT_TRUE(IsShown("1"));
	Write("German.llt", language("German", "Open=2"));
	EXPECT_TRUE(IsShown("2"));
	std::filesystem::remove_all(folder);
	EXPECT_TRUE(IsShown("open"));
	std::filesystem::create_directory(folder);
	Write("German.llt", language("German", "Open=3"));
	EXPECT_TRUE(IsShown("3"));
}

TEST_F(LanguageSwitch, OtherLanguagesAreNoticedToo)
{
	Write("German.llt", language("German", "Open=1"));
	Write("French.llt", "");
	Choose("German.llt");
	Watch();
	int notices = 0;
	const auto is_noticed
		= [&] { return wait_until([&] { return fManager->Notices() > notices; }); };
	Write("French.llt", language("French", ""));
	EXPECT_TRUE(is_noticed()) << "what was no language becomes one";
	notices = fManager->Notices();
	Write("Spanish.llt", language("Spanish", ""));
	EXPECT_TRUE(is_noticed()) << "added";
	EXPECT_STREQ(gLLT->Text("Open"), "1");
}

TEST_F(LanguageSwitch, ABurstOfSavesEndsInTheLastOne)
{
	Write("German.llt", language("German", "Open=0"));
	Choose("German.llt");
	Watch();
	constexpr int kSaves = 400;
	const double start = Child::Now();
	for (int i = 1; i <= kSaves; i++)
		Write("German.llt", language("German", "Open=" + std::to_string(i)));
	EXPECT_TRUE(IsShown(std::to_string(kSaves)));
	const int notices = fManager->Notices();
	const double merges = (Child::Now() - start) * 1e6 / TNodeMonitorHandler::kMergeTime;
	EXPECT_LE(notices, merges + 1) << "they were not merged";
}

TEST_F(LanguageSwitch, AChangeBeforeTheWatchBeginsIsNoticed)
{
	Write("German.llt", language("German", "Open=1"));
	Choose("German.llt");
	Write("German.llt", language("German", "Open=2"));
	Watch();
	EXPECT_TRUE(IsShown("2"));
}
