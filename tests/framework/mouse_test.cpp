#include "framework/TMERView.h"

#include <Looper.h>
#include <mutex>
#include <ostream>
#include <string>
#include <thread>

#include "support/display.h"

namespace {

// Writes down what it is told: C click, 2 double click, L long press, ( drag begins, - goes on, ) ends.
class RecordingView : public merion::TMERView {
public:
	RecordingView() : TMERView(BRect(0, 0, 199, 99), "view", B_FOLLOW_ALL, B_WILL_DRAW) { }

	void Clicked(BPoint, uint32 buttons, uint32) override { Tell(buttons == 1 ? "C" : "c"); }
	void DoubleClicked(BPoint, uint32, uint32) override { Tell("2"); }
	void LongPressed(BPoint, uint32, uint32 modifiers) override
	{
		Tell(modifiers & B_SHIFT_KEY ? "l" : "L");
	}
	void DragStarted(BPoint where, uint32, uint32) override
	{
		dragStart = where;
		Tell("(");
	}
	void Dragged(BPoint) override { Tell("-"); }
	void DragEnded(BPoint) override { Tell(")"); }

	std::string Told()
	{
		const std::lock_guard lock(fLock);
		return fTold;
	}

	BPoint dragStart;

private:
	void Tell(const char* what)
	{
		const std::lock_guard lock(fLock);
		fTold += what;
	}

	std::mutex fLock;
	std::string fTold;
};

class Mouse : public testing::Test {
protected:
	Mouse()
		: fWindow(BRect(100, 100, 299, 199), "mouse", B_TITLED_WINDOW, 0),
		  fView(new RecordingView)
	{
		fWindow->AddChild(fView);
		fWindow->Show();
		settle(fWindow);
	}

	// p press, P press with the right button, s press with Shift, r and R release, one letter a place from 0 to 9 in 10 pixels,
	// t a tremble of 2 pixels, w a wait that is longer than a double click, h one longer than a long press
	void Do(const char* input)
	{
		fSpeed = strpbrk(input, "wh") != nullptr ? kWaitedSpeed : kUnmissedSpeed;
		set_click_speed(fWindow, fSpeed);
		BPoint where(50, 50);
		for (const char* step = input; *step != '\0'; step++) {
			if (*step == 'w' || *step == 'h')
				WaitFor(std::chrono::milliseconds(*step == 'w' ? 5 * fSpeed / 4 : 9 * fSpeed / 4));
			else
				Send(*step, &where);
		}
		settle(fWindow);
	}

	std::string Told() { return fView->Told(); }

	RecordingView* View() { return fView; }

private:
	static constexpr int kWaitedSpeed = 1000; // ms
	static constexpr int kUnmissedSpeed = 60000;

	// The time of the user is what is tested here. What has become due by then is dealt with.
	void WaitFor(std::chrono::milliseconds time)
	{
		std::this_thread::sleep_for(time);
		settle(fWindow);
	}

	void Send(char step, BPoint* where)
	{
		if (step >= '0' && step <= '9')
			where->x = 50 + 10 * (step - '0');
		if (step == 't')
			where->y += 2;
		const QPoint point(where->x, where->y);
		const bool isRight = step == 'P' || step == 'R';
		const Qt::MouseButton button = isRight ? Qt::RightButton : Qt::LeftButton;
		on_server(fWindow, [=](BPrivate::ServerWindow& server) {
			QWindow* window = server.windowHandle();
			const auto shift = step == 's' ? Qt::ShiftModifier : Qt::NoModifier;
			if (strchr("pPs", step) != nullptr)
				QTest::mousePress(window, button, shift, point);
			else if (strchr("rR", step) != nullptr)
				QTest::mouseRelease(window, button, shift, point);
			else
				QTest::mouseMove(window, point);
			return true;
		});
		settle(fWindow);
	}

	WindowHolder<> fWindow;
	RecordingView* const fView;
	int fSpeed = 0; // ms
};

struct Case {
	const char* name;
	const char* input;
	const char* told;
};

//! What lists of the tests call it.
void
PrintTo(const Case& mouseCase, std::ostream* list)
{
	*list << mouseCase.input;
}

class MouseCases : public Mouse, public testing::WithParamInterface<Case> { };

TEST_P(MouseCases, TellsApart)
{
	Do(GetParam().input);
	EXPECT_EQ(Told(), GetParam().told);
}

INSTANTIATE_TEST_SUITE_P(All, MouseCases,
	testing::Values(Case{"click", "pr", "C"}, Case{"right", "PR", "c"},
		Case{"tremblingClick", "ptr", "C"}, Case{"doubleClick", "prpr", "C2"},
		Case{"tripleClickBeginsAnew", "prprpr", "C2C"}, Case{"twoSlowClicks", "prwpr", "CC"},
		Case{"clicksAtTwoPlaces", "pr3pr", "CC"}, Case{"clicksOfTwoButtons", "prPR", "Cc"},
		Case{"longPress", "phr", "L"}, Case{"longPressWithShift", "shr", "l"},
		Case{"clickAfterLongPress", "phrpr", "LC"}, Case{"drag", "p123r", "(--)"},
		Case{"dragOfALongPress", "ph12r", "L(-)"}, Case{"noLongPressInADrag", "p1hr", "()"},
		Case{"clickAfterDrag", "p1rpr", "()C"}, Case{"secondButton", "pPrR", ""},
		Case{"afterSecondButton", "pPrRpr", "C"}, Case{"moveWithoutPress", "123", ""}),
	[](const auto& info) { return std::string(info.param.name); });

TEST_F(Mouse, ADragTellsWhereItWasPressed)
{
	Do("2p345r");
	EXPECT_EQ(View()->dragStart, BPoint(70, 50));
}

} // namespace
