#include "framework/TLabelLayout.h"

#include <algorithm>
#include <cmath>

#include <View.h>

#include "framework/label_controls.h"

namespace merion {

namespace {

constexpr float kMinColumnGap = 8;
constexpr float kMinRowGap = 6;
constexpr uint32 kHorizontalMask = B_FOLLOW_LEFT | B_FOLLOW_RIGHT | B_FOLLOW_H_CENTER;
constexpr uint32 kVerticalMask = B_FOLLOW_TOP | B_FOLLOW_BOTTOM | B_FOLLOW_V_CENTER;
constexpr TLayoutAxis::Span kEverywhere = {-INFINITY, INFINITY};

TLayoutAxis::Follow
follow_of(uint32 mode, uint32 mask, uint32 end, uint32 both)
{
	if ((mode & mask) == both)
		return TLayoutAxis::Follow::kBoth;
	return (mode & mask) == end ? TLayoutAxis::Follow::kEnd : TLayoutAxis::Follow::kStart;
}

std::vector<BView*>
children_of(BView* view)
{
	std::vector<BView*> children;
	for (int32 i = 0; BView* child = view->ChildAt(i); i++)
		children.push_back(child);
	return children;
}

} // namespace

TLabelLayout::TLabelLayout(BView* root) : fRoot(root)
{
	Remember(root);
}

void
TLabelLayout::Remember(BView* view)
{
	fDesign[view] = view->Frame();
	if (const float divider = divider_of(view); divider >= 0)
		fDividers[view] = divider;
	const std::vector<BView*> inside = is_container(view) ? children_of(view) : pages_of(view);
	for (BView* child : inside)
		Remember(child);
}

BSize
TLabelLayout::MinSize()
{
	fPlans.clear();
	return NeededSize(fRoot);
}

/*!	Rows keep apart even where nothing of one lies above the other: what is made wider may come to lie there. */
void
TLabelLayout::Measure(BView* container)
{
	std::vector<BView*> children = children_of(container);
	std::erase_if(children, [this](BView* child) { return !fDesign.contains(child); });
	AlignDividers(children);
	std::vector<TLayoutAxis::Item> columns;
	std::vector<TLayoutAxis::Item> rows;
	for (BView* child : children) {
		const BRect frame = fDesign.at(child);
		const BSize needed = NeededSize(child);
		const uint32 mode = child->ResizingMode();
		columns.push_back({{frame.left, frame.right}, needed.width, {frame.top, frame.bottom},
			follow_of(mode, kHorizontalMask, B_FOLLOW_RIGHT, B_FOLLOW_LEFT_RIGHT)});
		rows.push_back({{frame.top, frame.bottom}, needed.height, kEverywhere,
			follow_of(mode, kVerticalMask, B_FOLLOW_BOTTOM, B_FOLLOW_TOP_BOTTOM)});
	}
	const BRect design = fDesign.at(container);
	fPlans.insert_or_assign(container,
		Plan{std::move(children), TLayoutAxis(std::move(columns), design.Width(), kMinColumnGap),
			TLayoutAxis(std::move(rows), design.Height(), kMinRowGap)});
}

void
TLabelLayout::AlignDividers(const std::vector<BView*>& children)
{
	std::map<float, float> columns; // by their left edges
	for (BView* child : children) {
		if (!fDividers.contains(child))
			continue;
		float& divider = columns[fDesign.at(child).left];
		divider = std::max({divider, fDividers.at(child), std::ceil(label_part_width(child))});
	}
	for (BView* child : children) {
		// without a label there is nothing to align
		if (fDividers.contains(child) && label_part_width(child) > 0)
			set_divider(child, columns.at(fDesign.at(child).left));
	}
}

BSize
TLabelLayout::NeededSize(BView* view)
{
	const BRect design = fDesign.at(view);
	BSize needed(design.Width(), design.Height());
	const auto need = [&needed](float width, float height) {
		needed.width = std::max(needed.width, std::ceil(width));
		needed.height = std::max(needed.height, std::ceil(height));
	};
	need(own_label_width(view), 0);
	if (has_label(view)) {
		float width = 0;
		float height = 0;
		view->GetPreferredSize(&width, &height);
		need(width, height);
		if (const auto divider = fDividers.find(view); divider != fDividers.end())
			need(design.Width() + divider_of(view) - divider->second, 0);
	} else if (is_container(view) && view->CountChildren() > 0) {
		Measure(view);
		const Plan& plan = fPlans.at(view);
		need(plan.columns.MinLength(), plan.rows.MinLength());
	}
	for (BView* page : pages_of(view)) {
		if (!fDesign.contains(page))
			continue;
		const BSize size = NeededSize(page);
		const BRect pageDesign = fDesign.at(page);
		need(design.Width() + size.width - pageDesign.Width(),
			design.Height() + size.height - pageDesign.Height());
	}
	return needed;
}

void
TLabelLayout::Apply(BSize size)
{
	Place(fRoot, size);
}

/*!	Children that follow the resizing are put in their places afterwards. */
void
TLabelLayout::Place(BView* view, BSize size)
{
	view->ResizeTo(size.width, size.height);
	const BRect design = fDesign.at(view);
	for (BView* page : pages_of(view)) {
		if (!fDesign.contains(page))
			continue;
		const BRect pageDesign = fDesign.at(page);
		Place(page,
			BSize(pageDesign.Width() + size.width - design.Width(),
				pageDesign.Height() + size.height - design.Height()));
	}
	const auto plan = fPlans.find(view);
	if (plan == fPlans.end())
		return;
	const std::vector<TLayoutAxis::Span> columns = plan->second.columns.Place(size.width);
	const std::vector<TLayoutAxis::Span> rows = plan->second.rows.Place(size.height);
	for (size_t i = 0; i < columns.size(); i++) {
		BView* child = plan->second.children[i];
		child->MoveTo(columns[i].start, rows[i].start);
		Place(child, BSize(columns[i].end - columns[i].start, rows[i].end - rows[i].start));
	}
}

} // namespace merion
