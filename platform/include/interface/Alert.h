#pragma once

#include <InterfaceDefs.h>
#include <Window.h>
#include <memory>

class BButton;
class BInvoker;
class BTextView;

//! Which sign stands beside an alert's text.
enum alert_type { B_EMPTY_ALERT, B_INFO_ALERT, B_IDEA_ALERT, B_WARNING_ALERT, B_STOP_ALERT };

namespace BPrivate {
class UserAnswer;
}

/*!	A box with a text and up to three buttons, the last of which Enter presses. It stands in the middle of the
	window whose looper opens it, else of the screen. A text that is too long for it can be scrolled.
	Owner: itself from Go() on, which ends when it is answered. Thread: made by any; then as every window. */
class BAlert : public BWindow {
public:
	//! NULL for a button: there is no such one. `button1` must be there.
	BAlert(const char* title, const char* text, const char* button1, const char* button2 = NULL,
		const char* button3 = NULL, button_width width = B_WIDTH_AS_USUAL,
		alert_type type = B_INFO_ALERT);
	~BAlert() override;

	void MessageReceived(BMessage* message) override;
	void DispatchMessage(BMessage* message, BHandler* target) override;

	//! A key, as a byte, that presses the button, whatever has the focus; 0 for none. Out of range: nothing.
	void SetShortcut(int32 index, char key);
	char Shortcut(int32 index) const;

	/*!	Shows it and waits for the button that is pressed: its index, from 0, or -1 when the box is closed or quit, the server
		has gone, or the looper that waits is asked to quit.
		Called by a window's looper, the window goes on drawing; messages wait. */
	int32 Go();
	/*!	Shows it and returns at once. When a button is pressed, the invoker's message is sent with "which" (int32, its index); a box that is
		closed sends nothing. NULL: nobody is told. The invoker must stay until then. */
	status_t Go(BInvoker* invoker);

	//! NULL when out of range.
	BButton* ButtonAt(int32 index) const;
	int32 CountButtons() const;
	//! The text, to be changed before Go().
	BTextView* TextView() const;
	alert_type Type() const;

private:
	static const int32 kMaxButtons = 3;

	void AddPanel(const char* text);
	void AddButtons(const char* const labels[]);
	float SizeButtons();
	void PlaceButtons(float right, float top);
	BSize SizeText() const;
	void LayOut();
	void Open();
	void ButtonPressed(int32 index);

	BView* fPanel;
	BView* fSign = nullptr;
	BTextView* fText = nullptr;
	BButton* fButtons[kMaxButtons] = {};
	char fKeys[kMaxButtons] = {};
	button_width fButtonWidth;
	alert_type fType;
	int32 fWhich = -1;
	BInvoker* fInvoker = nullptr;
	std::shared_ptr<BPrivate::UserAnswer> fAnswer;
};
