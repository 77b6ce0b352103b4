#include "framework/TAppInfoView.h"

#include <string>

#include <Font.h>
#include <StringView.h>

#include "framework/TLLT.h"

namespace merion {

namespace {

constexpr float kIconSize = 72;
constexpr float kIconGap = 20;
constexpr float kNameScale = 2; // of the plain font
constexpr float kNameHeight = 32;
constexpr float kLineHeight = 18;
constexpr float kHeaderGap = 16;

} // namespace

TAppInfoView::TAppInfoView(BRect frame, const char* name, const char* version, const char* maker)
	: BView(frame, "AppInfoView", B_FOLLOW_ALL, B_WILL_DRAW),
	  fVersion(version)
{
	SetViewColor(ui_color(B_PANEL_BACKGROUND_COLOR));
	const float left = IconFrame().right + kIconGap;
	BRect line(left, kMargin, Bounds().right - kMargin, kMargin + kNameHeight - 1);
	fNameView = AddLine(line, "StrViewAppName", name);
	line.top = line.bottom + 1;
	line.bottom = line.top + kLineHeight - 1;
	fVersionView = AddLine(line, "StrViewAppVersion", "");
	line.OffsetBy(0, kLineHeight);
	fMakerView = AddLine(line, "StrViewAppMaker", maker);
}

BStringView*
TAppInfoView::AddLine(BRect frame, const char* name, const char* text)
{
	auto* line = new BStringView(frame, name, text, B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP);
	AddChild(line);
	return line;
}

void
TAppInfoView::AttachedToWindow()
{
	BView::AttachedToWindow();
	BFont large(be_bold_font);
	large.SetSize(be_plain_font->Size() * kNameScale);
	fNameView->SetFont(&large);
}

void
TAppInfoView::SetLabels()
{
	const std::string version = std::string(gLLT->Text("About_Version")) + " " + fVersion;
	fVersionView->SetText(version.c_str());
}

BRect
TAppInfoView::IconFrame()
{
	return BRect(kMargin, kMargin, kMargin + kIconSize - 1, kMargin + kIconSize - 1);
}

float
TAppInfoView::Bottom()
{
	return kMargin + kIconSize + kHeaderGap;
}

} // namespace merion
