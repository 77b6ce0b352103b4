#include "framework/TMERAboutWin.h"

#include "framework/TLLT.h"
#include "framework/TSimpleAboutView.h"
#include "framework/framework_codes.h"

namespace merion {

TMERAboutWin::TMERAboutWin(TSimpleAboutView* view)
	: TMERDlgWin(view->Frame(), gLLT->Text("Win_Title_About"), B_TITLED_WINDOW_LOOK,
		B_NORMAL_WINDOW_FEEL, B_NOT_RESIZABLE | B_NOT_ZOOMABLE | B_ASYNCHRONOUS_CONTROLS),
	  fView(view)
{
	SetDlgView(view);
	AddKey('o', B_COMMAND_KEY, kDialogOK);
}

void
TMERAboutWin::SetAppInfo()
{
	if (!Lock())
		return;
	LanguageChanged();
	Unlock();
}

void
TMERAboutWin::SetIAPRef(const TInterAppPrefs* prefs)
{
	if (!Lock())
		return;
	fView->SetIAPRef(prefs);
	Unlock();
}

void
TMERAboutWin::LanguageChanged()
{
	SetTitle(gLLT->Text("Win_Title_About"));
	TMERDlgWin::LanguageChanged();
}

} // namespace merion
