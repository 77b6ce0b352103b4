#include "plugin/TTavoraDCommMan.h"

#include <Application.h>
#include <Message.h>

#include "framework/TAppPrivacy.h"
#include "framework/TIAPItemAccKeyFormat.h"
#include "framework/TInterAppPrefs.h"
#include "framework/TLLT.h"
#include "framework/TMERAboutWin.h"
#include "framework/TNodeMonitorHandler.h"
#include "framework/TSimpleAboutView.h"
#include "framework/dialogs.h"
#include "lyrics/TTavoraDWin.h"
#include "plugin/TTavInfoView.h"
#include "plugin/helpers/TIAPFilter.h"
#include "plugin/helpers/commman_codes.h"
#include "plugin/helpers/load_language.h"
#include "plugin/helpers/own_file.h"
#include "plugin/helpers/show_help.h"
#include "plugin/open_lyrics.h"
#include "prefs/TExitState.h"
#include "prefs/TPref.h"
#include "prefs/app_info.h"
#include "prefs/window/TPrefWin.h"

namespace {

constexpr float kBelowTitle
	= 20; // the common preferences open so far below the main window's upper edge
const BRect kPrefFrame(0, 0, 399, 299); // until its view gives the size

} // namespace

TTavoraDCommMan::TTavoraDCommMan()
	: TCommMan("TavoraD Communication Manager", "TavoraE Communication Manager"),
	  fLanguageWatcher(new merion::TNodeMonitorHandler(kLanguageFileChanged))
{
	AddHandler(fLanguageWatcher);
	set_node_monitor_language(tavora_displayer_fname().c_str(), fLanguageWatcher);
	InstallIAPFilter();
}

TTavoraDCommMan::~TTavoraDCommMan()
{
	RemoveIAPFilter();
	for (const uint32 what :
		{kCloseAboutWindow, kClosePrefWindow, kCloseCommonPrefWindow, kCloseMainWindow}) {
		BMessage close(what);
		MessageReceived(&close);
	}
	gIAP->Stop();
	delete fLanguageWatcher; // stops watching, for which it must still be this looper's
}

void
TTavoraDCommMan::MessageReceived(BMessage* message)
{
	if (!WindowRequestReceived(message) && !MenuRequestReceived(message)
		&& !ChangeReceived(message))
		TCommMan::MessageReceived(message);
}

bool
TTavoraDCommMan::WindowRequestReceived(BMessage* message)
{
	BWindow* closed = nullptr;
	switch (message->what) {
		case kOpenMainWindow:
			OpenMainWindowRqtd();
			return true;
		case kPreparePrefWindow:
		case kPrefItemChosen:
			PrepareOpenPrefWindowRqtd();
			return true;
		case kOpenPrefWindow:
			OpenPrefWindowRqtd(message);
			return true;
		case kPrepareAboutWindow:
		case kAboutItemChosen:
			PrepareOpenAboutWindowRqtd();
			return true;
		case kOpenAboutWindow:
			OpenAboutWindowRqtd(message);
			return true;
		case kCloseMainWindow:
			closed = fMainWindow.Take();
			break;
		case kClosePrefWindow:
			closed = fPrefWindow.Take();
			break;
		case kCloseAboutWindow:
			closed = fAboutWindow.Take();
			break;
		case kCloseCommonPrefWindow:
			gIAP->CloseWindow(false);
			return true;
		default:
			return false;
	}
	CloseWindow(&closed);
	return true;
}

bool
TTavoraDCommMan::MenuRequestReceived(BMessage* message)
{
	switch (message->what) {
		case kCommonPrefItemChosen:
			PopMItemMERIONCommonPrefClicked();
			return true;
		case kHelpItemChosen:
			show_help();
			return true;
		case kAuthorWebItemChosen:
			PopMItemAuthorWebClicked();
			return true;
		case kOpenLyrics:
			OpenTavoraERqtd(message);
			return true;
		default:
			return false;
	}
}

/*!	Who hears of what, and in which order, is shared with the editor. */
bool
TTavoraDCommMan::ChangeReceived(BMessage* message)
{
	switch (message->what) {
		case kPrefStayOnTopChanged:
		case kPrefAppearanceChanged:
		case kPrefDoubleBufferingChanged:
			fMainWindow.Post(message);
			SendToPartner(message);
			return true;
		case kStayOnTopItemChanged:
		case kBGImageItemChanged:
			fPrefWindow.Post(message);
			SendToPartner(message);
			return true;
		case kPrefEditCancelled:
		case kPrefWriteEncodingChanged:
		case kPrefReadEncodingChanged:
		case kPrefWriteCRTypeChanged:
		case kPrefTimeDifferenceChanged:
		case kPrefShowToolBarChanged:
		case kSetStatusBarText:
			SendToPartner(message);
			return true;
		case kPrefLanguageChanged:
			PrefLanguageChanged();
			return true;
		case kLanguageChanged:
			LanguageChanged();
			fMainWindow.Post(message);
			fPrefWindow.Post(message);
			gIAP->PostToWindow(message);
			SendToPartner(message);
			return true;
		case kIAPChanged:
			IAPChanged(message);
			fMainWindow.Post(message);
			fPrefWindow.Post(message);
			return true;
		case kLanguageFileChanged:
			NodeLanguageChanged();
			fPrefWindow.Post(message);
			return true;
		default:
			return false;
	}
}

void
TTavoraDCommMan::OpenMainWindowRqtd()
{
	TTavoraDWin* window = fMainWindow.Get();
	if (window == nullptr) {
		window = new TTavoraDWin(gExitState->WindowFrame(), this);
		fMainWindow.Set(window);
	}
	window->Appear();
}

void
TTavoraDCommMan::PrepareOpenPrefWindowRqtd()
{
	PostPlacement(kOpenPrefWindow);
}

void
TTavoraDCommMan::PrepareOpenAboutWindowRqtd()
{
	PostPlacement(kOpenAboutWindow);
}

void
TTavoraDCommMan::PostPlacement(uint32 what)
{
	BMessage request(what);
	BRect frame;
	const bool isOpen = fMainWindow.GetFrame(&frame);
	request.AddBool("BesideDlg", isOpen);
	if (isOpen)
		request.AddRect("WinFrame", frame);
	PostMessage(&request);
}

void
TTavoraDCommMan::OpenPrefWindowRqtd(const BMessage* message)
{
	TPrefWin* window = fPrefWindow.Get();
	if (window == nullptr) {
		window = new TPrefWin(kPrefFrame, this);
		if (window->InitCheck() != B_OK) {
			if (window->Lock())
				window->Quit();
			merion::show_alert(gLLT->Text("Alert_Caption"),
				gLLT->Text("Err_Cannot_Create_Pref_Win"), gLLT->Text("Button_OK"));
			return;
		}
		window->SetPos(message->GetBool("BesideDlg", false), message->GetRect("WinFrame", BRect()));
		window->SetTarget(this);
		window->SetFeel(B_FLOATING_ALL_WINDOW_FEEL);
		fPrefWindow.Set(window);
	}
	window->Appear();
}

void
TTavoraDCommMan::OpenAboutWindowRqtd(const BMessage* message)
{
	merion::TMERAboutWin* window = fAboutWindow.Get();
	if (window == nullptr) {
		window = new merion::TMERAboutWin(new merion::TSimpleAboutView(
			new TTavInfoView(merion::TSimpleAboutView::AppInfoFrame())));
		window->SetPos(message->GetBool("BesideDlg", false), message->GetRect("WinFrame", BRect()));
		window->SetAppInfo();
		window->SetIAPRef(gIAP);
		fAboutWindow.Set(window);
	}
	window->Appear();
}

void
TTavoraDCommMan::PopMItemMERIONCommonPrefClicked()
{
	BRect frame;
	if (fMainWindow.GetFrame(&frame))
		frame.top += kBelowTitle;
	gIAP->ShowWindow(frame);
}

void
TTavoraDCommMan::PopMItemAuthorWebClicked()
{
	merion::show_url(gAuthorWebURL, gLLT->Text("Alert_Caption"), "ページを表示できません：\n");
}

void
TTavoraDCommMan::OpenTavoraERqtd(const BMessage* message)
{
	entry_ref ref;
	if (message->FindRef("LyricsERef", &ref) != B_OK)
		return;
	const int32 format = merion::TIAPItemAccKeyFormat::Format(gIAP);
	BMessage open(kOpenRefs);
	open.AddRef("refs", &ref);
	if (SendMessage(&open) != B_OK)
		open_lyrics_file(ref, format);
}

void
TTavoraDCommMan::PrefLanguageChanged()
{
	if (!gAppPrivacy->ShouldBeLanguageChanged())
		return;
	load_language(tavora_displayer_fname().c_str());
	PostMessage(kLanguageChanged);
}

void
TTavoraDCommMan::NodeLanguageChanged()
{
	// Before it is read: a file that was replaced is another one to watch.
	set_node_monitor_language(tavora_displayer_fname().c_str(), fLanguageWatcher);
	PostMessage(kPrefLanguageChanged);
}

void
TTavoraDCommMan::LanguageChanged()
{
	if (merion::TMERAboutWin* window = fAboutWindow.Get(); window != nullptr)
		window->SetAppInfo();
	set_node_monitor_language(tavora_displayer_fname().c_str(), fLanguageWatcher);
}

void
TTavoraDCommMan::IAPChanged(const BMessage* message)
{
	// One that is not ours changes nothing here.
	if (gIAP->SetValue(*message) != B_OK)
		return;
	if (merion::TMERAboutWin* window = fAboutWindow.Get(); window != nullptr)
		window->SetIAPRef(gIAP);
}

void
TTavoraDCommMan::SendToPartner(BMessage* message)
{
	gPref->Archive(message);
	SendMessage(message);
}

void
TTavoraDCommMan::InstallIAPFilter()
{
	if (be_app == nullptr || !be_app->Lock())
		return;
	fIAPFilter = new TIAPFilter(BMessenger(this));
	be_app->AddCommonFilter(fIAPFilter);
	be_app->Unlock();
}

void
TTavoraDCommMan::RemoveIAPFilter()
{
	if (fIAPFilter == nullptr || be_app == nullptr || !be_app->Lock())
		return;
	if (be_app->RemoveCommonFilter(fIAPFilter))
		delete fIAPFilter;
	be_app->Unlock();
}
