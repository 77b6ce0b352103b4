#pragma once

#include <string>

#include "framework/TMERDlgView.h"
#include "framework/TQuestion.h"
#include "prefs/TPref.h"

class BBox;
class BButton;
class BCheckBox;
class BColorControl;
class BControl;
class BMenu;
class BMenuField;
class BMenuItem;
class BRadioButton;
class BTabView;
class BTextControl;
class TFontFamilyMenu;

/*!	All of the preferences window: edits gPref in place. A change is applied and told to the manager at once; OK keeps and
	saves it, Cancel goes back to the last OK, or to what held when the view was made.
	Its controls come from the archive and are known by their names; pref_codes.h has the messages.
	Thread and owner: as every view. */
class TPrefView : public merion::TMERDlgView {
public:
	explicit TPrefView(BMessage* archive);

	//! B_BAD_DATA: a control is missing in the archive. The view must not be shown then.
	status_t InitCheck() const { return fInitStatus; }

	void AllAttached() override;
	void MessageReceived(BMessage* message) override;
	void SetLabels() override;

	void ButtonOKClicked() override;
	void ButtonCancelClicked() override;
	void ButtonDefaultClicked() override;
	void ButtonHelpClicked() override;

	//! Sets every control from gPref. Tells nobody.
	void UpdateCompos();

	// Notices, to the manager.
	void NotifyPrefChange(BMessage* notice);
	void NotifyPrefChange(uint32 what);
	//! For what has changed of the language file and the tool bar, and of nothing else.
	void NotifyPrefDiffe(const TPref& before, const TPref& after);

	// Colours out of a skin: prefs/skin_colors.h tells how.

	//! "refs" (ref): the skin. A box says so when it has no colours.
	void GetSkinColorRqtd(BMessage* message);
	void GetSkinColor(
		const std::string* lines, int32 count, const char* key, rgb_color* colour) const;
	int HexToInt(char c) const;

private:
	bool ControlReceived(BMessage* message);
	bool MenuReceived(BMessage* message);
	bool OptionReceived(BMessage* message);
	bool ChangeReceived(BMessage* message);

	// The controls
	void GetChildPointer();
	BView* FindControl(const char* name) const;
	template<typename Control> void Find(const char* name, Control** control);
	void SetTargets();

	// Single controls: TPrefViewControls.cpp
	void CBoxStayOnTopChanged();
	void TxtCtrlFontSizeChanged();
	void CBoxAntiAliasingChanged();
	void CBoxUseActiveFrameChanged();
	void CBoxUseBGImageChanged();
	void TxtCtrlBGImageFNameChanged();
	void RButtonBGImageAlignChanged();
	void CBoxDoubleBufferingChanged();
	void TxtCtrlTimeDifferenceChanged();
	void CBoxShowToolBarChanged();
	//! False after it has said that this is no image.
	bool TellUnlessImage(const std::string& path);
	void BGImageDropped(const BMessage* message);
	void ApplyTexts();
	void UpdateStayOnTop();
	void UpdateTexts();
	void UpdateBGImage();
	void NotifyStayOnTop();
	void NotifyDisplayDiffe(const TPref& before, const TPref& after);

	// Menus: TPrefViewMenus.cpp
	void BuildMenus();
	void BuildLanguageMenu();
	void BuildColorMenu();
	void MFieldLanguageChanged(const BMessage* message);
	void MFieldReadEncodingChanged();
	void MFieldWriteEncodingChanged();
	void MFieldWriteCRTypeChanged();
	void MFieldColorChanged();
	void ColCtrlAppearanceChanged();
	void UpdateMenus();
	void UpdateLanguage();
	void UpdateColors();
	void ShowColor(rgb_color color);
	void ShowDispColor(rgb_color color);

	// Option and font menus: TPrefViewOptions.cpp
	void MakeFontFamilyField();
	void MFieldFontFamilyChanged(const BMessage* message);
	void BuildOptionMenu();
	void LoadPresetRqtd(const BMessage* message);
	void SavePresetRqtd(const BMessage* message);
	void SaveNewPresetRqtd(const BMessage* message);
	void SavePreset(const std::string& name);
	void DeletePresetRqtd(const BMessage* message);
	void DeleteAllPresetsRqtd(const BMessage* message);
	void AskAboutPreset(const BMessage& request, const std::string& key, const std::string& name,
		merion::TQuestion::Button goOn);

	status_t fInitStatus = B_OK;
	TPref fCancelPref; // what Cancel goes back to
	merion::TQuestion fQuestion;

	BTabView* fTabViewCategory = nullptr;
	BCheckBox* fCBoxStayOnTop = nullptr;
	BMenuField* fMFieldLanguage = nullptr;
	BMenuField* fMFieldReadEncoding = nullptr;
	BMenuField* fMFieldFontFamily = nullptr;
	TFontFamilyMenu* fFontFamilyMenu = nullptr; // its menu
	BTextControl* fTxtCtrlFontSize = nullptr;
	BCheckBox* fCBoxAntiAliasing = nullptr;
	BMenuField* fMFieldColor = nullptr;
	BColorControl* fColCtrlAppearance = nullptr;
	BBox* fBoxDispColor = nullptr;
	BView* fViewDispColor = nullptr;
	BCheckBox* fCBoxUseActiveFrame = nullptr;
	BMenuField* fMFieldOption = nullptr;
	BCheckBox* fCBoxUseBGImage = nullptr;
	BTextControl* fTxtCtrlBGImageFName = nullptr;
	BButton* fButtonBrowseBGImg = nullptr;
	BRadioButton* fRButtonTile = nullptr;
	BRadioButton* fRButtonScaleToFit = nullptr;
	BCheckBox* fCBoxDoubleBuffering = nullptr;
	BMenuField* fMFieldWriteCRType = nullptr;
	BMenuField* fMFieldWriteEncoding = nullptr;
	BTextControl* fTxtCtrlTimeDifference = nullptr;
	BCheckBox* fCBoxShowToolButton = nullptr;
};
