#pragma once

#include <Control.h>

/*!	A check box, B_CONTROL_ON or B_CONTROL_OFF. */
class BCheckBox : public BControl {
public:
	BCheckBox(BRect frame, const char* name, const char* label, BMessage* message,
		uint32 resizingMode = B_FOLLOW_LEFT_TOP, uint32 flags = B_WILL_DRAW | B_NAVIGABLE);
	explicit BCheckBox(BMessage* data);

	static BArchivable* Instantiate(BMessage* data);
	status_t Archive(BMessage* data, bool deep = true) const override;

	void GetPreferredSize(float* width, float* height) override;
	void SetLabel(const char* label) override;
	void SetValue(int32 value) override;

private:
	void Init();
};
