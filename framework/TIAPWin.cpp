#include "framework/TIAPWin.h"

#include <Message.h>

#include "framework/TIAPItem.h"
#include "framework/TIAPView.h"
#include "framework/TLLT.h"
#include "framework/framework_codes.h"

namespace merion {

TIAPWin::TIAPWin(TInterAppPrefs* prefs) : TIAPWin(new TIAPView(prefs)) { }

TIAPWin::TIAPWin(TIAPView* view)
	: TMERDlgWin(view->Frame(), gLLT->Text("Win_Title_Common_Pref"), B_TITLED_WINDOW_LOOK,
		B_NORMAL_WINDOW_FEEL, B_NOT_RESIZABLE | B_NOT_ZOOMABLE | B_ASYNCHRONOUS_CONTROLS),
	  fView(view)
{
	SetDlgView(view);
}

void
TIAPWin::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kIAPChanged:
		case kIAPControlChanged:
			fView->MessageReceived(message);
			break;
		default:
			TMERDlgWin::MessageReceived(message);
	}
}

void
TIAPWin::LanguageChanged()
{
	SetTitle(gLLT->Text("Win_Title_Common_Pref"));
	TMERDlgWin::LanguageChanged();
}

void
TIAPWin::Appear()
{
	if (!Lock())
		return;
	if (IsHidden())
		fView->RememberValues();
	TMERDlgWin::Appear();
	Unlock();
}

} // namespace merion
