#pragma once

#include <Control.h>

enum thumb_style { B_BLOCK_THUMB, B_TRIANGLE_THUMB };

/*!	A horizontal slider, with its label above. A click beside the thumb brings it there.
	While the user drags the thumb the modification message is sent, at the end the invocation message; a key or the wheel sends both.
	SetValue() sends nothing, and does not move the thumb away from a user who holds it. */
class BSlider : public BControl {
public:
	//! Both styles of thumb look as the desktop's. `label` may be NULL.
	BSlider(BRect frame, const char* name, const char* label, BMessage* message, int32 minValue,
		int32 maxValue, thumb_style thumbType = B_BLOCK_THUMB,
		uint32 resizingMode = B_FOLLOW_LEFT_TOP,
		uint32 flags = B_NAVIGABLE | B_WILL_DRAW | B_FRAME_EVENTS);
	~BSlider() override;

	void GetPreferredSize(float* width, float* height) override;
	void SetLabel(const char* label) override;
	//! Within the limits.
	void SetValue(int32 value) override;

	//! The value stays, or goes to the nearest limit.
	virtual void SetLimits(int32 minValue, int32 maxValue);
	void GetLimits(int32* minValue, int32* maxValue) const;
	//! Owns the message; NULL for none.
	virtual void SetModificationMessage(BMessage* message);
	BMessage* ModificationMessage() const;
	//! How far an arrow key goes; at first 1.
	virtual void SetKeyIncrementValue(int32 value);
	int32 KeyIncrementValue() const;

private:
	void Moved(BMessage* event);

	int32 fMin;
	int32 fMax;
	int32 fKeyIncrement;
	BMessage* fModification;
};
