#pragma once

#include <TextView.h>

class BTextControl;

namespace BPrivate {

//! The line of a text control; archived by this name.
class _BTextInput_ : public BTextView {
public:
	explicit _BTextInput_(BRect frame);
	explicit _BTextInput_(BMessage* data);

	static BArchivable* Instantiate(BMessage* data);

	void SetEnabled(bool enabled);

private:
	BTextControl* Control() const;
	void UserEdited() override;
	void UserEntered() override;
	void UserLeft() override;
};

} // namespace BPrivate
