#pragma once

#include "framework/TIAPItem.h"

namespace merion {

//! Whether tool bars are flat: "FlatToolBar", 0 or 1. For applications that have one. A check box.
class TIAPItemFlatToolBar : public TIAPItem {
public:
	TIAPItemFlatToolBar();

	BView* CreateControl(BRect frame) const override;
	void UpdateControl(BView* control) const override;
	int32 ControlValue(BView* control) const override;

	static constexpr const char* kName = "FlatToolBar";
};

} // namespace merion
