#include "plugin/TTavoraDCommMan.h"

#include <Message.h>

#include "lyrics/TTavoraDWin.h"
#include "plugin/helpers/commman_codes.h"
#include "prefs/TExitState.h"
#include "prefs/TPref.h"

TTavoraDCommMan::TTavoraDCommMan()
	: TCommMan("TavoraD Communication Manager", "TavoraE Communication Manager")
{ }

TTavoraDCommMan::~TTavoraDCommMan()
{
	CloseMainWindow();
}

void
TTavoraDCommMan::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kOpenMainWindow:
			OpenMainWindowRqtd();
			break;
		case kCloseMainWindow:
			CloseMainWindow();
			break;
		case kClosePrefWindow:
		case kCloseAboutWindow:
		case kCloseCommonPrefWindow:
			break;
		case kPrefStayOnTopChanged:
		case kPrefAppearanceChanged:
		case kPrefDoubleBufferingChanged:
			PostToMainWindow(message);
			SendToPartner(message);
			break;
		case kStayOnTopItemChanged:
		case kBGImageItemChanged:
		case kPrefEditCancelled:
		case kPrefWriteEncodingChanged:
		case kPrefReadEncodingChanged:
		case kPrefWriteCRTypeChanged:
		case kPrefTimeDifferenceChanged:
		case kPrefShowToolBarChanged:
		case kSetStatusBarText:
			SendToPartner(message);
			break;
		default:
			TCommMan::MessageReceived(message);
	}
}

void
TTavoraDCommMan::OpenMainWindowRqtd()
{
	if (!fMainMessenger.IsValid()) {
		fMainWindow = new TTavoraDWin(gExitState->WindowFrame(), this);
		fMainMessenger = BMessenger(fMainWindow);
	}
	fMainWindow->Appear();
}

void
TTavoraDCommMan::CloseMainWindow()
{
	BWindow* window = fMainWindow;
	CloseWindow(&window);
	fMainWindow = nullptr;
	fMainMessenger = BMessenger();
}

void
TTavoraDCommMan::PostToMainWindow(BMessage* message)
{
	fMainMessenger.SendMessage(message);
}

void
TTavoraDCommMan::SendToPartner(BMessage* message)
{
	gPref->Archive(message);
	SendMessage(message);
}
