#pragma once

#include <InterfaceDefs.h>
#include <View.h>

namespace BPrivate {

/*!	What a text control and a menu field have in common: the label at the left of the divider, a
	widget of the field's own, and the part that is labelled, a child at the right of it. */
class FieldLabel {
public:
	//! For the field's constructor: makes the part its child.
	static void Init(BView& field, BView* part);
	//! The part follows the field's size from then on.
	static void Place(BView& field, BView& part, float divider);
	//! Also names the part for those who cannot see it; a field without label by its own name.
	static void SetLabel(BView& field, BView& part, const char* label);
	static void SetAlignment(BView& field, alignment side);
	static void SetEnabled(BView& field, bool enabled);
	//! What the label and the room behind it need; 0 without one.
	static float Width(const BView& field, const char* label);
	static void GetPreferredSize(
		BView& field, BView& part, const char* label, float* width, float* height);
};

} // namespace BPrivate
