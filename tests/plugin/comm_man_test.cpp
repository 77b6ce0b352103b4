#include <gtest/gtest.h>

#include <Alert.h>
#include <Button.h>
#include <Entry.h>
#include <List.h>
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

	//! `found`: the last one.
	bool HasReceived(uint32 what, BMessage* found = nullptr)
	{
		bool hasReceived = false;
		for (const BMessage& message : Received()) {
			if (message.what != what)
				continue;
			hasReceived = true;
			if (found != nullptr)
				*found = message;
		}
		return hasReceived;
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

int
count_windows()
{
	int count = 0;
	for (int32 i = 0; be_app->WindowAt(i) != nullptr; i++)
		count++;
	return count;
}

void
quit(BLooper* looper)
{
	if (looper->Lock())
		looper->Quit();
}

/*!	The displayer's manager, which also keeps what it is asked for. */
class WatchedManager : public TTavoraDCommMan {
public:
	void MessageReceived(BMessage* message) override
	{
		{
			std::lock_guard locker(fReceivedLock);
			fReceived.push_back(*message);
		}
		TTavoraDCommMan::MessageReceived(message);
	}

	//! `found`: the last one.
	bool HasReceived(uint32 what, BMessage* found = nullptr)
	{
		std::lock_guard locker(fReceivedLock);
		bool hasReceived = false;
		for (const BMessage& message : fReceived) {
			if (message.what != what)
				continue;
			hasReceived = true;
			if (found != nullptr)
				*found = message;
		}
		return hasReceived;
	}

private:
	std::mutex fReceivedLock;
	std::vector<BMessage> fReceived;
};

class CommManTest : public DisplayFixture {
protected:
	CommManTest() : fPathBefore(getenv("PATH"))
	{
		// The desktop's opener writes down what it is to open.
		fBin.Write("xdg-open", "#!/bin/sh\nprintf %s \"$1\" > '" + (fBin / "opened") + "'\n");
		std::filesystem::permissions(fBin / "xdg-open", std::filesystem::perms::all);
		setenv("PATH", (fBin.Path() + ":" + fPathBefore).c_str(), 1);
	}
	~CommManTest() override { setenv("PATH", fPathBefore.c_str(), 1); }

	static BMessage OpenLyrics(const std::string& path)
	{
		entry_ref ref;
		EXPECT_EQ(get_ref_for_path(path.c_str(), &ref), B_OK);
		BMessage request(kOpenLyrics);
		request.AddRef("LyricsERef", &ref);
		return request;
	}

	//! The box that is open, null without one; it may close at any time.
	static BWindow* OpenBox()
	{
		BWindow* window;
		for (int32 i = 0; (window = be_app->WindowAt(i)) != nullptr; i++) {
			if (dynamic_cast<BAlert*>(window) != nullptr)
				return window;
		}
		return nullptr;
	}

	static void AnswerBox(int32 button)
	{
		ASSERT_TRUE(wait_until([] { return OpenBox() != nullptr; }));
		BAlert* box = dynamic_cast<BAlert*>(OpenBox());
		ASSERT_TRUE(box->Lock());
		box->ButtonAt(button)->Invoke();
		box->Unlock();
		EXPECT_TRUE(wait_until([] { return OpenBox() == nullptr; }));
	}

	TempFolder fBin;
	std::string fPathBefore;
};

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
		// not the newest one: the manager tells of the language by itself
		BMessage received;
		EXPECT_TRUE(wait_until([&] { return editor->HasReceived(notice, &received); }));
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
	for (const uint32 close : {'Scar', 'Scpr', 'Scsr', 'Scmr'})
		manager->PostMessage(close);
	for (int round = 0; round < 3; round++) {
		manager->PostMessage('Somr');
		manager->PostMessage('Somr');
		EXPECT_TRUE(wait_until([&] { return count_windows() == 1; }));
		manager->PostMessage('Spac');
		manager->PostMessage('Scmr');
		EXPECT_TRUE(wait_until([&] { return count_windows() == 0; }));
	}

	// The application may quit the window by itself.
	manager->PostMessage('Somr');
	ASSERT_TRUE(wait_until([&] { return count_windows() == 1; }));
	BWindow* window = be_app->WindowAt(0);
	ASSERT_TRUE(window->Lock());
	window->Quit();
	manager->PostMessage('Spac');
	manager->PostMessage('Somr');
	EXPECT_TRUE(wait_until([&] { return count_windows() == 1; }));
	quit(manager);
	EXPECT_EQ(count_windows(), 0) << "the manager leaves its window open";
}

TEST_F(CommManTest, PlacesWindowsBesideTheMainOne)
{
	WatchedManager* manager = new WatchedManager;
	manager->Run();
	manager->PostMessage('Spar');
	BMessage request;
	ASSERT_TRUE(wait_until([&] { return manager->HasReceived('Soar', &request); }));
	EXPECT_FALSE(request.GetBool("BesideDlg", true));
	EXPECT_FALSE(request.HasRect("WinFrame"));
	manager->PostMessage('Somr');
	manager->PostMessage('_ABR');
	ASSERT_TRUE(wait_until([&] {
		return manager->HasReceived('Soar', &request) && request.GetBool("BesideDlg", false)
			&& count_windows() == 2;
	}));
	EXPECT_TRUE(request.HasRect("WinFrame"));
	manager->PostMessage('Scar');
	EXPECT_TRUE(wait_until([] { return count_windows() == 1; })) << "about stays open";
	manager->PostMessage('pscc');
	EXPECT_TRUE(wait_until([] { return count_windows() == 2; })) << "no common preferences";
	manager->PostMessage('Scsr');
	EXPECT_TRUE(wait_until([] { return count_windows() == 1; }));
	quit(manager);
	EXPECT_EQ(count_windows(), 0);
}

TEST_F(CommManTest, HandsLyricsToTheEditor)
{
	Manager* editor = new Manager("TavoraE Communication Manager", "TavoraD Communication Manager");
	editor->Run();
	TTavoraDCommMan* manager = new TTavoraDCommMan;
	manager->Run();
	ASSERT_TRUE(wait_until([&] { return editor->HasReceived(kCommManConnected); }));
	BMessage request = OpenLyrics(fFolder / "not there.lrc");
	manager->PostMessage(&request);
	BMessage open;
	ASSERT_TRUE(wait_until([&] { return editor->HasReceived('_RRC', &open); }));
	entry_ref ref;
	EXPECT_EQ(open.FindRef("refs", &ref), B_OK);
	EXPECT_STREQ(ref.name, "not there.lrc");
	EXPECT_EQ(OpenBox(), nullptr);
	quit(manager);
	quit(editor);
}

TEST_F(CommManTest, OpensLyricsWithTheDesktopAndAsksBeforeItMakesThem)
{
	TTavoraDCommMan* manager = new TTavoraDCommMan;
	manager->Run();
	const std::string path = fFolder / "new song #1 %20 歌.lrc";
	BMessage request = OpenLyrics(path);
	manager->PostMessage(&request);
	AnswerBox(1);
	EXPECT_FALSE(std::filesystem::exists(path)) << "made in spite of No";
	manager->PostMessage(&request);
	AnswerBox(0);
	EXPECT_TRUE(wait_until([&] { return fBin.Read("opened") == path; })) << fBin.Read("opened");
	EXPECT_EQ(std::filesystem::file_size(path), 0u);

	// There now: opened without a question. Without an opener, that is told.
	std::filesystem::remove(fBin / "opened");
	manager->PostMessage(&request);
	EXPECT_TRUE(wait_until([&] { return fBin.Read("opened") == path; }));
	setenv("PATH", "/nowhere", 1);
	manager->PostMessage(&request);
	AnswerBox(0);
	BMessage empty(kOpenLyrics);
	manager->PostMessage(&empty);
	quit(manager);
	EXPECT_EQ(OpenBox(), nullptr);
}

TEST_F(CommManTest, EndsWhileItAsks)
{
	bigtime_t fastest = B_INFINITE_TIMEOUT; // a busy machine may be slow, but not always
	for (int round = 0; round < 5; round++) {
		TTavoraDCommMan* manager = new TTavoraDCommMan;
		manager->Run();
		const std::string path = fFolder / "song.lrc";
		BMessage request = OpenLyrics(path);
		manager->PostMessage(&request);
		manager->PostMessage(&request);
		ASSERT_TRUE(wait_until([] { return OpenBox() != nullptr; }));
		const bigtime_t before = system_time();
		merion::dismiss_alerts();
		quit(manager);
		fastest = std::min(fastest, system_time() - before);
		EXPECT_FALSE(std::filesystem::exists(path));
		EXPECT_EQ(OpenBox(), nullptr);
		merion::allow_alerts();
	}
	EXPECT_LT(fastest, 1000000);
}

TEST_F(CommManTest, HearsOfSharedPreferencesUntilItEnds)
{
	WatchedManager* manager = new WatchedManager;
	manager->Run();
	BMessage notice('_ipc');
	notice.AddString("IAP:SrcIAPItem", "AccKeyFormat");
	notice.AddInt32("AccKeyFormat", 2);
	be_app->PostMessage(&notice);
	EXPECT_TRUE(wait_until([] {
		int32 format;
		return gIAP->GetValue("AccKeyFormat", &format) == B_OK && format == 2;
	}));
	EXPECT_TRUE(manager->HasReceived('_ipc'));
	quit(manager);
	ASSERT_TRUE(be_app->Lock());
	const BList* filters = be_app->CommonFilterList();
	EXPECT_TRUE(filters == nullptr || filters->IsEmpty()) << "the filter stays on the application";
	be_app->Unlock();
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
