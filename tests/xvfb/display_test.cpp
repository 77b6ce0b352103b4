// The display on a screen, looked at by another client of the X server while it changes.

#include "support/display.h"

#include <Messenger.h>
#include <QWindow>

#include "lyrics/TTavoraDView.h"
#include "lyrics/TTavoraDWin.h"
#include "lyrics/lyrics_codes.h"
#include "plugin/helpers/TCommMan.h"
#include "support/DisplayFixture.h"
#include "xvfb/Eye.h"

namespace {

constexpr int kLooks = 600;
constexpr int kLines = 6;
constexpr int32 kLineTime
	= 10000; // ms from line to line: no two ticks of a test are in different ones

class Manager : public TCommMan {
public:
	Manager() : TCommMan("display test", "nobody") { Run(); }
};

class OnScreen : public DisplayFixture {
protected:
	~OnScreen() override
	{
		Close();
		if (fManager->Lock())
			fManager->Quit();
	}

	void Open()
	{
		Save("song.lrc", Text("first"));
		host().SetPlaylist({Song("song")});
		host().Play("song", 0);
		fWindow = new TTavoraDWin(BRect(100, 100, 419, 259), fManager);
		fView = static_cast<TTavoraDView*>(fWindow->ChildAt(0));
		fWindow->Appear();
		ASSERT_TRUE(wait_until([&] { return CurrentLine() == "first 0"; }));
		// the screen has it later than the window does, and shows what was drawn before it until then
		ASSERT_TRUE(wait_until([&] { return LookAt() == Drawn(); }));
	}

	void Close()
	{
		if (fWindow != nullptr && fWindow->Lock())
			fWindow->Quit();
		fWindow = nullptr;
	}

	static std::string Text(const std::string& name)
	{
		std::string text;
		for (int i = 0; i < kLines; i++)
			text += "[00:" + std::to_string(i) + "0]" + name + " " + std::to_string(i) + "\n";
		return text;
	}

	static void PlayLine(int line) { host().Play("song", line * kLineTime); }

	std::string CurrentLine()
	{
		if (!fWindow->Lock())
			return {};
		std::string line = fView->CurrentLineText();
		fWindow->Unlock();
		return line;
	}

	Eye::Picture LookAt() { return fEye.LookAt(WindowNumber()); }

	uint32_t WindowNumber()
	{
		return on_server(fWindow, [](BPrivate::ServerWindow& server) {
			return uint32_t(server.windowHandle()->winId());
		});
	}

	//! What is drawn, not what is shown, once nothing is on its way.
	Eye::Picture Drawn()
	{
		settle(fWindow);
		const QImage image = pixels_of(fWindow).convertToFormat(QImage::Format_RGB32);
		Eye::Picture picture{image.width(), image.height(), {}};
		for (int y = 0; y < image.height(); y++) {
			for (int x = 0; x < image.width(); x++)
				picture.pixels.push_back(image.pixel(x, y) & 0xffffff);
		}
		return picture;
	}

	//! The pictures that may be seen: each line of a text as the current one.
	void Learn(const std::string& name)
	{
		// the line that a reload begins with, so that it is still the one after it
		PlayLine(0);
		ASSERT_TRUE(wait_until([&] { return CurrentLine().ends_with(" 0"); }));
		SaveByRenaming("song.lrc", Text(name));
		for (int line = 0; line < kLines; line++) {
			PlayLine(line);
			ASSERT_TRUE(
				wait_until([&] { return CurrentLine() == name + " " + std::to_string(line); }));
			fPictures[name].push_back(Drawn());
		}
	}

	bool MayBeSeen(const Eye::Picture& picture) const
	{
		for (const auto& [name, pictures] : fPictures) {
			if (std::find(pictures.begin(), pictures.end(), picture) != pictures.end())
				return true;
		}
		return false;
	}

	//! Looks until that is seen. Whatever is seen before must be a whole picture too.
	bool SeesOnlyWholePicturesUntil(const Eye::Picture& expected, const std::string& what)
	{
		const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
		while (std::chrono::steady_clock::now() < end) {
			const Eye::Picture seen = LookAt();
			fLooks++;
			if (!MayBeSeen(seen)) {
				seen.Save("torn");
				ADD_FAILURE() << "in look " << fLooks << ", " << what
							  << ", neither the old nor the new picture was seen";
				return false;
			}
			if (seen == expected)
				return true;
		}
		expected.Save("expected");
		ADD_FAILURE() << what << " was not seen";
		return false;
	}

	void ChangeLinesAndReload()
	{
		ASSERT_NO_FATAL_FAILURE(Learn("second"));
		ASSERT_NO_FATAL_FAILURE(Learn("first"));
		std::string text = "first";
		int line = 0;
		for (int step = 0; fLooks < kLooks; step++) {
			if (step % 8 == 7) {
				text = text == "first" ? "second" : "first";
				SaveByRenaming("song.lrc", Text(text));
			} else {
				// mostly the line that was prepared, at times another one
				line = step % 5 == 4 ? (line + 3) % kLines : (line + 1) % kLines;
				PlayLine(line);
			}
			ASSERT_TRUE(SeesOnlyWholePicturesUntil(fPictures[text][line], Step(text, line)));
			if (step % 3 == 0)
				fWindow->PostMessage(kStayOnTopItemClicked);
		}
	}

	/*!	One step of a sequence of sizes: what was there before, and is to stay, is seen until the new picture is. The window
		manager may cut off the rest early. */
	bool SeesTheOldPartUntil(const Eye::Picture& before, const Eye::Picture& after)
	{
		const int width = std::min(before.width, after.width);
		const int height = std::min(before.height, after.height);
		const Eye::Picture kept = before.Part(width, height);
		const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
		while (std::chrono::steady_clock::now() < end) {
			const Eye::Picture seen = LookAt();
			fLooks++;
			if (seen == after)
				return true;
			// what is new goes on as the display's own edge does
			if (!seen.pixels.empty() && seen.pixels.back() == kPanel)
				fPanelLooks++;
			const Eye::Picture part = seen.Part(width, height);
			if (part != kept && part != after.Part(width, height)) {
				seen.Save("resized");
				ADD_FAILURE() << "in look " << fLooks << ", from " << before.width << "x"
							  << before.height << " to " << after.width << "x" << after.height
							  << ", what was there before was not seen";
				return false;
			}
		}
		after.Save("expected");
		ADD_FAILURE() << "the new size was not seen";
		return false;
	}

	static std::string Step(const std::string& text, int line)
	{
		return "on the way to line " + std::to_string(line) + " of the " + text + " text";
	}

	Manager* fManager = new Manager;
	TTavoraDWin* fWindow = nullptr;
	TTavoraDView* fView = nullptr;
	Eye fEye;
	std::map<std::string, std::vector<Eye::Picture>> fPictures;
	int fLooks = 0;
	int fPanelLooks = 0; // at which the new part was like a dialog's background
	const uint32_t kPanel = [] {
		const rgb_color color = ui_color(B_PANEL_BACKGROUND_COLOR);
		return color.red << 16 | color.green << 8 | color.blue;
	}();
};

} // namespace

TEST_F(OnScreen, ShowsWholePicturesWithDoubleBuffering)
{
	ASSERT_NO_FATAL_FAILURE(Open());
	ChangeLinesAndReload();
}

TEST_F(OnScreen, ShowsWholePicturesWithoutDoubleBuffering)
{
	gPref->fDoubleBuffering = false;
	ASSERT_NO_FATAL_FAILURE(Open());
	ChangeLinesAndReload();
}

TEST_F(OnScreen, AResizeKeepsWhatWasThere)
{
	ASSERT_NO_FATAL_FAILURE(Open());
	PlayLine(2);
	ASSERT_TRUE(wait_until([&] { return CurrentLine() == "first 2"; }));
	std::vector<Eye::Picture> pictures;
	for (const auto& [width, height] : std::vector<std::pair<int, int>>{
			 {320, 160}, {321, 163}, {480, 300}, {200, 90}, {600, 80}, {330, 400}, {300, 150}}) {
		fEye.Resize(WindowNumber(), width, height);
		ASSERT_TRUE(wait_until([&] {
			const Eye::Picture drawn = Drawn();
			return drawn.width == width && drawn.height == height && drawn == LookAt();
		})) << width;
		pictures.push_back(Drawn());
	}
	size_t at = pictures.size() - 1;
	for (int step = 0; fLooks < kLooks; step++) {
		const size_t next = (at + 1 + step / pictures.size()) % pictures.size();
		if (next == at)
			continue;
		const Eye::Picture& after = pictures[next];
		if (step % 3 != 2)
			fEye.Resize(WindowNumber(), after.width, after.height);
		else if (fWindow->Lock()) {
			fWindow->ResizeTo(after.width - 1, after.height - 1);
			fWindow->Unlock();
		}
		ASSERT_TRUE(SeesTheOldPartUntil(pictures[at], after));
		at = next;
	}
	EXPECT_EQ(fPanelLooks, 0);
}

TEST_F(OnScreen, StaysOnTopAtOnceAndIsNeverTakenAway)
{
	ASSERT_NO_FATAL_FAILURE(Open());
	const Eye::Picture picture = Drawn();
	const uint32_t number = WindowNumber();
	for (int round = 0; round < 20; round++) {
		fWindow->PostMessage(kStayOnTopItemClicked);
		const bool isAbove = round % 2 == 0;
		ASSERT_TRUE(wait_until([&] {
			EXPECT_EQ(LookAt(), picture);
			return fEye.IsAbove(number) == isAbove;
		}));
		EXPECT_EQ(gPref->fStayOnTop, isAbove);
	}
	EXPECT_EQ(WindowNumber(), number) << "the window was made anew";
}
