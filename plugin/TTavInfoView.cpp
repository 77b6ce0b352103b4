#include "plugin/TTavInfoView.h"

#include <Font.h>
#include <StringView.h>
#include <TextView.h>

#include "framework/TLLT.h"
#include "prefs/app_info.h"

namespace {

constexpr float kLineHeight = 18;
constexpr float kDescriptionHeight = 36;
constexpr float kGroupGap = 10;
constexpr rgb_color kIconColor = {28, 28, 36, 255};
constexpr rgb_color kIconLineColor = {150, 150, 165, 255};
constexpr rgb_color kIconActiveColor = {255, 214, 102, 255};

void
fill_round_rect(BView* view, BRect rect, float radius)
{
	view->FillRect(rect.InsetByCopy(radius, 0));
	view->FillRect(rect.InsetByCopy(0, radius));
	const float size = 2 * radius;
	for (const BPoint corner : {rect.LeftTop(), BPoint(rect.right - size, rect.top),
			 BPoint(rect.left, rect.bottom - size), BPoint(rect.right - size, rect.bottom - size)})
		view->FillEllipse(BRect(corner.x, corner.y, corner.x + size, corner.y + size));
}

// Lines of lyrics, the one in the middle being sung.
void
draw_icon(BView* view, BRect frame)
{
	view->SetHighColor(kIconColor);
	fill_round_rect(view, frame, 12);
	constexpr float kInsets[] = {18, 12, 8, 14, 20}; // of each line, from both sides
	constexpr float kLineThickness = 4;
	const float pitch = frame.Height() / 6;
	for (int i = 0; i < 5; i++) {
		const bool isSung = i == 2;
		const float middle = frame.top + pitch * (i + 1);
		const float half = isSung ? kLineThickness : kLineThickness / 2;
		view->SetHighColor(isSung ? kIconActiveColor : kIconLineColor);
		fill_round_rect(view,
			BRect(frame.left + kInsets[i], middle - half, frame.right - kInsets[i], middle + half),
			half);
	}
}

} // namespace

TTavInfoView::TTavInfoView(BRect frame) : TAppInfoView(frame, gAppName, gAppVer, "by MERION")
{
	float top = Bottom();
	const BRect text(kMargin, top, Bounds().right - kMargin, top + kDescriptionHeight - 1);
	fDescription = new BTextView(text, "TxtViewDescription", text.OffsetToCopy(B_ORIGIN),
		B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP, B_WILL_DRAW);
	fDescription->MakeEditable(false);
	fDescription->SetWordWrap(true);
	fDescription->SetViewColor(ViewColor());
	AddChild(fDescription);
	top = text.bottom + 1 + kGroupGap;
	fCreditsLabel = AddLine(&top, "StrViewCreditsLabel", true);
	fCredits = AddLine(&top, "StrViewCredits", false);
	top += kGroupGap;
	fLicenceLabel = AddLine(&top, "StrViewLicenceLabel", true);
	fLicence = AddLine(&top, "StrViewLicence", false);
}

BStringView*
TTavInfoView::AddLine(float* top, const char* name, bool isBold)
{
	auto* line
		= new BStringView(BRect(kMargin, *top, Bounds().right - kMargin, *top + kLineHeight - 1),
			name, "", B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP);
	if (isBold)
		line->SetFont(be_bold_font);
	AddChild(line);
	*top += kLineHeight;
	return line;
}

void
TTavInfoView::Draw(BRect updateRect)
{
	TAppInfoView::Draw(updateRect);
	draw_icon(this, IconFrame());
}

void
TTavInfoView::SetLabels()
{
	TAppInfoView::SetLabels();
	fDescription->SetText(gLLT->Text("About_Description"));
	fCreditsLabel->SetText(gLLT->Text("About_Credits"));
	fCredits->SetText(gLLT->Text("About_Credits_Text"));
	fLicenceLabel->SetText(gLLT->Text("About_Licence"));
	fLicence->SetText(gLLT->Text("About_Licence_Text"));
}
