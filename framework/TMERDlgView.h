#pragma once

#include <memory>

#include "framework/TMERView.h"

class BButton;

namespace merion {

class TLabelLayout;

/*!	Base of the views that fill a dialog window (TMERDlgWin). It knows the dialog's buttons by their names, as far as there are any:
	"ButtonOK" (Return presses it), "ButtonCancel" (Escape does), "ButtonDefault" and "ButtonHelp". They send the view kDialogOK and so on.
	When it gets into its window, and when the language changes, it sets the labels and makes room for them, which makes the window
	larger, or smaller down to the size that the view was designed in.
	Thread and owner: as every view. */
class TMERDlgView : public TMERView {
public:
	TMERDlgView(BRect frame, const char* name, uint32 resizingMode, uint32 flags);
	//! From an archive, with the views in it.
	explicit TMERDlgView(BMessage* archive);
	~TMERDlgView() override;

	void AllAttached() override;
	void MessageReceived(BMessage* message) override;

	//! Hook: sets every label from gLLT. Here those of the four buttons; a derived class calls this one too.
	virtual void SetLabels();
	//! The labels in the new language, and room for them. '_lgc' ends here, whether the view or its window gets it.
	virtual void LanguageChanged();

	// The buttons, or their keys. OK and Cancel hide the window here, Default and Help do nothing.
	virtual void ButtonOKClicked();
	virtual void ButtonCancelClicked();
	virtual void ButtonDefaultClicked();
	virtual void ButtonHelpClicked();

protected:
	//! Makes room for the labels as they are, and resizes the window: for labels that change by themselves.
	void FitLabels();
	//! Hides the window if it is shown.
	void HideWindow();

private:
	BButton* SetUpButton(const char* name, uint32 command);

	std::unique_ptr<TLabelLayout> fLayout; // made when all controls are there
};

} // namespace merion
