#pragma once

#include <InterfaceDefs.h>
#include <View.h>

namespace BPrivate {

/*!	What a text control and a menu field have in common: the label at the left of the divider, a
	widget of the field's own, and the part that is labelled, a child at the right of it. */
class FieldLabel {
public:
	//! For the field's constructor: makes the part its child, unless it came with the archive.
	static void Init(BView& field, BView* part);
	//! NULL if the archive has none.
	template<typename Part> static Part* ArchivedPart(const BView& field)
	{
		Part* part = NULL;
		for (int32 i = 0; part == NULL && i < field.CountChildren(); i++)
			part = dynamic_cast<Part*>(field.ChildAt(i));
		return part;
	}
	//! In the middle, or, without a label, at the left edge.
	static float UsualDivider(BRect frame, const char* label);
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
