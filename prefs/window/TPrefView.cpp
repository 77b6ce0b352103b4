#include "prefs/window/TPrefView.h"

#include <string>

#include <Box.h>
#include <Button.h>
#include <CheckBox.h>
#include <ColorControl.h>
#include <MenuField.h>
#include <Message.h>
#include <RadioButton.h>
#include <StringView.h>
#include <TabView.h>
#include <TextControl.h>

#include "framework/TIAPItemAccKeyFormat.h"
#include "framework/TInterAppPrefs.h"
#include "framework/TLLT.h"
#include "framework/TMERDlgWin.h"
#include "framework/accelerator.h"
#include "plugin/helpers/settings_files.h"
#include "plugin/helpers/show_help.h"
#include "prefs/window/TFontFamilyMenu.h"
#include "prefs/window/pref_codes.h"

namespace {

// In the order of the tabs.
constexpr const char* kTabLabels[] = {"Tab_Shared_General", "Tab_Shared_Appearance",
	"Tab_Displayer_BG_Image", "Tab_Displayer_Other", "Tab_Editor_Create"};

constexpr struct {
	const char* control;
	const char* key;
} kLabels[] = {
	{"CBoxStayOnTop", "CBox_Stay_On_Top"},
	{"MFieldLanguage", "MField_Language"},
	{"MFieldReadEncoding", "MField_Read_Encoding"},
	{"StrViewSharedGeneralStat", "StrView_Shared_Stat"},
	{"MFieldFontFamily", "MField_Font_Family"},
	{"TxtCtrlFontSize", "TxtCtrl_Font_Size"},
	{"CBoxAntiAliasing", "CBox_Anti_Aliasing"},
	{"MFieldColor", "MField_Color"},
	{"CBoxUseActiveFrame", "CBox_Use_Active_Frame"},
	{"MFieldOption", "MField_Option"},
	{"StrViewSharedAppearanceStat", "StrView_Shared_Stat"},
	{"CBoxUseBGImage", "CBox_Use_BG_Image"},
	{"TxtCtrlBGImageFName", "TxtCtrl_BG_Image_File_Name"},
	{"ButtonBrowseBGImg", "Button_Browse"},
	{"BoxBGImageAlign", "Box_BG_Image_Align"},
	{"RButtonTile", "RButton_Tile"},
	{"RButtonScaleToFit", "RButton_Scale_To_Fit"},
	{"StrViewDisplayerBGImageStat", "StrView_Displayer_Stat"},
	{"CBoxDoubleBuffering", "CBox_Double_Buffering"},
	{"StrViewDisplayerOtherStat", "StrView_Displayer_Stat"},
	{"BoxNew", "Box_New"},
	{"MFieldWriteCRType", "MField_Write_Return_Code"},
	{"MFieldWriteEncoding", "MField_Write_Encoding"},
	{"TxtCtrlTimeDifference", "TxtCtrl_Time_Difference"},
	{"CBoxShowToolButton", "CBox_Show_Tool_Bar"},
	{"StrViewEditorNewStat", "StrView_Editor_Stat"},
};

// As TPrefWin knows them. Cancel has Escape: its own letter copies in the text fields.
constexpr struct {
	const char* button;
	const char* labelKey;
	const char* key;
} kButtonKeys[] = {{"ButtonOK", "Button_OK", "O"}, {"ButtonDefault", "Button_Default", "D"},
	{"ButtonHelp", "Button_Help", "H"}};

void
set_label(BView* view, const char* label)
{
	if (auto* control = dynamic_cast<BControl*>(view))
		control->SetLabel(label);
	else if (auto* field = dynamic_cast<BMenuField*>(view))
		field->SetLabel(label);
	else if (auto* text = dynamic_cast<BStringView*>(view))
		text->SetText(label);
	else if (auto* box = dynamic_cast<BBox*>(view))
		box->SetLabel(label);
}

} // namespace

TPrefView::TPrefView(BMessage* archive) : TMERDlgView(archive), fCancelPref(*gPref)
{
	GetChildPointer();
}

template<typename Control>
void
TPrefView::Find(const char* name, Control** control)
{
	*control = dynamic_cast<Control*>(FindControl(name));
	if (*control == nullptr)
		fInitStatus = B_BAD_DATA;
}

void
TPrefView::GetChildPointer()
{
	Find("TabViewCategory", &fTabViewCategory);
	Find("CBoxStayOnTop", &fCBoxStayOnTop);
	Find("MFieldLanguage", &fMFieldLanguage);
	Find("MFieldReadEncoding", &fMFieldReadEncoding);
	Find("MFieldFontFamily", &fMFieldFontFamily);
	Find("TxtCtrlFontSize", &fTxtCtrlFontSize);
	Find("CBoxAntiAliasing", &fCBoxAntiAliasing);
	Find("MFieldColor", &fMFieldColor);
	Find("ColCtrlAppearance", &fColCtrlAppearance);
	Find("BoxDispColor", &fBoxDispColor);
	Find("ViewDispColor", &fViewDispColor);
	Find("CBoxUseActiveFrame", &fCBoxUseActiveFrame);
	Find("MFieldOption", &fMFieldOption);
	Find("CBoxUseBGImage", &fCBoxUseBGImage);
	Find("TxtCtrlBGImageFName", &fTxtCtrlBGImageFName);
	Find("ButtonBrowseBGImg", &fButtonBrowseBGImg);
	Find("RButtonTile", &fRButtonTile);
	Find("RButtonScaleToFit", &fRButtonScaleToFit);
	Find("CBoxDoubleBuffering", &fCBoxDoubleBuffering);
	Find("MFieldWriteCRType", &fMFieldWriteCRType);
	Find("MFieldWriteEncoding", &fMFieldWriteEncoding);
	Find("TxtCtrlTimeDifference", &fTxtCtrlTimeDifference);
	Find("CBoxShowToolButton", &fCBoxShowToolButton);
	if (fInitStatus == B_OK)
		MakeFontFamilyField();
}

//! Of the pages only the selected one is among the view's children.
BView*
TPrefView::FindControl(const char* name) const
{
	if (BView* view = FindView(name))
		return view;
	BView* found = nullptr;
	const int32 count = fTabViewCategory != nullptr ? fTabViewCategory->CountTabs() : 0;
	for (int32 i = 0; i < count && found == nullptr; i++) {
		if (const BView* page = fTabViewCategory->ViewForTab(i))
			found = page->FindView(name);
	}
	return found;
}

void
TPrefView::AllAttached()
{
	SetTargets();
	TMERDlgView::AllAttached();
	UpdateCompos();
}

void
TPrefView::SetTargets()
{
	for (BControl* control : std::initializer_list<BControl*>{fCBoxStayOnTop, fTxtCtrlFontSize,
			 fCBoxAntiAliasing, fColCtrlAppearance, fCBoxUseActiveFrame, fCBoxUseBGImage,
			 fTxtCtrlBGImageFName, fRButtonTile, fRButtonScaleToFit, fCBoxDoubleBuffering,
			 fTxtCtrlTimeDifference, fCBoxShowToolButton})
		control->SetTarget(this);
	fButtonBrowseBGImg->SetTarget(Window());
	fFontFamilyMenu->SetTargetForItems(BMessenger(this));
}

void
TPrefView::MessageReceived(BMessage* message)
{
	if (!ControlReceived(message) && !MenuReceived(message) && !OptionReceived(message)
		&& !ChangeReceived(message))
		TMERDlgView::MessageReceived(message);
}

bool
TPrefView::ControlReceived(BMessage* message)
{
	switch (message->what) {
		case kCBoxStayOnTop:
			CBoxStayOnTopChanged();
			return true;
		case kTxtCtrlFontSize:
			TxtCtrlFontSizeChanged();
			return true;
		case kCBoxAntiAliasing:
			CBoxAntiAliasingChanged();
			return true;
		case kColCtrlAppearance:
			ColCtrlAppearanceChanged();
			return true;
		case kCBoxUseActiveFrame:
			CBoxUseActiveFrameChanged();
			return true;
		case kCBoxUseBGImage:
			CBoxUseBGImageChanged();
			return true;
		case kTxtCtrlBGImageFName:
			TxtCtrlBGImageFNameChanged();
			return true;
		case kRButtonBGImageAlign:
			RButtonBGImageAlignChanged();
			return true;
		case kCBoxDoubleBuffering:
			CBoxDoubleBufferingChanged();
			return true;
		case kTxtCtrlTimeDifference:
			TxtCtrlTimeDifferenceChanged();
			return true;
		case kCBoxShowToolBar:
			CBoxShowToolBarChanged();
			return true;
		default:
			return false;
	}
}

bool
TPrefView::MenuReceived(BMessage* message)
{
	switch (message->what) {
		case kMFieldLanguage:
			MFieldLanguageChanged(message);
			return true;
		case kMFieldReadEncoding:
			MFieldReadEncodingChanged();
			return true;
		case kMFieldColor:
			MFieldColorChanged();
			return true;
		case kMFieldWriteCRType:
			MFieldWriteCRTypeChanged();
			return true;
		case kMFieldWriteEncoding:
			MFieldWriteEncodingChanged();
			return true;
		default:
			return false;
	}
}

bool
TPrefView::ChangeReceived(BMessage* message)
{
	switch (message->what) {
		case kStayOnTopItemChanged:
			UpdateStayOnTop();
			return true;
		case kBGImageItemChanged:
			// A skin that is dropped on the display comes this way too.
			UpdateBGImage();
			UpdateColors();
			return true;
		case kLanguageFileChanged:
			BuildLanguageMenu();
			FitLabels();
			return true;
		case kIAPChanged:
			LanguageChanged();
			return true;
		case kFileDropped:
		case kOpenRefs:
			BGImageDropped(message);
			return true;
		default:
			return false;
	}
}

void
TPrefView::SetLabels()
{
	TMERDlgView::SetLabels();
	for (const auto& known : kLabels)
		set_label(FindControl(known.control), gLLT->Text(known.key));
	int32 tab = 0;
	for (const char* key : kTabLabels) {
		if (BTab* known = fTabViewCategory->TabAt(tab++))
			known->SetLabel(gLLT->Text(key));
	}
	fTabViewCategory->Invalidate();
	const int32 format = merion::TIAPItemAccKeyFormat::Format(gIAP);
	for (const auto& known : kButtonKeys) {
		const std::string label
			= merion::merge_accelerator_key(gLLT->Text(known.labelKey), known.key, format);
		set_label(FindView(known.button), label.c_str());
	}
	BuildMenus();
}

void
TPrefView::ButtonOKClicked()
{
	ApplyTexts();
	fQuestion.Close();
	TMERDlgView::ButtonOKClicked();
	fCancelPref = *gPref;
	save_pref(false);
	BMessage notice(kSetStatusBarText);
	notice.AddString("StatBarStr", gLLT->Text("StatBarStr_Pref_Changed"));
	NotifyPrefChange(&notice);
}

void
TPrefView::ButtonCancelClicked()
{
	const TPref before(*gPref);
	fQuestion.Close();
	TMERDlgView::ButtonCancelClicked();
	*gPref = fCancelPref;
	NotifyPrefDiffe(before, *gPref);
	UpdateCompos();
	NotifyPrefChange(kPrefEditCancelled);
	NotifyDisplayDiffe(before, *gPref);
}

void
TPrefView::ButtonDefaultClicked()
{
	const TPref before(*gPref);
	*gPref = TPref();
	NotifyPrefDiffe(before, *gPref);
	UpdateCompos();
	NotifyDisplayDiffe(before, *gPref);
}

void
TPrefView::ButtonHelpClicked()
{
	show_help();
}

void
TPrefView::UpdateCompos()
{
	UpdateStayOnTop();
	UpdateMenus();
	UpdateTexts();
	fCBoxAntiAliasing->SetValue(gPref->fAntiAliasing);
	fCBoxUseActiveFrame->SetValue(gPref->fUseActiveFrame);
	UpdateBGImage();
	fCBoxDoubleBuffering->SetValue(gPref->fDoubleBuffering);
	fCBoxShowToolButton->SetValue(gPref->fShowToolBar);
}

void
TPrefView::NotifyPrefChange(BMessage* notice)
{
	if (auto* window = dynamic_cast<merion::TMERDlgWin*>(Window()))
		window->NotifyTarget(notice);
}

void
TPrefView::NotifyPrefChange(uint32 what)
{
	BMessage notice(what);
	NotifyPrefChange(&notice);
}

void
TPrefView::NotifyPrefDiffe(const TPref& before, const TPref& after)
{
	if (before.fLanguageFile.Get() != after.fLanguageFile.Get())
		NotifyPrefChange(kPrefLanguageChanged);
	if (before.fShowToolBar != after.fShowToolBar)
		NotifyPrefChange(kPrefShowToolBarChanged);
}
