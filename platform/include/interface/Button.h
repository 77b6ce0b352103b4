#pragma once

#include <Control.h>

/*!	A push button. Its value is B_CONTROL_OFF but while it invokes. */
class BButton : public BControl {
public:
	BButton(BRect frame, const char* name, const char* label, BMessage* message,
		uint32 resizingMode = B_FOLLOW_LEFT_TOP, uint32 flags = B_WILL_DRAW | B_NAVIGABLE);
	explicit BButton(BMessage* data);

	static BArchivable* Instantiate(BMessage* data);
	status_t Archive(BMessage* data, bool deep = true) const override;

	void AttachedToWindow() override;
	void GetPreferredSize(float* width, float* height) override;
	void SetLabel(const char* label) override;
	//! The button that Enter presses, wherever the focus is in the window: the one that was it before is it no more.
	virtual void MakeDefault(bool makeDefault);
	bool IsDefault() const { return fDefault; }

private:
	void Init();
	void Clicked();

	bool fDefault;
};
