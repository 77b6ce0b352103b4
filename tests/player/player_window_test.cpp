#include "player/Deck.h"
#include "player/Engine.h"
#include "player/FileFinder.h"
#include "player/PlayerWindow.h"
#include "player/player_messages.h"
#include "player/settings.h"

#include "WaveFile.h"
#include "support/display.h"
#include "support/temp_folder.h"
#include "support/wait_until.h"

#include <gmock/gmock.h>

#include <Application.h>
#include <Button.h>
#include <Entry.h>
#include <ListView.h>
#include <MenuBar.h>
#include <MenuItem.h>
#include <Message.h>
#include <MessageFilter.h>
#include <QLineEdit>
#include <QPushButton>
#include <Slider.h>
#include <StringItem.h>
#include <StringView.h>

#include <algorithm>
#include <atomic>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

constexpr bigtime_t kSecond = 1000000;

class WindowTeller : public Engine::Listener {
public:
	void PlayingChanged() override { window.SendMessage(kMsgPlayingChanged); }
	void Sought() override { window.SendMessage(kMsgSought); }
	void SongFailed(int32, const std::string&) override { }
	void NoSoundOutput() override { }
	void PlayingEnded(bool) override { }
	void EngineFailed(const std::string&) override { }

	BMessenger window;
};

class PlayerWindowTest : public testing::Test {
protected:
	static void SetUpTestSuite()
	{
		setenv("QUBO_AO", "null", 1);
		setenv("XDG_CONFIG_HOME", (sSettings / "").c_str(), 1);
		setlocale(LC_NUMERIC, "C");
	}

	void SetUp() override
	{
		for (const char* name : {"1.wav", "2.wav", "3.wav"}) {
			write_wave(fDir / name, 20);
			fState.Add(fDir / name);
		}
		fFinder->Run();
		fWindow = new PlayerWindow(fDeck, fState, 50, BMessenger(fFinder));
		fListener.window = BMessenger(fWindow);
		fWindow->Show();
	}

	void TearDown() override
	{
		for (BLooper* looper : {static_cast<BLooper*>(fWindow), static_cast<BLooper*>(fFinder)}) {
			ASSERT_TRUE(looper->Lock());
			looper->Quit();
		}
	}

	void Play()
	{
		fEngine.Play(0);
		ASSERT_TRUE(wait_until([&] { return Info().positionMs > 0; }));
		settle(fWindow);
	}

	QuboInfo Info() const { return fState.Info(); }

	std::string WindowTitle()
	{
		fWindow->Lock();
		std::string title = fWindow->Title();
		fWindow->Unlock();
		return title;
	}

	template<typename View> View* Find(const char* name)
	{
		fWindow->Lock();
		auto view = dynamic_cast<View*>(fWindow->FindView(name));
		fWindow->Unlock();
		return view;
	}

	std::string Shown(const char* name)
	{
		fWindow->Lock();
		const auto view = dynamic_cast<BStringView*>(fWindow->FindView(name));
		std::string text = view != nullptr ? view->Text() : "(none)";
		fWindow->Unlock();
		return text;
	}

	std::string Line(int32 index)
	{
		fWindow->Lock();
		auto list = dynamic_cast<BListView*>(fWindow->FindView("Playlist"));
		auto item = dynamic_cast<BStringItem*>(list->ItemAt(index));
		std::string text = item != nullptr ? item->Text() : "(none)";
		fWindow->Unlock();
		return text;
	}

	static inline const TempFolder sSettings;
	TempFolder fDir;
	PlayState fState;
	WindowTeller fListener;
	Engine fEngine{fState, fListener};
	Deck fDeck{fEngine};
	std::atomic<bool> fEnding{false};
	FileFinder* const fFinder = new FileFinder(fState, fEnding);
	PlayerWindow* fWindow;
};

TEST_F(PlayerWindowTest, ShowsWhatPlays)
{
	EXPECT_EQ(WindowTitle(), "Qubo");
	EXPECT_EQ(Line(0), "1.wav");
	Play();
	EXPECT_TRUE(wait_until([&] { return WindowTitle() == "Qubo – 1.wav"; })) << WindowTitle();
	EXPECT_TRUE(wait_until([&] { return Line(0) == "▶ 1.wav"; })) << Line(0);
	EXPECT_EQ(Line(1), "2.wav");
	EXPECT_EQ(Line(3), "(none)");
}

TEST_F(PlayerWindowTest, ObeysTheKeysOfAPlayer)
{
	Play();
	type_key(fWindow, Qt::Key_Space);
	EXPECT_TRUE(wait_until([&] { return Info().state == PlayState::kPaused; }));
	type_key(fWindow, Qt::Key_Right);
	EXPECT_TRUE(wait_until([&] { return Info().positionMs >= 5000; })) << Info().positionMs;
	type_key(fWindow, Qt::Key_Left);
	EXPECT_TRUE(wait_until([&] { return Info().positionMs < 5000; })) << Info().positionMs;
	type_key(fWindow, Qt::Key_PageDown);
	EXPECT_TRUE(wait_until([&] { return strcmp(Info().title, "2.wav") == 0; })) << Info().title;
	type_key(fWindow, Qt::Key_PageUp);
	EXPECT_TRUE(wait_until([&] { return strcmp(Info().title, "1.wav") == 0; })) << Info().title;
	fEngine.SeekTo(10 * kSecond);
	ASSERT_TRUE(wait_until([&] { return Info().positionMs >= 10000; }));
	type_key(fWindow, Qt::Key_Home);
	EXPECT_TRUE(wait_until([&] { return Info().positionMs < 5000; })) << Info().positionMs;
}

TEST_F(PlayerWindowTest, ItsTimeComesWithTheSecondAndWithASeek)
{
	const bigtime_t kLate
		= 350000; // a look every second would mostly be later; a busy machine is it now and then
	std::vector<bigtime_t> late;
	const auto middle = [&late] {
		std::sort(late.begin(), late.end());
		return late[late.size() / 2];
	};
	const auto shows = [&](int32 second) {
		const std::string digits = std::to_string(second);
		return Shown("Time").starts_with((second < 10 ? "0:0" : "0:") + digits);
	};
	Play();
	for (const int32 second : {1, 2, 3}) {
		ASSERT_TRUE(wait_until([&] { return shows(second); })) << Shown("Time");
		late.push_back((Info().positionMs - second * 1000) * bigtime_t(1000));
	}
	EXPECT_LT(middle(), kLate);
	late.clear();
	type_key(fWindow, Qt::Key_Space);
	ASSERT_TRUE(wait_until([&] { return Info().state == PlayState::kPaused; }));
	for (const Qt::Key key :
		{Qt::Key_Right, Qt::Key_Right, Qt::Key_Left, Qt::Key_Right, Qt::Key_Left}) {
		settle(fWindow);
		const int32 before = Info().positionMs;
		type_key(fWindow, key);
		ASSERT_TRUE(wait_until([&] { return std::abs(Info().positionMs - before) > 4000; }));
		const bigtime_t start = system_time();
		ASSERT_TRUE(wait_until([&] { return shows(Info().positionMs / 1000); })) << Shown("Time");
		late.push_back(system_time() - start);
	}
	EXPECT_LT(middle(), kLate);
}

TEST_F(PlayerWindowTest, PlusAndMinusMoveTheLyricsAndItIsKept)
{
	const int32 usual = fDeck.Shift();
	EXPECT_EQ(int_setting(kShiftSetting, 7), 7); // never saved
	type_key(fWindow, Qt::Key_Plus);
	type_key(fWindow, Qt::Key_Plus);
	EXPECT_TRUE(wait_until([&] { return int_setting(kShiftSetting, 7) == usual + 20; }));
	type_key(fWindow, Qt::Key_Minus);
	EXPECT_TRUE(wait_until([&] { return int_setting(kShiftSetting, 7) == usual + 10; }));
	EXPECT_EQ(fDeck.Shift(), usual + 10);
	fDeck.SetShift(Deck::kLargestShift - 3);
	type_key(fWindow, Qt::Key_Plus);
	EXPECT_TRUE(wait_until([&] { return int_setting(kShiftSetting, 7) == Deck::kLargestShift; }));
	sSettings.Write("Qubo/Qubo_Settings", "no settings");
	EXPECT_EQ(int_setting(kShiftSetting, 7), 7);
	EXPECT_EQ(set_int_setting(kShiftSetting, 8), B_OK);
	EXPECT_EQ(int_setting(kShiftSetting, 7), 8);
}

TEST_F(PlayerWindowTest, PlaysTheSelectedLineAndTakesTheKeysBackFromTheList)
{
	Play();
	auto list = Find<BListView>("Playlist");
	ASSERT_TRUE(fWindow->Lock());
	list->MakeFocus();
	list->Select(2);
	fWindow->Unlock();
	settle(fWindow);
	type_key(fWindow, Qt::Key_Return);
	EXPECT_TRUE(wait_until([&] { return strcmp(Info().title, "3.wav") == 0; })) << Info().title;
	settle(fWindow);
	type_key(fWindow, Qt::Key_Space);
	EXPECT_TRUE(wait_until([&] { return Info().state == PlayState::kPaused; }));
}

TEST_F(PlayerWindowTest, ButtonsPlayAndPause)
{
	Play();
	auto button = Find<BButton>("Play");
	ASSERT_NE(button, nullptr);
	on_widget<QPushButton>(button, [](QPushButton& widget) { return widget.click(), true; });
	EXPECT_TRUE(wait_until([&] { return Info().state == PlayState::kPaused; }));
	on_widget<QPushButton>(
		Find<BButton>("Next"), [](QPushButton& widget) { return widget.click(), true; });
	EXPECT_TRUE(wait_until([&] { return strcmp(Info().title, "2.wav") == 0; }));
	settle(fWindow);
	type_key(fWindow, Qt::Key_Space); // the keys are the window's again, not the button's
	EXPECT_TRUE(wait_until([&] { return Info().state == PlayState::kPaused; }));
	EXPECT_STREQ(Info().title, "2.wav");
}

TEST_F(PlayerWindowTest, TakesWhatIsDroppedOnItAndPlaysItWhenNothingPlays)
{
	std::filesystem::create_directory(fDir / "more");
	write_wave(fDir / "more/b.wav", 20);
	write_wave(fDir / "more/a.wav", 20);
	entry_ref ref;
	ASSERT_EQ(get_ref_for_path((fDir / "more").c_str(), &ref), B_OK);
	BMessage drop(B_SIMPLE_DATA);
	drop.AddRef("refs", &ref);
	ASSERT_TRUE(fFinder->Lock()); // as long as it takes to read the folder
	BMessenger(fWindow).SendMessage(&drop);
	settle(fWindow);
	EXPECT_EQ(fState.CountEntries(), 3);
	fFinder->Unlock();
	EXPECT_TRUE(wait_until([&] { return strcmp(Info().title, "a.wav") == 0; })) << Info().title;
	EXPECT_EQ(fState.CountEntries(), 5);
	EXPECT_TRUE(wait_until([&] { return Line(3) == "▶ a.wav"; })) << Line(3);
	EXPECT_EQ(Line(4), "b.wav");

	BMessage request(kMsgPlayFiles);
	request.AddString("path", (fDir / "gone.wav").c_str());
	BMessenger(fWindow).SendMessage(&request);
	EXPECT_TRUE(wait_until([&] { return Shown("Status").find("gone.wav") != std::string::npos; }))
		<< "nobody says that it is not there";
}

//! The only window beside the player's.
BWindow*
other_window(BWindow* window)
{
	for (int32 i = 0; BWindow* other = be_app->WindowAt(i); i++) {
		if (other != window)
			return other;
	}
	return nullptr;
}

TEST_F(PlayerWindowTest, OpensFilesAndFoldersByItsPanel)
{
	std::filesystem::create_directory(fDir / "曲 #1");
	write_wave(fDir / "曲 #1/a.wav", 20);
	type_key(fWindow, Qt::Key_O, Qt::AltModifier);
	ASSERT_TRUE(wait_until([&] { return other_window(fWindow) != nullptr; }));
	settle(other_window(fWindow));
	on_server(other_window(fWindow),
		[folder = QString::fromStdString(fDir / "曲 #1")](BPrivate::ServerWindow& server) {
			auto name = server.findChild<QLineEdit*>("fileNameEdit");
			name->setText(folder);
			QTest::keyClick(name, Qt::Key_Return);
			return true;
		});
	EXPECT_TRUE(wait_until([&] { return strcmp(Info().title, "a.wav") == 0; })) << Info().title;
	EXPECT_EQ(fState.CountEntries(), 4);
}

class QuitWatch : public BMessageFilter {
public:
	QuitWatch() : BMessageFilter(B_QUIT_REQUESTED) { }
	filter_result Filter(BMessage*, BHandler**) override
	{
		asked = true;
		return B_SKIP_MESSAGE;
	}

	std::atomic<bool> asked{false};
};

TEST_F(PlayerWindowTest, SaysWhatIsFollowedOrWhyThereIsNothing)
{
	BMessage report(kMsgFollowingChanged);
	report.AddBool("on", true);
	report.AddString("text", "nothing runs");
	report.AddString("pinned", "b");
	report.AddString("player", "a");
	report.AddString("player", "b");
	BMessenger(fWindow).SendMessage(&report);
	settle(fWindow);
	auto title = Find<BStringView>("Title");
	auto volume = Find<BSlider>("Volume");
	auto menus = Find<BMenuBar>("Menus");
	fWindow->Lock();
	EXPECT_STREQ(title->Text(), "nothing runs");
	EXPECT_FALSE(volume->IsEnabled()); // the other player's is not ours
	BMenu* follow = menus->SubmenuAt(2);
	ASSERT_EQ(follow->CountItems(), 4);
	EXPECT_EQ(follow->FindMarked(), follow->ItemAt(3));
	BMenuItem* open = follow->ItemAt(2);
	fWindow->Unlock();

	report.ReplaceBool("on", false);
	BMessenger(fWindow).SendMessage(&report);
	settle(fWindow);
	fWindow->Lock();
	EXPECT_EQ(follow->ItemAt(2), open); // the same players: the menu is left alone
	EXPECT_EQ(follow->FindMarked(), follow->ItemAt(0));
	EXPECT_TRUE(volume->IsEnabled());
	fWindow->Unlock();
}

TEST_F(PlayerWindowTest, ItsCloseButtonAsksTheApplication)
{
	auto watch = new QuitWatch;
	ASSERT_TRUE(be_app->Lock());
	be_app->AddCommonFilter(watch);
	be_app->Unlock();
	fWindow->PostMessage(B_QUIT_REQUESTED);
	EXPECT_TRUE(wait_until([&] { return watch->asked.load(); }));
	ASSERT_TRUE(be_app->Lock());
	be_app->RemoveCommonFilter(watch);
	be_app->Unlock();
	delete watch;
	EXPECT_TRUE(BMessenger(fWindow).IsValid()); // it closes when the application does
}

} // namespace
