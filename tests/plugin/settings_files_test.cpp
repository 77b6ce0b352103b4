#include <gtest/gtest.h>

#include <cstdlib>

#include "plugin/helpers/settings_files.h"
#include "prefs/TExitState.h"
#include "prefs/TPref.h"
#include "support/temp_folder.h"

namespace {

/*!	A settings directory of the test's own. The display server, which knows the keys, is not needed: without it none is held. */
class SettingsFiles : public testing::Test {
protected:
	SettingsFiles()
	{
		setenv("XDG_CONFIG_HOME", (fFolder / "config").c_str(), 1);
		gPref = new TPref;
		gExitState = new TExitState;
	}

	~SettingsFiles() override
	{
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
