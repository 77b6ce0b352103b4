#include "framework/TIAPItemAccKeyFormat.h"

#include <iterator>

#include <Box.h>
#include <RadioButton.h>

#include "framework/TInterAppPrefs.h"
#include "framework/TLLT.h"
#include "framework/accelerator.h"

namespace merion {

namespace {

constexpr float kTopMargin = 20; // below the box's label
constexpr float kMargin = 10;
constexpr float kLineHeight = 22;

//! In the order of the values: the radio buttons' names, which are the keys of their labels too.
constexpr const char* kButtons[]
	= {"RButton_AccKey_Hidden", "RButton_AccKey_Brackets", "RButton_AccKey_Modifier"};

BRadioButton*
find_button(BView* control, const char* name)
{
	return dynamic_cast<BRadioButton*>(control->FindView(name));
}

} // namespace

TIAPItemAccKeyFormat::TIAPItemAccKeyFormat()
	: TIAPItem(kName, kAccKeyWithModifier, kAccKeyInBrackets)
{ }

BView*
TIAPItemAccKeyFormat::CreateControl(BRect frame) const
{
	auto* box = new BBox(frame, Name());
	BRect line(kMargin, kTopMargin, frame.Width() - kMargin, kTopMargin + kLineHeight - 1);
	for (const char* name : kButtons) {
		box->AddChild(new BRadioButton(line, name, "", NewControlMessage()));
		line.OffsetBy(0, kLineHeight);
	}
	return box;
}

void
TIAPItemAccKeyFormat::UpdateControl(BView* control) const
{
	if (auto* box = dynamic_cast<BBox*>(control))
		box->SetLabel(gLLT->Text("Box_AccKeyFormat"));
	for (const char* name : kButtons) {
		if (BRadioButton* button = find_button(control, name))
			button->SetLabel(gLLT->Text(name));
	}
	// the others go off
	if (BRadioButton* button = find_button(control, kButtons[Value()]))
		button->SetValue(B_CONTROL_ON);
}

int32
TIAPItemAccKeyFormat::ControlValue(BView* control) const
{
	for (size_t i = 0; i < std::size(kButtons); i++) {
		const BRadioButton* button = find_button(control, kButtons[i]);
		if (button != nullptr && button->Value() == B_CONTROL_ON)
			return static_cast<int32>(i);
	}
	return Value();
}

int32
TIAPItemAccKeyFormat::Format(const TInterAppPrefs* prefs)
{
	int32 format;
	const bool isKnown = prefs != nullptr && prefs->GetValue(kName, &format) == B_OK;
	return isKnown ? format : static_cast<int32>(kAccKeyHidden);
}

} // namespace merion
