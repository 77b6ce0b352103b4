#include "framework/TLanguageInfoView.h"

#include <Font.h>
#include <ScrollView.h>
#include <StringView.h>
#include <TextView.h>

#include "framework/TLLT.h"

namespace merion {

namespace {

constexpr float kMargin = 20;
constexpr float kLineHeight = 20;
constexpr float kLineGap = 4;
constexpr float kLabelWidth = 96;
constexpr float kColumnGap = 12;
constexpr float kThanksGap = 12;
constexpr float kScrollBarRoom = 18; // and the border

void
make_bold(BStringView* label)
{
	label->SetFont(be_bold_font);
}

} // namespace

TLanguageInfoView::TLanguageInfoView(BRect frame)
	: BView(frame, "LanguageInfoView", B_FOLLOW_ALL, B_WILL_DRAW)
{
	SetViewColor(ui_color(B_PANEL_BACKGROUND_COLOR));
	BRect label(kMargin, kMargin, kMargin + kLabelWidth, kMargin + kLineHeight - 1);
	BRect value(label.right + kColumnGap, label.top, Bounds().right - kMargin, label.bottom);
	fNameLabel = AddLine(label, "StrViewLanguageNameLabel");
	fName = AddLine(value, "StrViewLanguageName");
	label.OffsetBy(0, kLineHeight + kLineGap);
	value.OffsetBy(0, kLineHeight + kLineGap);
	fWriterLabel = AddLine(label, "StrViewWriterLabel");
	fWriter = AddLine(value, "StrViewWriter");
	label.OffsetBy(0, kLineHeight + kThanksGap);
	fThanksLabel = AddLine(label, "StrViewSpecialThanksLabel");
	for (BStringView* view : {fNameLabel, fWriterLabel, fThanksLabel})
		make_bold(view);

	BRect text(kMargin, label.bottom + 1 + kLineGap, Bounds().right - kMargin - kScrollBarRoom,
		Bounds().bottom - kMargin);
	fThanks = new BTextView(text, "TxtViewSpecialThanks",
		text.OffsetToCopy(B_ORIGIN).InsetByCopy(kLineGap, kLineGap), B_FOLLOW_ALL, B_WILL_DRAW);
	fThanks->MakeEditable(false);
	fThanks->SetWordWrap(true);
	AddChild(new BScrollView(
		"ScrollViewSpecialThanks", fThanks, B_FOLLOW_ALL, 0, false, true, B_FANCY_BORDER));
}

BStringView*
TLanguageInfoView::AddLine(BRect frame, const char* name)
{
	auto* line = new BStringView(frame, name, "");
	AddChild(line);
	return line;
}

void
TLanguageInfoView::SetLabels()
{
	fNameLabel->SetText(gLLT->Text("About_Language_Name"));
	fWriterLabel->SetText(gLLT->Text("About_Writer"));
	fThanksLabel->SetText(gLLT->Text("About_Special_Thanks"));
	fName->SetText(gLLT->LanguageName().c_str());
	fWriter->SetText(gLLT->Writer().c_str());
	fThanks->SetText(gLLT->SpecialThanks().c_str());
}

} // namespace merion
