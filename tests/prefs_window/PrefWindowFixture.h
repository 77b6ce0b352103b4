#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <Message.h>
#include <QApplication>
#include <image.h>

#include "PrefWindowControls.h"
#include "framework/TAppPrivacy.h"
#include "framework/TIAPItemAccKeyFormat.h"
#include "framework/TInterAppPrefs.h"
#include "framework/TLLT.h"
#include "plugin/helpers/TCommMan.h"
#include "plugin/helpers/own_file.h"
#include "prefs/TExitState.h"
#include "prefs/TPref.h"
#include "prefs/window/TPrefView.h"
#include "prefs/window/TPrefWin.h"

//! Stands for the manager: keeps the notices that it gets.
class NoticeKeeper : public TCommMan {
public:
	NoticeKeeper() : TCommMan("notice keeper", "nobody") { }

	void MessageReceived(BMessage* message) override
	{
		if (message->what == B_GET_SUPPORTED_SUITES) {
			TCommMan::MessageReceived(message);
			return;
		}
		const std::lock_guard locker(fNoticesLock);
		fNotices.push_back(*message);
	}

	std::vector<BMessage> TakeNotices()
	{
		const std::lock_guard locker(fNoticesLock);
		return std::exchange(fNotices, {});
	}

private:
	std::mutex fNoticesLock;
	std::vector<BMessage> fNotices;
};

//! The add-on's file, loaded; the window takes its view out of it.
inline bool
load_own_file()
{
	static const image_id image = load_add_on(ADD_ON);
	return image >= 0 && !tavora_displayer_fname().empty();
}

/*!	The preferences window, open, and what it needs. */
class PrefWindowFixture : public testing::Test, protected PrefWindowControls {
protected:
	PrefWindowFixture()
	{
		EXPECT_TRUE(load_own_file());
		gPref = new TPref;
		gAppPrivacy = new merion::TAppPrivacy([] { return gPref->fLanguageFile.Get(); });
		gAppPrivacy->SetApplicationPath(tavora_displayer_fname());
		gIAP = new merion::TInterAppPrefs;
		gIAP->AddItem(new merion::TIAPItemAccKeyFormat);
		gLLT = new merion::TLLT;
		EXPECT_EQ(gLLT->Load(TEST_DATA "/../../Language/English.llt"), B_OK);
		fManager = new NoticeKeeper;
		fManager->Run();
	}

	~PrefWindowFixture() override
	{
		if (fWindow != nullptr && fWindow->Lock())
			fWindow->Quit();
		if (fManager->Lock())
			fManager->Quit();
		delete std::exchange(gPref, nullptr);
		delete std::exchange(gAppPrivacy, nullptr);
		delete std::exchange(gIAP, nullptr);
		delete std::exchange(gLLT, nullptr);
	}

	//! With the preferences that hold then.
	void Open()
	{
		fWindow = new TPrefWin(BRect(100, 100, 499, 399), fManager);
		SetWindow(fWindow);
		ASSERT_EQ(fWindow->InitCheck(), B_OK);
		fView = dynamic_cast<TPrefView*>(fWindow->ChildAt(0));
		ASSERT_NE(fView, nullptr);
		Appear();
	}

	void Appear()
	{
		fWindow->Appear();
		Settle();
		Activate();
	}

	//! The notices since the last time.
	std::vector<BMessage> TakeNotices()
	{
		Settle();
		BMessage question(B_GET_SUPPORTED_SUITES);
		BMessage answer;
		BMessenger(fManager).SendMessage(&question, &answer);
		return fManager->TakeNotices();
	}

	//! Their codes, as text: "Spsc Spac".
	std::string Told()
	{
		std::string codes;
		for (const BMessage& notice : TakeNotices()) {
			if (!codes.empty())
				codes += ' ';
			for (int shift = 24; shift >= 0; shift -= 8)
				codes += char(notice.what >> shift);
		}
		return codes;
	}

	NoticeKeeper* fManager;
	TPrefWin* fWindow = nullptr;
	TPrefView* fView = nullptr;
};
