#include "support/display.h"

#include "server/Desktop.h"

#include <Bitmap.h>
#include <View.h>
#include <chrono>
#include <functional>
#include <string>

using namespace BPrivate;

// These tests run at scale 1 and once more at scale 2.

namespace {

constexpr rgb_color kRed = {255, 0, 0, 255};
constexpr rgb_color kBlue = {0, 0, 255, 255};
constexpr rgb_color kWhite = {255, 255, 255, 255};
constexpr rgb_color kGreen = {0, 255, 0, 255};

class PaintView : public BView {
public:
	using Paint = std::function<void(BView*)>;

	PaintView(BRect frame, Paint paint, uint32 flags = 0)
		: BView(frame, "paint", B_FOLLOW_ALL, B_WILL_DRAW | flags),
		  fPaint(paint)
	{ }
	void Draw(BRect) override
	{
		fDraws++;
		fPaint(this);
	}
	std::atomic<int> fDraws = 0;

private:
	Paint fPaint;
};

//! A window of 60 x 40 with one view that paints.
class PaintWindow : public BWindow {
public:
	explicit PaintWindow(PaintView::Paint paint)
		: BWindow(BRect(50, 50, 109, 89), "paint", B_TITLED_WINDOW, 0)
	{
		fView = new PaintView(Bounds(), paint);
		AddChild(fView);
		Show();
		settle(this);
	}
	PaintView* fView;
};

//! The colour of the pixel that covers a point of the window, as 0xrrggbb.
unsigned
color_at(const QImage& image, int x, int y)
{
	int scale = image.devicePixelRatio();
	return image.pixel(x * scale, y * scale) & 0xffffff;
}

unsigned
number(rgb_color color)
{
	return color.red << 16 | color.green << 8 | color.blue;
}

//! How many of the window's pixels have the colour, counted in pixels of scale 1.
int
count_color(const QImage& image, rgb_color color)
{
	int count = 0;
	for (int y = 0; y < image.height(); y++) {
		for (int x = 0; x < image.width(); x++)
			count += (image.pixel(x, y) & 0xffffff) == number(color);
	}
	return count / (image.devicePixelRatio() * image.devicePixelRatio());
}

//! The smallest rectangle around all pixels that are not white, in device pixels.
QRect
ink_of(const QImage& image)
{
	QRect ink;
	for (int y = 0; y < image.height(); y++) {
		for (int x = 0; x < image.width(); x++) {
			if ((image.pixel(x, y) & 0xffffff) != 0xffffff)
				ink |= QRect(x, y, 1, 1);
		}
	}
	return ink;
}

} // namespace

TEST(Drawing, AFilledRectangleTakesInItsRightAndBottomEdge)
{
	WindowHolder<PaintWindow> window([](BView* view) {
		view->SetHighColor(kRed);
		view->FillRect(BRect(10, 5, 19, 9));
	});
	QImage image = pixels_of(window);
	EXPECT_EQ(color_at(image, 10, 5), number(kRed));
	EXPECT_EQ(color_at(image, 19, 9), number(kRed));
	EXPECT_EQ(color_at(image, 20, 9), number(kWhite));
	EXPECT_EQ(color_at(image, 19, 10), number(kWhite));
	EXPECT_EQ(color_at(image, 9, 5), number(kWhite));
	EXPECT_EQ(count_color(image, kRed), 50);
}

TEST(Drawing, StrokesLieOnTheEdgesThemselves)
{
	struct Case {
		const char* name;
		PaintView::Paint paint;
		int pixels;
		QRect ink;
	};
	const Case cases[] = {
		{"a rectangle", [](BView* view) { view->StrokeRect(BRect(10, 5, 19, 9)); }, 26,
			QRect(10, 5, 10, 5)},
		{"a rectangle of one pixel", [](BView* view) { view->StrokeRect(BRect(7, 7, 7, 7)); }, 1,
			QRect(7, 7, 1, 1)},
		{"a wide pen",
			[](BView* view) {
				view->SetPenSize(3);
				view->StrokeRect(BRect(10, 10, 29, 29));
			},
			22 * 22 - 16 * 16, QRect(9, 9, 22, 22)},
		{"a level line", [](BView* view) { view->StrokeLine(BPoint(3, 4), BPoint(12, 4)); }, 10,
			QRect(3, 4, 10, 1)},
		{"an upright line, drawn upwards",
			[](BView* view) { view->StrokeLine(BPoint(3, 12), BPoint(3, 4)); }, 9,
			QRect(3, 4, 1, 9)},
		{"a rectangle inside out", [](BView* view) { view->StrokeRect(BRect(9, 9, 5, 5)); }, 0,
			QRect()},
	};
	for (const Case& row : cases) {
		SCOPED_TRACE(row.name);
		WindowHolder<PaintWindow> window([&row](BView* view) {
			view->SetHighColor(kRed);
			view->SetPenSize(1);
			row.paint(view);
		});
		QImage image = pixels_of(window);
		int scale = image.devicePixelRatio();
		EXPECT_EQ(count_color(image, kRed), row.pixels);
		QRect ink = ink_of(image);
		if (row.pixels > 0) {
			EXPECT_EQ(ink, QRect(row.ink.topLeft() * scale, row.ink.size() * scale));
		}
	}
}

TEST(Drawing, AlphaCountsOnlyWhereItIsAskedFor)
{
	WindowHolder<PaintWindow> window([](BView* view) {
		view->SetHighColor(255, 0, 0, 128);
		view->SetDrawingMode(B_OP_COPY);
		view->FillRect(BRect(0, 0, 9, 9));
		view->SetDrawingMode(B_OP_ALPHA);
		view->FillRect(BRect(20, 0, 29, 9));
		view->SetDrawingMode(B_OP_COPY);
		view->FillRect(BRect(40, 0, 49, 9), B_SOLID_LOW);
	});
	QImage image = pixels_of(window);
	EXPECT_EQ(color_at(image, 5, 5), number(kRed));
	EXPECT_NEAR(color_at(image, 25, 5) & 0xff, 127, 2);
	EXPECT_EQ(color_at(image, 45, 5), number(kWhite));
}

TEST(Drawing, ATransparentViewIsNotErased)
{
	std::atomic<bool> paints = false;
	WindowHolder<PaintWindow> window([&](BView* view) {
		view->SetHighColor(kRed);
		if (paints)
			view->FillRect(BRect(0, 0, 9, 9));
	});
	const auto drawWith = [&](rgb_color color, bool painting) {
		int draws = window->fView->fDraws;
		window->Lock();
		paints = painting;
		window->fView->SetViewColor(color);
		window->fView->Invalidate();
		window->Unlock();
		settle(window);
		EXPECT_GT(window->fView->fDraws, draws);
	};
	drawWith(B_TRANSPARENT_COLOR, true);
	drawWith(B_TRANSPARENT_COLOR, false);
	EXPECT_EQ(count_color(pixels_of(window), kRed), 100);
	drawWith(kBlue, false);
	EXPECT_EQ(count_color(pixels_of(window), kBlue), 60 * 40);
}

TEST(Drawing, ChildrenCutTheirParentAndDrawOverIt)
{
	WindowHolder<PaintWindow> window([](BView* view) {
		view->SetHighColor(kRed);
		view->FillRect(view->Bounds());
	});
	window->Lock();
	auto* child = new PaintView(BRect(10, 10, 29, 19), [](BView* view) {
		view->SetHighColor(kBlue);
		view->FillRect(BRect(-100, -100, 100, 100));
	});
	window->fView->AddChild(child);
	window->Unlock();
	settle(window);
	EXPECT_EQ(count_color(pixels_of(window), kBlue), 200);
	EXPECT_EQ(count_color(pixels_of(window), kRed), 2400 - 200);

	window->Lock();
	child->Hide();
	window->Unlock();
	settle(window);
	EXPECT_EQ(count_color(pixels_of(window), kBlue), 0);
	EXPECT_EQ(count_color(pixels_of(window), kRed), 2400);
}

TEST(Drawing, TextStandsOnItsBaseline)
{
	WindowHolder<PaintWindow> window([](BView* view) {
		view->SetFontSize(20);
		view->DrawString("HE", BPoint(10, 25));
	});
	QImage image = pixels_of(window);
	int scale = image.devicePixelRatio();
	QRect ink = ink_of(image);
	ASSERT_FALSE(ink.isEmpty());
	EXPECT_NEAR(ink.bottom() + 1, 25 * scale, 1);
	EXPECT_GE(ink.left(), 10 * scale);
	EXPECT_NEAR(ink.height(), 20 * 0.73 * scale, 3 * scale) << "capitals are about 0.7 em high";
	BFont font;
	font.SetSize(20);
	EXPECT_LE(ink.right(), (10 + font.StringWidth("HE")) * scale + 1);
}

TEST(Drawing, AFontHasSizesInBetween)
{
	BFont font;
	font.SetSize(12);
	float small = font.StringWidth("Lyrics of a song, long enough");
	font.SetSize(12.5);
	float middle = font.StringWidth("Lyrics of a song, long enough");
	font.SetSize(24);
	float large = font.StringWidth("Lyrics of a song, long enough");
	EXPECT_LT(small, middle);
	EXPECT_NEAR(large / small, 2, 0.15);
	font.SetSize(0);
	EXPECT_EQ(font.StringWidth("x"), 0);
}

TEST(Drawing, NoTextHangsOrCrashes)
{
	BFont font;
	std::string endless(5 << 20, 'W');
	const auto begin = std::chrono::steady_clock::now();
	float width = font.StringWidth(endless.c_str());
	EXPECT_GT(width, 10000);
	EXPECT_LE(width, 32767);
	EXPECT_EQ(font.StringWidth(NULL), 0);
	EXPECT_EQ(font.StringWidth("abc", 0), 0);
	EXPECT_EQ(font.StringWidth("abcdef", 3), font.StringWidth("abc"));
	const std::string odd[]
		= {"\xff\xfe\x80 broken \xc3", "\xed\xa0\x80", "\xf0\x9f\x8e\xb5 \xf0\x9f",
			"line\nbreak\ttab\x01", "\xe6\xad\x8c\xe8\xa9\x9e \xe3\x82\xab\xe3\x83\xa9", endless};
	WindowHolder<PaintWindow> window([&](BView* view) {
		for (const std::string& text : odd)
			view->DrawString(text.c_str(), BPoint(-5, 20));
		view->DrawString(NULL, BPoint(5, 20));
	});
	EXPECT_FALSE(ink_of(pixels_of(window)).isEmpty());
	EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
}

TEST(Drawing, AMissingFamilyIsDrawnInTheDefaultOne)
{
	BFont missing;
	missing.SetFamilyAndStyle("No Such Family 1b7", NULL);
	EXPECT_GT(missing.StringWidth("text"), 0);
	EXPECT_EQ(missing.StringWidth("text"), BFont().StringWidth("text"));
	font_family family;
	font_style style;
	missing.GetFamilyAndStyle(&family, &style);
	EXPECT_STREQ(family, "No Such Family 1b7");
	EXPECT_STREQ(style, "Regular");
	std::string tooLong(64, 'x');
	EXPECT_EQ(missing.SetFamilyAndStyle(tooLong.c_str(), NULL), B_NAME_TOO_LONG);
}

TEST(Drawing, InstalledFamiliesAreListed)
{
	int32 count = count_font_families();
	ASSERT_GT(count, 0);
	font_family family;
	for (int32 i = 0; i < count; i++) {
		ASSERT_EQ(get_font_family(i, &family), B_OK);
		ASSERT_NE(family[0], '\0');
	}
	EXPECT_GT(count_font_styles(family), 0);
	EXPECT_EQ(get_font_family(count, &family), B_ERROR);
	EXPECT_EQ(get_font_family(-1, &family), B_ERROR);
}

TEST(Drawing, ABitmapIsCopiedToItsPlace)
{
	BBitmap bitmap(BRect(0, 0, 9, 4), B_RGB32);
	ASSERT_TRUE(bitmap.IsValid());
	auto* bits = static_cast<uint8*>(bitmap.Bits());
	for (int32 i = 0; i < bitmap.BitsLength(); i += 4) {
		bits[i] = 255; // blue
		bits[i + 1] = bits[i + 2] = bits[i + 3] = 0;
	}
	WindowHolder<PaintWindow> window([&](BView* view) {
		view->DrawBitmap(&bitmap, BPoint(3, 4));
		view->DrawBitmap(&bitmap, BRect(20, 0, 39, 9));
		view->DrawBitmap(&bitmap, BRect(0, 0, 1, 1), BRect(50, 30, 51, 31));
		view->DrawBitmap(NULL, BPoint(0, 0));
	});
	QImage image = pixels_of(window);
	EXPECT_EQ(color_at(image, 3, 4), number(kBlue));
	EXPECT_EQ(color_at(image, 12, 8), number(kBlue));
	EXPECT_EQ(color_at(image, 13, 8), number(kWhite));
	EXPECT_EQ(count_color(image, kBlue), 50 + 200 + 4);
}

TEST(Drawing, BlendingTakesABitmapsAlpha)
{
	BBitmap bitmap(BRect(0, 0, 9, 9), B_RGBA32);
	auto* bits = static_cast<uint32*>(bitmap.Bits());
	for (int32 i = 0; i < bitmap.BitsLength() / 4; i++)
		bits[i] = i % 10 < 5 ? 0xff00ff00 : 0x0000ff00;
	WindowHolder<PaintWindow> window([&](BView* view) {
		view->SetDrawingMode(B_OP_COPY);
		view->DrawBitmap(&bitmap, BPoint(0, 0));
		view->SetDrawingMode(B_OP_ALPHA);
		view->DrawBitmap(&bitmap, BPoint(20, 0));
	});
	QImage image = pixels_of(window);
	EXPECT_EQ(count_color(image, kGreen), 100 + 50);
	EXPECT_EQ(color_at(image, 27, 5), number(kWhite));
}

namespace {

//! What both ways of drawing have to agree on.
void
draw_sample(BView* view)
{
	view->SetHighColor(40, 80, 120);
	view->FillRect(view->Bounds());
	view->SetHighColor(250, 240, 200);
	view->SetFontSize(13);
	view->DrawString("歌詞 Text, Текст", BPoint(2.3, 20.7));
	view->StrokeRect(BRect(0.4, 7.6, 50.2, 30.9));
	view->FillEllipse(BRect(30, 20, 50, 35));
	view->Sync();
}

} // namespace

TEST(Drawing, AnOffscreenBitmapEqualsDirectDrawing)
{
	BBitmap bitmap(BRect(0, 0, 59, 39), B_RGB32, true, false);
	ASSERT_TRUE(bitmap.IsValid());
	auto* offscreen = new BView(bitmap.Bounds(), "OSView", B_FOLLOW_NONE, 0);
	ASSERT_TRUE(bitmap.Lock());
	bitmap.AddChild(offscreen);
	bitmap.Unlock();
	EXPECT_EQ(bitmap.FindView("OSView"), offscreen);
	EXPECT_EQ(bitmap.CountChildren(), 1);
	ASSERT_TRUE(offscreen->LockLooper());
	EXPECT_TRUE(bitmap.IsLocked());
	draw_sample(offscreen);
	offscreen->UnlockLooper();
	EXPECT_FALSE(bitmap.IsLocked());

	WindowHolder<PaintWindow> direct(draw_sample);
	WindowHolder<PaintWindow> copied([&](BView* view) { view->DrawBitmap(&bitmap, BPoint(0, 0)); });
	QImage expected = pixels_of(direct);
	EXPECT_EQ(pixels_of(copied), expected);
	EXPECT_EQ(expected.width(), 60 * expected.devicePixelRatio());
	EXPECT_GT(count_color(expected, {40, 80, 120, 255}), 0);
}

TEST(Drawing, BadBitmapsAreInvalidAndHarmless)
{
	EXPECT_EQ(BBitmap(BRect(0, 0, -1, 5), B_RGB32).InitCheck(), B_BAD_VALUE);
	EXPECT_EQ(BBitmap(BRect(0, 0, 5, 5), B_CMAP8).InitCheck(), B_BAD_VALUE);
	BBitmap huge(BRect(0, 0, 1e6, 1e6), B_RGB32, true);
	EXPECT_FALSE(huge.IsValid());
	EXPECT_EQ(huge.Bits(), nullptr);
	EXPECT_FALSE(huge.Lock());
	EXPECT_EQ(huge.FindView("x"), nullptr);
}

TEST(Drawing, SyncInDrawCommitsOnceAndNothingFollows)
{
	std::atomic<int64> afterSync = 0;
	WindowHolder<PaintWindow> window([&](BView* view) {
		view->SetHighColor(kRed);
		view->FillRect(view->Bounds());
		view->Sync();
		afterSync = count_frames(view->Window());
	});
	int64 before = count_frames(window);
	for (int i = 0; i < 3; i++) {
		window->Lock();
		window->fView->Invalidate();
		window->Unlock();
		settle(window);
	}
	EXPECT_EQ(afterSync, count_frames(window));
	EXPECT_EQ(count_frames(window), before + 3);
	EXPECT_EQ(count_color(pixels_of(window), kRed), 2400);
}

TEST(Drawing, ABatchOfInvalidationsIsOneFrame)
{
	WindowHolder<PaintWindow> window([](BView* view) { view->FillRect(BRect(0, 0, 1, 1)); });
	int64 before = count_frames(window);
	int draws = window->fView->fDraws;
	window->Lock();
	for (int i = 0; i < 50; i++)
		window->fView->Invalidate(BRect(i, 0, i, 3));
	window->Unlock();
	settle(window);
	EXPECT_EQ(window->fView->fDraws, draws + 1);
	EXPECT_EQ(count_frames(window), before + 1);
}

TEST(Drawing, DrawingBetweenUpdatesGetsToTheScreen)
{
	WindowHolder<PaintWindow> window([](BView*) {});
	window->Lock();
	window->fView->SetHighColor(kBlue);
	window->fView->FillRect(BRect(0, 0, 9, 9));
	window->Unlock();
	EXPECT_TRUE(wait_until([&] { return count_color(pixels_of(window), kBlue) == 100; }));
}
