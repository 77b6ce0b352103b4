// What the user does with the display: its menu, its keys, the mouse. And what it does when nobody does anything.

#include "support/display.h"

#include <Message.h>
#include <Messenger.h>
#include <QApplication>
#include <QMenu>
#include <map>
#include <mutex>
#include <sys/inotify.h>

#include "framework/accelerator.h"
#include "framework/file_utils.h"
#include "lyrics/TTavoraDView.h"
#include "lyrics/TTavoraDWin.h"
#include "plugin/helpers/TCommMan.h"
#include "plugin/helpers/commman_codes.h"
#include "prefs/app_info.h"
#include "support/DisplayFixture.h"
#include "support/languages.h"

namespace {

const BRect kHostFrame(330, 350, 469, 449);
constexpr float kBorder = 60; // room for the borders of two windows beside each other

//! Keeps what the add-on's manager would get.
class Manager : public TCommMan {
public:
	Manager() : TCommMan("menu test", "nobody") { Run(); }

	void MessageReceived(BMessage* message) override
	{
		std::lock_guard locker(fLock);
		fReceived[message->what] = *message;
		fCounts[message->what]++;
	}

	int CountOf(uint32 what)
	{
		std::lock_guard locker(fLock);
		return fCounts[what];
	}
	BMessage Last(uint32 what)
	{
		std::lock_guard locker(fLock);
		return fReceived[what];
	}

private:
	std::mutex fLock;
	std::map<uint32, BMessage> fReceived;
	std::map<uint32, int> fCounts;
};

//! The label, and those of the sub-menu, one a line; separators are lines of "-".
std::string
labels_of(const QMenu& menu, const std::string& indent = "")
{
	std::string labels;
	for (const QAction* action : menu.actions()) {
		labels += indent + (action->isSeparator() ? "-" : action->text().toStdString()) + "\n";
		if (action->menu() != nullptr)
			labels += labels_of(*action->menu(), indent + "\t");
	}
	return labels;
}

QMenu*
popup()
{
	return qobject_cast<QMenu*>(QApplication::activePopupWidget());
}

template<typename Function>
auto
on_display_server(Function function)
{
	return *BPrivate::ServerLink::Default().Call(function);
}

QAction*
find_action(const QMenu* menu, const QString& label)
{
	if (menu == nullptr)
		return nullptr;
	for (QAction* action : menu->actions()) {
		if (action->text() == label)
			return action;
	}
	return nullptr;
}

class MenuTest : public DisplayFixture {
protected:
	MenuTest()
	{
		SetFormat(merion::kAccKeyHidden); // labels alone
		fHostWindow = new BWindow(kHostFrame, "Qubo", B_TITLED_WINDOW, 0);
		fHostWindow->Show();
		fWindow = new TTavoraDWin(BRect(300, 300, 599, 449), fManager);
		fView = static_cast<TTavoraDView*>(fWindow->ChildAt(0));
		fWindow->Appear();
		settle(fWindow);
	}
	~MenuTest() override
	{
		for (BWindow* window : {static_cast<BWindow*>(fWindow), fHostWindow}) {
			if (window->Lock())
				window->Quit();
		}
		if (fManager->Lock())
			fManager->Quit();
	}

	//! Answers the notice of it, which the window has not got.
	static BMessage SetFormat(int32 format)
	{
		BMessage change(merion::kIAPChanged);
		change.AddString(merion::kIAPSourceItem, merion::TIAPItemAccKeyFormat::kName);
		change.AddInt32(merion::TIAPItemAccKeyFormat::kName, format);
		EXPECT_EQ(gIAP->SetValue(change), B_OK);
		return change;
	}

	static bool IsOpen()
	{
		return on_display_server([] { return popup() != nullptr; });
	}

	void Open()
	{
		ASSERT_TRUE(wait_until([] { return !IsOpen(); }));
		// A click that comes while the menu before is still being closed opens none.
		for (int attempt = 0; attempt < 10 && !IsOpen(); attempt++) {
			click(fWindow, BPoint(40, 40), Qt::RightButton);
			if (wait_until(IsOpen, std::chrono::seconds(1)))
				return;
		}
		ASSERT_TRUE(IsOpen()) << "no menu was opened";
	}

	static void CloseMenu()
	{
		on_display_server([] {
			if (popup() != nullptr)
				popup()->close();
			return true;
		});
	}

	static std::string OpenLabels()
	{
		return on_display_server(
			[] { return popup() != nullptr ? labels_of(*popup()) : std::string(); });
	}

	//! The path goes through sub-menus. False when there is no such item, or it is off.
	bool Choose(const std::vector<std::string>& keys)
	{
		Open();
		const bool isChosen = on_display_server([keys] {
			const QMenu* menu = popup();
			QAction* action = nullptr;
			for (const std::string& key : keys) {
				action = find_action(menu, QString::fromUtf8(gLLT->Text(key.c_str())));
				menu = action != nullptr ? action->menu() : nullptr;
			}
			if (action == nullptr || !action->isEnabled())
				return false;
			action->trigger();
			return true;
		});
		CloseMenu();
		return isChosen;
	}

	bool IsMarked(const char* key)
	{
		Open();
		const QString label = QString::fromUtf8(gLLT->Text(key));
		const bool isMarked = on_display_server([label] {
			const QAction* action = find_action(popup(), label);
			return action != nullptr && action->isChecked();
		});
		CloseMenu();
		return isMarked;
	}

	bool Gets(uint32 what, int count = 1)
	{
		return wait_until([&] { return fManager->CountOf(what) == count; });
	}

	BRect Frame() { return frame_of(fWindow); }

	float HeightOfLines(int32 count)
	{
		fWindow->Lock();
		const float height = fView->HeightOfLines(count);
		fWindow->Unlock();
		return height;
	}

	void Play(const char* title, int32 positionMs, const std::string& line)
	{
		host().Play(title, positionMs);
		ASSERT_TRUE(wait_until([&] {
			if (!fWindow->Lock())
				return false;
			const bool isIt = fView->CurrentLineText() == line;
			fWindow->Unlock();
			return isIt;
		})) << line;
		settle(fWindow);
	}

	//! Lets the display look at the host so many times more.
	static void Tick(int count)
	{
		const int32 before = host().CountOf(kQuboInfo);
		ASSERT_TRUE(wait_until(
			[&] { return host().CountOf(kQuboInfo) >= before + count; }, std::chrono::seconds(60)));
	}

	Manager* fManager = new Manager;
	BWindow* fHostWindow = nullptr;
	TTavoraDWin* fWindow = nullptr;
	TTavoraDView* fView = nullptr;
};

} // namespace

TEST_F(MenuTest, ItsLabelsAreThoseOfTheLanguageAndFormat)
{
	const auto item = [](const char* key, const char* accelerator, int32 format) {
		return merion::merge_accelerator_key(gLLT->Text(key), accelerator, format) + "\n";
	};
	for (const char* language : kLanguages) {
		ASSERT_TRUE(load_shipped_language(language));
		for (const int32 format :
			{merion::kAccKeyHidden, merion::kAccKeyInBrackets, merion::kAccKeyWithModifier}) {
			BMessage change = SetFormat(format);
			// either notice alone must do
			if (format == merion::kAccKeyHidden)
				fWindow->PostMessage(kLanguageChanged);
			else
				fWindow->PostMessage(&change);
			settle(fWindow);
			std::string expected = item("PopMItem_Open", "O", format) + "-\n"
				+ item("PopMItem_Stay_On_Top", "T", format);
			for (const char* key :
				{"Position", "\tPos_Left", "\tPos_Right", "\tPos_Above", "\tPos_Below", "Size",
					"\tSize_Host_Width", "\tSize_3_Lines", "\tSize_7_Lines", "\tSize_15_Lines"}) {
				const bool isInner = *key == '\t';
				expected += (isInner ? "\t" : "")
					+ item((std::string("PopMItem_") + (key + isInner)).c_str(), "", format);
			}
			expected += item("PopMItem_Hide", "H", format) + "-\n"
				+ item("PopMItem_Preferences", "P", format)
				+ item("PopMItem_Common_Preferences", "M", format) + "-\n"
				+ item("PopMItem_Help", "L", format) + item("PopMItem_Author_Web", "", format)
				+ item("PopMItem_About", "A", format);
			Open();
			EXPECT_EQ(OpenLabels(), expected) << language << ", format " << format;
			CloseMenu();
		}
	}
}

TEST_F(MenuTest, OpensTheLyricsOfTheSongOnly)
{
	EXPECT_FALSE(Choose({"PopMItem_Open"})) << "there is no song";
	const std::string path = Save("曲 #1 100%.lrc", "[00:00]la");
	host().SetPlaylist({Song("曲 #1 100%"), Song("without")});
	Play("曲 #1 100%", 0, "la");
	ASSERT_TRUE(Choose({"PopMItem_Open"}));
	ASSERT_TRUE(Gets(kOpenLyrics));
	entry_ref ref;
	ASSERT_EQ(fManager->Last(kOpenLyrics).FindRef("LyricsERef", &ref), B_OK);
	EXPECT_EQ(merion::path_of(ref), path);

	// whether it is there or not: the manager asks
	Play("without", 0, "");
	ASSERT_TRUE(Choose({"PopMItem_Open"}));
	ASSERT_TRUE(Gets(kOpenLyrics, 2));
	ASSERT_EQ(fManager->Last(kOpenLyrics).FindRef("LyricsERef", &ref), B_OK);
	EXPECT_EQ(merion::path_of(ref), fFolder / "without.txt");
}

TEST_F(MenuTest, StayOnTopIsOneSettingWhereverItIsChanged)
{
	EXPECT_FALSE(IsMarked("PopMItem_Stay_On_Top"));
	ASSERT_TRUE(Choose({"PopMItem_Stay_On_Top"}));
	EXPECT_TRUE(Gets(kStayOnTopItemChanged));
	EXPECT_TRUE(gPref->fStayOnTop);
	settle(fWindow);
	EXPECT_TRUE(IsMarked("PopMItem_Stay_On_Top"));
	EXPECT_EQ(fWindow->Feel(), B_FLOATING_ALL_WINDOW_FEEL);
	gPref->fStayOnTop = false; // in the preferences window
	fWindow->PostMessage(kPrefStayOnTopChanged);
	settle(fWindow);
	EXPECT_FALSE(IsMarked("PopMItem_Stay_On_Top"));
	EXPECT_EQ(fWindow->Feel(), B_NORMAL_WINDOW_FEEL);
	EXPECT_EQ(fManager->CountOf(kStayOnTopItemChanged), 1)
		<< "the preferences are told their own change";
}

TEST_F(MenuTest, PlacesAndSizesAtOnce)
{
	const auto leadsTo = [&](const char* menu, const char* key, auto&& condition) {
		if (!Choose({menu, key}))
			return false;
		return wait_until([&] { return condition(Frame()); });
	};
	const BSize size = Frame().Size();
	EXPECT_TRUE(leadsTo("PopMItem_Position", "PopMItem_Pos_Left",
		[](BRect frame) { return frame.right < kHostFrame.left && frame.top == kHostFrame.top; }));
	EXPECT_TRUE(leadsTo("PopMItem_Position", "PopMItem_Pos_Right", [](BRect frame) {
		return frame.left > kHostFrame.right && frame.left < kHostFrame.right + kBorder;
	}));
	EXPECT_TRUE(leadsTo("PopMItem_Position", "PopMItem_Pos_Above", [](BRect frame) {
		return frame.bottom < kHostFrame.top && frame.left == kHostFrame.left;
	}));
	EXPECT_TRUE(leadsTo("PopMItem_Position", "PopMItem_Pos_Below", [](BRect frame) {
		return frame.top > kHostFrame.bottom && frame.top < kHostFrame.bottom + kBorder;
	}));
	EXPECT_EQ(Frame().Size(), size);

	// and keeps that distance
	settle(fWindow);
	const BPoint place = Frame().LeftTop() + BPoint(-30, -40);
	ASSERT_TRUE(fHostWindow->Lock());
	fHostWindow->MoveBy(-30, -40);
	fHostWindow->Unlock();
	EXPECT_TRUE(wait_until([&] { return Frame().LeftTop() == place; }));

	EXPECT_TRUE(leadsTo("PopMItem_Size", "PopMItem_Size_Host_Width",
		[](BRect frame) { return frame.Width() == kHostFrame.Width(); }));
	const std::pair<const char*, int32> kSizes[] = {
		{"PopMItem_Size_3_Lines", 3}, {"PopMItem_Size_7_Lines", 7}, {"PopMItem_Size_15_Lines", 15}};
	// The size is that of lines, whatever the font; in whole pixels.
	for (const float fontSize : {12, 24}) {
		gPref->fFontSize = fontSize;
		fWindow->PostMessage(kPrefAppearanceChanged);
		settle(fWindow);
		for (const auto& [key, lines] : kSizes) {
			const float height = HeightOfLines(lines);
			EXPECT_TRUE(leadsTo("PopMItem_Size", key,
				[&](BRect frame) { return std::fabs(frame.Height() - height) <= 1; }))
				<< fontSize << ", " << lines << " lines";
		}
	}
}

TEST_F(MenuTest, HidesAndAsksForTheOtherWindows)
{
	const std::pair<const char*, uint32> kItems[] = {{"PopMItem_Preferences", kPrefItemChosen},
		{"PopMItem_Common_Preferences", kCommonPrefItemChosen}, {"PopMItem_Help", kHelpItemChosen},
		{"PopMItem_About", kAboutItemChosen}};
	for (const auto& [key, what] : kItems) {
		EXPECT_TRUE(Choose({key})) << key;
		EXPECT_TRUE(Gets(what)) << key;
	}
	EXPECT_EQ(Choose({"PopMItem_Author_Web"}), gAuthorWebURL[0] != '\0');

	// The same by their keys, which work while the menu is closed.
	const std::pair<Qt::Key, uint32> kKeys[]
		= {{Qt::Key_P, kPrefItemChosen}, {Qt::Key_M, kCommonPrefItemChosen},
			{Qt::Key_L, kHelpItemChosen}, {Qt::Key_A, kAboutItemChosen}};
	for (const auto& [key, what] : kKeys) {
		type_key(fWindow, key, Qt::AltModifier);
		EXPECT_TRUE(Gets(what, 2)) << key;
	}
	type_key(fWindow, Qt::Key_O, Qt::AltModifier);
	settle(fWindow);
	EXPECT_EQ(fManager->CountOf(kOpenLyrics), 0) << "there is no song";
	type_key(fWindow, Qt::Key_T, Qt::AltModifier);
	EXPECT_TRUE(Gets(kStayOnTopItemChanged));

	const auto isHidden = [&] {
		const bool isLocked = fWindow->Lock();
		const bool isHidden = fWindow->IsHidden();
		if (isLocked)
			fWindow->Unlock();
		return isHidden;
	};
	ASSERT_TRUE(Choose({"PopMItem_Hide"}));
	EXPECT_TRUE(wait_until(isHidden));
	fWindow->Appear();
	settle(fWindow);
	type_key(fWindow, Qt::Key_H, Qt::AltModifier);
	EXPECT_TRUE(wait_until(isHidden));
}

TEST_F(MenuTest, TheMenuKeyOpensItAndTheLyricsGoOn)
{
	Save("song.lrc", "[00:00]one\n[00:10]two");
	host().SetPlaylist({Song("song")});
	Play("song", 0, "one");
	type_key(fWindow, Qt::Key_Menu);
	ASSERT_TRUE(wait_until(IsOpen));
	Play("song", 10000, "two");
	EXPECT_TRUE(IsOpen());
	CloseMenu();
}

TEST_F(MenuTest, ADoubleClickAsksForThePreferences)
{
	set_click_speed(fWindow, 60000); // which a busy machine does not miss
	click(fWindow, BPoint(20, 20));
	click(fWindow, BPoint(200, 90));
	settle(fWindow);
	EXPECT_EQ(fManager->CountOf(kPrefItemChosen), 0) << "two clicks at two places";
	click(fWindow, BPoint(200, 90));
	EXPECT_TRUE(Gets(kPrefItemChosen));
}

TEST_F(MenuTest, NothingIsDrawnOrReadWhileThereIsNothingNew)
{
	const std::string path = Save("song.lrc", "[00:00]one\n[00:10]two\n[00:20]three");
	gPref->fBGImageFile = fFolder.Write("image.ppm", "P6 1 1 255\n\x80\x80\x80");
	gPref->fUseBGImage = true;
	host().SetPlaylist({Song("song")});
	fWindow->PostMessage(kPrefAppearanceChanged);
	Play("song", 10000, "two");

	const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
	ASSERT_GE(inotify_add_watch(watch, fFolder.Path().c_str(), IN_ALL_EVENTS), 0);
	const auto isTouched = [watch] {
		char events[4096];
		return read(watch, events, sizeof(events)) > 0;
	};
	int64 frames = count_frames(fWindow);
	Tick(200);
	EXPECT_EQ(count_frames(fWindow), frames) << "it draws while the song is paused";
	EXPECT_FALSE(isTouched()) << "it reads while the song is paused";

	ASSERT_TRUE(fWindow->Lock());
	fWindow->Hide();
	fWindow->Unlock();
	settle(fWindow);
	frames = count_frames(fWindow);
	Play("song", 20000, "three");
	Play("song", 0, "one");
	Tick(50);
	EXPECT_EQ(count_frames(fWindow), frames) << "it draws while it is hidden";
	EXPECT_FALSE(isTouched()) << "it reads while it is hidden";
	EXPECT_TRUE(std::ifstream(path).get() == '[' && isTouched()) << "nothing would have been seen";

	fWindow->Appear();
	EXPECT_TRUE(wait_until([&] { return count_frames(fWindow) > frames; }));
	close(watch);
}
