#pragma once

#include <Window.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <utility>

#include "framework/TAppPrivacy.h"
#include "framework/TIAPItemAccKeyFormat.h"
#include "framework/TInterAppPrefs.h"
#include "framework/TLLT.h"
#include "framework/dialogs.h"
#include "host/QuboProtocol.h"
#include "prefs/TExitState.h"
#include "prefs/TPref.h"
#include "support/ScriptedHost.h"
#include "support/temp_folder.h"
#include "support/wait_until.h"

//! Empty when the window is gone.
inline BRect
frame_of(BWindow* window)
{
	if (!window->Lock())
		return BRect();
	const BRect frame = window->Frame();
	window->Unlock();
	return frame;
}

/*!	What a test of the display needs: the add-on's singletons, a host, and a folder with the songs' lyrics. */
class DisplayFixture : public testing::Test {
protected:
	DisplayFixture()
	{
		host().Reset();
		gPref = new TPref;
		gPref->fMonitoringInterval = 2000;
		gExitState = new TExitState;
		gAppPrivacy = new merion::TAppPrivacy([] { return gPref->fLanguageFile.Get(); });
		gIAP = new merion::TInterAppPrefs;
		gIAP->AddItem(new merion::TIAPItemAccKeyFormat);
		gLLT = new merion::TLLT;
		EXPECT_EQ(gLLT->Load(TEST_DATA "/../../Language/English.llt"), B_OK);
		merion::allow_alerts();
	}

	~DisplayFixture() override
	{
		Delete(gPref);
		Delete(gExitState);
		Delete(gAppPrivacy);
		Delete(gIAP);
		Delete(gLLT);
	}

	//! An entry of the playlist whose lyrics are the folder's NAME.lrc or .txt.
	ScriptedHost::Entry Song(const std::string& name) const
	{
		return {fFolder / (name + ".ogg"), name};
	}

	/*!	Writes a file whose modification time is another second than those before it; whoever is
		told of the writing finds it so. */
	std::string Save(std::string_view name, std::string_view text)
	{
		const std::string path = fFolder / name;
		std::ofstream file(path, std::ios::binary | std::ios::trunc);
		file << text << std::flush;
		std::filesystem::last_write_time(path, NextTime());
		return path;
	}

	//! The same, as a careful editor does it.
	void SaveByRenaming(std::string_view name, std::string_view text)
	{
		const std::string aside = fFolder.Write("aside", text);
		std::filesystem::last_write_time(aside, NextTime());
		std::filesystem::rename(aside, fFolder / name);
	}

	TempFolder fFolder;

private:
	template<typename T> static void Delete(T*& singleton)
	{
		delete std::exchange(singleton, nullptr);
	}

	std::filesystem::file_time_type NextTime()
	{
		fTime += std::chrono::seconds(2);
		return fTime;
	}

	std::filesystem::file_time_type fTime
		= std::filesystem::file_time_type::clock::now() - std::chrono::hours(10);
};
