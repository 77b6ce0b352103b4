#pragma once

#include <Control.h>
#include <string>

class BTextView;

namespace BPrivate {
class _BTextInput_;
}

/*!	A line of text that the user can change, with a label at its left.
	When the user has changed the text, the control's message is sent as soon as the Enter key is
	pressed, the focus goes to another control or the control leaves its window. SetText() sends
	nothing. */
class BTextControl : public BControl {
public:
	//! With a label, the text begins in the middle; NULL or "": no label.
	BTextControl(BRect frame, const char* name, const char* label, const char* initialText,
		BMessage* message, uint32 resizingMode = B_FOLLOW_LEFT_TOP,
		uint32 flags = B_WILL_DRAW | B_NAVIGABLE);
	//! The text is that of the child that is its line.
	explicit BTextControl(BMessage* data);
	~BTextControl() override;

	static BArchivable* Instantiate(BMessage* data);
	//! `deep`: with the text.
	status_t Archive(BMessage* data, bool deep = true) const override;

	void DetachedFromWindow() override;
	void MakeFocus(bool focus = true) override;
	void GetPreferredSize(float* width, float* height) override;
	//! The label gets just the room that it needs.
	void ResizeToPreferred() override;
	void SetLabel(const char* label) override;
	void SetEnabled(bool enabled) override;

	virtual void SetText(const char* text);
	//! Never NULL; until the text changes.
	const char* Text() const;
	int32 TextLength() const;
	//! Sent at each change by the user. Owns it; NULL: none.
	virtual void SetModificationMessage(BMessage* message);
	BMessage* ModificationMessage() const;

	virtual void SetAlignment(alignment forLabel, alignment forText);
	void GetAlignment(alignment* forLabel, alignment* forText) const;
	//! Where the text begins, from the left edge.
	virtual void SetDivider(float divider);
	float Divider() const;
	//! For its limits (SetMaxBytes(), DisallowChar()) and the selection; the control's.
	BTextView* TextView() const;

private:
	friend class BPrivate::_BTextInput_;

	void Init();
	void Modified();
	void Commit();

	BPrivate::_BTextInput_* fText;
	std::string fCommitted; // as the target knows it
	BMessage* fModification;
	alignment fLabelAlignment;
	float fDivider;
};
