#pragma once

#include "framework/TMERDlgWin.h"

namespace merion {

class TIAPView;
class TInterAppPrefs;

/*!	The window of the preferences that all of the maker's applications share. OK, Cancel and the close button hide it.
	It takes kIAPChanged, when a value has come from elsewhere, and kLanguageChanged.
	Thread and owner: as TMERWin; TInterAppPrefs shows and closes it. */
class TIAPWin : public TMERDlgWin {
public:
	//! The preferences outlive the window.
	explicit TIAPWin(TInterAppPrefs* prefs);

	void MessageReceived(BMessage* message) override;
	void LanguageChanged() override;
	//! From hidden to shown, the values that Cancel puts back are those in effect.
	void Appear() override;

private:
	explicit TIAPWin(TIAPView* view);

	TIAPView* const fView;
};

} // namespace merion
