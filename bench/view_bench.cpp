// The lyrics view on the offscreen platform: a tick, the whole chain of a tick, a full draw, a foreseen line change.
// CPU times are the view's thread's, but for the chain: that is the process's.

#include <Application.h>
#include <Messenger.h>
#include <Window.h>

#include <algorithm>
#include <atomic>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <thread>
#include <vector>

#include "framework/TLLT.h"
#include "lyrics/TTavoraDView.h"
#include "lyrics/lyrics_codes.h"
#include "prefs/TExitState.h"
#include "prefs/TPref.h"
#include "support/ScriptedHost.h"
#include "support/temp_folder.h"
#include "support/wait_until.h"

namespace {

constexpr bigtime_t kNever = 3600LL * 1000000;
constexpr uint32 kCopy = 'copy';
constexpr int32 kWidth = 400;
constexpr int32 kHeight = 200;

//! What a benchmark waits for must come: its figures would be of something else.
template<typename Condition>
void
wait_for(Condition condition)
{
	if (!wait_until(condition)) {
		fprintf(stderr, "the lyrics view did not do what the benchmark measures\n");
		abort();
	}
}

double
cpu_seconds(clockid_t clock)
{
	timespec time;
	clock_gettime(clock, &time);
	return time.tv_sec + time.tv_nsec / 1e9;
}

//! Tells what its ticks cost. They run on the window's thread, as in the program.
class TimedView : public TTavoraDView {
public:
	using TTavoraDView::TTavoraDView;

	void MessageReceived(BMessage* message) override
	{
		const double begin = cpu_seconds(CLOCK_THREAD_CPUTIME_ID);
		if (message->what == kCopy) {
			memcpy(fTo.data(), fFrom.data(), fTo.size());
			fCopySeconds = cpu_seconds(CLOCK_THREAD_CPUTIME_ID) - begin;
			fCopies++;
			return;
		}
		TTavoraDView::MessageReceived(message);
		if (message->what == kPollingQuboInfo) {
			fTickSeconds = cpu_seconds(CLOCK_THREAD_CPUTIME_ID) - begin;
			fTicks++;
		}
	}

	void Draw(BRect updateRect) override
	{
		const double begin = cpu_seconds(CLOCK_THREAD_CPUTIME_ID);
		TTavoraDView::Draw(updateRect);
		fDrawSeconds = cpu_seconds(CLOCK_THREAD_CPUTIME_ID) - begin;
		std::fill(fFrom.begin(), fFrom.end(), char(fDraws));
		fDraws++;
	}

	std::atomic<int32> fTicks = 0;
	std::atomic<double> fTickSeconds = 0;
	std::atomic<int32> fDraws = 0;
	std::atomic<double> fDrawSeconds = 0;
	std::atomic<int32> fCopies = 0;
	std::atomic<double> fCopySeconds = 0;

private:
	// the window's thread only; as a prepared picture, `from` is written by each drawing
	std::vector<char> fFrom = std::vector<char>(kWidth * kHeight * 4, 1);
	std::vector<char> fTo = fFrom;
};

//! A window with the view, a host that plays a song of twelve lines, and no ticks but those that are asked for.
class Display {
public:
	explicit Display(bool doubleBuffering, bigtime_t interval = kNever)
	{
		gPref = new TPref;
		gPref->fDoubleBuffering = doubleBuffering;
		gPref->fMonitoringInterval = interval;
		gExitState = new TExitState;
		std::string text;
		for (int i = 1; i <= 12; i++) {
			text += "[00:" + std::string(i < 10 ? "0" : "") + std::to_string(i)
				+ "]さくら さくら, line of a song\n";
		}
		fFolder.Write("song.lrc", text);
		host().Reset();
		host().SetPlaylist({{fFolder / "song.ogg", "song"}});
		host().Play("song", 6500);
		fWindow = new BWindow(BRect(10, 10, 9 + kWidth, 9 + kHeight), "bench", B_TITLED_WINDOW, 0);
		fView = new TimedView(fWindow->Bounds());
		fWindow->AddChild(fView);
		fWindow->Show();
		TickUntilLine(5);
	}

	~Display()
	{
		if (fWindow->Lock())
			fWindow->Quit();
		delete gPref;
		delete gExitState;
	}

	//! CPU seconds of a tick; the answer to its request has come when this returns.
	double Tick()
	{
		const int32 asked = host().CountOf(kQuboInfo);
		const int32 ticked = fView->fTicks;
		BMessenger(fView).SendMessage(kPollingQuboInfo);
		wait_for([&] { return host().CountOf(kQuboInfo) > asked && fView->fTicks > ticked; });
		return fView->fTickSeconds;
	}

	void TickUntilLine(int32 line)
	{
		wait_for([&] { return Tick(), fView->CurrentLine() == line; });
	}

	//! CPU seconds of the drawing that `cause` makes necessary.
	template<typename Cause> double Draw(Cause cause)
	{
		const int32 drawn = fView->fDraws;
		cause();
		wait_for([&] { return fView->fDraws > drawn; });
		return fView->fDrawSeconds;
	}

	TempFolder fFolder;
	BWindow* fWindow;
	TimedView* fView;
};

void
TickNothingNew(benchmark::State& state)
{
	Display display(true);
	for (auto _ : state)
		state.SetIterationTime(display.Tick());
}
BENCHMARK(TickNothingNew)->UseManualTime()->Iterations(300);

//! The part of a tick that is the posting of its request.
void
PostRequest(benchmark::State& state)
{
	Display display(true);
	Qubo_FrontEnd frontEnd(false, 100000);
	frontEnd.StartPolling(B_NORMAL_PRIORITY);
	// The first requests are greetings.
	const int32 before = host().CountOf(kQuboInfo);
	wait_for([&] { return frontEnd.SendInfoRequest(), host().CountOf(kQuboInfo) > before; });
	snooze(50000);
	for (auto _ : state) {
		const int32 asked = host().CountOf(kQuboInfo);
		const double begin = cpu_seconds(CLOCK_THREAD_CPUTIME_ID);
		frontEnd.SendInfoRequest();
		state.SetIterationTime(cpu_seconds(CLOCK_THREAD_CPUTIME_ID) - begin);
		wait_for([&] { return host().CountOf(kQuboInfo) > asked; });
	}
}
BENCHMARK(PostRequest)->UseManualTime()->Iterations(300);

//! View, host and receiver at the default interval, nothing new: the process's CPU a tick.
void
TickChain(benchmark::State& state)
{
	Display display(true, 25000);
	const int32 ticksBefore = host().CountOf(kQuboInfo);
	const double cpuBefore = cpu_seconds(CLOCK_PROCESS_CPUTIME_ID);
	for (auto _ : state) {
		snooze(5000000);
		const double cpu = cpu_seconds(CLOCK_PROCESS_CPUTIME_ID) - cpuBefore;
		state.SetIterationTime(cpu / (host().CountOf(kQuboInfo) - ticksBefore));
	}
}
BENCHMARK(TickChain)->UseManualTime()->Iterations(1);

void
FullDraw(benchmark::State& state)
{
	Display display(false);
	for (auto _ : state) {
		state.SetIterationTime(display.Draw([&] {
			display.fWindow->Lock();
			display.fView->Invalidate();
			display.fWindow->Unlock();
		}));
	}
}
BENCHMARK(FullDraw)->UseManualTime()->Iterations(300);

/*!	To the song's last line, so that there is no further picture to prepare: from the beginning of the drawing until the frame is
	with the server. */
void
ForeseenLineChange(benchmark::State& state)
{
	Display display(true);
	for (auto _ : state) {
		// This draws directly, and prepares the picture of the last line.
		display.Draw([&] {
			host().Play("song", 11500);
			display.TickUntilLine(10);
		});
		state.SetIterationTime(display.Draw([&] {
			host().Play("song", 12500);
			display.TickUntilLine(11);
		}));
	}
}
BENCHMARK(ForeseenLineChange)->UseManualTime()->Iterations(100);

/*!	A picture of the window's size and nothing else, where and when a foreseen change would be drawn: on the same thread, after the
	same wake-up, with caches as cold. */
void
BareCopy(benchmark::State& state)
{
	Display display(true);
	for (auto _ : state) {
		display.Draw([&] {
			host().Play("song", 11500);
			display.TickUntilLine(10);
		});
		const int32 copied = display.fView->fCopies;
		host().Play("song", 11600);
		display.Tick();
		BMessenger(display.fView).SendMessage(kCopy);
		wait_for([&] { return display.fView->fCopies > copied; });
		state.SetIterationTime(display.fView->fCopySeconds);
		display.Draw([&] {
			host().Play("song", 12500);
			display.TickUntilLine(11);
		});
	}
}
BENCHMARK(BareCopy)->UseManualTime()->Iterations(100);

} // namespace

int
main(int argc, char** argv)
{
	TempFolder settings;
	setenv("XDG_CONFIG_HOME", settings.Path().c_str(), 1);
	setenv("QT_QPA_PLATFORM", "offscreen", 0);
	benchmark::Initialize(&argc, argv);
	gLLT = new merion::TLLT; // without texts a key stands for itself
	ScriptedHost application;
	std::thread benchmarks([] {
		benchmark::RunSpecifiedBenchmarks();
		be_app->PostMessage(B_QUIT_REQUESTED);
	});
	application.Run();
	benchmarks.join();
	delete gLLT;
	return 0;
}
