#pragma once

#include "framework/TAppInfoView.h"

class BStringView;
class BTextView;

//! What the about window shows of this add-on: its icon, what it is for, the credits and the licence. Thread and owner: as every view.
class TTavInfoView : public merion::TAppInfoView {
public:
	explicit TTavInfoView(BRect frame);

	void Draw(BRect updateRect) override;
	void SetLabels() override;

private:
	BStringView* AddLine(float* top, const char* name, bool isBold);

	BTextView* fDescription;
	BStringView* fCreditsLabel;
	BStringView* fCredits;
	BStringView* fLicenceLabel;
	BStringView* fLicence;
};
