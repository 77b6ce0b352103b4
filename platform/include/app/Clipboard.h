#pragma once

#include <SupportDefs.h>
#include <memory>

class BMessage;

namespace BPrivate {
struct ClipboardData;
}

/*!	The desktop's clipboard, as far as it is text: "text/plain" (B_MIME_TYPE, UTF-8 without a NUL).
	Whatever else Data() holds is not put on it, and text that is no valid UTF-8 gets replacement characters.
	Thread: any but the display server's; all but Lock() and IsLocked() from the one that has locked it. */
class BClipboard {
public:
	//! For the kit: there is be_clipboard.
	BClipboard();
	~BClipboard();
	BClipboard(const BClipboard&) = delete;
	BClipboard& operator=(const BClipboard&) = delete;

	//! Waits until no other thread of this program has it. A thread that has locked it already counts on. True.
	bool Lock();
	void Unlock();
	//! By the calling thread.
	bool IsLocked() const;

	//! Empties Data(), for new content. B_NOT_ALLOWED without the lock.
	status_t Clear();
	/*!	Gives other programs what Data() holds; without text the clipboard is empty then. B_NOT_ALLOWED without the
		lock, B_ERROR when there is no display server. */
	status_t Commit();
	//! Forgets what was not committed. B_NOT_ALLOWED without the lock.
	status_t Revert();
	/*!	What was on the clipboard when it was first asked for since Lock(), to be read and, after Clear(), filled;
		the clipboard keeps it. NULL without the lock. */
	BMessage* Data() const;

private:
	std::unique_ptr<BPrivate::ClipboardData> fData;
};

//! The clipboard that all programs share.
extern BClipboard* be_clipboard;
