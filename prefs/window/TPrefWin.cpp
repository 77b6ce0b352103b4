#include "prefs/window/TPrefWin.h"

#include <memory>

#include <DataIO.h>
#include <File.h>
#include <FilePanel.h>
#include <Message.h>
#include <Resources.h>

#include "framework/TLLT.h"
#include "framework/TMERDlgView.h"
#include "plugin/helpers/TCommMan.h"
#include "plugin/helpers/own_file.h"
#include "plugin/helpers/window_feel.h"
#include "prefs/window/TPrefView.h"
#include "prefs/window/pref_codes.h"

namespace {

constexpr type_code kViewType = 'ARCV';
constexpr const char* kViewName = "PrefViewRsrc";

status_t
read_archive(BMessage* archive)
{
	BFile file(tavora_displayer_fname().c_str(), B_READ_ONLY);
	BResources resources;
	status_t status = file.InitCheck();
	if (status == B_OK)
		status = resources.SetTo(&file);
	if (status != B_OK)
		return status;
	size_t size;
	const void* data = resources.LoadResource(kViewType, kViewName, &size);
	if (data == nullptr)
		return B_NAME_NOT_FOUND;
	// It goes by its end, where the message's own header may be damaged.
	BMemoryIO stream(data, size);
	return archive->Unflatten(&stream);
}

} // namespace

TPrefWin::TPrefWin(BRect frame, TCommMan* manager)
	: TMERDlgWin(frame, "PrefWin", B_TITLED_WINDOW_LOOK, B_NORMAL_WINDOW_FEEL,
		B_NOT_RESIZABLE | B_NOT_ZOOMABLE | B_ASYNCHRONOUS_CONTROLS)
{
	SetTarget(manager);
	SetTitle(gLLT->Text("Win_Title_Pref"));
	AddKey('o', B_COMMAND_KEY, merion::kDialogOK);
	AddKey('d', B_COMMAND_KEY, merion::kDialogDefault);
	AddKey('h', B_COMMAND_KEY, merion::kDialogHelp);
	SetInitStatus(LoadView());
}

TPrefWin::~TPrefWin() = default;

status_t
TPrefWin::LoadView()
{
	BMessage archive;
	status_t status = read_archive(&archive);
	if (status != B_OK)
		return status;
	auto view = std::make_unique<TPrefView>(&archive);
	status = view->InitCheck();
	if (status != B_OK)
		return status;
	ResizeTo(view->Frame().Width(), view->Frame().Height());
	SetDlgView(view.release()); // the window deletes it
	return B_OK;
}

void
TPrefWin::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kPrefStayOnTopChanged:
			PrefStayOnTopChanged();
			break;
		case kStayOnTopItemChanged:
			PrefStayOnTopChanged();
			TellView(message);
			break;
		case kBGImageItemChanged:
		case kLanguageFileChanged:
		case kIAPChanged:
			TellView(message);
			break;
		case kBrowseBGImage:
			ButtonBrowseBGImgClicked();
			break;
		case kBrowseSkin:
			PopMItemGetSkinColorClicked();
			break;
		case kShowSavePanel:
			PopMItemSaveNewPresetClicked();
			break;
		case B_CANCEL:
			Cancel(message);
			break;
		default:
			TMERDlgWin::MessageReceived(message);
	}
}

void
TPrefWin::LanguageChanged()
{
	SetTitle(gLLT->Text("Win_Title_Pref"));
	SetPanelLabels();
	TMERDlgWin::LanguageChanged();
}

void
TPrefWin::TellView(BMessage* message)
{
	if (DlgView() != nullptr)
		DlgView()->MessageReceived(message);
}

void
TPrefWin::PrefStayOnTopChanged()
{
	set_proper_feel(this);
}
