#include "support/display.h"

#include <Alert.h>
#include <Button.h>
#include <Invoker.h>
#include <Message.h>
#include <QPushButton>
#include <QScreen>
#include <Screen.h>
#include <TextView.h>
#include <atomic>
#include <string>

using namespace BPrivate;

namespace {

//! Opens its alert when it is told to, and waits for it.
class AskingWindow : public BWindow {
public:
	AskingWindow() : BWindow(BRect(100, 100, 499, 399), "asks", B_TITLED_WINDOW, 0) { }

	void MessageReceived(BMessage* message) override
	{
		switch (message->what) {
			case 'ask?':
				Ask();
				break;
			case 'told':
				fTold = message->GetInt32("which", -1);
				break;
			default:
				BWindow::MessageReceived(message);
		}
	}

	//! Whoever makes a window has it locked until it is shown.
	void Ask()
	{
		auto* alert = new BAlert("title", "text", "Yes", "No", "Cancel");
		alert->SetShortcut(0, 'y');
		alert->SetShortcut(1, B_ESCAPE);
		fAlert = alert;
		fAnswer = alert->Go();
	}

	std::atomic<BAlert*> fAlert = nullptr;
	std::atomic<int32> fAnswer = -7;
	std::atomic<int32> fTold = -7;
};

} // namespace

class Alerts : public testing::Test {
protected:
	Alerts()
	{
		fWindow->Show();
		settle(fWindow);
	}

	//! Opened by the window's looper; on the screen when this returns.
	BAlert* Ask()
	{
		fWindow->fAlert = nullptr;
		fWindow->fAnswer = -7;
		fWindow->PostMessage('ask?');
		EXPECT_TRUE(wait_until([this] { return fWindow->fAlert != nullptr; }));
		BAlert* alert = fWindow->fAlert;
		EXPECT_TRUE(wait_until([=] {
			if (!alert->Lock())
				return false;
			const bool isShown = !alert->IsHidden();
			alert->Unlock();
			return isShown;
		}));
		settle(alert);
		return alert;
	}
	int32 Answer()
	{
		EXPECT_TRUE(wait_until([this] { return fWindow->fAnswer != -7; })) << "Go() goes on";
		return fWindow->fAnswer;
	}

	WindowHolder<AskingWindow> fWindow;
};

TEST_F(Alerts, AnswerWithTheButton)
{
	BAlert* alert = Ask();
	on_widget<QPushButton>(alert->ButtonAt(1), [](QPushButton& button) {
		button.click();
		return true;
	});
	EXPECT_EQ(Answer(), 1);
	alert = Ask();
	EXPECT_STREQ(alert->TextView()->Text(), "text");
	EXPECT_EQ(alert->ButtonAt(3), nullptr);
	const BRect frame = alert->Frame();
	EXPECT_TRUE(fabsf(frame.left + frame.right - 599) <= 1 || BScreen().Frame().right < 600)
		<< "not in the middle of its window";
	static const struct {
		Qt::Key key;
		int32 answer;
	} kKeys[] = {{Qt::Key_Return, 2}, {Qt::Key_Y, 0}, {Qt::Key_Escape, 1}};
	for (const auto& [key, answer] : kKeys) {
		type_key(alert, key);
		EXPECT_EQ(Answer(), answer) << key;
		alert = Ask();
	}
	// by the keyboard: the focus begins at the default button
	type_key(alert, Qt::Key_Tab);
	type_key(alert, Qt::Key_Space);
	EXPECT_EQ(Answer(), 0);
}

TEST_F(Alerts, EndWithoutAnAnswer)
{
	BAlert* alert = Ask();
	BMessenger(alert).SendMessage(B_QUIT_REQUESTED);
	EXPECT_EQ(Answer(), -1);
	alert = Ask();
	on_server(alert, [](ServerWindow& server) { return server.close(); });
	EXPECT_EQ(Answer(), -1) << "closed by the desktop";
	alert = Ask();
	alert->Lock();
	alert->SetShortcut(1, 0);
	alert->SetFlags(alert->Flags() | B_CLOSE_ON_ESCAPE);
	alert->Unlock();
	settle(alert);
	type_key(alert, Qt::Key_Escape);
	EXPECT_EQ(Answer(), -1) << "closed by Escape";
}

TEST_F(Alerts, DoNotKeepTheirWindowFromQuitting)
{
	class Quitter : public AskingWindow {
	public:
		explicit Quitter(std::atomic<int>* gone) : fGone(gone) { }
		~Quitter() override { (*fGone)++; }

		std::atomic<int>* fGone;
	};
	std::atomic<int> gone = 0;
	auto* window = new Quitter(&gone);
	window->Show();
	window->PostMessage('ask?');
	EXPECT_TRUE(wait_until([=] { return window->fAlert != nullptr; }));
	BMessenger(window).SendMessage(B_QUIT_REQUESTED);
	EXPECT_TRUE(wait_until([&] { return gone == 1; })) << "it waits for the user";
}

TEST_F(Alerts, TellAnInvoker)
{
	BInvoker invoker(new BMessage('told'), BMessenger(fWindow));
	auto* alert = new BAlert("title", std::string(4000, 'W').c_str(), "OK");
	EXPECT_EQ(alert->Go(&invoker), B_OK);
	settle(alert);
	const QRect screen = on_server(
		alert, [](ServerWindow& server) { return server.screen()->availableGeometry(); });
	EXPECT_TRUE(screen.contains(to_qrect(alert->Frame()))) << "a long text";
	type_key(alert, Qt::Key_Return);
	EXPECT_TRUE(wait_until([&] { return fWindow->fTold == 0; }));
}
