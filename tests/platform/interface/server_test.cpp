#include "support/display.h"

#include "server/EventPort.h"
#include "server/FontFallback.h"
#include "server/WindowPicture.h"

#include <Bitmap.h>
#include <CheckBox.h>
#include <QSocketNotifier>
#include <TranslationUtils.h>
#include <View.h>
#include <array>
#include <atomic>
#include <poll.h>
#include <random>
#include <stdlib.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "support/temp_folder.h"

using namespace BPrivate;

namespace {

//! A link of its own with a thread that serves it until it is closed.
class ServedLink {
public:
	ServedLink()
	{
		fThread = std::thread([this] {
			fLink.Open();
			fLink.SetServing(true);
			fOpened = true;
			while (!fEnd) {
				pollfd descriptor = {fLink.WakeDescriptor(), POLLIN, 0};
				if (poll(&descriptor, 1, 10) > 0)
					fLink.RunJobs(4);
			}
			fLink.Close();
		});
		EXPECT_TRUE(wait_until([this] { return fOpened.load(); }));
	}
	~ServedLink() { End(); }
	void End()
	{
		fEnd = true;
		if (fThread.joinable())
			fThread.join();
	}

	ServerLink fLink;

private:
	std::atomic<bool> fOpened = false;
	std::atomic<bool> fEnd = false;
	std::thread fThread;
};

} // namespace

TEST(ServerLink, JobsOfAThreadRunInTheirOrder)
{
	ServedLink served;
	std::atomic<bool> ordered = true;
	std::array<std::atomic<int>, 3> last{};
	std::vector<std::thread> threads;
	for (int t = 0; t < 3; t++) {
		threads.emplace_back([&, t] {
			for (int i = 1; i <= 500; i++) {
				served.fLink.Post([&, t, i] {
					if (last[t].exchange(i) != i - 1)
						ordered = false;
				});
				if (i % 50 == 0) {
					EXPECT_EQ(served.fLink.Call([&, t] { return last[t].load(); }), i);
				}
			}
		});
	}
	for (std::thread& thread : threads)
		thread.join();
	EXPECT_TRUE(ordered);
}

TEST(ServerLink, BlockedCallersWakeWhenItCloses)
{
	ServedLink served;
	std::atomic<bool> release = false;
	std::atomic<int> woken = 0;
	served.fLink.Post([&] {
		while (!release)
			std::this_thread::yield();
	});
	std::vector<std::thread> callers;
	std::atomic<int> calling = 0;
	for (int i = 0; i < 4; i++) {
		callers.emplace_back([&] {
			calling++;
			EXPECT_FALSE(served.fLink.Call([] { return 1; }).has_value());
			woken++;
		});
	}
	EXPECT_TRUE(wait_until([&] { return calling == 4; }));
	std::this_thread::yield();
	EXPECT_EQ(woken, 0);
	served.fLink.Close();
	EXPECT_TRUE(wait_until([&] { return woken == 4; }))
		<< "a caller waits for a server that is gone";
	release = true;
	for (std::thread& caller : callers)
		caller.join();
	EXPECT_FALSE(served.fLink.Post([] { FAIL() << "a closed link ran a job"; }));
	EXPECT_FALSE(served.fLink.Call([] { return 1; }).has_value());
}

TEST(ServerLink, AJobMayPumpTheOthers)
{
	std::atomic<bool> second = false;
	std::atomic<bool> seen = false;
	ServerLink& link = ServerLink::Default();
	// both wait when the first begins: the first then loops until the second has run
	link.Post([&] {
		link.Post([&] { second = true; });
		const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
		while (!second && std::chrono::steady_clock::now() < end)
			QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 100);
		seen = second.load();
	});
	EXPECT_TRUE(link.CallJob([] {}));
	EXPECT_TRUE(wait_until([&] { return seen.load(); }))
		<< "a job in a nested loop stranded the rest";
}

TEST(ServerLink, TheServersThreadIsKnown)
{
	EXPECT_FALSE(on_server_thread());
	EXPECT_EQ(ServerLink::Default().Call([] { return on_server_thread(); }), true);
}

TEST(MoveSlots, NewerMovesReplaceWaitingOnesButDoNotOvertake)
{
	MoveSlots waiting;
	PointerMove move{};
	move.x = 1;
	int64 first = waiting.Put(move);
	ASSERT_NE(first, 0);
	move.x = 2;
	EXPECT_EQ(waiting.Put(move), 0);
	waiting.Seal();
	move.x = 3;
	int64 second = waiting.Put(move);
	ASSERT_NE(second, 0);
	EXPECT_EQ(waiting.Take(first)->x, 2);
	EXPECT_EQ(waiting.Take(second)->x, 3);
	EXPECT_FALSE(waiting.Take(second).has_value());
	EXPECT_NE(waiting.Put(move), 0) << "a move after all were taken has no message";
}

TEST(Server, EventsThatFindTheQueueFullComeLaterAndInOrder)
{
	class SlowLooper : public BLooper {
	public:
		SlowLooper() : BLooper("slow", B_NORMAL_PRIORITY, 5) { }
		void MessageReceived(BMessage* message) override
		{
			fSeen.push_back(message->GetInt32("number", -1));
			fCount++;
		}
		std::vector<int32> fSeen;
		std::atomic<int> fCount = 0;
	};
	auto* looper = new SlowLooper;
	looper->Run();
	looper->Lock();
	auto port = ServerLink::Default().Call([target = BMessenger(looper)] {
		auto made = std::make_shared<EventPort>(target, std::make_shared<MoveSlots>());
		for (int32 i = 0; i < 50; i++) {
			BMessage message('numb');
			message.AddInt32("number", i);
			made->Send(message);
		}
		return made;
	});
	looper->Unlock();
	EXPECT_TRUE(wait_until([&] { return looper->fCount == 50; }));
	looper->Lock();
	for (int32 i = 0; i < 50; i++)
		EXPECT_EQ(looper->fSeen[i], i);
	looper->Quit();
	ServerLink::Default().CallJob([&] { port.reset(); });
}

namespace {

class StressView : public BView {
public:
	explicit StressView(BRect frame) : BView(frame, "stress", B_FOLLOW_ALL, B_WILL_DRAW) { }
	void Draw(BRect) override
	{
		SetHighColor(rand() & 0xff, 100, 100);
		FillRect(Bounds());
		DrawString("Stress 歌", BPoint(5, 20));
	}
};

} // namespace

/*!	Windows with controls, made, moved, drawn and closed by several threads, each of which also asks
	for the others' locks. */
TEST(Server, WindowsComeAndGoFromSeveralThreads)
{
	constexpr int kThreads = 3;
	constexpr int kRounds = 15;
	std::array<std::atomic<BWindow*>, kThreads> current{};
	std::vector<std::thread> threads;
	for (int t = 0; t < kThreads; t++) {
		threads.emplace_back([&, t] {
			std::mt19937 random(t);
			for (int round = 0; round < kRounds; round++) {
				BRect frame(0, 0, 100 + random() % 50, 60);
				auto* window = new BWindow(frame, "stress", B_TITLED_WINDOW, 0);
				auto* view = new StressView(window->Bounds());
				window->AddChild(view);
				auto* box = new BCheckBox(BRect(5, 30, 80, 50), "box", "box", NULL);
				view->AddChild(box);
				window->Show();
				current[t] = window;
				for (int i = 0; i < 10; i++) {
					if (!window->Lock())
						break;
					box->SetValue(i & 1);
					window->MoveBy(1, 1);
					window->ResizeBy(random() % 3, 0);
					float width;
					box->GetPreferredSize(&width, NULL);
					view->Invalidate();
					BWindow* other = current[(t + 1) % kThreads];
					if (other != NULL && other->LockWithTimeout(1000) == B_OK) {
						other->SetTitle("neighbour");
						other->Unlock();
					}
					window->Unlock();
				}
				current[t] = NULL;
				if (window->Lock())
					window->Quit();
			}
		});
	}
	for (std::thread& thread : threads)
		thread.join();
	EXPECT_TRUE(wait_until([] {
		return *ServerLink::Default().Call([] { return Registry::Default().CountWidgets(); }) == 0;
	})) << "widgets are left over";
}

TEST(Server, APictureOfAWindowHasItsControlsToo)
{
	TempFolder folder;
	WindowHolder<BWindow> window(BRect(0, 0, 119, 59), "w", B_TITLED_WINDOW, 0);
	auto* view = new StressView(window->Bounds());
	window->Lock();
	window->AddChild(view);
	EXPECT_EQ(save_window_picture(window, (folder / "hidden.png").c_str()), B_OK);
	window->Unlock();
	window->Show();
	EXPECT_EQ(save_window_picture(window, (folder / "x.png").c_str()), B_NOT_ALLOWED);
	window->Lock();
	EXPECT_EQ(save_window_picture(window, (folder / "shown.png").c_str()), B_OK);
	view->AddChild(new BCheckBox(BRect(5, 30, 80, 50), "box", "box", NULL));
	EXPECT_EQ(save_window_picture(window, (folder / "control.png").c_str()), B_OK);
	EXPECT_EQ(save_window_picture(window, "/nowhere/at/all.png"), B_IO_ERROR);
	window->Unlock();
	QImage hidden(QString::fromStdString(folder / "hidden.png"));
	QImage shown(QString::fromStdString(folder / "shown.png"));
	QImage control(QString::fromStdString(folder / "control.png"));
	EXPECT_EQ(hidden.size(), QSize(120, 60));
	EXPECT_EQ(hidden.pixelColor(100, 50).green(), 100);
	EXPECT_EQ(shown.pixelColor(100, 50).green(), 100);
	EXPECT_NE(control.copy(5, 30, 20, 20), shown.copy(5, 30, 20, 20));
}

TEST(Translation, PicturesAreReadAndOthersRefused)
{
	TempFolder folder;
	const auto path = [&](const char* name) { return QString::fromStdString(folder / name); };
	QImage opaque(30, 20, QImage::Format_RGB32);
	opaque.fill(Qt::red);
	opaque.save(path("picture.txt"), "PNG");
	QImage clear(30, 20, QImage::Format_ARGB32);
	clear.fill(QColor(0, 0, 255, 100));
	clear.save(path("clear.png"));
	QImage wide(9000, 4, QImage::Format_RGB32);
	wide.fill(Qt::green);
	wide.save(path("wide.png"));
	folder.Write("broken.png", "\x89PNG\r\n\x1a\n and no more");
	folder.Write("empty.png", "");
	// a PNG that claims to be 60000 pixels wide and high
	folder.Write("huge.png",
		std::string_view(
			"\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR\0\0\xea\x60\0\0\xea\x60\x08\x02\0\0\0", 29));

	// of 400 million pixels
	folder.Write("large.png",
		std::string_view(
			"\x89PNG\r\n\x1a\n\0\0\0\x0dIHDR\0\0\x4e\x20\0\0\x4e\x20\x08\x02\0\0\0", 29));
	ASSERT_EQ(mkfifo((folder / "pipe.png").c_str(), 0600), 0);
	ASSERT_EQ(mkdir((folder / "folder.png").c_str(), 0700), 0);

	const auto load = [&](const char* name) {
		return std::unique_ptr<BBitmap>(BTranslationUtils::GetBitmap((folder / name).c_str()));
	};
	auto bitmap = load("picture.txt");
	ASSERT_TRUE(bitmap != nullptr);
	EXPECT_EQ(bitmap->Bounds(), BRect(0, 0, 29, 19));
	EXPECT_EQ(bitmap->ColorSpace(), B_RGB32);
	EXPECT_EQ(static_cast<uint32*>(bitmap->Bits())[5] & 0xffffff, 0xff0000u);
	bitmap = load("clear.png");
	ASSERT_TRUE(bitmap != nullptr);
	EXPECT_EQ(bitmap->ColorSpace(), B_RGBA32);
	EXPECT_EQ(static_cast<uint32*>(bitmap->Bits())[5], 0x640000ffu);
	bitmap = load("wide.png");
	ASSERT_TRUE(bitmap != nullptr);
	EXPECT_EQ(bitmap->Bounds().Width(), 8191);
	for (const char* bad : {"broken.png", "empty.png", "huge.png", "large.png", "missing.png",
			 "pipe.png", "folder.png"})
		EXPECT_EQ(load(bad), nullptr) << bad;
	EXPECT_EQ(BTranslationUtils::GetBitmap(static_cast<const char*>(NULL)), nullptr);
}

TEST(FontFallback, GivesHanCharactersJapaneseFormsUnlessTheDesktopHasOthers)
{
	using BPrivate::fallback_families;
	using BPrivate::han_family;
	const QString jp = "Noto Sans CJK JP";
	const QString sc = "Noto Sans CJK SC";
	const QStringList all = {"Noto Serif CJK JP", jp, sc, "Kochi Mincho"};
	EXPECT_EQ(han_family(QLocale::English, all, "DejaVu Sans"), jp);
	EXPECT_EQ(han_family(QLocale::English, all, sc), jp);
	EXPECT_EQ(han_family(QLocale::German, all, "Noto Serif CJK JP"), "Noto Serif CJK JP");
	EXPECT_EQ(han_family(QLocale::Japanese, all, "Kochi Mincho"), "Kochi Mincho");
	EXPECT_EQ(han_family(QLocale::Chinese, all, sc), "");
	EXPECT_EQ(han_family(QLocale::Korean, all, "DejaVu Sans"), "");
	EXPECT_EQ(han_family(QLocale::English, {sc, "Kochi Mincho"}, sc), "Kochi Mincho");
	EXPECT_EQ(han_family(QLocale::English, {}, "DejaVu Sans"), "");

	EXPECT_EQ(fallback_families("Own", "DejaVu Sans", false, jp),
		(QStringList{"Own", "DejaVu Sans", jp}));
	EXPECT_EQ(fallback_families("Own", sc, true, jp), (QStringList{"Own", jp, sc}));
	EXPECT_EQ(fallback_families("", jp, true, jp), QStringList{jp});
	EXPECT_EQ(fallback_families(sc, sc, true, ""), QStringList{sc});
}
