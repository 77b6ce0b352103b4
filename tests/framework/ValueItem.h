#pragma once

#include "framework/TIAPItem.h"

//! A shared preference whose value is all that counts: it has no control.
class ValueItem : public merion::TIAPItem {
public:
	explicit ValueItem(const char* name, int32 maximum = 2) : TIAPItem(name, maximum, 1) { }

	BView* CreateControl(BRect) const override { return nullptr; }
	void UpdateControl(BView*) const override { }
	int32 ControlValue(BView*) const override { return Value(); }
};
