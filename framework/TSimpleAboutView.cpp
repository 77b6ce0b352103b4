#include "framework/TSimpleAboutView.h"

#include <string>

#include <Button.h>
#include <TabView.h>

#include "framework/TAppInfoView.h"
#include "framework/TIAPItemAccKeyFormat.h"
#include "framework/TLLT.h"
#include "framework/TLanguageInfoView.h"
#include "framework/accelerator.h"

namespace merion {

namespace {

constexpr float kMargin = 12;
constexpr float kPageWidth = 400;
constexpr float kPageHeight = 250;
constexpr float kTabRoom = 40; // above and around the pages
constexpr float kButtonWidth = 90;
constexpr float kButtonHeight = 28;

BRect
view_frame()
{
	return BRect(
		0, 0, kPageWidth + 2 * kMargin + 8, kPageHeight + kTabRoom + kButtonHeight + 3 * kMargin);
}

} // namespace

TSimpleAboutView::TSimpleAboutView(TAppInfoView* appInfo)
	: TMERDlgView(view_frame(), "AboutView", B_FOLLOW_ALL, B_WILL_DRAW),
	  fAppInfo(appInfo),
	  fLanguageInfo(new TLanguageInfoView(AppInfoFrame()))
{
	SetViewColor(ui_color(B_PANEL_BACKGROUND_COLOR));
	const BRect bounds = Bounds();
	const float buttonTop = bounds.bottom - kMargin - kButtonHeight;
	fTabs = new BTabView(
		BRect(kMargin, kMargin, bounds.right - kMargin, buttonTop - kMargin), "TabViewAbout");
	fTabs->SetResizingMode(B_FOLLOW_ALL);
	fTabs->AddTab(fAppInfo);
	fTabs->AddTab(fLanguageInfo);
	const BRect page = fTabs->ContainerView()->Bounds();
	for (BView* view : {static_cast<BView*>(fAppInfo), static_cast<BView*>(fLanguageInfo)}) {
		view->MoveTo(B_ORIGIN);
		view->ResizeTo(page.Width(), page.Height());
	}
	AddChild(fTabs);
	const BRect button(bounds.right - kMargin - kButtonWidth, buttonTop, bounds.right - kMargin,
		buttonTop + kButtonHeight);
	AddChild(new BButton(button, "ButtonOK", "", nullptr, B_FOLLOW_RIGHT | B_FOLLOW_BOTTOM));
}

BRect
TSimpleAboutView::AppInfoFrame()
{
	return BRect(0, 0, kPageWidth, kPageHeight);
}

void
TSimpleAboutView::SetLabels()
{
	TMERDlgView::SetLabels();
	fTabs->TabAt(0)->SetLabel(gLLT->Text("Tab_About"));
	fTabs->TabAt(1)->SetLabel(gLLT->Text("Tab_Language"));
	fTabs->Invalidate();
	fAppInfo->SetLabels();
	fLanguageInfo->SetLabels();
	const std::string ok = merge_accelerator_key(gLLT->Text("Button_OK"), "O", fAccKeyFormat);
	static_cast<BButton*>(FindView("ButtonOK"))->SetLabel(ok.c_str());
}

void
TSimpleAboutView::SetIAPRef(const TInterAppPrefs* prefs)
{
	fAccKeyFormat = TIAPItemAccKeyFormat::Format(prefs);
	LanguageChanged();
}

} // namespace merion
