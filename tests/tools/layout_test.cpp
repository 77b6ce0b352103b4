#include <gtest/gtest.h>

#include <sstream>

#include <Control.h>
#include <Message.h>
#include <TabView.h>

#include "tools/layout/layout.h"

namespace {

std::string
fault_in(const std::string& text)
{
	std::istringstream stream(text);
	try {
		read_layout(stream);
	} catch (const LayoutError& error) {
		return error.what();
	}
	return "";
}

TEST(Layout, FaultsAreToldWithTheirLine)
{
	const struct {
		const char* text;
		const char* fault;
	} cases[] = {
		{"", "0: there is no view"},
		{"# nothing\n\n", "2: there is no view"},
		{"view A 0 0 9 9\nview B 0 0 9 9", "2: it is in no view"},
		{"view A 0 0 9 9\n\t\tcheck B 0 0 9 9", "2: it is in no view"},
		{"view A 0 0 9 9\n\tcheck B 0 0 9 9\n\t\tcheck C 0 0 9 9",
			"3: it is in a view that holds none"},
		{"view A 0 0 9 9\n\tpage B 0 0 9 9", "2: pages, and nothing else, are in tabs"},
		{"tabs A 0 0 9 9\n\tcheck B 0 0 9 9", "2: pages, and nothing else, are in tabs"},
		{"view A 0 0 9 9\n\tcheck A 0 0 9 9", "2: this name is there already: A"},
		{"slider A 0 0 9 9", "1: no kind of view: slider"},
		{"view", "1: NAME is missing"},
		{"view A 0 0 9", "1: HEIGHT is missing"},
		{"view A 0 x 9 9", "1: TOP is no whole number: x"},
		{"view A 0 -1 9 9", "1: TOP is no whole number: -1"},
		{"view A 0 0 99999999999 9", "1: WIDTH is no whole number: 99999999999"},
		{"view A 0 0 9 0", "1: a view without a size"},
		{"view A 0 0 9 9 round", "1: no option: round"},
		{"view A 0 0 9 9 color=red", "1: no option: color"},
		{"view A 0 0 9 9 follow=lx", "1: edges are of l, r, t and b: lx"},
		{"view A 0 0 9 9 follow=", "1: edges are of l, r, t and b: "},
		{"view A 0 0 9 9\n\tcheck B 0 0 9 9 sends=abc", "2: a code has four characters: abc"},
	};
	for (const auto& example : cases)
		EXPECT_EQ(fault_in(example.text), example.fault) << example.text;
}

TEST(Layout, IsBuiltAsItIsDescribed)
{
	std::istringstream text("view Root 1 2 300 200 follow=lrtb\n"
							"\ttabs Tabs 10 10 280 150\n"
							"\t\tpage First 0 0 270 110\n"
							"\t\t\tcheck Box 5 6 100 20 follow=rb sends=cbox\n"
							"\t\tpage Second 0 0 270 110\n");
	const std::unique_ptr<BView> root = read_layout(text);
	EXPECT_EQ(root->Frame(), BRect(1, 2, 300, 201));
	auto* tabs = dynamic_cast<BTabView*>(root->FindView("Tabs"));
	ASSERT_NE(tabs, nullptr);
	ASSERT_EQ(tabs->CountTabs(), 2);
	auto* box = dynamic_cast<BControl*>(tabs->ViewForTab(0)->FindView("Box"));
	ASSERT_NE(box, nullptr);
	EXPECT_EQ(box->Frame(), BRect(5, 6, 104, 25));
	EXPECT_EQ(box->ResizingMode(), uint32(B_FOLLOW_RIGHT | B_FOLLOW_BOTTOM));
	EXPECT_EQ(box->Message()->what, uint32('cbox'));
}

} // namespace
