#pragma once

#include <deque>
#include <string>
#include <string_view>

#include "framework/TMERWin.h"
#include "framework/screen_utils.h"

class TCommMan;
class TTavoraDView;
class TWMFilter;

/*!	The window that shows the lyrics, beside the host's and following it: its distance from the host's window stays what
	it was when the user last placed it.
	Thread: its own; made and shown by the communication manager. It tells gExitState its frame at every change.
	Owner: itself; the manager quits it. The close button only hides it. */
class TTavoraDWin : public merion::TMERWin {
public:
	//! `frame`: where it was when the add-on last ran; on a first run, or off all screens, it opens beside the host's.
	TTavoraDWin(BRect frame, TCommMan* manager);
	~TTavoraDWin() override;

	void MessageReceived(BMessage* message) override;
	void FrameMoved(BPoint newPosition) override;
	void FrameResized(float newWidth, float newHeight) override;
	//! False, and the window hidden, when the user asks; true when the application does.
	bool QuitRequested() override;
	void Appear() override;
	void LanguageChanged() override;

	//! Where the window and its view send their requests; it outlives them.
	TCommMan* Manager() const { return fManager; }
	//! Names the playing song in the title; an empty one names none.
	void SetSongTitle(std::string_view title);

private:
	struct OwnMove {
		BPoint place;
		bigtime_t when;
	};

	// The popup menu
	void PopMItemStayOnTopClicked();
	void PopMItemPositionClicked(merion::side side);
	void PopMItemSizeClicked(int32 lines);
	void PopMItemHideClicked();

	void OpenBesideHost();
	void WatchHostWindow();
	void LeaveHostWindow();
	void HostWindowMoved();
	void RememberOffset();
	void RememberFrame();
	bool IsOwnMove(BPoint position);
	void ForgetOldMoves();

	TCommMan* const fManager;
	TTavoraDView* fView; // the window deletes it

	std::string fSongTitle;

	BWindow* fHostWindow = nullptr; // may be gone: only its Lock() tells
	TWMFilter* fFilter = nullptr;   // belongs to the host's window
	BPoint fHostPlace;              // where it was last seen
	BPoint fOffset;                 // from the host's window to this one, as the user wants it
	bool fHasOffset = false;
	std::deque<OwnMove> fOwnMoves; // that following asked for, the oldest first
};
