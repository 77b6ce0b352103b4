#include <List.h>
#include <Message.h>
#include <Messenger.h>
#include <Screen.h>
#include <Window.h>

#include "framework/screen_utils.h"
#include "lyrics/TTavoraDWin.h"
#include "plugin/helpers/TCommMan.h"
#include "prefs/app_info.h"
#include "support/DisplayFixture.h"
#include "support/display.h"

namespace {

BMessage
exit_state_of_an_earlier_run(BRect frame)
{
	BMessage archive;
	archive.AddString("_Ver", "0.0");
	archive.AddRect("_WFr", frame);
	return archive;
}

class WindowTest : public DisplayFixture {
protected:
	~WindowTest() override
	{
		Close(fWindow);
		Close(fHostWindow);
	}

	static void Close(BWindow* window)
	{
		if (window != nullptr && window->Lock())
			window->Quit();
	}

	void ShowHost(BRect frame)
	{
		fHostWindow = new BWindow(frame, "Qubo", B_TITLED_WINDOW, 0);
		fHostWindow->Show();
	}

	void MoveHost(BPoint to)
	{
		ASSERT_TRUE(fHostWindow->Lock());
		fHostWindow->MoveTo(to);
		fHostWindow->Unlock();
	}

	//! As the user does it.
	void MoveByHand(BPoint to)
	{
		ASSERT_TRUE(fWindow->Lock());
		fWindow->MoveTo(to);
		fWindow->Unlock();
		// A host that moves before the window is told would move it from its old place.
		settle(fWindow);
		ASSERT_TRUE(wait_until([&] { return gExitState->WindowFrame().LeftTop() == to; }));
	}

	void Open(BRect frame)
	{
		ASSERT_TRUE(gExitState->Unarchive(exit_state_of_an_earlier_run(frame)));
		OpenFirst();
	}

	void OpenFirst()
	{
		fWindow = new TTavoraDWin(gExitState->WindowFrame(), nullptr);
		fWindow->Appear();
	}

	BRect Frame() { return frame_of(fWindow); }

	bool IsHidden()
	{
		if (!fWindow->Lock())
			return true;
		const bool isHidden = fWindow->IsHidden();
		fWindow->Unlock();
		return isHidden;
	}

	bool ComesTo(BPoint place)
	{
		return wait_until([&] { return Frame().LeftTop() == place; });
	}

	TTavoraDWin* fWindow = nullptr;
	BWindow* fHostWindow = nullptr;
};

} // namespace

TEST(Placing, KeepsWindowsOnAScreen)
{
	const std::vector<BRect> screens = {BRect(0, 0, 999, 799), BRect(1000, 0, 1999, 799)};
	EXPECT_TRUE(merion::is_on_screen(BRect(100, 100, 200, 200), screens));
	EXPECT_TRUE(merion::is_on_screen(BRect(1500, 700, 1700, 900), screens));
	EXPECT_FALSE(merion::is_on_screen(BRect(-300, 100, -10, 200), screens));
	EXPECT_FALSE(merion::is_on_screen(BRect(100, 795, 200, 900), screens));

	EXPECT_EQ(merion::keep_on_screen(BRect(100, 100, 200, 200), screens), BPoint(100, 100));
	EXPECT_EQ(merion::keep_on_screen(BRect(-300, 100, -100, 200), screens), BPoint(0, 100));
	EXPECT_EQ(merion::keep_on_screen(BRect(5000, 100, 5099, 199), screens), BPoint(1900, 100));
	const BPoint huge = merion::keep_on_screen(BRect(-9000, -9000, -1, -1), screens);
	EXPECT_TRUE(merion::is_on_screen(BRect(huge, huge + BPoint(8999, 8999)), screens));

	// right of the other, else left, else inside
	const BRect frame(0, 0, 99, 99);
	EXPECT_GT(merion::place_beside(frame, BRect(100, 100, 199, 199), screens).x, 199);
	EXPECT_LT(merion::place_beside(frame, BRect(880, 100, 979, 199), screens).x + 99, 880);
	const BPoint inside = merion::place_beside(frame, BRect(10, 100, 989, 199), screens);
	EXPECT_TRUE(merion::is_on_screen(BRect(inside, inside + BPoint(99, 99)), screens));
}

TEST_F(WindowTest, OpensBesideTheHostOnAFirstRun)
{
	ShowHost(BRect(50, 100, 249, 199));
	OpenFirst();
	EXPECT_GT(Frame().left, 249);
	EXPECT_EQ(Frame().top, 100);
	EXPECT_EQ(gExitState->WindowFrame(), Frame());
}

TEST_F(WindowTest, OpensWhereItWasUnlessThatIsOffTheScreen)
{
	ShowHost(BRect(50, 100, 249, 199));
	Open(BRect(60, 300, 359, 399));
	EXPECT_EQ(Frame(), BRect(60, 300, 359, 399));
	Close(fWindow);

	for (const BRect frame : {BRect(90000, 0, 90100, 50), BRect(NAN, 0, 100, 100), BRect(),
			 BRect(-5000, -5000, -4000, -4000), BRect(0, 0, 1e30f, 1e30f)}) {
		fWindow = nullptr;
		Open(frame);
		EXPECT_TRUE(merion::is_on_screen(Frame(), merion::screen_frames()));
		EXPECT_GE(Frame().Width(), 1);
		Close(fWindow);
	}
	fWindow = nullptr;
}

TEST_F(WindowTest, OpensWithoutAHost)
{
	OpenFirst();
	EXPECT_TRUE(merion::is_on_screen(Frame(), merion::screen_frames()));
}

TEST_F(WindowTest, FollowsTheHostAtTheUsersDistance)
{
	ShowHost(BRect(50, 50, 249, 149));
	Open(BRect(60, 200, 259, 299));
	MoveHost(BPoint(80, 60));
	EXPECT_TRUE(ComesTo(BPoint(90, 210)));
	for (int i = 0; i < 30; i++)
		MoveHost(BPoint(80 + i, 60 + i));
	EXPECT_TRUE(ComesTo(BPoint(119, 239)));
	// a busy window manager tells of a place on the way once more
	BMessage moved(B_WINDOW_MOVED);
	moved.AddPoint("where", BPoint(90, 210));
	ASSERT_TRUE(fWindow->Lock());
	fWindow->DispatchMessage(&moved, fWindow);
	EXPECT_EQ(Frame().LeftTop(), BPoint(90, 210)) << "before the true reports come";
	fWindow->Unlock();
	MoveHost(BPoint(50, 50));
	EXPECT_TRUE(ComesTo(BPoint(60, 200))) << "its own moves count as the user's";

	MoveByHand(BPoint(300, 100));
	MoveHost(BPoint(60, 70));
	EXPECT_TRUE(ComesTo(BPoint(310, 120)));
	EXPECT_TRUE(wait_until([&] { return gExitState->WindowFrame() == Frame(); }));
}

TEST_F(WindowTest, FollowsNeverOffTheScreenAndReturns)
{
	const BRect screen = BScreen().Frame();
	ShowHost(BRect(100, 100, 199, 199));
	Open(BRect(100, 250, 299, 349));
	MoveHost(BPoint(100, screen.bottom - 20));
	EXPECT_TRUE(wait_until([&] { return Frame().top > 300; }));
	EXPECT_TRUE(merion::is_on_screen(Frame(), merion::screen_frames()));
	MoveHost(BPoint(100, 100));
	EXPECT_TRUE(ComesTo(BPoint(100, 250)));
}

TEST_F(WindowTest, RemembersItsSize)
{
	Open(BRect(60, 200, 259, 299));
	ASSERT_TRUE(fWindow->Lock());
	fWindow->ResizeTo(333, 222);
	fWindow->Unlock();
	EXPECT_TRUE(wait_until([] { return gExitState->WindowFrame() == BRect(60, 200, 393, 422); }))
		<< gExitState->WindowFrame().left << " " << gExitState->WindowFrame().top << " "
		<< gExitState->WindowFrame().Width() << " " << gExitState->WindowFrame().Height();
}

TEST_F(WindowTest, TheCloseButtonHidesAndAppearShows)
{
	ShowHost(BRect(50, 50, 249, 149));
	Open(BRect(60, 200, 259, 299));
	EXPECT_FALSE(IsHidden());
	for (int round = 0; round < 3; round++) {
		BMessage close(B_QUIT_REQUESTED);
		close.AddInt64("when", system_time());
		ASSERT_EQ(BMessenger(fWindow).SendMessage(&close), B_OK);
		EXPECT_TRUE(wait_until([&] { return IsHidden(); }));
		fWindow->Appear();
		EXPECT_FALSE(IsHidden());
		fWindow->Appear();
		EXPECT_FALSE(IsHidden());
	}
	MoveHost(BPoint(60, 60));
	EXPECT_TRUE(ComesTo(BPoint(70, 210))) << "does not follow any more";

	ASSERT_TRUE(fWindow->Lock());
	EXPECT_TRUE(fWindow->QuitRequested()) << "the application is refused";
	fWindow->Unlock();
}

TEST_F(WindowTest, NamesThePlayingSong)
{
	Save("song.lrc", "[00:00]line");
	host().SetPlaylist({Song("song")});
	OpenFirst();
	const auto titleBecomes = [&](const std::string& title) {
		return wait_until([&] {
			if (!fWindow->Lock())
				return false;
			const bool isIt = fWindow->Title() == title;
			fWindow->Unlock();
			return isIt;
		});
	};
	EXPECT_TRUE(titleBecomes("Lyrics"));
	host().Play("song", 0);
	EXPECT_TRUE(titleBecomes("Lyrics – song"));
	host().Play("", 0);
	EXPECT_TRUE(titleBecomes("Lyrics"));
}

TEST_F(WindowTest, LeavesNothingOnTheHostsWindow)
{
	ShowHost(BRect(50, 50, 249, 149));
	for (int round = 0; round < 10; round++) {
		OpenFirst();
		Close(fWindow);
		fWindow = nullptr;
		ASSERT_TRUE(fHostWindow->Lock());
		BList* filters = fHostWindow->FilterList();
		EXPECT_TRUE(filters == nullptr || filters->CountItems() == 0);
		fHostWindow->Unlock();
		MoveHost(BPoint(50 + round, 50));
	}
}

TEST_F(WindowTest, OutlivesTheHostsWindow)
{
	ShowHost(BRect(50, 50, 249, 149));
	Open(BRect(60, 200, 259, 299));
	Close(fHostWindow);
	ShowHost(BRect(70, 70, 269, 169));
	fWindow->Appear();
	MoveHost(BPoint(80, 75));
	EXPECT_TRUE(ComesTo(BPoint(90, 225)));
}

TEST_F(WindowTest, FloatsWhenThePreferencesSaySo)
{
	gPref->fStayOnTop = true;
	OpenFirst();
	const auto feelBecomes = [&](window_feel feel) {
		return wait_until([&] {
			if (!fWindow->Lock())
				return false;
			const bool isIt = fWindow->Feel() == feel;
			fWindow->Unlock();
			return isIt;
		});
	};
	EXPECT_TRUE(feelBecomes(B_FLOATING_ALL_WINDOW_FEEL));
	gPref->fStayOnTop = false;
	fWindow->PostMessage('Spsc');
	EXPECT_TRUE(feelBecomes(B_NORMAL_WINDOW_FEEL));
}
