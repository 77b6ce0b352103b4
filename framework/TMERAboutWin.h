#pragma once

#include "framework/TMERDlgWin.h"

namespace merion {

class TInterAppPrefs;
class TSimpleAboutView;

/*!	An application's about window. OK, Return, Escape, Command-O and the close button hide it.
	Thread and owner: as TMERWin; the application quits it. SetAppInfo() and SetIAPRef() may be called from any thread. */
class TMERAboutWin : public TMERDlgWin {
public:
	//! Takes the view over, and gets its size; its place is SetPos()'s affair.
	explicit TMERAboutWin(TSimpleAboutView* view);

	//! The window's title and its labels, from what gLLT holds now.
	void SetAppInfo();
	//! How labels show their keys; nullptr: not at all.
	void SetIAPRef(const TInterAppPrefs* prefs);
	void LanguageChanged() override;

private:
	TSimpleAboutView* const fView;
};

} // namespace merion
