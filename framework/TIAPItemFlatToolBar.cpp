#include "framework/TIAPItemFlatToolBar.h"

#include <CheckBox.h>

#include "framework/TLLT.h"

namespace merion {

TIAPItemFlatToolBar::TIAPItemFlatToolBar() : TIAPItem(kName, B_CONTROL_ON, B_CONTROL_OFF) { }

BView*
TIAPItemFlatToolBar::CreateControl(BRect frame) const
{
	return new BCheckBox(frame, Name(), "", NewControlMessage());
}

void
TIAPItemFlatToolBar::UpdateControl(BView* control) const
{
	if (auto* box = dynamic_cast<BCheckBox*>(control)) {
		box->SetLabel(gLLT->Text("CBox_FlatToolBar"));
		box->SetValue(Value());
	}
}

int32
TIAPItemFlatToolBar::ControlValue(BView* control) const
{
	const auto* box = dynamic_cast<BCheckBox*>(control);
	return box != nullptr ? box->Value() : Value();
}

} // namespace merion
