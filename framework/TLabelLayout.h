#pragma once

#include <map>
#include <vector>

#include <Rect.h>
#include <Size.h>

#include "framework/TLayoutAxis.h"

class BView;

namespace merion {

/*!	Makes room for the labels of a dialog in any language. It knows the places that the controls were designed at; MinSize()
	asks each control for its preferred size, Apply() moves columns and rows apart as far as that needs, and makes containers larger:
	nothing is cut, nothing covers another, what stood in one column or row still does, and nothing gets smaller than
	designed. A control first takes the empty room beside it. What follows its container's right or bottom edge, or both edges, goes on
	doing so (ResizingMode()).
	Boxes and the pages of tab views are laid out too, whether shown or not. The labels of menu fields and text controls that stand in one column
	get one width.
	Thread: with the window locked; the views are in a window. Owner: whoever shows the views; they live as long. */
class TLabelLayout {
public:
	//! Takes the places that `root` and what is in it have now for the designed ones.
	explicit TLabelLayout(BView* root);

	//! The smallest size for the labels as they are now; as Bounds() count, not less than designed.
	BSize MinSize();
	//! Places everything for a root of this size, which is not less than the MinSize() before it; resizes the root too.
	void Apply(BSize size);

private:
	struct Plan {
		std::vector<BView*> children;
		TLayoutAxis columns;
		TLayoutAxis rows;
	};

	void Remember(BView* view);
	void Measure(BView* container);
	void AlignDividers(const std::vector<BView*>& children);
	BSize NeededSize(BView* view);
	void Place(BView* container, BSize size);

	BView* const fRoot;
	std::map<const BView*, BRect> fDesign;   // frames
	std::map<const BView*, float> fDividers; // as designed
	std::map<const BView*, Plan> fPlans;     // of containers, from the last MinSize()
};

} // namespace merion
