// The file panels of the preferences window: each is made when it is asked for, and shown again from then on.

#include <memory>
#include <string_view>

#include <Entry.h>
#include <FilePanel.h>
#include <FindDirectory.h>
#include <Message.h>
#include <Node.h>
#include <OS.h>
#include <Path.h>

#include "framework/TLLT.h"
#include "framework/TMERDlgView.h"
#include "framework/dialogs.h"
#include "plugin/helpers/window_feel.h"
#include "prefs/TPref.h"
#include "prefs/presets.h"
#include "prefs/skin_colors.h"
#include "prefs/window/TPrefWin.h"
#include "prefs/window/pref_codes.h"

namespace {

// Of a panel's window: while it is used, and afterwards.
constexpr int32 kPanelPriority = B_NORMAL_PRIORITY;
constexpr int32 kHiddenPanelPriority = B_LOW_PRIORITY;

bool
is_folder(const struct stat_beos* info)
{
	return S_ISDIR(info->st_mode);
}

class ImageFilter : public BRefFilter {
public:
	bool Filter(const entry_ref*, BNode*, struct stat_beos* info, const char* type) override
	{
		return is_folder(info) || std::string_view(type).starts_with("image/");
	}
};

class SkinFilter : public BRefFilter {
public:
	bool Filter(const entry_ref* ref, BNode*, struct stat_beos* info, const char*) override
	{
		return is_folder(info) || is_skin(*ref);
	}
};

// They know nothing, so that all panels may have the same.
ImageFilter sImageFilter;
SkinFilter sSkinFilter;

std::unique_ptr<BFilePanel>
make_panel(file_panel_mode mode, BHandler* target, uint32 flavors, uint32 command,
	BRefFilter* filter = nullptr)
{
	BMessenger messenger(target);
	BMessage message(command);
	auto panel
		= std::make_unique<BFilePanel>(mode, &messenger, nullptr, flavors, false, &message, filter);
	BPath home;
	if (find_directory(B_USER_DIRECTORY, &home) == B_OK)
		panel->SetPanelDirectory(home.Path());
	return panel;
}

void
set_panel_labels(BFilePanel* panel, const char* titleKey, const char* buttonKey)
{
	BWindow* window = panel->Window();
	if (window != nullptr && window->Lock()) {
		window->SetTitle(gLLT->Text(titleKey));
		window->Unlock();
	}
	panel->SetButtonLabel(B_DEFAULT_BUTTON, gLLT->Text(buttonKey));
	panel->SetButtonLabel(B_CANCEL_BUTTON, gLLT->Text("Button_Cancel"));
}

//! In front of a window that floats, too.
void
show_panel(BFilePanel* panel)
{
	BWindow* window = panel->Window();
	if (window == nullptr || !window->Lock())
		return;
	set_proper_feel(window);
	window->Unlock();
	merion::set_file_panel_priority(panel, kPanelPriority);
	panel->Show();
}

} // namespace

void
TPrefWin::Hide()
{
	for (const auto& panel : {&fBrowseBGImgPanel, &fBrowseSkinPanel, &fSavePanel}) {
		if (*panel != nullptr)
			(*panel)->Hide();
	}
	TMERDlgWin::Hide();
}

void
TPrefWin::ButtonBrowseBGImgClicked()
{
	if (fBrowseBGImgPanel == nullptr) {
		fBrowseBGImgPanel
			= make_panel(B_OPEN_PANEL, DlgView(), B_FILE_NODE, kOpenRefs, &sImageFilter);
		SetBrowseBGImgPanelLabel();
		BEntry folder;
		if (BEntry(gPref->fBGImageFile.Get().c_str()).GetParent(&folder) == B_OK)
			fBrowseBGImgPanel->SetPanelDirectory(&folder);
	}
	show_panel(fBrowseBGImgPanel.get());
}

void
TPrefWin::PopMItemGetSkinColorClicked()
{
	if (fBrowseSkinPanel == nullptr) {
		fBrowseSkinPanel = make_panel(
			B_OPEN_PANEL, DlgView(), B_FILE_NODE | B_DIRECTORY_NODE, kGetSkinColor, &sSkinFilter);
		SetBrowseSkinPanelLabel();
	}
	show_panel(fBrowseSkinPanel.get());
}

//! Presets are in their own folder: where the user went the last time does not count.
void
TPrefWin::PopMItemSaveNewPresetClicked()
{
	if (fSavePanel == nullptr) {
		fSavePanel = make_panel(B_SAVE_PANEL, DlgView(), B_FILE_NODE, kSaveNewPreset);
		SetSavePanelLabel();
	}
	BEntry folder;
	if (get_preset_folder(&folder) == B_OK)
		fSavePanel->SetPanelDirectory(&folder);
	fSavePanel->SetSaveText("");
	show_panel(fSavePanel.get());
}

void
TPrefWin::SetPanelLabels()
{
	SetBrowseBGImgPanelLabel();
	SetBrowseSkinPanelLabel();
	SetSavePanelLabel();
}

void
TPrefWin::SetBrowseBGImgPanelLabel()
{
	if (fBrowseBGImgPanel != nullptr)
		set_panel_labels(fBrowseBGImgPanel.get(), "Panel_Title_BG_Image", "Button_Choose");
}

void
TPrefWin::SetBrowseSkinPanelLabel()
{
	if (fBrowseSkinPanel != nullptr)
		set_panel_labels(fBrowseSkinPanel.get(), "Panel_Title_Skin", "Button_Choose");
}

void
TPrefWin::SetSavePanelLabel()
{
	if (fSavePanel != nullptr)
		set_panel_labels(fSavePanel.get(), "Panel_Title_Preset", "Button_Save");
}

void
TPrefWin::Cancel(BMessage* message)
{
	void* source = nullptr;
	message->FindPointer("source", &source);
	for (const auto& panel : {&fBrowseBGImgPanel, &fBrowseSkinPanel, &fSavePanel}) {
		if (*panel != nullptr && panel->get() == source)
			merion::set_file_panel_priority(panel->get(), kHiddenPanelPriority);
	}
}
