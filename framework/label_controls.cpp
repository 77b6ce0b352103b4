#include "framework/label_controls.h"

#include <Box.h>
#include <Control.h>
#include <ListView.h>
#include <MenuField.h>
#include <ScrollView.h>
#include <StringView.h>
#include <TabView.h>
#include <TextControl.h>
#include <TextView.h>

namespace merion {

namespace {

constexpr float kLabelGap = 8;      // from a label to its control
constexpr float kBoxLabelRoom = 24; // beside the label of a box
constexpr float kTabLabelRoom = 28; // beside the label of a tab
constexpr float kTabsRoom = 8;

float
label_width(BView* view, const char* label)
{
	return label != nullptr ? view->StringWidth(label) : 0;
}

float
tabs_width(BTabView* tabs)
{
	float width = kTabsRoom;
	for (int32 i = 0; i < tabs->CountTabs(); i++)
		width += label_width(tabs, tabs->TabAt(i)->Label()) + kTabLabelRoom;
	return width;
}

const char*
divided_label(BView* view)
{
	if (const auto* field = dynamic_cast<BMenuField*>(view))
		return field->Label();
	if (const auto* control = dynamic_cast<BTextControl*>(view))
		return control->Label();
	return nullptr;
}

} // namespace

bool
has_label(BView* view)
{
	return dynamic_cast<BControl*>(view) != nullptr || dynamic_cast<BStringView*>(view) != nullptr
		|| dynamic_cast<BMenuField*>(view) != nullptr;
}

bool
is_container(BView* view)
{
	return !has_label(view) && dynamic_cast<BScrollView*>(view) == nullptr
		&& dynamic_cast<BListView*>(view) == nullptr && dynamic_cast<BTextView*>(view) == nullptr
		&& dynamic_cast<BTabView*>(view) == nullptr;
}

std::vector<BView*>
pages_of(BView* view)
{
	std::vector<BView*> pages;
	auto* tabs = dynamic_cast<BTabView*>(view);
	for (int32 i = 0; tabs != nullptr && i < tabs->CountTabs(); i++) {
		if (BView* page = tabs->TabAt(i)->View())
			pages.push_back(page);
	}
	return pages;
}

float
own_label_width(BView* view)
{
	if (auto* tabs = dynamic_cast<BTabView*>(view))
		return tabs_width(tabs);
	if (auto* box = dynamic_cast<BBox*>(view))
		return label_width(box, box->Label()) + kBoxLabelRoom;
	return 0;
}

float
divider_of(BView* view)
{
	if (const auto* field = dynamic_cast<BMenuField*>(view))
		return field->Divider();
	if (const auto* control = dynamic_cast<BTextControl*>(view))
		return control->Divider();
	return -1;
}

float
label_part_width(BView* view)
{
	const char* label = divided_label(view);
	return label != nullptr && label[0] != '\0' ? view->StringWidth(label) + kLabelGap : 0;
}

void
set_divider(BView* view, float divider)
{
	if (auto* field = dynamic_cast<BMenuField*>(view))
		field->SetDivider(divider);
	else if (auto* control = dynamic_cast<BTextControl*>(view))
		control->SetDivider(divider);
}

} // namespace merion
