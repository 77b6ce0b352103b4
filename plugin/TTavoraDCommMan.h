#pragma once

#include "plugin/helpers/TCommMan.h"

class TTavoraDWin;

/*!	The displayer's communication manager: all windows are made, shown and closed on its looper, and every notice that a
	preference has changed goes through it (commman_codes.h).
	Thread: "TavoraD Communication Manager". Owner: itself; the plug-in object locks and quits it. */
class TTavoraDCommMan : public TCommMan {
public:
	TTavoraDCommMan();
	//! Closes what is still open.
	~TTavoraDCommMan() override;

	void MessageReceived(BMessage* message) override;

private:
	void OpenMainWindowRqtd();
	void CloseMainWindow();
	void PostToMainWindow(BMessage* message);
	void SendToPartner(BMessage* message);

	TTavoraDWin* fMainWindow = nullptr; // null while closed
	BMessenger fMainMessenger;          // to it; the application may have quit it
};
