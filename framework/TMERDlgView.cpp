#include "framework/TMERDlgView.h"

#include <Button.h>
#include <Message.h>
#include <Window.h>

#include "framework/TLLT.h"
#include "framework/TLabelLayout.h"
#include "framework/framework_codes.h"

namespace merion {

namespace {

struct DialogButton {
	const char* name;
	const char* labelKey;
	uint32 command;
};

constexpr DialogButton kButtons[] = {
	{"ButtonOK", "Button_OK", kDialogOK},
	{"ButtonCancel", "Button_Cancel", kDialogCancel},
	{"ButtonDefault", "Button_Default", kDialogDefault},
	{"ButtonHelp", "Button_Help", kDialogHelp},
};

} // namespace

TMERDlgView::TMERDlgView(BRect frame, const char* name, uint32 resizingMode, uint32 flags)
	: TMERView(frame, name, resizingMode, flags)
{ }

TMERDlgView::TMERDlgView(BMessage* archive) : TMERView(archive) { }

TMERDlgView::~TMERDlgView() = default;

void
TMERDlgView::AllAttached()
{
	TMERView::AllAttached();
	for (const DialogButton& known : kButtons) {
		BButton* button = SetUpButton(known.name, known.command);
		if (button != nullptr && known.command == kDialogOK)
			button->MakeDefault(true);
	}
	if (fLayout == nullptr)
		fLayout = std::make_unique<TLabelLayout>(this);
	LanguageChanged();
}

BButton*
TMERDlgView::SetUpButton(const char* name, uint32 command)
{
	auto* button = dynamic_cast<BButton*>(FindView(name));
	if (button == nullptr)
		return nullptr;
	button->SetMessage(new BMessage(command));
	button->SetTarget(this);
	return button;
}

void
TMERDlgView::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case kDialogOK:
			ButtonOKClicked();
			break;
		case kDialogCancel:
			ButtonCancelClicked();
			break;
		case kDialogDefault:
			ButtonDefaultClicked();
			break;
		case kDialogHelp:
			ButtonHelpClicked();
			break;
		case kLanguageChanged:
			LanguageChanged();
			break;
		default:
			TMERView::MessageReceived(message);
	}
}

void
TMERDlgView::SetLabels()
{
	for (const DialogButton& known : kButtons) {
		if (auto* button = dynamic_cast<BButton*>(FindView(known.name)))
			button->SetLabel(gLLT->Text(known.labelKey));
	}
}

void
TMERDlgView::LanguageChanged()
{
	SetLabels();
	FitLabels();
}

void
TMERDlgView::FitLabels()
{
	if (fLayout == nullptr || Window() == nullptr)
		return;
	const BSize size = fLayout->MinSize();
	// Its place first: the view may follow the window.
	Window()->ResizeTo(Frame().left + size.width, Frame().top + size.height);
	fLayout->Apply(size);
}

void
TMERDlgView::HideWindow()
{
	if (!Window()->IsHidden())
		Window()->Hide();
}

void
TMERDlgView::ButtonOKClicked()
{
	HideWindow();
}

void
TMERDlgView::ButtonCancelClicked()
{
	HideWindow();
}

void
TMERDlgView::ButtonDefaultClicked()
{ }

void
TMERDlgView::ButtonHelpClicked()
{ }

} // namespace merion
