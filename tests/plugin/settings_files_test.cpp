#include <gtest/gtest.h>

#include <cstdlib>

#include <InterfaceDefs.h>

#include "server/Desktop.h"
#include "server/ServerLink.h"

#include "plugin/helpers/load_language.h"
#include "plugin/helpers/settings_files.h"
#include "prefs/TExitState.h"
#include "prefs/TPref.h"
#include "support/temp_folder.h"

namespace {

void
hold_keys(uint32 keys)
{
	using namespace BPrivate;
	ServerLink::Default().Call([keys] {
		Desktop::SetModifierSource([keys] { return keys; });
		return true;
	});
}

/*!	A settings directory of the test's own, and no key held. */
class SettingsFiles : public testing::Test {
protected:
	SettingsFiles()
	{
		setenv("XDG_CONFIG_HOME", (fFolder / "config").c_str(), 1);
		gPref = new TPref;
		gExitState = new TExitState;
		hold_keys(0);
	}

	~SettingsFiles() override
	{
		hold_keys(0);
		delete gPref;
		delete gExitState;
	}

	bool Load() { return load_global("TavoraD", "TavoraD_ExitStates.arc"); }
	bool SaveExitState() { return save_exit_state("TavoraD", "TavoraD_ExitStates.arc"); }

	TempFolder fFolder;
};

} // namespace

TEST_F(SettingsFiles, LieInTheMakersFolder)
{
	EXPECT_FALSE(Load()) << "nothing was saved yet";
	gPref->fTimeDifference = 12;
	gExitState->SetWindowFrame(BRect(1, 2, 300, 400));
	EXPECT_TRUE(save_pref(false));
	EXPECT_TRUE(SaveExitState());
	const std::filesystem::path maker = fFolder / "config/MERION";
	EXPECT_TRUE(std::filesystem::is_regular_file(maker / "Shared/TavoraShared_Prefs.arc"));
	EXPECT_TRUE(std::filesystem::is_regular_file(maker / "TavoraD/TavoraD_ExitStates.arc"));

	*gPref = TPref();
	gExitState->SetWindowFrame(BRect());
	EXPECT_TRUE(Load());
	EXPECT_EQ(gPref->fTimeDifference, 12);
	EXPECT_EQ(gExitState->WindowFrame(), BRect(1, 2, 300, 400));
}

TEST_F(SettingsFiles, TheGoldenPreferencesAreRead)
{
	std::filesystem::create_directories(fFolder / "config/MERION/Shared");
	for (const char* file : {"preferences.hmf1", "preferences.fob1"}) {
		std::filesystem::copy_file(std::string(TEST_DATA "/golden/messages/") + file,
			fFolder / "config/MERION/Shared/TavoraShared_Prefs.arc",
			std::filesystem::copy_options::overwrite_existing);
		EXPECT_TRUE(SaveExitState());
		*gPref = TPref();
		gPref->fFontSize = 99;
		EXPECT_TRUE(Load()) << file;
		EXPECT_FLOAT_EQ(gPref->fFontSize, 12) << file;
	}
}

TEST_F(SettingsFiles, OneThatIsMissingDoesNotKeepTheOtherFromLoading)
{
	gPref->fTimeDifference = 12;
	ASSERT_TRUE(save_pref(true));
	*gPref = TPref();
	EXPECT_FALSE(Load());
	EXPECT_EQ(gPref->fTimeDifference, 12);
}

TEST_F(SettingsFiles, WhereNothingCanBeWrittenNothingBreaks)
{
	// A file where the folder would be: refused for every user.
	fFolder.Write("config", "");
	EXPECT_FALSE(save_pref(true));
	EXPECT_FALSE(SaveExitState());
	EXPECT_FALSE(Load());

	unsetenv("XDG_CONFIG_HOME");
	setenv("HOME", (fFolder / "nowhere/at/all").c_str(), 1);
	EXPECT_FALSE(Load());
}

TEST_F(SettingsFiles, AFileThatCannotBeOpenedIsTold)
{
	// A folder in its place: refused for every user, root too.
	std::filesystem::create_directories(fFolder / "config/MERION/Shared/TavoraShared_Prefs.arc");
	EXPECT_FALSE(save_pref(true));
	EXPECT_TRUE(SaveExitState());
	gPref->fTimeDifference = 12;
	EXPECT_FALSE(Load());
	EXPECT_EQ(gPref->fTimeDifference, 12);
}

TEST_F(SettingsFiles, FourKeysHeldSkipTheSavesAndResetAtTheStart)
{
	constexpr uint32 kAll = B_SHIFT_KEY | B_COMMAND_KEY | B_CONTROL_KEY | B_OPTION_KEY;
	gPref->fTimeDifference = 12;
	gExitState->SetWindowFrame(BRect(1, 2, 300, 400));
	ASSERT_TRUE(save_pref(false));
	ASSERT_TRUE(SaveExitState());
	const std::string pref = fFolder.Read("config/MERION/Shared/TavoraShared_Prefs.arc");
	const std::string state = fFolder.Read("config/MERION/TavoraD/TavoraD_ExitStates.arc");

	gPref->fTimeDifference = 13;
	gExitState->SetWindowFrame(BRect(5, 6, 7, 8));
	hold_keys(kAll | B_CAPS_LOCK);
	EXPECT_FALSE(save_pref(false));
	EXPECT_FALSE(SaveExitState());
	EXPECT_EQ(fFolder.Read("config/MERION/Shared/TavoraShared_Prefs.arc"), pref);
	EXPECT_EQ(fFolder.Read("config/MERION/TavoraD/TavoraD_ExitStates.arc"), state);
	EXPECT_TRUE(save_pref(true));
	EXPECT_NE(fFolder.Read("config/MERION/Shared/TavoraShared_Prefs.arc"), pref);

	*gPref = TPref();
	EXPECT_FALSE(Load());
	EXPECT_EQ(gExitState->WindowFrame(), BRect(5, 6, 7, 8)) << "loaded all the same";
	hold_keys(0);
	gPref->fTimeDifference = 99;
	EXPECT_TRUE(Load());
	EXPECT_EQ(gPref->fTimeDifference, 0) << "the defaults were not written";

	for (const uint32 missing : {B_SHIFT_KEY, B_COMMAND_KEY, B_CONTROL_KEY, B_OPTION_KEY}) {
		hold_keys(kAll & ~missing);
		EXPECT_TRUE(save_pref(false)) << missing;
		EXPECT_TRUE(Load()) << missing;
	}
}
