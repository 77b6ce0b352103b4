#include "framework/TIAPView.h"

#include <algorithm>
#include <cstring>

#include <Button.h>
#include <Message.h>

#include "framework/TIAPItem.h"
#include "framework/TInterAppPrefs.h"
#include "framework/framework_codes.h"

namespace merion {

namespace {

constexpr float kMargin = 14;
constexpr float kRowGap = 12;
constexpr float kWidth = 300;
constexpr float kInsideMargin = 10; // below the last thing in a box
constexpr float kButtonWidth = 90;
constexpr float kButtonHeight = 28;
constexpr float kButtonGap = 8;
constexpr float kButtonTopGap = 6; // more than between rows

// As high as what is in it, or as it wants to be.
void
set_height(BView* control)
{
	float bottom = 0;
	for (int32 i = 0; const BView* child = control->ChildAt(i); i++)
		bottom = std::max(bottom, child->Frame().bottom + kInsideMargin);
	if (bottom == 0)
		control->GetPreferredSize(nullptr, &bottom);
	control->ResizeTo(control->Bounds().Width(), bottom);
}

} // namespace

TIAPView::TIAPView(TInterAppPrefs* prefs)
	: TMERDlgView(BRect(0, 0, kWidth, kWidth), "IAPView", B_FOLLOW_ALL, B_WILL_DRAW),
	  fPrefs(prefs)
{
	SetViewColor(ui_color(B_PANEL_BACKGROUND_COLOR));
	AddButtons(AddControls());
}

float
TIAPView::AddControls()
{
	BRect frame(kMargin, kMargin, kWidth - kMargin, kMargin);
	for (int32 i = 0; TIAPItem* item = fPrefs->ItemAt(i); i++) {
		BView* control = item->CreateControl(frame);
		control->SetResizingMode(B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP);
		AddChild(control);
		set_height(control);
		fRows.push_back({item, control, item->Value()});
		frame.OffsetTo(kMargin, control->Frame().bottom + kRowGap);
	}
	return frame.top + kButtonTopGap;
}

void
TIAPView::AddButtons(float top)
{
	ResizeTo(kWidth, top + kButtonHeight + kMargin);
	BRect frame(kWidth - kMargin - kButtonWidth, top, kWidth - kMargin, top + kButtonHeight);
	const uint32 mode = B_FOLLOW_RIGHT | B_FOLLOW_BOTTOM;
	AddChild(new BButton(frame, "ButtonOK", "", nullptr, mode));
	frame.OffsetBy(-kButtonWidth - kButtonGap, 0);
	AddChild(new BButton(frame, "ButtonCancel", "", nullptr, mode));
}

void
TIAPView::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kIAPControlChanged:
			ControlChanged(message);
			break;
		case kIAPChanged:
			ItemChanged(message);
			break;
		default:
			TMERDlgView::MessageReceived(message);
	}
}

void
TIAPView::SetLabels()
{
	TMERDlgView::SetLabels();
	for (const Row& row : fRows)
		row.item->UpdateControl(row.control);
}

void
TIAPView::RememberValues()
{
	for (Row& row : fRows) {
		row.before = row.item->Value();
		row.item->UpdateControl(row.control);
	}
}

void
TIAPView::ButtonCancelClicked()
{
	TMERDlgView::ButtonCancelClicked();
	for (const Row& row : fRows) {
		if (row.item->Value() != row.before)
			ChangeValue(row.item, row.before);
		row.item->UpdateControl(row.control);
	}
}

void
TIAPView::ControlChanged(const BMessage* message)
{
	const Row* row = FindRow(message);
	if (row == nullptr)
		return;
	const int32 value = row->item->ControlValue(row->control);
	if (value != row->item->Value())
		ChangeValue(row->item, value);
}

void
TIAPView::ItemChanged(const BMessage* message)
{
	if (const Row* row = FindRow(message))
		row->item->UpdateControl(row->control);
}

void
TIAPView::ChangeValue(const TIAPItem* item, int32 value)
{
	if (fPrefs->ChangeValue(item->Name(), value) != B_OK)
		fPrefs->ReportFailure();
}

TIAPView::Row*
TIAPView::FindRow(const BMessage* message)
{
	const char* name;
	if (message->FindString(kIAPSourceItem, &name) != B_OK)
		return nullptr;
	const auto found = std::find_if(fRows.begin(), fRows.end(),
		[name](const Row& row) { return strcmp(row.item->Name(), name) == 0; });
	return found != fRows.end() ? &*found : nullptr;
}

} // namespace merion
