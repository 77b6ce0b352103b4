#pragma once

#include <Control.h>

/*!	A button of which one is on among all that have the same parent: whichever is turned on turns its
	siblings off. B_CONTROL_ON or B_CONTROL_OFF. */
class BRadioButton : public BControl {
public:
	BRadioButton(BRect frame, const char* name, const char* label, BMessage* message,
		uint32 resizingMode = B_FOLLOW_LEFT_TOP, uint32 flags = B_WILL_DRAW | B_NAVIGABLE);
	explicit BRadioButton(BMessage* data);

	static BArchivable* Instantiate(BMessage* data);
	status_t Archive(BMessage* data, bool deep = true) const override;

	void AttachedToWindow() override;
	void GetPreferredSize(float* width, float* height) override;
	void SetLabel(const char* label) override;
	//! B_CONTROL_ON turns the siblings off, B_CONTROL_OFF leaves them. Nothing is sent.
	void SetValue(int32 value) override;

private:
	void Init();
	void Chosen();
	template<typename Function> void WithSiblings(Function function);
};
