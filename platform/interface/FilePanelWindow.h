#pragma once

#include "server/ServerFilePanel.h"

#include <FilePanel.h>
#include <Message.h>
#include <Window.h>
#include <string>
#include <vector>

namespace BPrivate {

/*!	The window of a file panel and all that the panel knows. The dialog in it is made when it is shown for the first time.
	Thread: its own, or whoever has locked it. Owner: itself; the panel quits it, or the application does, after the windows that may
	refuse. */
class FilePanelWindow : public BWindow {
public:
	FilePanelWindow(BFilePanel* panel, const FilePanelTraits& traits, bool modal);

	bool QuitRequested() override;

	//! The panel is being deleted: its hooks are not called any more.
	void Forget() { fPanel = NULL; }
	void Open();
	//! With the notification, and the hook for what the user did.
	void Close(bool byUser);
	void SetMessage(const BMessage* message);
	void SetFilter(BRefFilter* newFilter);
	void SetSaveText(const char* text);
	void SetButtonLabel(file_panel_button button, const char* label);
	void SetFolder(const std::string& path);
	const std::string& Folder() const { return fFolder; }
	void Refresh();
	status_t NextSelected(entry_ref* ref);

	BMessenger target;
	BRefFilter* filter = NULL;
	bool hideWhenDone = true;
	size_t nextSelected = 0;
	const file_panel_mode mode;

private:
	void MakeView();
	void HandleEvent(BMessage* event);
	void OpenChosen(const BMessage& event);
	void SaveChosen(const BMessage& event);
	void TakeSelection(const BMessage& event);
	void Judge(const BMessage& event);
	bool Accepts(const entry_ref& ref) const;
	void Done(BMessage& message);
	void SendToTarget(BMessage& message);
	void SendCancel();
	template<typename Function> void Tell(Function function);

	BFilePanel* fPanel;
	const FilePanelTraits fTraits;
	BMessage fMessage;
	std::string fFolder;
	std::string fSaveText;
	std::string fLabels[2]; // by file_panel_button
	std::vector<entry_ref> fSelected;
	BView* fView = NULL;
};

} // namespace BPrivate
