#include "framework/TMERDlgWin.h"

#include <Looper.h>
#include <Message.h>

#include "framework/TMERDlgView.h"
#include "framework/framework_codes.h"

namespace merion {

TMERDlgWin::TMERDlgWin(BRect frame, const char* title, window_look look, window_feel feel,
	uint32 flags, uint32 workspaces)
	: TMERWin(frame, title, look, feel, flags, workspaces)
{
	AddKey(B_ESCAPE, 0, kDialogCancel);
}

void
TMERDlgWin::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kDialogOK:
		case kDialogCancel:
		case kDialogDefault:
		case kDialogHelp:
			if (fDlgView != nullptr)
				fDlgView->MessageReceived(message);
			break;
		default:
			TMERWin::MessageReceived(message);
	}
}

bool
TMERDlgWin::QuitRequested()
{
	return !IsClosedByUser() || CloseRequested();
}

bool
TMERDlgWin::CloseRequested()
{
	if (fDlgView != nullptr)
		fDlgView->ButtonCancelClicked();
	else if (!IsHidden())
		Hide();
	return false;
}

void
TMERDlgWin::LanguageChanged()
{
	if (fDlgView != nullptr)
		fDlgView->LanguageChanged();
}

void
TMERDlgWin::SetDlgView(TMERDlgView* view)
{
	fDlgView = view;
	AddChild(view);
}

void
TMERDlgWin::SetTarget(BLooper* target)
{
	fTarget = target != nullptr ? BMessenger(target) : BMessenger();
}

status_t
TMERDlgWin::NotifyTarget(BMessage* message)
{
	// The target may be waiting for this window's lock: never wait for room in its queue.
	return fTarget.SendMessage(message, static_cast<BHandler*>(nullptr), 0);
}

} // namespace merion
