#pragma once

#include "framework/TMERDlgWin.h"

class TCommMan;

/*!	The preferences window. Its one view is kept as an archive, the resource "PrefViewRsrc" of type 'ARCV' of the add-on's
	own file; without it the window stays empty, and InitCheck() tells why.
	Thread and owner: as TMERWin; the manager makes it, and quits it. */
class TPrefWin : public merion::TMERDlgWin {
public:
	//! `manager`: gets the notices of changes.
	TPrefWin(BRect frame, TCommMan* manager);

private:
	status_t LoadView();
};
