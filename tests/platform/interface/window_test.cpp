#include "support/display.h"

#include <Application.h>
#include <Message.h>
#include <MessageFilter.h>
#include <Screen.h>
#include <View.h>
#include <atomic>
#include <functional>
#include <mutex>
#include <vector>

using namespace BPrivate;

namespace {

//! Counts what happens to it; asked to quit, it answers as told.
class CountingWindow : public BWindow {
public:
	struct Counts {
		std::atomic<int> moved = 0;
		std::atomic<int> resized = 0;
		std::atomic<int> asked = 0;
		std::atomic<int> askedByUser = 0;
		std::atomic<int> activated = 0;
		std::atomic<int> minimized = 0;
		std::atomic<bool> gone = false;
		std::atomic<bool> mayQuit = false;
		std::atomic<bool> consistent = true;
	};

	explicit CountingWindow(Counts* counts, uint32 flags = 0)
		: BWindow(BRect(100, 80, 299, 179), "counting", B_TITLED_WINDOW, flags),
		  fCounts(counts)
	{ }
	~CountingWindow() override { fCounts->gone = true; }

	void FrameMoved(BPoint where) override
	{
		fCounts->moved++;
		if (where != Frame().LeftTop())
			fCounts->consistent = false;
	}
	void FrameResized(float width, float height) override
	{
		fCounts->resized++;
		if (width != Frame().Width() || height != Frame().Height())
			fCounts->consistent = false;
	}
	void WindowActivated(bool active) override
	{
		fCounts->activated += active;
		BWindow::WindowActivated(active);
	}
	void Minimize(bool minimize) override
	{
		fCounts->minimized++;
		BWindow::Minimize(minimize);
	}
	bool QuitRequested() override
	{
		fCounts->askedByUser += CurrentMessage() != NULL && CurrentMessage()->HasInt64("when");
		fCounts->asked++; // last: the tests wait for it
		return fCounts->mayQuit;
	}

private:
	Counts* fCounts;
};

bool
is_shown(const BWindow* window)
{
	return on_server(window, [](ServerWindow& server) { return server.isVisible(); });
}

//! Runs a function with the window locked.
template<typename Function>
void
locked(BWindow* window, Function function)
{
	ASSERT_TRUE(window->Lock());
	function();
	window->Unlock();
}

class FrameView : public BView {
public:
	FrameView(BRect frame, uint32 mode) : BView(frame, "frame", mode, B_FRAME_EVENTS) { }
	void FrameMoved(BPoint where) override { fMovedTo = where; }
	void FrameResized(float width, float height) override
	{
		fResized++;
		fWidth = width;
		fHeight = height;
	}
	BPoint fMovedTo;
	int fResized = 0;
	float fWidth = 0;
	float fHeight = 0;
};

} // namespace

TEST(Window, ShowAndHideAreCounted)
{
	WindowHolder<BWindow> window(BRect(0, 0, 50, 50), "w", B_TITLED_WINDOW, 0);
	EXPECT_TRUE(window->IsHidden());
	window->Show();
	EXPECT_FALSE(window->IsHidden());
	EXPECT_TRUE(is_shown(window));
	window->Show(); // nothing to undo: does not count
	window->Hide();
	EXPECT_TRUE(window->IsHidden());
	window->Hide();
	window->Show();
	EXPECT_TRUE(window->IsHidden());
	EXPECT_FALSE(is_shown(window));
	window->Show();
	EXPECT_FALSE(window->IsHidden());
	EXPECT_TRUE(is_shown(window));
}

TEST(Window, TheFrameIsKnownAtOnceAndTheHooksAgreeWithIt)
{
	CountingWindow::Counts counts;
	WindowHolder<CountingWindow> window(&counts);
	EXPECT_EQ(window->Frame(), BRect(100, 80, 299, 179));
	window->Show();
	settle(window);
	locked(window, [&] {
		window->MoveTo(120, 90);
		EXPECT_EQ(window->Frame(), BRect(120, 90, 319, 189));
		window->ResizeTo(99, 49);
		EXPECT_EQ(window->Frame(), BRect(120, 90, 219, 139));
		EXPECT_EQ(window->Bounds(), BRect(0, 0, 99, 49));
	});
	EXPECT_TRUE(wait_until([&] { return counts.moved >= 1 && counts.resized >= 1; }));
	QRect real = on_server(window, [](ServerWindow& server) { return server.geometry(); });
	EXPECT_EQ(real, QRect(120, 90, 100, 50));

	// what the user does
	on_server(window, [](ServerWindow& server) {
		server.setGeometry(200, 150, 300, 120);
		return true;
	});
	EXPECT_TRUE(wait_until([&] { return window->Frame() == BRect(200, 150, 499, 269); }));
	settle(window);
	EXPECT_TRUE(counts.consistent);
}

TEST(Window, OldReportsDoNotUndoANewerMove)
{
	CountingWindow::Counts counts;
	WindowHolder<CountingWindow> window(&counts);
	window->Show();
	settle(window);
	locked(window, [&] {
		// waits in the queue while this side moves on
		on_server(window, [](ServerWindow& server) {
			server.setGeometry(10, 10, 200, 100);
			return true;
		});
		window->MoveTo(400, 300);
	});
	settle(window);
	EXPECT_EQ(window->Frame().LeftTop(), BPoint(400, 300));
	EXPECT_TRUE(counts.consistent);
	QRect real = on_server(window, [](ServerWindow& server) { return server.geometry(); });
	EXPECT_EQ(real.topLeft(), QPoint(400, 300));
}

TEST(Window, SizeLimitsHoldOnBothSides)
{
	WindowHolder<BWindow> window(BRect(0, 0, 99, 99), "w", B_TITLED_WINDOW, 0);
	window->Show();
	locked(window, [&] {
		window->SetSizeLimits(50, 150, 60, 160);
		window->ResizeTo(10, 1000);
		EXPECT_EQ(window->Bounds(), BRect(0, 0, 50, 160));
	});
	settle(window);
	QSize least = on_server(window, [](ServerWindow& server) { return server.minimumSize(); });
	EXPECT_EQ(least, QSize(51, 61));
	QSize real = on_server(window, [](ServerWindow& server) { return server.size(); });
	EXPECT_EQ(real, QSize(51, 161));
}

TEST(Window, AWindowThatTheUserCannotSizeStillFollowsItsProgram)
{
	WindowHolder<BWindow> window(BRect(0, 0, 99, 99), "w", B_TITLED_WINDOW, B_NOT_RESIZABLE);
	window->Show();
	locked(window, [&] { window->ResizeTo(199, 79); });
	settle(window);
	EXPECT_EQ(window->Bounds(), BRect(0, 0, 199, 79));
	QSize limits = on_server(window, [](ServerWindow& server) { return server.maximumSize(); });
	EXPECT_EQ(limits, QSize(200, 80));
}

TEST(Window, TheCloseButtonAsksAndTheAnswerDecides)
{
	CountingWindow::Counts counts;
	auto* window = new CountingWindow(&counts);
	window->Show();
	const auto close
		= [&] { on_server(window, [](ServerWindow& server) { return server.close(); }); };
	close();
	EXPECT_TRUE(wait_until([&] { return counts.asked == 1; }));
	EXPECT_TRUE(is_shown(window));
	EXPECT_EQ(counts.askedByUser, 1);
	window->PostMessage(B_QUIT_REQUESTED);
	EXPECT_TRUE(wait_until([&] { return counts.asked == 2; }));
	EXPECT_EQ(counts.askedByUser, 1) << "the application's request looks like the user's";

	int32 widgets = *ServerLink::Default().Call([] { return Registry::Default().CountWidgets(); });
	counts.mayQuit = true;
	close();
	EXPECT_TRUE(wait_until([&] { return counts.gone.load(); }));
	EXPECT_TRUE(wait_until([&] {
		return *ServerLink::Default().Call([] { return Registry::Default().CountWidgets(); })
			== widgets - 1;
	})) << "the server kept the window";
}

TEST(Window, AFilterSeesTheMoves)
{
	static std::atomic<int> sSeen;
	static std::atomic<float> sWhere;
	sSeen = 0;
	WindowHolder<BWindow> window(BRect(100, 100, 199, 199), "w", B_TITLED_WINDOW, 0);
	window->Show();
	settle(window);
	auto* filter = new BMessageFilter('_WMV', [](BMessage* message, BHandler**, BMessageFilter*) {
		sWhere = message->GetPoint("where", BPoint()).x;
		sSeen++;
		return B_DISPATCH_MESSAGE;
	});
	locked(window, [&] { window->AddCommonFilter(filter); });
	on_server(window, [](ServerWindow& server) {
		server.setGeometry(150, 120, 100, 100);
		return true;
	});
	EXPECT_TRUE(wait_until([] { return sSeen >= 1; }));
	EXPECT_EQ(sWhere, 150);
	locked(window, [&] { EXPECT_TRUE(window->RemoveCommonFilter(filter)); });
	delete filter;
}

TEST(Window, TheFeelChangesWithoutHidingTheWindow)
{
	WindowHolder<BWindow> window(BRect(0, 0, 99, 99), "w", B_TITLED_WINDOW, 0);
	window->Show();
	settle(window);
	struct HideWatcher : QObject {
		bool eventFilter(QObject*, QEvent* event) override
		{
			fHides += event->type() == QEvent::Hide || event->type() == QEvent::WinIdChange;
			return false;
		}
		int fHides = 0;
	};
	auto* watcher = on_server(window, [](ServerWindow& server) {
		auto* made = new HideWatcher;
		server.installEventFilter(made);
		return made;
	});
	const auto onTop = [&] {
		return on_server(window, [](ServerWindow& server) {
			return server.windowHandle()->flags().testFlag(Qt::WindowStaysOnTopHint);
		});
	};
	EXPECT_FALSE(onTop());
	locked(window, [&] { EXPECT_EQ(window->SetFeel(B_FLOATING_ALL_WINDOW_FEEL), B_OK); });
	EXPECT_TRUE(onTop());
	EXPECT_EQ(window->Feel(), B_FLOATING_ALL_WINDOW_FEEL);
	locked(window, [&] { EXPECT_EQ(window->SetFeel(B_NORMAL_WINDOW_FEEL), B_OK); });
	EXPECT_FALSE(onTop());
	EXPECT_EQ(window->SetFeel(static_cast<window_feel>(77)), B_BAD_VALUE);
	EXPECT_EQ(on_server(window, [=](ServerWindow&) { return watcher->fHides; }), 0);
	ServerLink::Default().CallJob([=] { delete watcher; });
}

TEST(Window, OneThatAvoidsTheFocusOpensWithoutIt)
{
	WindowHolder<BWindow> window(BRect(0, 0, 99, 99), "w", B_TITLED_WINDOW, uint32(B_AVOID_FRONT));
	WindowHolder<BWindow> never(BRect(0, 0, 99, 99), "n", B_TITLED_WINDOW, uint32(B_AVOID_FOCUS));
	window->Show();
	never->Show();
	EXPECT_TRUE(on_server(window, [](ServerWindow& server) {
		return server.testAttribute(Qt::WA_ShowWithoutActivating)
			&& !server.windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus);
	}));
	EXPECT_TRUE(on_server(never, [](ServerWindow& server) {
		return server.windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus);
	}));
}

TEST(Window, MinimizingIsToldAndTheTwoSidesAgree)
{
	CountingWindow::Counts counts;
	WindowHolder<CountingWindow> window(&counts);
	window->Show();
	settle(window);
	const auto minimizeByUser = [&] {
		on_server(window, [](ServerWindow& server) {
			server.setWindowState(Qt::WindowMinimized);
			return true;
		});
	};
	minimizeByUser();
	EXPECT_TRUE(wait_until([&] { return counts.minimized == 1; }));
	settle(window);
	EXPECT_TRUE(window->IsMinimized());
	// Whoever comes first, the last one to say it has it, and none corrects the other for ever.
	for (int i = 0; i < 100; i++) {
		minimizeByUser();
		locked(window, [&] { window->Minimize(false); });
	}
	// What is on its way between the two comes to its end.
	EXPECT_TRUE(wait_until([&] {
		const int told = counts.minimized;
		for (int i = 0; i < 3; i++)
			settle(window);
		return counts.minimized == told;
	}));
	EXPECT_EQ(window->IsMinimized(),
		on_server(window, [](ServerWindow& server) { return server.isMinimized(); }));
}

TEST(Window, ViewsFollowItsEdges)
{
	struct Case {
		const char* name;
		uint32 mode;
		BRect after; // of (10, 10, 29, 29) when the window grows by 40 x 20
	};
	const Case cases[] = {
		{"none", B_FOLLOW_NONE, BRect(10, 10, 29, 29)},
		{"left top", B_FOLLOW_LEFT_TOP, BRect(10, 10, 29, 29)},
		{"right top", B_FOLLOW_RIGHT | B_FOLLOW_TOP, BRect(50, 10, 69, 29)},
		{"left bottom", B_FOLLOW_LEFT | B_FOLLOW_BOTTOM, BRect(10, 30, 29, 49)},
		{"right bottom", B_FOLLOW_RIGHT | B_FOLLOW_BOTTOM, BRect(50, 30, 69, 49)},
		{"both sides", B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP, BRect(10, 10, 69, 29)},
		{"all", B_FOLLOW_ALL, BRect(10, 10, 69, 49)},
		{"centre", B_FOLLOW_H_CENTER | B_FOLLOW_V_CENTER, BRect(30, 20, 49, 39)},
	};
	for (const Case& row : cases) {
		SCOPED_TRACE(row.name);
		WindowHolder<BWindow> window(BRect(0, 0, 99, 99), "w", B_TITLED_WINDOW, 0);
		auto* view = new FrameView(BRect(10, 10, 29, 29), row.mode);
		auto* inner = new BView(BRect(5, 5, 14, 14), "inner", B_FOLLOW_ALL, 0);
		locked(window, [&] {
			view->AddChild(inner);
			window->AddChild(view);
		});
		window->Show();
		locked(window, [&] { window->ResizeTo(139, 119); });
		EXPECT_EQ(view->Frame(), row.after);
		EXPECT_EQ(inner->Frame().Width(), 9 + row.after.Width() - 19);
		settle(window);
		locked(window, [&] {
			if (row.after.LeftTop() != BPoint(10, 10)) {
				EXPECT_EQ(view->fMovedTo, row.after.LeftTop());
			}
			if (row.after.Width() != 19) {
				EXPECT_EQ(view->fResized, 1);
				EXPECT_EQ(view->fWidth, row.after.Width());
				EXPECT_EQ(view->fHeight, row.after.Height());
			} else
				EXPECT_EQ(view->fResized, 0);
		});
	}
}

TEST(Window, ViewsAreToldOfTheirWindow)
{
	static std::vector<std::string> sLog;
	sLog.clear();
	struct LogView : BView {
		explicit LogView(const char* name) : BView(BRect(0, 0, 9, 9), name, 0, 0) { }
		void AttachedToWindow() override { Log(" attached"); }
		void AllAttached() override { Log(" all attached"); }
		void DetachedFromWindow() override { Log(" detached"); }
		void AllDetached() override { Log(" all detached"); }
		void Log(const char* what)
		{
			EXPECT_NE(Window(), nullptr);
			sLog.push_back(std::string(Name()) + what);
		}
	};
	WindowHolder<BWindow> window(BRect(0, 0, 99, 99), "w", B_TITLED_WINDOW, 0);
	locked(window, [&] {
		auto* parent = new LogView("parent");
		auto* child = new LogView("child");
		parent->AddChild(child);
		EXPECT_EQ(child->Parent(), parent);
		EXPECT_EQ(parent->Parent(), nullptr);
		window->AddChild(parent);
		EXPECT_EQ(child->Looper(), window);
		EXPECT_EQ(child->NextHandler(), parent);
		EXPECT_EQ(parent->NextHandler(), window);
		EXPECT_EQ(window->FindView("child"), child);
		EXPECT_EQ(window->FindView(BPoint(5, 5)), child);
		EXPECT_EQ(window->FindView(BPoint(50, 50)), nullptr);
		EXPECT_TRUE(parent->RemoveSelf());
		EXPECT_EQ(child->Window(), nullptr);
		EXPECT_EQ(child->Looper(), nullptr);
		EXPECT_FALSE(parent->RemoveSelf());
		delete parent;
	});
	const std::vector<std::string> expected
		= {"parent attached", "child attached", "child all attached", "parent all attached",
			"parent detached", "child detached", "child all detached", "parent all detached"};
	EXPECT_EQ(sLog, expected);
}

TEST(Window, ItsFrameAndTitleAnswerScripts)
{
	WindowHolder<BWindow> window(BRect(10, 20, 109, 119), "Qubo: a song", B_TITLED_WINDOW, 0);
	auto* view = new BView(BRect(1, 2, 3, 4), "inside", 0, 0);
	locked(window, [&] { window->AddChild(view); });
	window->Show();
	const auto get = [&](BMessage& question) {
		BMessage answer;
		EXPECT_EQ(BMessenger(window).SendMessage(&question, &answer), B_OK);
		return answer;
	};
	BMessage frame(B_GET_PROPERTY);
	frame.AddSpecifier("Frame");
	EXPECT_EQ(get(frame).GetRect("result", BRect()), BRect(10, 20, 109, 119));
	BMessage title(B_GET_PROPERTY);
	title.AddSpecifier("Title");
	EXPECT_STREQ(get(title).GetString("result", ""), "Qubo: a song");
	BMessage inside(B_GET_PROPERTY);
	inside.AddSpecifier("Frame");
	inside.AddSpecifier("View", "inside");
	EXPECT_EQ(get(inside).GetRect("result", BRect()), BRect(1, 2, 3, 4));
	BMessage set(B_SET_PROPERTY);
	set.AddSpecifier("Title");
	set.AddString("data", "new");
	EXPECT_EQ(get(set).GetInt32("error", B_ERROR), B_OK);
	BMessage missing(B_GET_PROPERTY);
	missing.AddSpecifier("Frame");
	missing.AddSpecifier("View", "nowhere");
	EXPECT_EQ(get(missing).GetInt32("error", B_OK), B_NAME_NOT_FOUND);
	settle(window);
	EXPECT_EQ(on_server(window, [](ServerWindow& server) { return server.windowTitle(); }), "new");
}

TEST(Window, TheScreenIsKnown)
{
	BScreen main;
	ASSERT_TRUE(main.IsValid());
	EXPECT_GT(main.Frame().Width(), 100);
	EXPECT_EQ(main.ColorSpace(), B_RGB32);
	EXPECT_EQ(main.SetToNext(), B_ERROR);
	EXPECT_FALSE(BScreen(screen_id{99}).IsValid());
}
