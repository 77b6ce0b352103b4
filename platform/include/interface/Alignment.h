#pragma once

#include <InterfaceDefs.h>

/*!	Where something lies in the room that it has. */
class BAlignment {
public:
	alignment horizontal = B_ALIGN_HORIZONTAL_UNSET;
	vertical_alignment vertical = B_ALIGN_VERTICAL_UNSET;

	BAlignment() = default;
	BAlignment(alignment horizontal, vertical_alignment vertical)
		: horizontal(horizontal),
		  vertical(vertical)
	{ }

	alignment Horizontal() const { return horizontal; }
	vertical_alignment Vertical() const { return vertical; }
	void SetHorizontal(alignment newHorizontal) { horizontal = newHorizontal; }
	void SetVertical(vertical_alignment newVertical) { vertical = newVertical; }
	bool operator==(const BAlignment& other) const
	{
		return horizontal == other.horizontal && vertical == other.vertical;
	}
	bool operator!=(const BAlignment& other) const { return !(*this == other); }
};
