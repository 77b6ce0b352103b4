#pragma once

#include <Entry.h>
#include <OS.h>

class BMessage;

#define B_MIME_TYPE_LENGTH 240

struct app_info {
	thread_id thread = -1; // -1 until the application runs
	team_id team = -1;
	char signature[B_MIME_TYPE_LENGTH] = "";
	entry_ref ref; // the program's file
};

/*!	What is known of applications: this process's, and those that the desktop can start. Any thread. */
class BRoster {
public:
	//! Only this process's application is ever running: messages stay in one process.
	bool IsRunning(const char* signature) const;

	/*!	Starts the application whose desktop file has the line `X-MERION-Signature=signature`, in the user's or the system's folder "applications".
		Of `initialMessage` (may be NULL) only the "refs" reach it, as files to open; one with other fields only is B_NOT_SUPPORTED.
		`team` (may be NULL): its process. B_BAD_VALUE, B_ALREADY_RUNNING (it is us),
		B_LAUNCH_FAILED_APP_NOT_FOUND, B_LAUNCH_FAILED_EXECUTABLE. */
	status_t Launch(
		const char* signature, BMessage* initialMessage = NULL, team_id* team = NULL) const;
	/*!	Opens what `args` names with the desktop's preferred application for `mimeType`. Known are "text/html" and the types of addresses,
		"application/x-vnd.Be.URL." and a scheme, whose only argument is the page's address or path; and signatures, as above, with files to open.
		B_BAD_VALUE (no type, an argument missing or one that begins with "-"), B_LAUNCH_FAILED_NO_PREFERRED_APP, and as above.
		`team` is the opener's process. */
	status_t Launch(
		const char* mimeType, int argc, const char* const* args, team_id* team = NULL) const;
	/*!	Opens a file or starts a program with the desktop's preferred application. B_BAD_VALUE, B_ENTRY_NOT_FOUND,
		B_LAUNCH_FAILED_NO_PREFERRED_APP (no opener on this desktop). `team` is the opener's process; a message is not taken (B_NOT_SUPPORTED). */
	status_t Launch(
		const entry_ref* ref, const BMessage* initialMessage = NULL, team_id* team = NULL) const;
};

extern const BRoster* be_roster;
