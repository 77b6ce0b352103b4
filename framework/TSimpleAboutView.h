#pragma once

#include "framework/TMERDlgView.h"

class BTabView;

namespace merion {

class TAppInfoView;
class TInterAppPrefs;
class TLanguageInfoView;

/*!	What fills an about window: a tab for the application, whose content the application gives, one for the loaded language, and the button OK.
	Thread and owner: as every view. */
class TSimpleAboutView : public TMERDlgView {
public:
	//! Takes `appInfo` over; it is as large as AppInfoFrame().
	explicit TSimpleAboutView(TAppInfoView* appInfo);

	//! The room for the application's content.
	static BRect AppInfoFrame();

	void SetLabels() override;
	//! Of the preferences counts how labels show their keys ("AccKeyFormat"). nullptr: not at all.
	void SetIAPRef(const TInterAppPrefs* prefs);

private:
	BTabView* fTabs;
	TAppInfoView* fAppInfo;
	TLanguageInfoView* fLanguageInfo;
	int32 fAccKeyFormat = 0;
};

} // namespace merion
