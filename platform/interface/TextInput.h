#pragma once

#include <TextView.h>

class BTextControl;

//! The line of a text control; archived by this name.
class _BTextInput_ : public BTextView {
public:
	explicit _BTextInput_(BRect frame);

	void SetEnabled(bool enabled);

private:
	BTextControl* Control() const;
	void UserEdited() override;
	void UserEntered() override;
	void UserLeft() override;
};
