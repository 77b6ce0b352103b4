// A display that runs for days: nothing grows with the songs that it has shown, or with the user's changes.

#include "support/display.h"

#include <algorithm>
#include <fstream>
#include <malloc.h>
#include <string>

#include "lyrics/TTavoraDView.h"
#include "lyrics/TTavoraDWin.h"
#include "plugin/helpers/TCommMan.h"
#include "plugin/helpers/commman_codes.h"
#include "support/DisplayFixture.h"

namespace {

constexpr int kChanges = 2000;
// Caches fill, the allocator finds its sizes; it ends with the same appearance as the changes, which repeats after 840.
constexpr int kWarmUp = 320;
constexpr int64 kFlat = 1024 * 1024;

//! Bytes that are allocated, and bytes of memory that hold them.
struct Memory {
	int64 allocated;
	int64 resident;
};

Memory
memory_now()
{
	malloc_trim(0);
	const struct mallinfo2 info = mallinfo2();
	int64 resident = 0;
	std::ifstream status("/proc/self/status");
	for (std::string line; std::getline(status, line);) {
		if (line.starts_with("RssAnon:"))
			resident = std::stoll(line.substr(line.find_first_of("0123456789"))) * 1024;
	}
	return {int64(info.uordblks + info.hblkhd), resident};
}

class MemoryTest : public DisplayFixture {
protected:
	MemoryTest()
	{
		gPref->fMonitoringInterval = 200;
		fImages[0] = Image("first.ppm", '\x20');
		fImages[1] = Image("second.ppm", '\x40');
		gPref->fBGImageFile = fImages[0];
		gPref->fUseBGImage = true;
		for (const char* name : {"one", "two"}) {
			std::string text;
			for (int i = 0; i < 200; i++)
				text += "[00:00]" + std::string(name) + "\n";
			Save(std::string(name) + ".lrc", text);
		}
		host().SetPlaylist({Song("one"), Song("two")});
		host().Play("one", 0);
		fWindow = new TTavoraDWin(BRect(100, 100, 499, 299), fManager);
		fView = static_cast<TTavoraDView*>(fWindow->ChildAt(0));
		fWindow->Appear();
	}
	~MemoryTest() override
	{
		if (fWindow->Lock())
			fWindow->Quit();
		if (fManager->Lock())
			fManager->Quit();
	}

	std::string Image(const char* name, char grey)
	{
		return fFolder.Write(name, "P6 400 300 255\n" + std::string(400 * 300 * 3, grey));
	}

	bool ShowsLine(const std::string& line)
	{
		if (!fWindow->Lock())
			return false;
		const bool isIt = fView->CurrentLineText() == line;
		fWindow->Unlock();
		return isIt;
	}

	template<typename Change> void ExpectFlat(Change change)
	{
		for (int i = 0; i < kWarmUp; i++)
			ASSERT_TRUE(change(i)) << i;
		settle(fWindow);
		const Memory before = memory_now();
		for (int i = 0; i < kChanges; i++)
			ASSERT_TRUE(change(i)) << i;
		settle(fWindow);
		const Memory after = memory_now();
		EXPECT_LT(std::abs(after.allocated - before.allocated), kFlat);
		EXPECT_LT(after.resident - before.resident, kFlat);
		RecordProperty("KBAllocated", int((after.allocated - before.allocated) / 1024));
		RecordProperty("KBResident", int((after.resident - before.resident) / 1024));
	}

	class Manager : public TCommMan {
	public:
		Manager() : TCommMan("memory test", "nobody") { Run(); }
	};

	Manager* fManager = new Manager;
	std::string fImages[2];
	TTavoraDWin* fWindow = nullptr;
	TTavoraDView* fView = nullptr;
};

} // namespace

TEST_F(MemoryTest, IsFlatOverSongs)
{
	ExpectFlat([&](int i) {
		const char* title = i % 2 == 0 ? "two" : "one";
		host().Play(title, 0);
		return wait_until([&] { return ShowsLine(title); });
	});
}

TEST_F(MemoryTest, IsFlatOverAppearances)
{
	ASSERT_TRUE(wait_until([&] { return ShowsLine("one"); }));
	ExpectFlat([&](int i) {
		gPref->fFontSize = 10 + i % 8;
		gPref->fAntiAliasing = i % 3 == 0;
		gPref->fBGImageAlign = i % 2;
		gPref->fBGImageFile = fImages[i / 5 % 2];
		gPref->fUseBGImage = i % 7 != 0;
		const int64 frames = count_frames(fWindow);
		fWindow->PostMessage(kPrefAppearanceChanged);
		return wait_until([&] { return count_frames(fWindow) > frames; });
	});
}
