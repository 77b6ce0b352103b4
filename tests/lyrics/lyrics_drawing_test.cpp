#include <cmath>
#include <cstring>
#include <ctime>
#include <set>

#include <Bitmap.h>
#include <Font.h>

#include "lyrics/TTavoraDView.h"
#include "prefs/rgb_color_utils.h"
#include "support/DisplayFixture.h"

namespace {

constexpr rgb_color kRed{255, 0, 0, 255};
constexpr rgb_color kGreen{0, 255, 0, 255};
constexpr rgb_color kBlue{0, 0, 255, 255};
constexpr rgb_color kWhite{255, 255, 255, 255};

//! The pixels of a picture, as numbers that compare.
using Pixels = std::vector<uint32>;

uint32
pixel_of(rgb_color color)
{
	return color.red << 16 | color.green << 8 | color.blue;
}

//! That this thread has had the processor, µs: what others do meanwhile does not count.
bigtime_t
worked_time()
{
	timespec time;
	clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
	return time.tv_sec * 1000000LL + time.tv_nsec / 1000;
}

/*!	The view in a bitmap, drawn by the test itself. */
class DrawingTest : public DisplayFixture {
protected:
	DrawingTest()
	{
		gPref->fBGColor = kBlue;
		gPref->fActiveBGColor = kGreen;
		gPref->fActiveFrameColor = kRed;
		gPref->fActiveLyricsColor = kWhite;
		gPref->fLyricsColor = kWhite;
		gPref->fUseActiveFrame = false;
		gPref->fDoubleBuffering = false;
	}

	~DrawingTest() override { DropView(); }

	void MakeView(int width, int height)
	{
		DropView();
		fBitmap = std::make_unique<BBitmap>(BRect(0, 0, width - 1, height - 1), B_RGB32, true);
		ASSERT_TRUE(fBitmap->Lock());
		fView = new TTavoraDView(fBitmap->Bounds());
		fBitmap->AddChild(fView);
	}

	void DropView()
	{
		if (fBitmap != nullptr)
			fBitmap->Unlock();
		fBitmap.reset();
		fView = nullptr;
	}

	//! Lets the view look at the host until this song's line is current, which has to have another text than the one before.
	void PlayTo(const char* title, int32 positionMs, std::string_view line)
	{
		host().Play(title, positionMs);
		ASSERT_TRUE(wait_until([&] {
			fView->PollingQuboInfoRqtd();
			return fView->LyricsFName() == fFolder / (std::string(title) + ".lrc")
				&& fView->CurrentLineText() == line;
		})) << fView->CurrentLineText();
	}

	void Draw()
	{
		fView->Draw(fView->Bounds());
		fView->Sync();
	}

	uint32 At(int x, int y) const
	{
		uint32 pixel;
		const char* bits = static_cast<const char*>(fBitmap->Bits());
		memcpy(&pixel, bits + y * fBitmap->BytesPerRow() + x * 4, sizeof(pixel));
		return pixel & 0xffffff;
	}

	Pixels All() const
	{
		Pixels pixels;
		for (int y = 0; y <= fBitmap->Bounds().bottom; y++) {
			for (int x = 0; x <= fBitmap->Bounds().right; x++)
				pixels.push_back(At(x, y));
		}
		return pixels;
	}

	std::set<uint32> Colors() const
	{
		const Pixels all = All();
		return {all.begin(), all.end()};
	}

	//! An image file of four quarters: red, green / blue, white.
	std::string QuarterImage(int size)
	{
		std::string ppm = "P6 " + std::to_string(size) + " " + std::to_string(size) + " 255\n";
		for (int y = 0; y < size; y++) {
			for (int x = 0; x < size; x++) {
				const rgb_color color = y < size / 2 ? (x < size / 2 ? kRed : kGreen)
													 : (x < size / 2 ? kBlue : kWhite);
				ppm += {static_cast<char>(color.red), static_cast<char>(color.green),
					static_cast<char>(color.blue)};
			}
		}
		return fFolder.Write("image.ppm", ppm);
	}

	//! The first and the last column with something in the text's colour; first > last: none.
	std::pair<int, int> TextColumns() const
	{
		const int width = fBitmap->Bounds().IntegerWidth() + 1;
		std::pair<int, int> columns(width, -1);
		for (int x = 0; x < width; x++) {
			for (int y = 0; y <= fBitmap->Bounds().bottom; y++) {
				if (At(x, y) == pixel_of(kWhite))
					columns = {std::min(columns.first, x), x};
			}
		}
		return columns;
	}

	float Width(const char* text) const { return fView->StringWidth(text); }

	float FontHeight() const
	{
		BFont font;
		fView->GetFont(&font);
		font_height height;
		font.GetHeight(&height);
		return height.ascent + height.descent;
	}

	std::unique_ptr<BBitmap> fBitmap;
	TTavoraDView* fView = nullptr;
};

} // namespace

TEST_F(DrawingTest, WithoutLinesThereIsOnlyTheBackground)
{
	Save("empty.lrc", "");
	Save("song.lrc", "x");
	host().SetPlaylist({Song("empty"), Song("song")});
	MakeView(120, 90);
	PlayTo("song", 0, "x");
	PlayTo("empty", 0, "");
	Draw();
	EXPECT_EQ(Colors(), (std::set<uint32>{pixel_of(kBlue)}));
}

TEST_F(DrawingTest, TheCurrentLineStandsHighlightedInTheMiddle)
{
	// Lines of blanks: only what is behind them is to be seen.
	Save("song.lrc", "[00:01] \n \n ");
	host().SetPlaylist({Song("song")});
	MakeView(120, 101);
	PlayTo("song", 1000, " ");
	Draw();
	const float margin = FontHeight() / 6;
	const float top = (100 - FontHeight()) * 0.5f - margin;
	const float bottom = (100 - FontHeight()) * 0.5f + FontHeight() + margin;
	for (int x : {0, 60, 119}) {
		EXPECT_EQ(At(x, 50), pixel_of(kGreen));
		EXPECT_EQ(At(x, std::floor(top) - 2), pixel_of(kBlue));
		EXPECT_EQ(At(x, std::ceil(top) + 2), pixel_of(kGreen));
		EXPECT_EQ(At(x, std::floor(bottom) - 2), pixel_of(kGreen));
		EXPECT_EQ(At(x, std::ceil(bottom) + 2), pixel_of(kBlue));
	}
	EXPECT_EQ(Colors(), (std::set<uint32>{pixel_of(kBlue), pixel_of(kGreen)}));

	gPref->fUseActiveFrame = true;
	Draw();
	EXPECT_EQ(At(0, 50), pixel_of(kRed));
	EXPECT_EQ(At(119, 50), pixel_of(kRed));
	EXPECT_EQ(At(60, 50), pixel_of(kGreen));
	EXPECT_EQ(Colors(), (std::set<uint32>{pixel_of(kBlue), pixel_of(kGreen), pixel_of(kRed)}));
}

TEST_F(DrawingTest, TheFirstLineHasNothingAboveIt)
{
	Save("song.lrc", "[00:01]MMM\n[00:02]MMMM\n[00:03]MMMMM");
	host().SetPlaylist({Song("song")});
	MakeView(120, 151);
	const auto usesRows = [&](int first, int end) {
		for (int y = first; y < end; y++) {
			for (int x = 0; x < 120; x++) {
				if (At(x, y) != pixel_of(kBlue))
					return true;
			}
		}
		return false;
	};
	const int half = FontHeight();
	PlayTo("song", 1000, "MMM");
	Draw();
	EXPECT_FALSE(usesRows(0, 75 - half));
	EXPECT_TRUE(usesRows(75 + half, 151));

	PlayTo("song", 3000, "MMMMM");
	Draw();
	EXPECT_TRUE(usesRows(0, 75 - half));
	EXPECT_FALSE(usesRows(75 + half, 151));
}

TEST_F(DrawingTest, TextIsCentredInItsColour)
{
	Save("song.lrc", "[00:01]MMMMMM");
	host().SetPlaylist({Song("song")});
	gPref->fAntiAliasing = false;
	MakeView(200, 61);
	PlayTo("song", 1000, "MMMMMM");
	Draw();
	const auto [left, right] = TextColumns();
	ASSERT_GE(right, left) << "no text at all";
	EXPECT_NEAR(left + right, 199, 6);
	EXPECT_EQ(Colors(), (std::set<uint32>{pixel_of(kBlue), pixel_of(kGreen), pixel_of(kWhite)}));
}

TEST_F(DrawingTest, TextOfAnySizeStaysInTheMiddleAndIsCutByTheEdges)
{
	const std::string line
		= "a line that is wider than the window once its letters are large enough M";
	Save("song.lrc", "[00:01]M" + line);
	host().SetPlaylist({Song("song")});
	gPref->fAntiAliasing = false;
	MakeView(400, 101);
	PlayTo("song", 1000, "M" + line);
	int before = 0; // columns
	for (const float size : {5, 8, 12, 24, 50}) {
		gPref->fFontSize = size;
		fView->PrefAppearanceChanged();
		Draw();
		const auto [left, right] = TextColumns();
		EXPECT_NEAR(left + right, 399, 1 + size) << size;
		const bool isCut = Width(("M" + line).c_str()) > 400;
		EXPECT_EQ(isCut, size >= 12) << size;
		EXPECT_GE(right - left, isCut ? 350 : before) << size;
		before = right - left + 1;
	}
}

TEST_F(DrawingTest, TextIsShapedAndAMissingFamilyIsTheDefaultOne)
{
	gPref->fFontFamily = "DejaVu Sans";
	Save("song.lrc",
		"[00:01]\u00e9t\u00e9\n[00:02]e\u0301te\u0301\n[00:03]\u05d0\u05d1 1\n[00:04]\u05d1\u05d0 "
		"1");
	host().SetPlaylist({Song("song")});
	MakeView(120, 14); // one line
	const auto picture = [&](int32 second, const char* text) {
		PlayTo("song", second * 1000, text);
		Draw();
		return All();
	};
	const Pixels composed = picture(1, "\u00e9t\u00e9");
	EXPECT_GT(Colors().size(), 2u) << "there is no text";
	EXPECT_EQ(picture(2, "e\u0301te\u0301"), composed) << "marks stand beside their letters";
	EXPECT_NE(picture(3, "\u05d0\u05d1 1"), picture(4, "\u05d1\u05d0 1"));
	// joined letters, and people joined to one picture
	EXPECT_LT(Width("\u0644\u0627"), Width("\u0644\u200c\u0627"));
	EXPECT_EQ(Width("\U0001f469\u200d\U0001f469\u200d\U0001f467"), Width("\U0001f469"));

	gPref->fFontFamily = "No Such Family";
	fView->PrefAppearanceChanged();
	const Pixels missing = picture(1, "\u00e9t\u00e9");
	font_family family;
	font_style style;
	be_plain_font->GetFamilyAndStyle(&family, &style);
	gPref->fFontFamily = family;
	fView->PrefAppearanceChanged();
	EXPECT_EQ(picture(1, "\u00e9t\u00e9"), missing);
}

TEST_F(DrawingTest, TilesStopBeforeAnEdgeThatTheyMeet)
{
	Save("empty.lrc", "");
	host().SetPlaylist({Song("empty")});
	// Edges at 40: exactly four tiles of ten, and one more column and row.
	MakeView(41, 41);
	PlayTo("empty", 0, "");
	Draw();
	gPref->fUseBGImage = true;
	gPref->fBGImageFile = QuarterImage(10);
	fView->PrefAppearanceChanged();
	Draw();
	for (int tile = 0; tile < 4; tile++) {
		EXPECT_EQ(At(10 * tile + 1, 1), pixel_of(kRed));
		EXPECT_EQ(At(10 * tile + 9, 31), pixel_of(kGreen));
		EXPECT_EQ(At(1, 10 * tile + 9), pixel_of(kBlue));
	}
	EXPECT_EQ(At(39, 39), pixel_of(kWhite));
	for (int i = 0; i <= 40; i++) {
		EXPECT_EQ(At(40, i), pixel_of(kBlue)) << "painted over the last column";
		EXPECT_EQ(At(i, 40), pixel_of(kBlue)) << "painted over the last row";
	}
}

TEST_F(DrawingTest, TilesAreCutByAnEdgeWithinThem)
{
	Save("empty.lrc", "");
	host().SetPlaylist({Song("empty")});
	gPref->fUseBGImage = true;
	gPref->fBGImageFile = QuarterImage(10);
	MakeView(45, 45);
	PlayTo("empty", 0, "");
	Draw();
	EXPECT_EQ(At(44, 44), pixel_of(kRed));
	EXPECT_EQ(At(39, 44), pixel_of(kGreen));
}

TEST_F(DrawingTest, AScaledImageFillsTheView)
{
	Save("empty.lrc", "");
	host().SetPlaylist({Song("empty")});
	gPref->fUseBGImage = true;
	gPref->fBGImageAlign = kBGImageScaleToFit;
	gPref->fBGImageFile = QuarterImage(10);
	MakeView(100, 60);
	PlayTo("empty", 0, "");
	Draw();
	EXPECT_EQ(At(0, 0), pixel_of(kRed));
	EXPECT_EQ(At(99, 0), pixel_of(kGreen));
	EXPECT_EQ(At(0, 59), pixel_of(kBlue));
	EXPECT_EQ(At(99, 59), pixel_of(kWhite));
	EXPECT_EQ(At(40, 20), pixel_of(kRed));
	EXPECT_EQ(At(60, 40), pixel_of(kWhite));
}

TEST_F(DrawingTest, OverAnImageThereIsOnlyTheFrame)
{
	Save("song.lrc", "[00:01] ");
	host().SetPlaylist({Song("song")});
	gPref->fUseBGImage = true;
	gPref->fUseActiveFrame = true;
	gPref->fActiveFrameColor = rgb_color{1, 2, 3, 255};
	gPref->fActiveBGColor = rgb_color{4, 5, 6, 255};
	gPref->fBGImageFile = QuarterImage(10);
	MakeView(101, 61);
	PlayTo("song", 1000, " ");
	Draw();
	EXPECT_TRUE(Colors().count(0x010203));
	EXPECT_FALSE(Colors().count(0x040506));

	// Without a readable image it is as if none were wanted.
	gPref->fBGImageFile = fFolder / "missing.png";
	fView->PrefAppearanceChanged();
	Draw();
	EXPECT_EQ(Colors(), (std::set<uint32>{pixel_of(kBlue), 0x010203, 0x040506}));
	gPref->fBGImageFile = fFolder.Write("broken.png", "\x89PNG\r\n no picture");
	fView->PrefAppearanceChanged();
	Draw();
	EXPECT_EQ(Colors(), (std::set<uint32>{pixel_of(kBlue), 0x010203, 0x040506}));

	// It is tried again when it has become another file, even in the same second, and when it is wanted again.
	fFolder.Write("broken.png", fFolder.Read("image.ppm"));
	fView->PrefAppearanceChanged();
	Draw();
	EXPECT_FALSE(Colors().count(0x040506));
	EXPECT_TRUE(Colors().count(pixel_of(kRed)));
	std::string grey = fFolder.Read("image.ppm");
	std::fill(grey.end() - 300, grey.end(), '\x80');
	const std::string other = fFolder.Write("other.ppm", grey);
	std::filesystem::last_write_time(
		other, std::filesystem::last_write_time(fFolder / "broken.png"));
	std::filesystem::rename(other, fFolder / "broken.png"); // of its size and time
	fView->PrefAppearanceChanged();
	Draw();
	EXPECT_FALSE(Colors().count(pixel_of(kRed)));
	EXPECT_TRUE(Colors().count(0x808080));
	for (const bool isUsed : {false, true}) {
		gPref->fUseBGImage = isUsed;
		fView->PrefAppearanceChanged();
		Draw();
		EXPECT_NE(Colors().count(0x040506), isUsed);
	}
}

TEST_F(DrawingTest, ThePreparedPictureIsTheOneDrawnAtOnce)
{
	Save("song.lrc",
		"[00:01]one\n[00:02]two \u6b4c\u8a5e\nuntagged\n[00:04]four\n[00:03]three, out of order");
	host().SetPlaylist({Song("song")});
	const std::pair<int32, const char*> steps[] = {
		{1000, "one"}, {2000, "two \u6b4c\u8a5e"}, {3000, "three, out of order"}, {4000, "four"}};
	std::vector<Pixels> direct;
	MakeView(160, 100);
	for (const auto& [time, line] : steps) {
		PlayTo("song", time, line);
		Draw();
		direct.push_back(All());
	}
	EXPECT_NE(direct[0], direct[1]);

	gPref->fDoubleBuffering = true;
	MakeView(160, 100);
	for (size_t i = 0; i < std::size(steps); i++) {
		PlayTo("song", steps[i].first, steps[i].second);
		Draw();
		EXPECT_EQ(All(), direct[i]) << steps[i].second;
		Draw();
		EXPECT_EQ(All(), direct[i]) << steps[i].second << ", drawn again";
	}
}

TEST_F(DrawingTest, APreparedPictureIsForgottenWithWhatItShows)
{
	Save("song.lrc", "[00:01]one\n[00:02]two");
	host().SetPlaylist({Song("song")});
	gPref->fDoubleBuffering = true;
	MakeView(160, 100);
	const auto prepareSecondLine = [&] {
		PlayTo("song", 1000, "one");
		Draw();
	};
	const auto secondLine = [&] {
		PlayTo("song", 2000, "two");
		Draw();
		return All();
	};

	prepareSecondLine();
	const Pixels before = secondLine();

	prepareSecondLine();
	gPref->fBGColor = kRed;
	fView->PrefAppearanceChanged();
	EXPECT_NE(secondLine(), before) << "the appearance has changed";
	gPref->fBGColor = kBlue;
	fView->PrefAppearanceChanged();

	prepareSecondLine();
	gPref->fDoubleBuffering = false;
	fView->PrefDoubleBufferingChanged();
	EXPECT_EQ(secondLine(), before) << "double buffering was switched off";
	gPref->fDoubleBuffering = true;
	fView->PrefDoubleBufferingChanged();

	prepareSecondLine();
	Save("other.lrc", "[00:01]one\n[00:02]two");
	host().SetPlaylist({Song("song"), Song("other")});
	Save("other.lrc", "\n\n[00:02]two\n[00:01]one");
	PlayTo("other", 2000, "two");
	Draw();
	const Pixels reloaded = All();
	gPref->fDoubleBuffering = false;
	fView->PrefDoubleBufferingChanged();
	Draw();
	EXPECT_EQ(All(), reloaded) << "the song has changed";
}

TEST_F(DrawingTest, LongAndStrangeTextIsDrawnInNoTime)
{
	const std::pair<const char*, std::string> texts[] = {
		{"long", std::string(5 << 20, 'M')},
		{"wide",
			[] {
				std::string text;
				while (text.size() < 1 << 20)
					text += "\u6b4c";
				return text;
			}()},
		{"broken", std::string(100000, '\x80')},
		{"controls", "a\x01\x02\t\x1b[0m\x7f b"},
	};
	gPref->fReadEncoding = kEncodingUTF8;
	for (const auto& [name, text] : texts) {
		SCOPED_TRACE(name);
		Save(std::string(name) + ".lrc", "[00:01]" + text + "\n[00:02]" + text);
		host().SetPlaylist({Song(name)});
		for (const bool isBuffered : {false, true}) {
			gPref->fDoubleBuffering = isBuffered;
			MakeView(160, 100);
			const size_t bracket = text.find(']');
			ASSERT_EQ(bracket, std::string::npos);
			PlayTo(name, 1000, text);
			const bigtime_t start = worked_time();
			Draw();
			EXPECT_LT(worked_time() - start, 2000000);
		}
	}
}

TEST_F(DrawingTest, AnyNumbersInTheSettingsDraw)
{
	Save("song.lrc", "[00:01]one\n[00:02]two");
	host().SetPlaylist({Song("song")});
	MakeView(160, 100);
	PlayTo("song", 1000, "one");
	for (const float size : {0.0f, -12.0f, NAN, INFINITY, -INFINITY, 1e30f, 1e-30f}) {
		gPref->fFontSize = size;
		fView->PrefAppearanceChanged();
		Draw();
		EXPECT_FALSE(Colors().empty()) << size;
	}
	gPref->fFontSize = 12.0f;
	gPref->fFontFamily = std::string(64, 'F');
	fView->PrefAppearanceChanged();
	Draw();
	EXPECT_TRUE(Colors().count(pixel_of(kBlue)));
}
