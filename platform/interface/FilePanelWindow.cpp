#include "interface/FilePanelWindow.h"

#include "app/LooperList.h"
#include "interface/ViewData.h"
#include "interface/WidgetText.h"

#include <Entry.h>
#include <Node.h>
#include <Path.h>
#include <QCoreApplication>
#include <QMimeDatabase>

namespace BPrivate {

static const BRect kFrame(0, 0, 639, 439);
static constexpr float kMinWidth = 420;
static constexpr float kMinHeight = 280;

static std::string
title_of(bool save)
{
	return QCoreApplication::translate("QPlatformTheme", save ? "Save" : "Open").toStdString();
}

static std::vector<entry_ref>
refs_of(const BMessage& event)
{
	std::vector<entry_ref> refs;
	const char* path;
	for (int32 i = 0; event.FindString("path", i, &path) == B_OK; i++) {
		entry_ref ref;
		if (get_ref_for_path(path, &ref) == B_OK)
			refs.push_back(ref);
	}
	return refs;
}

FilePanelWindow::FilePanelWindow(BFilePanel* panel, const FilePanelTraits& traits, bool modal)
	: BWindow(kFrame, title_of(traits.save).c_str(), B_DOCUMENT_WINDOW_LOOK,
		modal ? B_MODAL_APP_WINDOW_FEEL : B_NORMAL_WINDOW_FEEL,
		B_ASYNCHRONOUS_CONTROLS | B_NOT_ZOOMABLE | B_NOT_MINIMIZABLE),
	  mode(traits.save ? B_SAVE_PANEL : B_OPEN_PANEL),
	  fPanel(panel),
	  fTraits(traits)
{
	SetSizeLimits(kMinWidth, 32767, kMinHeight, 32767);
	SetMessage(NULL);
	LooperList::SetQuitOrder(this, LooperList::kQuitsLast);
	// others may use the panel before it runs
	Unlock();
}

/*!	The close button hides it. It goes with the application, which asks on its own thread. */
bool
FilePanelWindow::QuitRequested()
{
	if (find_thread(NULL) != Thread() || fPanel == NULL)
		return true;
	Close(true);
	return false;
}

void
FilePanelWindow::Open()
{
	if (!IsHidden()) {
		Activate();
		return;
	}
	if (fView == NULL)
		MakeView();
	Tell([](ServerFilePanel& dialog) { dialog.Opened(); });
	Show();
}

void
FilePanelWindow::MakeView()
{
	fView = new BView(Bounds(), "panel", B_FOLLOW_ALL, B_WILL_DRAW);
	auto make = [traits = fTraits]() -> QWidget* {
		auto* dialog = new ServerFilePanel(traits);
		dialog->SetSink(new ProxySink(dialog));
		return dialog;
	};
	ViewData::Of(fView).SetProxy(
		std::make_unique<WidgetProxy>(make, [this](BMessage* event) { HandleEvent(event); }));
	AddChild(fView);
	CenterOnScreen();
	SetFolder(fFolder);
	SetSaveText(fSaveText.c_str());
	for (file_panel_button button : {B_CANCEL_BUTTON, B_DEFAULT_BUTTON})
		SetButtonLabel(button, fLabels[button].c_str());
	SetFilter(filter);
}

//! Something for the dialog, if there is one yet.
template<typename Function>
void
FilePanelWindow::Tell(Function function)
{
	if (fView != NULL)
		ViewData::Of(fView).proxy->Adjust<ServerFilePanel>(function);
}

void
FilePanelWindow::Close(bool byUser)
{
	if (IsHidden())
		return;
	Hide();
	SendCancel();
	if (byUser && fPanel != NULL)
		fPanel->WasHidden();
}

void
FilePanelWindow::SetMessage(const BMessage* message)
{
	if (message != NULL)
		fMessage = *message;
	else
		fMessage
			= BMessage(mode == B_SAVE_PANEL ? uint32(B_SAVE_REQUESTED) : uint32(B_REFS_RECEIVED));
}

void
FilePanelWindow::SetFilter(BRefFilter* newFilter)
{
	filter = newFilter;
	Tell([filtered = filter != NULL](ServerFilePanel& dialog) { dialog.SetFiltered(filtered); });
}

void
FilePanelWindow::SetSaveText(const char* text)
{
	fSaveText = text;
	if (mode == B_SAVE_PANEL)
		Tell([text = QString::fromUtf8(text)](
				 ServerFilePanel& dialog) { dialog.SetSaveText(text); });
}

void
FilePanelWindow::SetButtonLabel(file_panel_button button, const char* label)
{
	fLabels[button] = label;
	auto part = button == B_CANCEL_BUTTON ? QFileDialog::Reject : QFileDialog::Accept;
	Tell([part, text = widget_text(label)](
			 ServerFilePanel& dialog) { dialog.SetButtonText(part, text); });
}

void
FilePanelWindow::SetFolder(const std::string& path)
{
	fFolder = path;
	Tell(
		[path = QString::fromStdString(path)](ServerFilePanel& dialog) { dialog.SetFolder(path); });
}

void
FilePanelWindow::Refresh()
{
	Tell([](ServerFilePanel& dialog) { dialog.Refresh(); });
}

status_t
FilePanelWindow::NextSelected(entry_ref* ref)
{
	if (nextSelected >= fSelected.size())
		return B_ENTRY_NOT_FOUND;
	*ref = fSelected[nextSelected++];
	return B_OK;
}

// What the dialog tells

void
FilePanelWindow::HandleEvent(BMessage* event)
{
	switch (event->GetInt32("kind", -1)) {
		case ServerFilePanel::kOpen:
			OpenChosen(*event);
			break;
		case ServerFilePanel::kSave:
			SaveChosen(*event);
			break;
		case ServerFilePanel::kCancel:
			hideWhenDone ? Close(true) : SendCancel();
			break;
		case ServerFilePanel::kSelected:
			TakeSelection(*event);
			break;
		case ServerFilePanel::kFolder:
			fFolder = event->GetString("folder", "/");
			break;
		case ServerFilePanel::kJudge:
			Judge(*event);
			break;
	}
}

//! A typed name was never in the list, so the filter is asked here too.
void
FilePanelWindow::OpenChosen(const BMessage& event)
{
	BMessage message(fMessage);
	bool any = false;
	for (const entry_ref& ref : refs_of(event)) {
		if (Accepts(ref))
			any = message.AddRef("refs", &ref) == B_OK;
	}
	if (any)
		Done(message);
}

void
FilePanelWindow::SaveChosen(const BMessage& event)
{
	BMessage message(fMessage);
	entry_ref folder;
	if (get_ref_for_path(event.GetString("folder", ""), &folder) != B_OK)
		return; // removed at this very moment
	message.AddRef("directory", &folder);
	message.AddString("name", event.GetString("name", ""));
	Done(message);
}

void
FilePanelWindow::Done(BMessage& message)
{
	// a second click that was on its way
	if (IsHidden())
		return;
	SendToTarget(message);
	if (hideWhenDone)
		Close(true);
}

void
FilePanelWindow::SendCancel()
{
	BMessage message(fMessage);
	message.what = B_CANCEL;
	message.AddInt32("old_what", fMessage.what);
	message.AddPointer("source", fPanel);
	SendToTarget(message);
}

void
FilePanelWindow::SendToTarget(BMessage& message)
{
	if (fPanel != NULL)
		fPanel->SendMessage(&target, &message);
}

void
FilePanelWindow::TakeSelection(const BMessage& event)
{
	fSelected = refs_of(event);
	nextSelected = 0;
	if (fPanel != NULL)
		fPanel->SelectionChanged();
}

void
FilePanelWindow::Judge(const BMessage& event)
{
	QStringList paths;
	QList<bool> verdicts;
	const char* path;
	for (int32 i = 0; event.FindString("path", i, &path) == B_OK; i++) {
		entry_ref ref;
		paths.append(QString::fromUtf8(path));
		verdicts.append(get_ref_for_path(path, &ref) == B_OK && Accepts(ref));
	}
	Tell([generation = event.GetInt32("generation", 0), paths, verdicts](
			 ServerFilePanel& dialog) { dialog.Judged(generation, paths, verdicts); });
}

bool
FilePanelWindow::Accepts(const entry_ref& ref) const
{
	if (filter == NULL)
		return true;
	BNode node(&ref);
	stat_beos info{};
	BPath path(&ref);
	if (node.InitCheck() != B_OK || node.GetStat(&info) != B_OK || path.InitCheck() != B_OK)
		return false;
	const QString type
		= QMimeDatabase().mimeTypeForFile(path.Path(), QMimeDatabase::MatchExtension).name();
	const std::string name
		= S_ISDIR(info.st_mode) ? "application/x-vnd.Be-directory" : type.toStdString();
	return filter->Filter(&ref, &node, &info, name.c_str());
}

} // namespace BPrivate
