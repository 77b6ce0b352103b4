#pragma once

#include <View.h>

class BStringView;

namespace merion {

/*!	What an about window shows of an application: its name, large, its version and its maker, beside a place for its icon. A
	derived class draws the icon into IconFrame() and adds its own lines below Bottom(). The text of the version is set again by SetLabels().
	Thread and owner: as every view. */
class TAppInfoView : public BView {
public:
	//! `maker`: as it is shown, the same in all languages.
	TAppInfoView(BRect frame, const char* name, const char* version, const char* maker);

	void AttachedToWindow() override;
	//! Hook: sets every label from gLLT.
	virtual void SetLabels();

protected:
	static BRect IconFrame();
	//! Where lines of the derived class may begin; margins are kMargin.
	static float Bottom();
	static constexpr float kMargin = 20;

private:
	BStringView* AddLine(BRect frame, const char* name, const char* text);

	const char* const fVersion;
	BStringView* fNameView;
	BStringView* fVersionView;
	BStringView* fMakerView;
};

} // namespace merion
