#pragma once

#include <SupportDefs.h>

class BAlert;
class BFilePanel;

//! Boxes with a message for the user, and web pages.
namespace merion {

/*!	Shows a box with one to three buttons (nullptr: no such button) and waits; the index of the button that the user has pressed.
	Escape, and closing the box in any other way, answer as the last button does: the last one is the one that changes nothing.
	Return presses it too.
	`keys` (may be nullptr): a letter for each button, which presses it together with Command; a blank for none.
	Thread: any but the display server's; the looper that it is called on handles no message meanwhile. Of no box
	that could be shown, and while dismiss_alerts() holds, the answer is that of Escape at once. */
int32 show_alert(const char* title, const char* text, const char* button1,
	const char* button2 = nullptr, const char* button3 = nullptr, const char* keys = nullptr);

/*!	The keys of a box that has not been shown: Escape presses the last button, and together with Command a letter of
	`keys` (may be nullptr) the button of the same index; a blank is none. */
void set_alert_keys(BAlert* alert, const char* keys);

/*!	Closes all boxes that are open, as by Escape, and lets no more open until allow_alerts(): for the end of the application,
	whose loopers may be waiting in one. Thread: any that holds no lock of a looper that shows a box. */
void dismiss_alerts();
void allow_alerts();

/*!	Opens a web page with the desktop's browser. When that fails, a box with `title` says `failureText` and the address, and the answer is the
	error. Thread: as show_alert(). */
status_t show_url(const char* url, const char* title, const char* failureText);

/*!	Of the thread of the panel's window: B_NORMAL_PRIORITY and the like. Nothing when the window is gone. Thread: any. */
void set_file_panel_priority(BFilePanel* panel, int32 priority);

} // namespace merion
