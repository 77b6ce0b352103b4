#pragma once

#include "framework/TIAPItem.h"

namespace merion {

class TInterAppPrefs;

//! How labels show the keys that choose them: "AccKeyFormat", a format of merge_accelerator_key(). Radio buttons in a box.
class TIAPItemAccKeyFormat : public TIAPItem {
public:
	TIAPItemAccKeyFormat();

	BView* CreateControl(BRect frame) const override;
	void UpdateControl(BView* control) const override;
	int32 ControlValue(BView* control) const override;

	static constexpr const char* kName = "AccKeyFormat";

	//! The format that holds; kAccKeyHidden without preferences (NULL), or without this item among them.
	static int32 Format(const TInterAppPrefs* prefs);
};

} // namespace merion
