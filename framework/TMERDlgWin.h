#pragma once

#include <Messenger.h>

#include "framework/TMERWin.h"

namespace merion {

class TMERDlgView;

/*!	Base of the maker's dialog windows: one TMERDlgView fills it. The window hands the view the dialog's commands and the
	new language; Escape is Cancel, and so is the close button, which never ends the window: the application quits it.
	Thread and owner: as TMERWin. */
class TMERDlgWin : public TMERWin {
public:
	TMERDlgWin(BRect frame, const char* title, window_look look, window_feel feel, uint32 flags,
		uint32 workspaces = B_CURRENT_WORKSPACE);

	void MessageReceived(BMessage* message) override;
	//! True when the application asks; when the user does, what CloseRequested() answers.
	bool QuitRequested() override;
	void LanguageChanged() override;

	//! Whether the dialog could be made: an error of a derived class's constructor, else B_OK.
	status_t InitCheck() const { return fInitStatus; }
	//! Where the dialog's notices go; it may end before the dialog does. nullptr: nowhere.
	void SetTarget(BLooper* target);
	//! Posts a copy to the target. B_BAD_VALUE or B_BAD_PORT_ID when there is none.
	status_t NotifyTarget(BMessage* message);

protected:
	//! Hook: the user closes the window; whether it ends. Here it is Cancel, and false.
	virtual bool CloseRequested();
	//! Adds the view, which the window then owns. Once, in the constructor.
	void SetDlgView(TMERDlgView* view);
	TMERDlgView* DlgView() const { return fDlgView; }
	void SetInitStatus(status_t status) { fInitStatus = status; }

private:
	TMERDlgView* fDlgView = nullptr;
	BMessenger fTarget;
	status_t fInitStatus = B_OK;
};

} // namespace merion
