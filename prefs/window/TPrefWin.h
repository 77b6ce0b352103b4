#pragma once

#include <memory>

#include "framework/TMERDlgWin.h"

class BFilePanel;
class TCommMan;

/*!	The preferences window. Its one view, a TPrefView, is kept as an archive, the resource "PrefViewRsrc" of type 'ARCV' of
	the add-on's own file; without a sound one the window stays empty, and InitCheck() tells why.
	Closing it is Cancel, which only hides it.
	Thread and owner: as TMERWin; the manager makes it, and quits it. */
class TPrefWin : public merion::TMERDlgWin {
public:
	//! `manager`: gets the notices of changes.
	TPrefWin(BRect frame, TCommMan* manager);

	~TPrefWin() override;

	void MessageReceived(BMessage* message) override;
	//! With its panels.
	void Hide() override;
	void LanguageChanged() override;

	//! From a panel that has closed: its thread goes on at the priority that it had before.
	void Cancel(BMessage* message);
	void PopMItemGetSkinColorClicked();
	void SetBrowseSkinPanelLabel();

private:
	status_t LoadView();
	void TellView(BMessage* message);
	void PrefStayOnTopChanged();

	// Panels: TPrefWinPanels.cpp
	void ButtonBrowseBGImgClicked();
	void PopMItemSaveNewPresetClicked();
	void SetPanelLabels();
	void SetBrowseBGImgPanelLabel();
	void SetSavePanelLabel();

	// null until the user asks for it
	std::unique_ptr<BFilePanel> fBrowseBGImgPanel;
	std::unique_ptr<BFilePanel> fBrowseSkinPanel;
	std::unique_ptr<BFilePanel> fSavePanel;
};
