#pragma once

#include <Entry.h>
#include <Messenger.h>
#include <sys/stat.h>

class BDirectory;
class BMessage;
class BNode;
class BWindow;

namespace BPrivate {
class FilePanelWindow;
}

enum file_panel_mode { B_OPEN_PANEL, B_SAVE_PANEL };

enum file_panel_button { B_CANCEL_BUTTON, B_DEFAULT_BUTTON };

//! The platform's own name for what a filter gets; here it has the fields of the system's.
struct stat_beos : stat { };

//! Says which entries a panel lists.
class BRefFilter {
public:
	virtual ~BRefFilter() = default;
	/*!	False: the entry is neither listed nor can it be chosen. `mimeType` is told by the name, a
		folder's is "application/x-vnd.Be-directory".
		Called in the thread of the panel's window, which is locked. */
	virtual bool Filter(
		const entry_ref* ref, BNode* node, struct stat_beos* stat, const char* mimeType)
		= 0;
};

/*!	A window in which the user chooses entries to open, or a place and a name to save to; the
	desktop's dialog in it. It is made once and shown as often as it is needed.
	It sends to its target
	- what the user opens: "refs", in a copy of the panel's message or a B_REFS_RECEIVED;
	- where the user saves: "directory" (ref) and "name" (string), in a copy of the message or a
	  B_SAVE_REQUESTED; before that the panel asks whether an existing file is to be replaced. The
	  name never has a slash in it, and no folder has that name;
	- whenever it is hidden, also after the others: B_CANCEL with the rest of the message,
	  "old_what" (int32) and "source" (pointer to the panel).
	Thread: any; most calls lock the panel's window. Once the application has quit that, they do
	nothing. Owner: whoever makes it; deleting it closes the window. */
class BFilePanel {
public:
	/*!	Copies the target (NULL: the application) and the message (NULL: the mode's own). `filter`
		(may be NULL) stays the caller's and must live as long as it is set.
		`directory`: the folder to begin in; NULL for the working directory.
		`nodeFlavors`: what can be opened, B_FILE_NODE, B_DIRECTORY_NODE or both; 0 means files. A
		symbolic link counts as what it leads to. */
	BFilePanel(file_panel_mode mode = B_OPEN_PANEL, BMessenger* target = NULL,
		const entry_ref* directory = NULL, uint32 nodeFlavors = 0,
		bool allowMultipleSelection = true, BMessage* message = NULL, BRefFilter* filter = NULL,
		bool modal = false, bool hideWhenDone = true);
	virtual ~BFilePanel();
	BFilePanel(const BFilePanel&) = delete;
	BFilePanel& operator=(const BFilePanel&) = delete;

	//! In the folder where it was left; one that is shown already comes to the front.
	void Show();
	void Hide();
	bool IsShowing() const;

	//! Hook, in the window's thread: the user has hidden the panel. Not called for Hide().
	virtual void WasHidden();
	//! Hook, in the window's thread: see GetNextSelectedRef().
	virtual void SelectionChanged();
	//! What the panel has to tell goes through here, in the window's thread or that of Hide().
	virtual void SendMessage(const BMessenger* target, BMessage* message);

	//! For its title, place and feel; to be locked. NULL when it is gone.
	BWindow* Window() const;
	BMessenger Messenger() const;
	BRefFilter* RefFilter() const;
	file_panel_mode PanelMode() const;
	void GetPanelDirectory(entry_ref* ref) const;
	bool HidesWhenDone() const;

	void SetTarget(BMessenger target);
	//! Copies it. NULL: the mode's own.
	void SetMessage(BMessage* message);
	void SetRefFilter(BRefFilter* filter);
	void SetSaveText(const char* text);
	//! NULL or "": the desktop's own label.
	void SetButtonLabel(file_panel_button button, const char* label);
	// What is no folder is ignored.
	void SetPanelDirectory(const BEntry* folder);
	void SetPanelDirectory(const BDirectory* folder);
	void SetPanelDirectory(const entry_ref* folder);
	void SetPanelDirectory(const char* folder);
	//! False: the panel stays when the user has opened, saved or pressed Cancel.
	void SetHideWhenDone(bool on);
	//! Reads the folder again and asks the filter anew.
	void Refresh();

	//! GetNextSelectedRef() begins at the first entry again.
	void Rewind();
	/*!	The entries that are selected in the list. B_ENTRY_NOT_FOUND at the end, B_BAD_VALUE for
		NULL, B_ERROR when the window is gone. */
	status_t GetNextSelectedRef(entry_ref* ref);

private:
	BPrivate::FilePanelWindow* fWindow;
	BMessenger fWindowMessenger; // knows whether it is still there
};
