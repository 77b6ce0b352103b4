#include <gtest/gtest.h>

#include <cstring>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include <DataIO.h>
#include <Directory.h>
#include <Entry.h>
#include <File.h>

#include "framework/file_utils.h"
#include "prefs/TExitState.h"
#include "prefs/TPref.h"
#include "prefs/app_info.h"
#include "prefs/rgb_color_utils.h"
#include "support/temp_folder.h"

namespace {

const char* const kKeys[]
	= {"SoTp", "FntL", "REnc", "MTmI", "LLTF", "AAli", "UAFr", "UBGI", "FntF", "ImgA", "FntS",
		"ABCl", "AFCl", "ALCl", "BGCl", "LyCl", "BGIF", "DbBf", "STlB", "WCRT", "WEnc", "TmDf"};

std::string
bytes_of(const merion::TArchivable& record)
{
	BMessage archive(static_cast<uint32>(0));
	EXPECT_TRUE(record.Archive(&archive));
	BMallocIO bytes;
	EXPECT_EQ(archive.Flatten(&bytes), B_OK);
	return {static_cast<const char*>(bytes.Buffer()), bytes.BufferLength()};
}

std::string
golden(const std::string& name)
{
	std::ifstream file(TEST_DATA "/golden/" + name, std::ios::binary);
	EXPECT_TRUE(file) << name;
	return {std::istreambuf_iterator<char>(file), {}};
}

//! A record whose every field differs from the default.
void
change_all(TPref* pref)
{
	pref->fStayOnTop = true;
	pref->fFontList = -7;
	pref->fReadEncoding = 2;
	pref->fMonitoringInterval = 0x123456789abLL;
	pref->fLanguageFile = "日本語.llt";
	pref->fAntiAliasing = false;
	pref->fUseActiveFrame = false;
	pref->fUseBGImage = true;
	pref->fFontFamily = std::string(64, 'F');
	pref->fBGImageAlign = kBGImageScaleToFit;
	pref->fFontSize = 21.5f;
	for (int32 i = 0; i < kColorCount; i++)
		pref->Color(i) = rgb_color{1, 2, 3, static_cast<uint8>(i)};
	pref->fBGImageFile = "/a/b c.png";
	pref->fDoubleBuffering = false;
	pref->fShowToolBar = false;
	pref->fWriteCRType = 2;
	pref->fWriteEncoding = 1;
	pref->fTimeDifference = -5000;
}

class Records : public testing::Test {
protected:
	BEntry EntryOf(const std::string& name) { return BEntry((fFolder / name).c_str()); }

	TempFolder fFolder;
};

} // namespace

TEST_F(Records, DefaultsAreTheGoldenFile)
{
	EXPECT_EQ(bytes_of(TPref()), golden("messages/preferences.hmf1"));

	ASSERT_TRUE(TPref().Save(EntryOf("prefs")));
	EXPECT_EQ(fFolder.Read("prefs"), golden("messages/preferences.hmf1"));
}

TEST_F(Records, EveryFieldSurvivesTheFile)
{
	TPref pref;
	change_all(&pref);
	ASSERT_TRUE(pref.Save(EntryOf("prefs")));

	TPref loaded;
	ASSERT_TRUE(loaded.Load(EntryOf("prefs")));
	EXPECT_EQ(bytes_of(loaded), bytes_of(pref));
	EXPECT_EQ(loaded.fFontFamily.Get(), std::string(64, 'F'));
	EXPECT_EQ(loaded.fMonitoringInterval, 0x123456789abLL);

	TPref copy(loaded);
	EXPECT_EQ(bytes_of(copy), bytes_of(pref));
	copy = TPref();
	EXPECT_EQ(bytes_of(copy), bytes_of(TPref()));
}

TEST_F(Records, AnAppearanceIsTwelveFields)
{
	TPref changed;
	change_all(&changed);
	BMessage preset;
	ASSERT_TRUE(changed.ArchiveAppearance(&preset));
	EXPECT_EQ(preset.CountNames(B_ANY_TYPE), 12);

	TPref pref;
	ASSERT_TRUE(pref.UnarchiveAppearance(preset));
	EXPECT_FLOAT_EQ(pref.fFontSize, 21.5f);
	EXPECT_FALSE(compare_rgb_color(pref.fLyricsColor, changed.fLyricsColor));
	EXPECT_FALSE(pref.fStayOnTop);
	EXPECT_TRUE(pref.fDoubleBuffering);
}

TEST_F(Records, AMissingKeyKeepsItsDefaultAndTheRestIsTaken)
{
	TPref changed;
	change_all(&changed);
	BMessage whole;
	ASSERT_TRUE(changed.Archive(&whole));
	for (const char* key : kKeys) {
		SCOPED_TRACE(key);
		BMessage archive(whole);
		ASSERT_EQ(archive.RemoveName(key), B_OK);
		TPref pref;
		EXPECT_FALSE(pref.Unarchive(archive));

		// What was not found is what a default record writes, everything else what was there.
		BMessage expected;
		TPref().Archive(&expected);
		BMessage found;
		pref.Archive(&found);
		for (const char* other : kKeys) {
			const BMessage& source = strcmp(other, key) == 0 ? expected : whole;
			const void* data = nullptr;
			const void* expectedData = nullptr;
			ssize_t size = 0;
			ssize_t expectedSize = 0;
			ASSERT_EQ(found.FindData(other, B_ANY_TYPE, &data, &size), B_OK);
			ASSERT_EQ(source.FindData(other, B_ANY_TYPE, &expectedData, &expectedSize), B_OK);
			ASSERT_EQ(size, expectedSize) << other;
			EXPECT_EQ(memcmp(data, expectedData, size), 0) << other;
		}
	}
}

TEST_F(Records, WrongTypesAreMissingAndExtrasIgnored)
{
	BMessage archive;
	ASSERT_TRUE(TPref().Archive(&archive));
	archive.AddInt32("more", 1);
	TPref pref;
	EXPECT_TRUE(pref.Unarchive(archive));

	const rgb_color red{255, 0, 0, 255};
	ASSERT_EQ(archive.RemoveName("LyCl"), B_OK);
	archive.AddData("LyCl", B_RGB_COLOR_TYPE, &red, sizeof(red));
	ASSERT_EQ(archive.RemoveName("BGCl"), B_OK);
	archive.AddData("BGCl", B_RAW_TYPE, &red, 3);
	ASSERT_EQ(archive.RemoveName("SoTp"), B_OK);
	archive.AddInt32("SoTp", 1);
	ASSERT_EQ(archive.RemoveName("FntF"), B_OK);
	archive.AddString("FntF", (std::string(63, 'F') + "\u3042").c_str());
	EXPECT_FALSE(pref.Unarchive(archive));
	EXPECT_FALSE(compare_rgb_color(pref.fLyricsColor, TPref().fLyricsColor));
	EXPECT_FALSE(compare_rgb_color(pref.fBGColor, TPref().fBGColor));
	EXPECT_FALSE(pref.fStayOnTop);
	EXPECT_EQ(pref.fFontFamily.Get(), std::string(63, 'F')) << "not cut at a character";
}

TEST_F(Records, AnEmptyMessageLeavesTheDefaults)
{
	TPref pref;
	EXPECT_FALSE(pref.Unarchive(BMessage()));
	EXPECT_EQ(bytes_of(pref), bytes_of(TPref()));
}

TEST_F(Records, DamagedFilesLeaveAUsableRecord)
{
	int files = 0;
	for (const auto& file : std::filesystem::directory_iterator(TEST_DATA "/golden/damaged")) {
		TPref pref;
		TExitState state;
		pref.Load(BEntry(file.path().c_str()));
		state.Load(BEntry(file.path().c_str()));
		EXPECT_FALSE(bytes_of(pref).empty()) << file.path();
		files++;
	}
	EXPECT_GT(files, 50);

	// The preferences file, cut at every length.
	const std::string whole = golden("messages/preferences.hmf1");
	for (size_t length = 0; length < whole.size(); length++) {
		fFolder.Write("cut", whole.substr(0, length));
		TPref pref;
		EXPECT_FALSE(pref.Load(EntryOf("cut"))) << length;
		EXPECT_EQ(bytes_of(pref), bytes_of(TPref())) << length;
	}
}

TEST_F(Records, WhatCannotBeOpenedIsToldAndChangesNothing)
{
	TPref pref;
	EXPECT_FALSE(pref.Load(EntryOf("missing")));
	EXPECT_FALSE(pref.Load(BEntry(fFolder.Path().c_str())));
	EXPECT_FALSE(pref.Save(BEntry(fFolder.Path().c_str())));
	EXPECT_FALSE(pref.Save(BEntry("/nowhere/at/all")));
	EXPECT_FALSE(pref.Save(BEntry()));
}

TEST_F(Records, ARefusedArchiveLeavesTheFileEmpty)
{
	class Refusing : public merion::TArchivable {
		bool Archive(BMessage*) const override { return false; }
	};
	fFolder.Write("file", "old contents");
	EXPECT_FALSE(Refusing().Save(EntryOf("file")));
	EXPECT_EQ(fFolder.Read("file"), "");
}

TEST_F(Records, TheExitStateNamesTheVersionThatSavesIt)
{
	TExitState state;
	EXPECT_EQ(state.Version(), "");
	EXPECT_EQ(state.WindowFrame(), BRect(5, 24, 300, 100));

	fFolder.Write("old", golden("messages/version_frame.hmf1"));
	ASSERT_TRUE(state.Load(EntryOf("old")));
	EXPECT_NE(state.Version(), "");
	EXPECT_NE(state.Version(), gAppVer) << "the golden file must be of another version";

	state.SetWindowFrame(BRect(1, 2, 3, 4.5));
	ASSERT_TRUE(state.Save(EntryOf("new")));
	TExitState loaded;
	ASSERT_TRUE(loaded.Load(EntryOf("new")));
	EXPECT_EQ(loaded.Version(), gAppVer);
	EXPECT_EQ(loaded.WindowFrame(), BRect(1, 2, 3, 4.5));
}

TEST_F(Records, TextsAreNeverTorn)
{
	TPref pref;
	const std::string texts[] = {std::string(60, 'a'), std::string(20, 'b')};
	pref.fFontFamily = texts[0];
	pref.fBGImageFile = texts[0];
	std::atomic<bool> isDone = false;
	std::thread writer([&] {
		for (int i = 0; i < 20000; i++) {
			pref.fFontFamily = texts[i % 2];
			pref.fBGImageFile = texts[i % 2];
			pref.fLyricsColor = i % 2 == 0 ? rgb_color{1, 1, 1, 1} : rgb_color{2, 2, 2, 2};
		}
		isDone = true;
	});
	while (!isDone) {
		const TPref copy(pref);
		for (const std::string& text : {copy.fFontFamily.Get(), copy.fBGImageFile.Get()})
			EXPECT_TRUE(text == texts[0] || text == texts[1]) << text;
		const rgb_color color = copy.fLyricsColor;
		EXPECT_TRUE(color.red == color.alpha && color.green == color.blue);
	}
	writer.join();
}

TEST(Colors, CompareTellsWhetherTheyDiffer)
{
	const rgb_color color{1, 2, 3, 4};
	EXPECT_FALSE(compare_rgb_color(color, color));
	EXPECT_TRUE(compare_rgb_color(color, {9, 2, 3, 4}));
	EXPECT_TRUE(compare_rgb_color(color, {1, 9, 3, 4}));
	EXPECT_TRUE(compare_rgb_color(color, {1, 2, 9, 4}));
	EXPECT_TRUE(compare_rgb_color(color, {1, 2, 3, 5}));
}

TEST(Colors, HaveTheirIndices)
{
	TPref pref;
	EXPECT_EQ(&pref.Color(0), &pref.fLyricsColor);
	EXPECT_EQ(&pref.Color(1), &pref.fBGColor);
	EXPECT_EQ(&pref.Color(2), &pref.fActiveLyricsColor);
	EXPECT_EQ(&pref.Color(3), &pref.fActiveBGColor);
	EXPECT_EQ(&pref.Color(4), &pref.fActiveFrameColor);
}
