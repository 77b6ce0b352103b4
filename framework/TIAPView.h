#pragma once

#include <vector>

#include "framework/TMERDlgView.h"

namespace merion {

class TIAPItem;
class TInterAppPrefs;

/*!	What fills the common preferences window: each item's control, one below the other, OK and Cancel. A change is in effect at once;
	Cancel puts back what was in effect when the window last appeared.
	Thread and owner: as every view. */
class TIAPView : public TMERDlgView {
public:
	//! The preferences and their items outlive the view.
	explicit TIAPView(TInterAppPrefs* prefs);

	void MessageReceived(BMessage* message) override;
	void SetLabels() override;
	void ButtonCancelClicked() override;

	//! What Cancel puts back from now on: the values in effect.
	void RememberValues();

private:
	struct Row {
		TIAPItem* item;
		BView* control;
		int32 before; // value for Cancel
	};

	float AddControls();
	void AddButtons(float top);
	void ControlChanged(const BMessage* message);
	void ItemChanged(const BMessage* message);
	void ChangeValue(const TIAPItem* item, int32 value);
	Row* FindRow(const BMessage* message);

	TInterAppPrefs* const fPrefs;
	std::vector<Row> fRows;
};

} // namespace merion
