#pragma once

#include "plugin/WindowSlot.h"
#include "plugin/helpers/TCommMan.h"

class TIAPFilter;
class TPrefWin;
class TTavoraDWin;

namespace merion {
class TMERAboutWin;
class TNodeMonitorHandler;
} // namespace merion

/*!	The displayer's communication manager: all windows are made, shown and closed on its looper, and every notice that a
	preference has changed goes through it (commman_codes.h).
	Thread: "TavoraD Communication Manager". Owner: itself; the plug-in object locks and quits it. */
class TTavoraDCommMan : public TCommMan {
public:
	//! Listens to the application's notices of inter-app preferences from here on.
	TTavoraDCommMan();
	//! Closes what is still open.
	~TTavoraDCommMan() override;

	void MessageReceived(BMessage* message) override;

private:
	bool WindowRequestReceived(BMessage* message);
	bool MenuRequestReceived(BMessage* message);
	bool ChangeReceived(BMessage* message);

	// Windows
	void OpenMainWindowRqtd();
	void PrepareOpenPrefWindowRqtd();
	void PrepareOpenAboutWindowRqtd();
	void OpenPrefWindowRqtd(const BMessage* message);
	void OpenAboutWindowRqtd(const BMessage* message);
	void PostPlacement(uint32 what);

	// The popup menu
	void PopMItemMERIONCommonPrefClicked();
	void PopMItemAuthorWebClicked();
	void OpenTavoraERqtd(const BMessage* message);

	// Changes
	void PrefLanguageChanged();
	void NodeLanguageChanged();
	void LanguageChanged();
	void IAPChanged(const BMessage* message);
	void SendToPartner(BMessage* message);

	// Inter-app notices
	void InstallIAPFilter();
	void RemoveIAPFilter();

	WindowSlot<TTavoraDWin> fMainWindow;
	WindowSlot<TPrefWin> fPrefWindow;
	WindowSlot<merion::TMERAboutWin> fAboutWindow;
	merion::TNodeMonitorHandler* fLanguageWatcher; // this looper deletes it
	TIAPFilter* fIAPFilter = nullptr;              // the application's
};
