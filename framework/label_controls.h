#pragma once

#include <vector>

class BView;

/*!	What the layout of labels has to know of the platform's controls. Thread: with their window locked. */
namespace merion {

//! Does it show a label of its own, so that its preferred size is what it needs?
bool has_label(BView* view);
//! May it hold controls that are to be laid out?
bool is_container(BView* view);
/*!	The views that lie in a container and have its size, but for a frame around them: the pages of a tab view, shown or not. Empty for
	others. */
std::vector<BView*> pages_of(BView* view);
//! The least width for all of its own labels: a box's, a tab view's tabs. 0 for others.
float own_label_width(BView* view);

//! The width of the label's part of a menu field or text control; negative for others.
float divider_of(BView* view);
//! What the label needs of it.
float label_part_width(BView* view);
void set_divider(BView* view, float divider);

} // namespace merion
