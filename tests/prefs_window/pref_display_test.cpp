// The preferences window under the real manager, beside the lyrics window.

#include <algorithm>
#include <cstring>

#include <OS.h>
#include <image.h>

#include "PrefWindowControls.h"
#include "plugin/TTavoraDCommMan.h"
#include "plugin/helpers/commman_codes.h"
#include "plugin/helpers/load_language.h"
#include "plugin/helpers/own_file.h"
#include "support/DisplayFixture.h"

namespace {

// µs from the request to the window on the screen.
constexpr bigtime_t kFirstShow = 150000;
constexpr bigtime_t kNextShow = 30000;
constexpr int kRounds = 7;

//! The shown window whose title begins so.
BWindow*
window_titled(const char* beginning)
{
	for (int32 i = 0; BWindow* window = be_app->WindowAt(i); i++) {
		if (!window->Lock())
			continue;
		const bool isIt
			= !window->IsHidden() && strncmp(window->Title(), beginning, strlen(beginning)) == 0;
		window->Unlock();
		if (isIt)
			return window;
	}
	return nullptr;
}

BWindow*
wait_for_window(const char* beginning)
{
	BWindow* window = nullptr;
	EXPECT_TRUE(wait_until([&] { return (window = window_titled(beginning)) != nullptr; }))
		<< beginning;
	return window;
}

window_feel
feel_of(BWindow* window)
{
	window->Lock();
	const window_feel feel = window->Feel();
	window->Unlock();
	return feel;
}

class PrefAndDisplay : public DisplayFixture {
protected:
	PrefAndDisplay()
	{
		static const image_id addOn = load_add_on(ADD_ON);
		EXPECT_GE(addOn, 0);
		load_language(tavora_displayer_fname().c_str());
		gPref->fLanguageFile = "English.llt";
		load_language(tavora_displayer_fname().c_str());
		fManager = new TTavoraDCommMan;
		fManager->Run();
	}
	~PrefAndDisplay() override
	{
		if (fManager->Lock())
			fManager->Quit();
	}

	//! µs until the window can be seen.
	bigtime_t Open()
	{
		const bigtime_t start = system_time();
		fManager->PostMessage(kPreparePrefWindow);
		BWindow* window = wait_for_window(gLLT->Text("Win_Title_Pref"));
		if (window == nullptr)
			return B_INFINITE_TIMEOUT;
		EXPECT_TRUE(wait_until([window] {
			return on_server(window, [](BPrivate::ServerWindow& server) {
				return server.isVisible() && server.windowHandle()->isExposed();
			});
		}));
		settle(window);
		return system_time() - start;
	}

	TTavoraDCommMan* fManager;
};

TEST_F(PrefAndDisplay, AChangeIsSeenAtOnceAndCancelTakesItBack)
{
	fManager->PostMessage(kOpenMainWindow);
	BWindow* lyrics = wait_for_window("Lyrics");
	Open();
	BWindow* window = wait_for_window("Tavora Displayer Preferences");
	ASSERT_TRUE(lyrics != nullptr && window != nullptr);
	PrefWindowControls controls(window);
	const auto background = [lyrics] { return pixels_of(lyrics).pixelColor(3, 3); };
	EXPECT_TRUE(wait_until([&] { return background() == QColor(0, 0, 0); }));

	controls.Choose(controls.Show<BMenuField>("MFieldColor"), kColorBG);
	controls.SetColorPart(controls.Show<BView>("ColCtrlAppearance"), 2, 200);
	EXPECT_TRUE(wait_until([&] { return background() == QColor(0, 0, 200); }));
	controls.Press(controls.Show<BView>("CBoxStayOnTop"));
	EXPECT_TRUE(wait_until([&] { return feel_of(lyrics) == B_FLOATING_ALL_WINDOW_FEEL; }));
	controls.Press(controls.Show<BView>("CBoxStayOnTop"));
	EXPECT_TRUE(wait_until([&] { return feel_of(lyrics) == B_NORMAL_WINDOW_FEEL; }));
	EXPECT_TRUE(wait_until([&] { return feel_of(window) == B_NORMAL_WINDOW_FEEL; }))
		<< "it would lie over a display that is not on top";
	auto* languages = controls.Show<BMenuField>("MFieldLanguage");
	controls.Choose(languages, languages->Menu()->IndexOf(languages->Menu()->FindItem("Deutsch")));
	EXPECT_EQ(wait_for_window("Liedtext"), lyrics);
	EXPECT_EQ(wait_for_window(gLLT->Text("Win_Title_Pref")), window);

	controls.Press(controls.Show<BView>("ButtonCancel"));
	EXPECT_TRUE(wait_until([&] { return background() == QColor(0, 0, 0); }));
	EXPECT_EQ(wait_for_window("Lyrics"), lyrics);
}

TEST_F(PrefAndDisplay, TheWindowOpensWithoutDelay)
{
	std::vector<bigtime_t> first;
	std::vector<bigtime_t> next;
	for (int round = 0; round < kRounds; round++) {
		first.push_back(Open());
		for (int again = 0; again < 3; again++) {
			BWindow* window = window_titled("Tavora Displayer Preferences");
			ASSERT_NE(window, nullptr);
			window->PostMessage(merion::kDialogCancel);
			ASSERT_TRUE(wait_until(
				[] { return window_titled("Tavora Displayer Preferences") == nullptr; }));
			next.push_back(Open());
		}
		fManager->PostMessage(kClosePrefWindow);
		ASSERT_TRUE(
			wait_until([] { return window_titled("Tavora Displayer Preferences") == nullptr; }));
	}
	const bigtime_t cold = first.front();
	std::sort(first.begin(), first.end());
	std::sort(next.begin(), next.end());
	RecordProperty("FirstMedianMicroseconds", std::to_string(first[first.size() / 2]));
	RecordProperty("NextMedianMicroseconds", std::to_string(next[next.size() / 2]));
	printf("µs to the window: the very first %lld; medians of a new one %lld, of one that is there "
		   "%lld\n",
		static_cast<long long>(cold), static_cast<long long>(first[first.size() / 2]),
		static_cast<long long>(next[next.size() / 2]));
#if !defined(__SANITIZE_THREAD__) && !defined(__SANITIZE_ADDRESS__)
	// a busy machine may be slow, but not always
	EXPECT_LT(first.front(), kFirstShow);
	EXPECT_LT(next.front(), kNextShow);
#endif
}

} // namespace
