#include "interface/FilePanelWindow.h"

#include <Application.h>
#include <Directory.h>
#include <FilePanel.h>
#include <Path.h>
#include <optional>

using namespace BPrivate;

//! The panel's window, locked, as long as it is there.
class PanelLock {
public:
	PanelLock(FilePanelWindow* window, const BMessenger& messenger)
		: fWindow(messenger.LockTarget() ? window : NULL)
	{ }
	~PanelLock()
	{
		if (fWindow != NULL)
			fWindow->Unlock();
	}
	PanelLock(const PanelLock&) = delete;
	PanelLock& operator=(const PanelLock&) = delete;

	explicit operator bool() const { return fWindow != NULL; }
	FilePanelWindow* operator->() const { return fWindow; }

private:
	FilePanelWindow* fWindow;
};

//! Nothing when it is no folder.
static std::optional<std::string>
folder_path(const BEntry& entry)
{
	BPath path;
	if (!entry.IsDirectory() || entry.GetPath(&path) != B_OK)
		return std::nullopt;
	return path.Path();
}

static FilePanelTraits
traits_of(file_panel_mode mode, uint32 nodeFlavors, bool several)
{
	FilePanelTraits traits;
	traits.save = mode == B_SAVE_PANEL;
	traits.folders = (nodeFlavors & B_DIRECTORY_NODE) != 0;
	traits.files = (nodeFlavors & B_FILE_NODE) != 0 || !traits.folders;
	traits.several = several;
	return traits;
}

BFilePanel::BFilePanel(file_panel_mode mode, BMessenger* target, const entry_ref* directory,
	uint32 nodeFlavors, bool allowMultipleSelection, BMessage* message, BRefFilter* filter,
	bool modal, bool hideWhenDone)
	: fWindow(
		new FilePanelWindow(this, traits_of(mode, nodeFlavors, allowMultipleSelection), modal)),
	  fWindowMessenger(fWindow)
{
	SetTarget(target != NULL ? *target : be_app_messenger);
	SetPanelDirectory(".");
	SetPanelDirectory(directory);
	SetMessage(message);
	SetRefFilter(filter);
	SetHideWhenDone(hideWhenDone);
}

/*!	In the window's own thread, which must not end while it is in the destructor of something else, the window quits afterwards. */
BFilePanel::~BFilePanel()
{
	if (!fWindowMessenger.LockTarget())
		return;
	fWindow->Forget();
	if (fWindow->Thread() == find_thread(NULL)) {
		fWindow->PostMessage(B_QUIT_REQUESTED);
		fWindow->Unlock();
	} else
		fWindow->Quit();
}

void
BFilePanel::Show()
{
	if (PanelLock window{fWindow, fWindowMessenger})
		window->Open();
}

void
BFilePanel::Hide()
{
	if (PanelLock window{fWindow, fWindowMessenger})
		window->Close(false);
}

bool
BFilePanel::IsShowing() const
{
	PanelLock window(fWindow, fWindowMessenger);
	return window && !window->IsHidden();
}

void
BFilePanel::WasHidden()
{ }

void
BFilePanel::SelectionChanged()
{ }

void
BFilePanel::SendMessage(const BMessenger* target, BMessage* message)
{
	target->SendMessage(message);
}

BWindow*
BFilePanel::Window() const
{
	return fWindowMessenger.IsValid() ? fWindow : NULL;
}

BMessenger
BFilePanel::Messenger() const
{
	PanelLock window(fWindow, fWindowMessenger);
	return window ? window->target : BMessenger();
}

BRefFilter*
BFilePanel::RefFilter() const
{
	PanelLock window(fWindow, fWindowMessenger);
	return window ? window->filter : NULL;
}

file_panel_mode
BFilePanel::PanelMode() const
{
	PanelLock window(fWindow, fWindowMessenger);
	return window ? window->mode : B_OPEN_PANEL;
}

void
BFilePanel::GetPanelDirectory(entry_ref* ref) const
{
	PanelLock window(fWindow, fWindowMessenger);
	if (ref != NULL && window)
		get_ref_for_path(window->Folder().c_str(), ref);
}

bool
BFilePanel::HidesWhenDone() const
{
	PanelLock window(fWindow, fWindowMessenger);
	return window && window->hideWhenDone;
}

void
BFilePanel::SetTarget(BMessenger target)
{
	if (PanelLock window{fWindow, fWindowMessenger})
		window->target = target;
}

void
BFilePanel::SetMessage(BMessage* message)
{
	if (PanelLock window{fWindow, fWindowMessenger})
		window->SetMessage(message);
}

void
BFilePanel::SetRefFilter(BRefFilter* filter)
{
	if (PanelLock window{fWindow, fWindowMessenger})
		window->SetFilter(filter);
}

void
BFilePanel::SetSaveText(const char* text)
{
	if (PanelLock window{fWindow, fWindowMessenger})
		window->SetSaveText(text != NULL ? text : "");
}

void
BFilePanel::SetButtonLabel(file_panel_button button, const char* label)
{
	if (button != B_CANCEL_BUTTON && button != B_DEFAULT_BUTTON)
		return;
	if (PanelLock window{fWindow, fWindowMessenger})
		window->SetButtonLabel(button, label != NULL ? label : "");
}

void
BFilePanel::SetPanelDirectory(const BEntry* folder)
{
	std::optional<std::string> path;
	if (folder != NULL)
		path = folder_path(*folder);
	if (!path)
		return;
	if (PanelLock window{fWindow, fWindowMessenger})
		window->SetFolder(*path);
}

void
BFilePanel::SetPanelDirectory(const BDirectory* folder)
{
	BEntry entry;
	if (folder != NULL && folder->GetEntry(&entry) == B_OK)
		SetPanelDirectory(&entry);
}

void
BFilePanel::SetPanelDirectory(const entry_ref* folder)
{
	if (folder == NULL)
		return;
	const BEntry entry(folder, true);
	SetPanelDirectory(&entry);
}

void
BFilePanel::SetPanelDirectory(const char* folder)
{
	if (folder == NULL)
		return;
	const BEntry entry(folder, true);
	SetPanelDirectory(&entry);
}

void
BFilePanel::SetHideWhenDone(bool on)
{
	if (PanelLock window{fWindow, fWindowMessenger})
		window->hideWhenDone = on;
}

void
BFilePanel::Refresh()
{
	if (PanelLock window{fWindow, fWindowMessenger})
		window->Refresh();
}

void
BFilePanel::Rewind()
{
	if (PanelLock window{fWindow, fWindowMessenger})
		window->nextSelected = 0;
}

status_t
BFilePanel::GetNextSelectedRef(entry_ref* ref)
{
	if (ref == NULL)
		return B_BAD_VALUE;
	PanelLock window(fWindow, fWindowMessenger);
	return window ? window->NextSelected(ref) : B_ERROR;
}
