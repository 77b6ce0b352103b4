// The check boxes, texts and radio buttons of the preferences window.

#include <memory>
#include <string>

#include <Bitmap.h>
#include <Button.h>
#include <CheckBox.h>
#include <Entry.h>
#include <Message.h>
#include <RadioButton.h>
#include <TextControl.h>
#include <TranslationUtils.h>
#include <Window.h>

#include "framework/TLLT.h"
#include "framework/file_utils.h"
#include "prefs/rgb_color_utils.h"
#include "prefs/skin_colors.h"
#include "prefs/window/TPrefView.h"
#include "prefs/window/number_field.h"
#include "prefs/window/pref_codes.h"

namespace {

constexpr float kMinFontSize = 5; // points
constexpr float kMaxFontSize = 50;
constexpr int32 kMaxTimeDifference = 5000; // to either side

bool
is_on(const BControl* control)
{
	return control->Value() == B_CONTROL_ON;
}

bool
has_same_colors(TPref before, TPref after)
{
	for (int32 i = 0; i < kColorCount; i++) {
		if (compare_rgb_color(before.Color(i), after.Color(i)))
			return false;
	}
	return true;
}

bool
has_same_appearance(const TPref& before, const TPref& after)
{
	return before.fAntiAliasing == after.fAntiAliasing
		&& before.fUseActiveFrame == after.fUseActiveFrame
		&& before.fUseBGImage == after.fUseBGImage && before.fBGImageAlign == after.fBGImageAlign
		&& before.fFontSize == after.fFontSize
		&& before.fFontFamily.Get() == after.fFontFamily.Get()
		&& before.fBGImageFile.Get() == after.fBGImageFile.Get() && has_same_colors(before, after);
}

} // namespace

void
TPrefView::CBoxStayOnTopChanged()
{
	gPref->fStayOnTop = is_on(fCBoxStayOnTop);
	NotifyStayOnTop();
}

void
TPrefView::TxtCtrlFontSizeChanged()
{
	gPref->fFontSize = AdjustValue(txt_ctrl_float(fTxtCtrlFontSize), kMinFontSize, kMaxFontSize);
	SetTxtCtrlNum(fTxtCtrlFontSize, gPref->fFontSize.Get());
	NotifyPrefChange(kPrefAppearanceChanged);
}

void
TPrefView::CBoxAntiAliasingChanged()
{
	gPref->fAntiAliasing = is_on(fCBoxAntiAliasing);
	NotifyPrefChange(kPrefAppearanceChanged);
}

void
TPrefView::CBoxUseActiveFrameChanged()
{
	gPref->fUseActiveFrame = is_on(fCBoxUseActiveFrame);
	NotifyPrefChange(kPrefAppearanceChanged);
}

void
TPrefView::CBoxUseBGImageChanged()
{
	gPref->fUseBGImage = is_on(fCBoxUseBGImage);
	UpdateBGImage();
	NotifyPrefChange(kPrefAppearanceChanged);
}

void
TPrefView::TxtCtrlBGImageFNameChanged()
{
	const std::string path = fTxtCtrlBGImageFName->Text();
	gPref->fBGImageFile = path;
	NotifyPrefChange(kPrefAppearanceChanged);
	if (!path.empty())
		TellUnlessImage(path);
}

void
TPrefView::RButtonBGImageAlignChanged()
{
	gPref->fBGImageAlign = is_on(fRButtonTile) ? kBGImageTile : kBGImageScaleToFit;
	NotifyPrefChange(kPrefAppearanceChanged);
}

void
TPrefView::CBoxDoubleBufferingChanged()
{
	gPref->fDoubleBuffering = is_on(fCBoxDoubleBuffering);
	NotifyPrefChange(kPrefDoubleBufferingChanged);
}

void
TPrefView::TxtCtrlTimeDifferenceChanged()
{
	gPref->fTimeDifference = AdjustValue(
		txt_ctrl_int32(fTxtCtrlTimeDifference), -kMaxTimeDifference, kMaxTimeDifference);
	SetTxtCtrlNum(fTxtCtrlTimeDifference, gPref->fTimeDifference.Get());
	NotifyPrefChange(kPrefTimeDifferenceChanged);
}

void
TPrefView::CBoxShowToolBarChanged()
{
	gPref->fShowToolBar = is_on(fCBoxShowToolButton);
	NotifyPrefChange(kPrefShowToolBarChanged);
}

bool
TPrefView::TellUnlessImage(const std::string& path)
{
	const std::unique_ptr<BBitmap> image(BTranslationUtils::GetBitmap(path.c_str()));
	if (image == nullptr)
		fQuestion.Tell((gLLT->Text("Err_Cannot_Read_Image") + path).c_str());
	return image != nullptr;
}

/*!	Switches the image on, or says that it is none, as a drop on the display does. */
void
TPrefView::BGImageDropped(const BMessage* message)
{
	entry_ref ref;
	if (message->FindRef("refs", &ref) != B_OK)
		return;
	if (is_skin(ref)) {
		BMessage skin(kGetSkinColor);
		skin.AddRef("refs", &ref);
		MessageReceived(&skin);
		return;
	}
	const std::string path = merion::path_of(ref);
	if (!TellUnlessImage(path))
		return;
	gPref->fBGImageFile = path;
	gPref->fUseBGImage = true;
	UpdateBGImage();
	NotifyPrefChange(kPrefAppearanceChanged);
}

/*!	A text may not be told yet when OK is pressed without the focus leaving it. */
void
TPrefView::ApplyTexts()
{
	if (fTxtCtrlFontSize->Text() != number_text(gPref->fFontSize.Get()))
		TxtCtrlFontSizeChanged();
	if (fTxtCtrlTimeDifference->Text() != number_text(gPref->fTimeDifference.Get()))
		TxtCtrlTimeDifferenceChanged();
	if (fTxtCtrlBGImageFName->Text() != gPref->fBGImageFile.Get())
		TxtCtrlBGImageFNameChanged();
}

void
TPrefView::UpdateStayOnTop()
{
	fCBoxStayOnTop->SetValue(gPref->fStayOnTop);
}

void
TPrefView::UpdateTexts()
{
	SetTxtCtrlNum(fTxtCtrlFontSize, gPref->fFontSize.Get());
	SetTxtCtrlNum(fTxtCtrlTimeDifference, gPref->fTimeDifference.Get());
}

void
TPrefView::UpdateBGImage()
{
	const bool isUsed = gPref->fUseBGImage;
	fCBoxUseBGImage->SetValue(isUsed);
	fTxtCtrlBGImageFName->SetText(gPref->fBGImageFile.Get().c_str());
	const bool isTile = gPref->fBGImageAlign == kBGImageTile;
	(isTile ? fRButtonTile : fRButtonScaleToFit)->SetValue(B_CONTROL_ON);
	for (BControl* control : std::initializer_list<BControl*>{
			 fTxtCtrlBGImageFName, fButtonBrowseBGImg, fRButtonTile, fRButtonScaleToFit})
		control->SetEnabled(isUsed);
}

//! The window itself floats or not as the display does.
void
TPrefView::NotifyStayOnTop()
{
	NotifyPrefChange(kPrefStayOnTopChanged);
	Window()->PostMessage(kPrefStayOnTopChanged);
}

//! So that the display shows what holds.
void
TPrefView::NotifyDisplayDiffe(const TPref& before, const TPref& after)
{
	if (before.fStayOnTop != after.fStayOnTop)
		NotifyStayOnTop();
	if (!has_same_appearance(before, after))
		NotifyPrefChange(kPrefAppearanceChanged);
	if (before.fDoubleBuffering != after.fDoubleBuffering)
		NotifyPrefChange(kPrefDoubleBufferingChanged);
}
