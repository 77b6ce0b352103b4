#include "lyrics/TTavoraDView.h"

#include <algorithm>
#include <cmath>

#include <Bitmap.h>
#include <Entry.h>
#include <TranslationUtils.h>
#include <Window.h>

#include "prefs/TPref.h"

namespace {

constexpr float kMinFontSize = 1; // a settings file may hold anything
constexpr float kMaxFontSize = 500;
constexpr size_t kMaxDrawnBytes = 4096; // wider than any screen

// What can be seen of a line: all of it, or the middle of one that is much too long. By its bytes, since measuring
// megabytes would hold the window up: of one whose halves are not equally wide it is not quite the middle of the width.
std::string_view
drawable_part(std::string_view line)
{
	if (line.size() <= kMaxDrawnBytes)
		return line;
	const auto isInsideCharacter = [&](size_t index) { return (line[index] & 0xc0) == 0x80; };
	size_t start = (line.size() - kMaxDrawnBytes) / 2;
	size_t end = start + kMaxDrawnBytes;
	while (start < end && isInsideCharacter(start))
		start++;
	while (end > start && isInsideCharacter(end))
		end--;
	return line.substr(start, end - start);
}

float
usable_font_size(float size)
{
	// Written so that no number at all becomes the smallest.
	return size > kMinFontSize ? std::min(size, kMaxFontSize) : kMinFontSize;
}

//! All zero when there is no such file.
struct stat
state_of(const std::string& file)
{
	struct stat state;
	if (BEntry(file.c_str(), true).GetStat(&state) != B_OK)
		state = {};
	return state;
}

//! Also when it was written within a second, or its time was set back, or it has become readable.
bool
has_changed(const struct stat& before, const struct stat& now)
{
	const auto differ = [](const timespec& a, const timespec& b) {
		return a.tv_sec != b.tv_sec || a.tv_nsec != b.tv_nsec;
	};
	return now.st_dev != before.st_dev || now.st_ino != before.st_ino
		|| now.st_size != before.st_size || differ(now.st_mtim, before.st_mtim)
		|| differ(now.st_ctim, before.st_ctim);
}

} // namespace

void
TTavoraDView::SetAppearance(bool toSelf, bool toOffScreen)
{
	LoadBGImage();

	BFont font;
	GetFont(&font);
	font.SetFamilyAndFace(gPref->fFontFamily.Get().c_str(), B_REGULAR_FACE);
	font.SetSize(usable_font_size(gPref->fFontSize));
	font.SetFlags(gPref->fAntiAliasing ? B_FORCE_ANTIALIASING : B_DISABLE_ANTIALIASING);

	font_height height;
	font.GetHeight(&height);
	fFontHeight = height.ascent + height.descent;
	fLinePitch = std::max(fFontHeight / 6 + fFontHeight / 6 + fFontHeight + height.leading, 1.0f);

	if (toSelf)
		SetAppearanceOfSpecifyView(this, &font);
	if (toOffScreen && gPref->fDoubleBuffering && fOffScreen != nullptr && fOffScreen->Lock()) {
		SetAppearanceOfSpecifyView(fOSView, &font);
		fOffScreen->Unlock();
	}
}

void
TTavoraDView::SetAppearanceOfSpecifyView(BView* view, BFont* font)
{
	view->SetViewColor(B_TRANSPARENT_COLOR);
	view->SetFont(font, B_FONT_ALL);
}

void
TTavoraDView::LoadBGImage()
{
	if (!gPref->fUseBGImage) {
		fBGImage.reset();
		fBGImageFile.clear();
		return;
	}
	ReadBGImage(gPref->fBGImageFile.Get());
}

//! False when it is no image.
bool
TTavoraDView::ReadBGImage(const std::string& file)
{
	// Each step of a resize comes by here: a file that is as it was is not read again, not even one that is no image.
	const struct stat state = state_of(file);
	if (file == fBGImageFile && !has_changed(fBGImageState, state))
		return fBGImage != nullptr;
	fBGImage.reset(BTranslationUtils::GetBitmap(file.c_str()));
	fBGImageFile = file;
	fBGImageState = state;
	return fBGImage != nullptr;
}

bool
TTavoraDView::HasBGImage() const
{
	return gPref->fUseBGImage && fBGImage != nullptr;
}

void
TTavoraDView::CreateOffScreen()
{
	fPreRenderedLine = -1;
	fOffScreen = std::make_unique<BBitmap>(Bounds(), B_RGB32, true, false);
	if (!fOffScreen->IsValid() || !fOffScreen->Lock()) {
		DestroyOffScreen();
		return;
	}
	fOSView = new BView(fOffScreen->Bounds(), "OSView", B_FOLLOW_NONE, 0);
	fOffScreen->AddChild(fOSView); // the bitmap deletes it
	fOffScreen->Unlock();
	SetAppearance(false, true);
}

void
TTavoraDView::DestroyOffScreen()
{
	fOffScreen.reset();
	fOSView = nullptr;
}

void
TTavoraDView::FrameResized(float, float)
{
	if (gPref->fDoubleBuffering) {
		DestroyOffScreen();
		CreateOffScreen();
	}
	Invalidate();
}

void
TTavoraDView::PrefAppearanceChanged()
{
	fPreRenderedLine = -1;
	SetAppearance(true, true);
	Invalidate();
}

void
TTavoraDView::PrefDoubleBufferingChanged()
{
	DestroyOffScreen();
	fPreRenderedLine = -1;
	if (gPref->fDoubleBuffering)
		CreateOffScreen();
}

void
TTavoraDView::Draw(BRect)
{
	const bool isBuffered = gPref->fDoubleBuffering && fOffScreen != nullptr;
	if (isBuffered && fPreRenderedLine == fCurrentLine)
		DrawBitmap(fOffScreen.get(), BPoint(0, 0));
	else
		DrawLyrics(this, fCurrentLine);
	fLastDrawnLine = fCurrentLine;

	if (isBuffered && fPreRenderedLine != fCurrentLine + 1) {
		// The picture goes out before the next one is made.
		Sync();
		PreRenderNextLine();
	}
}

void
TTavoraDView::PreRenderNextLine()
{
	const int32 next = fTimeTable.LineAfter(fFrontEnd.Info().positionMs, -1);
	if (next == fPreRenderedLine || !fOffScreen->Lock())
		return;
	fPreRenderedLine = next;
	if (next >= 0) {
		DrawLyrics(fOSView, next);
		fOSView->Sync();
	}
	fOffScreen->Unlock();
}

void
TTavoraDView::DrawLyrics(BView* target, int32 line)
{
	const BRect bounds = Bounds();
	if (target->Bounds() != bounds)
		return;
	DrawBackground(target, bounds);

	const int32 visible = static_cast<int32>(std::ceil(bounds.Height() / fLinePitch));
	const int32 first = std::max(line - visible / 2, 0);
	const int32 end = std::min(line + visible / 2 + 1, CountDispLines());
	for (int32 i = first; i < end; i++) {
		const float top = (bounds.Height() - fFontHeight) * 0.5f - fLinePitch * (line - i);
		DrawLine(target, bounds, i, top, i == line);
	}
}

void
TTavoraDView::DrawBackground(BView* target, BRect bounds)
{
	if (!HasBGImage()) {
		target->SetHighColor(gPref->fBGColor);
		target->FillRect(bounds);
		return;
	}
	if (gPref->fBGImageAlign != kBGImageTile) {
		target->DrawBitmap(fBGImage.get(), bounds);
		return;
	}
	const float width = fBGImage->Bounds().right + 1;
	const float height = fBGImage->Bounds().bottom + 1;
	const int32 columns = static_cast<int32>(std::ceil(bounds.right / width));
	const int32 rows = static_cast<int32>(std::ceil(bounds.bottom / height));
	for (int32 i = 0; i < columns; i++) {
		for (int32 j = 0; j < rows; j++)
			target->DrawBitmap(fBGImage.get(), BPoint(width * i, height * j));
	}
}

void
TTavoraDView::DrawLine(BView* target, BRect bounds, int32 index, float top, bool isCurrent)
{
	if (isCurrent)
		DrawHighlight(target, bounds, top);
	target->SetHighColor(isCurrent ? gPref->fActiveLyricsColor : gPref->fLyricsColor);
	target->SetLowColor(isCurrent ? gPref->fActiveBGColor : gPref->fBGColor);

	const std::string_view text = drawable_part(DispLine(index));
	const float left = (bounds.Width() - target->StringWidth(text.data(), text.size())) * 0.5f;
	target->DrawString(text.data(), text.size(), BPoint(left, top + fFontHeight));
}

void
TTavoraDView::DrawHighlight(BView* target, BRect bounds, float top)
{
	const float margin = fFontHeight / 6;
	const BRect box(0, top - margin, bounds.Width(), top + fFontHeight + margin);
	if (!HasBGImage()) {
		target->SetHighColor(gPref->fActiveBGColor);
		target->FillRect(box);
	}
	if (gPref->fUseActiveFrame) {
		target->SetHighColor(gPref->fActiveFrameColor);
		target->StrokeRect(box);
	}
}
