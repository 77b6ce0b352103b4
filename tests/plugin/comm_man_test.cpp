#include <gtest/gtest.h>

#include <Message.h>
#include <MessageFilter.h>
#include <Messenger.h>
#include <OS.h>
#include <Window.h>

#include "plugin/TTavoraDCommMan.h"
#include "plugin/helpers/TWMFilter.h"
#include "plugin/helpers/commman_codes.h"
#include "plugin/helpers/own_file.h"
#include "support/DisplayFixture.h"

namespace {

/*!	A manager that keeps what it gets and lets a test call what is not public. */
class Manager : public TCommMan {
public:
	Manager(const char* name, const char* partner) : TCommMan(name, partner) { }

	void MessageReceived(BMessage* message) override
	{
		{
			std::lock_guard locker(fReceivedLock);
			fReceived.push_back(*message);
		}
		if (message->what == kAnswerMe) {
			BMessage reply(kAnswer);
			message->SendReply(&reply);
			return;
		}
		TCommMan::MessageReceived(message);
	}

	std::vector<BMessage> Received()
	{
		std::lock_guard locker(fReceivedLock);
		return fReceived;
	}

	bool HasReceived(uint32 what)
	{
		for (const BMessage& message : Received()) {
			if (message.what == what)
				return true;
		}
		return false;
	}

	//! As a request of its own would: the partner belongs to the looper.
	status_t Send(uint32 what)
	{
		BMessage message(what);
		if (!Lock())
			return B_ERROR;
		const status_t status = SendMessage(&message);
		Unlock();
		return status;
	}

	using TCommMan::CloseWindow;
	using TCommMan::Connect;

	static constexpr uint32 kAnswerMe = 'answ';
	static constexpr uint32 kAnswer = 'here';

private:
	std::mutex fReceivedLock;
	std::vector<BMessage> fReceived;
};

void
quit(BLooper* looper)
{
	if (looper->Lock())
		looper->Quit();
}

class CommManTest : public DisplayFixture { };

} // namespace

TEST_F(CommManTest, TheSecondFindsTheFirst)
{
	Manager* first = new Manager("first manager", "second manager");
	first->Run();
	EXPECT_EQ(first->Send('abcd'), -1) << "there is no partner yet";
	EXPECT_EQ(first->Connect(), -1);

	Manager* second = new Manager("second manager", "first manager");
	second->Run();
	EXPECT_EQ(second->Send('2to1'), B_OK);
	EXPECT_TRUE(wait_until([&] { return first->HasReceived('2to1'); }));
	EXPECT_EQ(first->Send('1to2'), B_OK);
	EXPECT_TRUE(wait_until([&] { return second->HasReceived('1to2'); }));

	BMessage question(Manager::kAnswerMe);
	BMessage reply;
	EXPECT_EQ(second->SendMessage(&question, &reply), B_OK);
	EXPECT_EQ(reply.what, Manager::kAnswer);

	// The first partner stays, whoever greets.
	Manager* third = new Manager("third manager", "first manager");
	third->Run();
	EXPECT_TRUE(
		third->Send('3to1') == B_OK && wait_until([&] { return first->HasReceived('3to1'); }));
	first->Send('stay');
	EXPECT_TRUE(wait_until([&] { return second->HasReceived('stay'); }));
	EXPECT_FALSE(third->HasReceived('stay'));

	quit(second);
	EXPECT_NE(first->Send('gone'), B_OK);
	quit(third);
	quit(first);
}

TEST_F(CommManTest, TwoThatStartAtOnceFindEachOther)
{
	for (int round = 0; round < 30; round++) {
		Manager* a = nullptr;
		std::thread starting([&a] {
			a = new Manager("manager a", "manager b");
			a->Run();
		});
		Manager* b = new Manager("manager b", "manager a");
		b->Run();
		starting.join();
		EXPECT_TRUE(wait_until([&] { return a->Send('a to') == B_OK; })) << round;
		EXPECT_TRUE(wait_until([&] { return b->HasReceived('a to'); }));
		EXPECT_TRUE(wait_until([&] { return b->Send('b to') == B_OK; })) << round;
		quit(a);
		quit(b);
	}
}

TEST_F(CommManTest, ClosesAWindowOnce)
{
	BWindow* window = nullptr;
	Manager::CloseWindow(&window);
	window = new BWindow(BRect(0, 0, 99, 99), "closing", B_TITLED_WINDOW, 0);
	window->Show();
	const BMessenger messenger(window);
	Manager::CloseWindow(&window);
	EXPECT_EQ(window, nullptr);
	EXPECT_FALSE(messenger.IsValid());
}

TEST_F(CommManTest, NoticesReachTheEditorWithThePreferences)
{
	Manager* editor = new Manager("TavoraE Communication Manager", "TavoraD Communication Manager");
	editor->Run();
	TTavoraDCommMan* manager = new TTavoraDCommMan;
	manager->Run();
	ASSERT_TRUE(wait_until([&] { return editor->HasReceived(kCommManConnected); }));

	gPref->fTimeDifference = 4321;
	for (const uint32 notice : {'Spsc', 'Spac', 'pdbc', 'Ssic', 'piic', 'Sedr', 'Spec', 'Sprc',
			 'Spcc', 'Sptc', 'Splc', 'Sssr'}) {
		BMessage message(notice);
		message.AddString("StatBarStr", "as it came");
		manager->PostMessage(&message);
		EXPECT_TRUE(wait_until([&] { return editor->HasReceived(notice); }));
		const BMessage received = editor->Received().back();
		TPref pref;
		EXPECT_TRUE(pref.Unarchive(received));
		EXPECT_EQ(pref.fTimeDifference, 4321);
		EXPECT_STREQ(received.GetString("StatBarStr", ""), "as it came");
	}
	quit(manager);
	quit(editor);
}

TEST_F(CommManTest, OpensOneWindowAndClosesIt)
{
	TTavoraDCommMan* manager = new TTavoraDCommMan;
	manager->Run();
	const auto countWindows = [] {
		int count = 0;
		for (int32 i = 0; be_app->WindowAt(i) != nullptr; i++)
			count++;
		return count;
	};
	for (const uint32 close : {'Scar', 'Scpr', 'Scsr', 'Scmr'})
		manager->PostMessage(close);
	for (int round = 0; round < 3; round++) {
		manager->PostMessage('Somr');
		manager->PostMessage('Somr');
		EXPECT_TRUE(wait_until([&] { return countWindows() == 1; }));
		manager->PostMessage('Spac');
		manager->PostMessage('Scmr');
		EXPECT_TRUE(wait_until([&] { return countWindows() == 0; }));
	}

	// The application may quit the window by itself.
	manager->PostMessage('Somr');
	ASSERT_TRUE(wait_until([&] { return countWindows() == 1; }));
	BWindow* window = be_app->WindowAt(0);
	ASSERT_TRUE(window->Lock());
	window->Quit();
	manager->PostMessage('Spac');
	manager->PostMessage('Somr');
	EXPECT_TRUE(wait_until([&] { return countWindows() == 1; }));
	quit(manager);
	EXPECT_EQ(countWindows(), 0) << "the manager leaves its window open";
}

TEST_F(CommManTest, TheWindowFilterTellsAndLetsThrough)
{
	Manager* window = new Manager("stands for the window", "nobody");
	window->Run();
	TWMFilter filter{BMessenger(window)};
	EXPECT_EQ(filter.Command(), static_cast<uint32>(B_WINDOW_MOVED));
	BMessage moved(B_WINDOW_MOVED);
	BHandler* target = window;
	EXPECT_EQ(filter.Filter(&moved, &target), B_DISPATCH_MESSAGE);
	EXPECT_EQ(target, window);
	EXPECT_TRUE(wait_until([&] { return window->HasReceived('Scwm'); }));

	// A window that does not take its messages does not hold the host's up.
	ASSERT_TRUE(window->Lock());
	for (int i = 0; i < 1000; i++)
		EXPECT_EQ(filter.Filter(&moved, &target), B_DISPATCH_MESSAGE);
	window->Unlock();
	quit(window);
	EXPECT_EQ(filter.Filter(&moved, &target), B_DISPATCH_MESSAGE);
}

TEST_F(CommManTest, WithoutTheAddOnThereIsNoFileOfIts)
{
	EXPECT_EQ(tavora_displayer_fname(), "");
}
