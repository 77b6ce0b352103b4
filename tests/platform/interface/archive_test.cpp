#include "support/display.h"

#include <Box.h>
#include <Button.h>
#include <CheckBox.h>
#include <ColorControl.h>
#include <DataIO.h>
#include <MenuBar.h>
#include <MenuField.h>
#include <MenuItem.h>
#include <Message.h>
#include <PopUpMenu.h>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <RadioButton.h>
#include <StringView.h>
#include <TabView.h>
#include <TextControl.h>
#include <TextView.h>
#include <cmath>
#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

std::string
item_text(const BMessage& message, const char* name, type_code type, int32 index)
{
	const void* data = nullptr;
	ssize_t size = 0;
	message.FindData(name, type, index, &data, &size);
	switch (type) {
		case B_STRING_TYPE:
			return static_cast<const char*>(data);
		case B_BOOL_TYPE:
			return message.GetBool(name, index, false) ? "true" : "false";
		case B_INT16_TYPE:
			return std::to_string(message.GetInt16(name, index, 0));
		case B_INT32_TYPE:
			return std::to_string(message.GetInt32(name, index, 0));
		case B_FLOAT_TYPE:
			return std::to_string(int(message.GetFloat(name, index, 0)));
		default:
			return std::to_string(size) + " bytes";
	}
}

//! Its fields in their order: "name TYPE item item", one a line.
std::string
fields_of(const BMessage& message)
{
	std::string text;
	char* name;
	type_code type;
	int32 count;
	for (int32 i = 0; message.GetInfo(B_ANY_TYPE, i, &name, &type, &count) == B_OK; i++) {
		text += std::string(name) + " ";
		for (int shift = 24; shift >= 0; shift -= 8)
			text += char(type >> shift);
		for (int32 item = 0; item < count; item++)
			text += " " + item_text(message, name, type, item);
		text += "\n";
	}
	return text;
}

std::string
flat(const BMessage& message)
{
	std::string bytes(message.FlattenedSize(), '\0');
	EXPECT_EQ(message.Flatten(bytes.data(), bytes.size()), B_OK);
	return bytes;
}

BMessage
archive_of(const BArchivable& object)
{
	BMessage archive;
	EXPECT_EQ(object.Archive(&archive), B_OK);
	return archive;
}

template<class T = BArchivable>
std::unique_ptr<T>
built(BMessage archive)
{
	std::unique_ptr<BArchivable> object(instantiate_object(&archive));
	T* wanted = dynamic_cast<T*>(object.get());
	if (wanted != nullptr)
		object.release();
	return std::unique_ptr<T>(wanted);
}

const BRect kFrame(10, 20, 109, 49);

BTabView*
tabs()
{
	auto* tabs = new BTabView(BRect(5, 210, 390, 290), "tabs", B_WIDTH_FROM_LABEL);
	for (const char* label : {"Text", "Colours", "Menu"})
		tabs->AddTab(new BView(kFrame, label, B_FOLLOW_NONE, B_WILL_DRAW));
	auto* control = new BTextControl(kFrame, "TCtl", "Length", "日本 12", new BMessage('text'));
	control->SetModificationMessage(new BMessage('modi'));
	control->SetAlignment(B_ALIGN_RIGHT, B_ALIGN_CENTER);
	control->SetDivider(33);
	control->SetEnabled(false);
	control->TextView()->SetMaxBytes(20);
	control->TextView()->DisallowChar('x');
	control->TextView()->DisallowChar(U'𝄞');
	tabs->ViewForTab(0)->AddChild(control);
	auto* text = new BTextView(kFrame, "TView", BRect(3, 4, 50, 20), B_FOLLOW_ALL);
	text->SetText("one\ntwo");
	text->Select(1, 5);
	text->MakeEditable(false);
	text->SetWordWrap(false);
	text->SetViewColor(1, 2, 3);
	tabs->ViewForTab(0)->AddChild(text);
	for (int32 color : {0x102030, 0x7f80ff}) {
		auto* control = new BColorControl(BPoint(1, 2), B_CELLS_16x16, 4, "Color", nullptr);
		control->SetValue(color << 8);
		tabs->ViewForTab(1)->AddChild(control);
	}
	auto* choice = new BPopUpMenu("Choice");
	choice->AddItem(new BMenuItem("First", new BMessage('frst')));
	choice->AddItem(new BMenuItem("Second", nullptr));
	choice->ItemAt(1)->SetMarked(true);
	auto* field = new BMenuField(kFrame, "Field", "Choose", choice, true);
	field->SetDivider(44);
	field->SetAlignment(B_ALIGN_RIGHT);
	tabs->ViewForTab(2)->AddChild(field);
	tabs->Select(1);
	return tabs;
}

BView*
dialog()
{
	auto* dialog = new BView(BRect(0, 0, 399, 299), "dialog", B_FOLLOW_ALL, B_WILL_DRAW);
	dialog->SetViewColor(216, 217, 218);
	auto* bar = new BMenuBar(BRect(0, 0, 399, 19), "bar");
	auto* menu = new BPopUpMenu("Encoding", true, true);
	menu->AddItem(new BMenuItem("UTF-8", new BMessage('utf8'), 'U', B_SHIFT_KEY));
	menu->AddSeparatorItem();
	menu->AddItem(new BMenuItem("日本語", new BMessage('sjis')));
	menu->ItemAt(2)->SetMarked(true);
	menu->ItemAt(0)->SetEnabled(false);
	bar->AddItem(menu);
	dialog->AddChild(bar);
	auto* group = new BBox(BRect(5, 30, 200, 200), nullptr, B_FOLLOW_LEFT_RIGHT, 0, B_PLAIN_BORDER);
	group->SetLabel(new BCheckBox(kFrame, "Title", "Use it", nullptr));
	dialog->AddChild(group);
	for (int32 value : {B_CONTROL_OFF, B_CONTROL_ON}) {
		auto* radio = new BRadioButton(kFrame, "Radio", "One of them", new BMessage('rdio'));
		group->AddChild(radio);
		radio->SetValue(value);
	}
	BFont font;
	font.SetFamilyAndStyle("Haru", "Bold");
	font.SetSize(17.5);
	auto* message = new BMessage('cbox');
	message->AddString("what", "歌詞");
	auto* box = new BCheckBox(kFrame, "CBox", "Stay on top & more", message);
	box->SetValue(B_CONTROL_ON);
	box->SetEnabled(false);
	box->SetFont(&font);
	group->AddChild(box);
	auto* text = new BStringView(kFrame, "StrView", "A label", B_FOLLOW_RIGHT);
	text->SetAlignment(B_ALIGN_RIGHT);
	text->SetHighColor(200, 100, 50);
	group->AddChild(text);
	auto* button = new BButton(kFrame, "Button", nullptr, nullptr);
	button->MakeDefault(true);
	button->Hide();
	dialog->AddChild(button);
	dialog->AddChild(tabs());
	return dialog;
}

//! The form of older systems: objects lie in each other, and nothing says that they are managed.
BMessage
nested_form(const BMessage& archive, const BMessage& top)
{
	BMessage nested(archive);
	nested.RemoveName("_managed_archive");
	nested.RemoveName("_managed_archivable");
	nested.RemoveName("BView:layout");
	if (validate_instantiation(&nested, "BPrivate::_BTextInput_"))
		nested.ReplaceString("class", "_BTextInput_");
	int32 token;
	for (const char* field : {"_views", "_l_items", "_view_list"}) {
		nested.RemoveName(field);
		for (int32 i = 0; archive.FindInt32(field, i, &token) == B_OK; i++) {
			BMessage child;
			EXPECT_EQ(top.FindMessage("_managed_archivable", token - 1, &child), B_OK);
			child = nested_form(child, top);
			nested.AddMessage(field, &child);
		}
	}
	return nested;
}

//! An add-on's view: nobody finds its class by name.
class HiddenView : public BView {
public:
	using BView::BView;
};

} // namespace

// What the platform's own classes write: names, order and types.
TEST(Archive, HasThePlatformsFields)
{
	const std::string kPlain = "_resize_mode LONG 4626\n_flags LONG 536870912\n"
							   "_color LONG 255 -1 -1\n_uicolor LONG -1 -1 -1\n"
							   "_uitint FLOT 1 1 1\nBView:sizes SIZE 8 bytes 8 bytes 8 bytes\n"
							   "BView:alignment ALGN 8 bytes\n_show SHRT 0\n";
	const std::string kDeep = "BView:layout LONG -1\n_managed_archive BOOL true\n";
	const auto head = [](const char* name) {
		return std::string("class CSTR ") + name + "\n_name CSTR a\n_frame RECT 16 bytes\n";
	};

	BView view(kFrame, "a", B_FOLLOW_LEFT_TOP, B_WILL_DRAW);
	EXPECT_EQ(fields_of(archive_of(view)), head("BView") + kPlain + kDeep);
	BMessage shallow;
	ASSERT_EQ(view.Archive(&shallow, false), B_OK);
	EXPECT_EQ(fields_of(shallow), head("BView") + kPlain + "_managed_archive BOOL true\n");

	BStringView text(kFrame, "a", "words");
	EXPECT_EQ(fields_of(archive_of(text)),
		head("BStringView") + kPlain + kDeep + "_text CSTR words\n_align LONG 0\n");

	BCheckBox box(kFrame, "a", "label", new BMessage('done'), B_FOLLOW_LEFT_TOP, B_WILL_DRAW);
	box.SetValue(B_CONTROL_ON);
	box.SetEnabled(false);
	EXPECT_EQ(fields_of(archive_of(box)),
		head("BCheckBox") + kPlain + kDeep
			+ "_msg MSGG 68 bytes\n_label CSTR label\n_val LONG 1\n_disable BOOL true\n");

	BBox frame(kFrame, "a", B_FOLLOW_LEFT_TOP, B_WILL_DRAW, B_NO_BORDER);
	frame.SetLabel("words");
	BMessage boxArchive = archive_of(frame);
	EXPECT_EQ(fields_of(boxArchive),
		head("BBox") + kPlain + kDeep + "_label CSTR words\n_style LONG 2\n");
	boxArchive.RemoveName("_style");
	boxArchive.AddBool("_style", false);
	EXPECT_EQ(BBox(&boxArchive).Border(), B_PLAIN_BORDER);

	BButton button(kFrame, "a", nullptr, nullptr, B_FOLLOW_LEFT_TOP, B_WILL_DRAW);
	EXPECT_EQ(fields_of(archive_of(button)), head("BButton") + kPlain + kDeep);
	button.MakeDefault(true);
	EXPECT_EQ(
		fields_of(archive_of(button)), head("BButton") + kPlain + kDeep + "_default BOOL true\n");

	BMenuItem item("Open", nullptr, 'O', B_SHIFT_KEY);
	item.SetMarked(true);
	EXPECT_EQ(fields_of(archive_of(item)),
		"class CSTR BMenuItem\n_label CSTR Open\n_marked BOOL true\n_shortcut LONG 79\n"
		"_mods LONG 3\n");
	EXPECT_EQ(fields_of(archive_of(BSeparatorItem())),
		"class CSTR BSeparatorItem\n_label CSTR \n_disable BOOL true\n");

	BPopUpMenu menu("a");
	const std::string fields = fields_of(archive_of(menu));
	EXPECT_THAT(fields,
		testing::EndsWith("BView:layout LONG -1\n_managed_archive BOOL true\n_layout LONG 1\n"
						  "_rsize_to_fit BOOL true\n_disable BOOL false\n_radio BOOL true\n"
						  "_trig_disabled BOOL true\n_dyn_label BOOL true\n_maxwidth FLOT 0\n"));

	BTab tab;
	EXPECT_EQ(fields_of(archive_of(tab)), "class CSTR BTab\n");
	tab.SetEnabled(false);
	EXPECT_EQ(fields_of(archive_of(tab)), "class CSTR BTab\n_disable BOOL false\n");

	BTextControl control(kFrame, "a", "label", "", nullptr, B_FOLLOW_LEFT_TOP, B_WILL_DRAW);
	BMenuField field(kFrame, "a", "label", nullptr, B_FOLLOW_LEFT_TOP, B_WILL_DRAW);
	BTextView area(kFrame, "a", BRect(3, 4, 50, 20), B_FOLLOW_LEFT_TOP, B_WILL_DRAW);
	area.SetText("words");
	area.Select(1, 3);
	area.DisallowChar('x');
	BTabView tabView(kFrame, "a", B_WIDTH_FROM_WIDEST, B_FOLLOW_LEFT_TOP, B_WILL_DRAW);
	tabView.AddTab(nullptr);
	tabView.AddTab(new BView(kFrame, "b", B_FOLLOW_NONE, 0));
	tabView.Select(1);
	BColorControl color(B_ORIGIN, B_CELLS_16x16, 4, "a");
	color.SetValue(0x102030 << 8);
	const std::string high = "_high FLOT " + std::to_string(int(tabView.TabHeight())) + "\n";
	const std::string kDivided = "_divide FLOT 49\n";
	const struct {
		const BArchivable& object;
		std::string children;
		std::string own;
		std::string parts; // that are written with it
	} kOthers[] = {
		{control, "_views LONG 1\n",
			"_label CSTR label\n_a_label LONG 0\n_a_text LONG 0\n" + kDivided,
			"BPrivate::_BTextInput_ _input_ "},
		{field, "_views LONG 1\n",
			"_label CSTR label\n_align LONG 0\n" + kDivided + "be:dmark BOOL true\n",
			"_BMCMenuBar_ _mc_mb_ "},
		{area, "",
			"_text CSTR words\n_align LONG 0\n_tab FLOT 28\n_col_sp LONG 4\n_trect RECT 16 bytes\n"
			"_max LONG 2147483647\n_sel LONG 1 3\n_stylable BOOL false\n_auto_in BOOL false\n"
			"_wrap BOOL true\n_nsel BOOL false\n_nedit BOOL false\n_password BOOL false\n"
			"_dis_ch RAWT 4 bytes\n",
			""},
		{tabView, "_views LONG 1\n",
			"_but_width SHRT 1\n" + high + "_sel LONG 1\n_l_items LONG 3 4\n_view_list LONG -1 2\n",
			"BView view container BView b BTab  BTab  "},
		{color, "_views LONG 1 3 5\n",
			"_val LONG 270544896\n_layout LONG 16\n_csize FLOT 4\n_use_off BOOL false\n",
			"BTextControl _red BPrivate::_BTextInput_ _input_ BTextControl _green "
			"BPrivate::_BTextInput_ _input_ BTextControl _blue BPrivate::_BTextInput_ _input_ "},
	};
	for (const auto& other : kOthers) {
		const BMessage archive = archive_of(other.object);
		SCOPED_TRACE(archive.GetString("class"));
		std::string parts;
		BMessage part;
		for (int32 i = 0; archive.FindMessage("_managed_archivable", i, &part) == B_OK; i++)
			parts += std::string(part.GetString("class")) + " " + part.GetString("_name", "") + " ";
		EXPECT_EQ(parts, other.parts);
		BMessage alone(archive);
		alone.RemoveName("_managed_archivable");
		alone.RemoveName("_managed_archive");
		const std::string fields = fields_of(alone);
		const std::string rest = "_show SHRT 0\n" + other.children + "BView:layout LONG -1\n";
		EXPECT_THAT(fields, testing::EndsWith(rest + other.own));
	}

	// only what was set
	BFont font;
	font.SetFamilyAndStyle("Haru", "Bold");
	font.SetSize(9);
	view.SetFont(&font);
	view.SetEventMask(B_POINTER_EVENTS, B_NO_POINTER_HISTORY);
	view.SetPenSize(3);
	view.MovePenTo(1, 2);
	view.SetDrawingMode(B_OP_OVER);
	view.SetHighColor(1, 2, 3, 4);
	const std::string all = fields_of(archive_of(view));
	EXPECT_THAT(all,
		testing::HasSubstr("_evmask LONG 1 4\n_fname CSTR Haru Bold\n_fflt FLOT 9 90 0\n"
						   "_color LONG 16909060 -1 -1\n"));
	EXPECT_THAT(
		all, testing::HasSubstr("_psize FLOT 3\n_ploc BPNT 8 bytes\n_dmod LONG 1\nBView:sizes"));
}

TEST(Archive, DialogIsBuiltAgainFromBothForms)
{
	const std::unique_ptr<BView> original(dialog());
	const BMessage archive = archive_of(*original);
	const std::string bytes = flat(archive);
	BMessage read;
	ASSERT_EQ(read.Unflatten(bytes.data()), B_OK);
	int32 count;
	type_code type;
	ASSERT_EQ(read.GetInfo("_managed_archivable", &type, &count), B_OK);
	EXPECT_EQ(count, 35); // the menus are in the bar's own archive

	for (const BMessage& form : {read, nested_form(read, read)}) {
		const std::unique_ptr<BView> copy = built<BView>(form);
		ASSERT_NE(copy, nullptr);
		EXPECT_EQ(flat(archive_of(*copy)), bytes);
		auto* box = dynamic_cast<BCheckBox*>(copy->FindView("CBox"));
		ASSERT_NE(box, nullptr);
		EXPECT_STREQ(box->Message()->GetString("what", ""), "歌詞");
		auto* group = dynamic_cast<BBox*>(box->Parent());
		ASSERT_NE(group, nullptr);
		EXPECT_EQ(group->LabelView(), copy->FindView("Title"));
		BFont font;
		box->GetFont(&font);
		EXPECT_EQ(font.Size(), 17.5);
		auto* bar = dynamic_cast<BMenuBar*>(copy->FindView("bar"));
		ASSERT_NE(bar, nullptr);
		BMenu* menu = bar->SubmenuAt(0);
		ASSERT_NE(menu, nullptr);
		EXPECT_STREQ(menu->Superitem()->Label(), "日本語");
		EXPECT_EQ(menu->FindMarked(), menu->ItemAt(2));
		EXPECT_TRUE(copy->FindView("Button")->IsHidden(copy.get()));

		auto* tabs = dynamic_cast<BTabView*>(copy->FindView("tabs"));
		ASSERT_NE(tabs, nullptr);
		ASSERT_EQ(tabs->CountTabs(), 3);
		EXPECT_EQ(tabs->Selection(), 1);
		EXPECT_EQ(tabs->ContainerView()->CountChildren(), 1);
		EXPECT_EQ(tabs->ContainerView()->ChildAt(0), tabs->ViewForTab(1));
		EXPECT_STREQ(tabs->TabAt(2)->Label(), "Menu");
		auto* control = dynamic_cast<BTextControl*>(tabs->ViewForTab(0)->ChildAt(0));
		ASSERT_NE(control, nullptr);
		EXPECT_STREQ(control->Text(), "日本 12");
		EXPECT_EQ(control->CountChildren(), 1);
		EXPECT_EQ(control->TextView()->Parent(), control);
		EXPECT_EQ(control->ModificationMessage()->what, uint32('modi'));
		auto* last = dynamic_cast<BColorControl*>(tabs->ViewForTab(1)->ChildAt(1));
		ASSERT_NE(last, nullptr);
		EXPECT_EQ(uint32(last->Value()), 0x7f80ff00u);
		EXPECT_EQ(last->CountChildren(), 0);
		auto* field = dynamic_cast<BMenuField*>(tabs->ViewForTab(2)->ChildAt(0));
		ASSERT_NE(field, nullptr);
		ASSERT_NE(field->Menu(), nullptr);
		EXPECT_EQ(field->Menu()->FindMarked(), field->Menu()->ItemAt(1));
		EXPECT_STREQ(field->MenuItem()->Label(), "Second");
	}

	// an add-on's own class is built directly; its base finds the children
	BMessage own(read);
	own.ReplaceString("class", "HiddenView");
	EXPECT_EQ(instantiate_object(&own), nullptr);
	EXPECT_EQ(HiddenView(&own).CountChildren(), 4);
}

TEST(Archive, WindowIsBuiltAgainAndShowsItsControls)
{
	BMessage archive;
	{
		auto* window = new BWindow(BRect(50, 60, 449, 359), "Preferences", B_FLOATING_WINDOW_LOOK,
			B_NORMAL_WINDOW_FEEL, B_NOT_ZOOMABLE);
		window->SetSizeLimits(100, 500, 80, 20000);
		window->AddChild(dialog());
		archive = archive_of(*window);
		window->Quit();
	}
	EXPECT_THAT(fields_of(archive),
		testing::HasSubstr("_port_cap LONG 200\n_frame RECT 16 bytes\n_title CSTR Preferences\n"
						   "_wlook LONG 7\n_wfeel LONG 0\n_flags LONG 64\n_wspace LONG 0\n"
						   "_type LONG 0\n_sizel FLOT 100 80 500 32768\n_views MSGG "));
	BWindow* window = built<BWindow>(archive).release();
	ASSERT_NE(window, nullptr);
	EXPECT_EQ(flat(archive_of(*window)), flat(archive));
	auto* box = dynamic_cast<BCheckBox*>(window->FindView("CBox"));
	auto* text = dynamic_cast<BStringView*>(window->FindView("StrView"));
	auto* tabs = dynamic_cast<BTabView*>(window->FindView("tabs"));
	ASSERT_TRUE(box != nullptr && text != nullptr && tabs != nullptr);
	window->Show();
	settle(window);
	const QString shown = on_widget<QAbstractButton>(box, [](QAbstractButton& widget) {
		return QString("%1 %2 %3 %4 %5")
			.arg(widget.text())
			.arg(widget.isChecked())
			.arg(widget.isEnabled())
			.arg(widget.font().pixelSize())
			.arg(widget.isVisible());
	});
	EXPECT_TRUE(shown.startsWith("Stay on top && more 1 0 1")) << shown.toStdString();
	EXPECT_TRUE(shown.endsWith(" 1")) << shown.toStdString();
	EXPECT_EQ(on_widget<QLabel>(text,
				  [](QLabel& label) { return label.palette().color(QPalette::WindowText).red(); }),
		200);

	const auto choose = [&](int32 tab) {
		window->Lock();
		tabs->Select(tab);
		window->Unlock();
		settle(window);
	};
	choose(0);
	auto* control = dynamic_cast<BTextControl*>(window->FindView("TCtl"));
	ASSERT_NE(control, nullptr);
	EXPECT_EQ(on_widget<QLineEdit>(control->TextView(),
				  [](QLineEdit& line) {
					  return QString("%1 %2 %3 %4")
						  .arg(line.text())
						  .arg(line.isEnabled())
						  .arg(line.isVisible())
						  .arg(line.alignment().testFlag(Qt::AlignHCenter));
				  }),
		"日本 12 0 1 1");
	choose(2);
	auto* field = dynamic_cast<BMenuField*>(window->FindView("Field"));
	ASSERT_NE(field, nullptr);
	EXPECT_EQ(on_widget<QComboBox>(field->MenuBar(),
				  [](QComboBox& box) { return box.isVisible() ? box.currentText() : ""; }),
		"Second");
	window->Lock();
	window->Quit();
}

// Each of them gives NULL or something that can be used; none crashes, loops or leaks.
TEST(Archive, DamageDoesNoHarm)
{
	const std::unique_ptr<BView> original(dialog());
	const BMessage whole = archive_of(*original);
	const auto child = [](const char* name, std::vector<int32> views) {
		BMessage archive;
		archive.AddString("class", name);
		for (int32 token : views)
			archive.AddInt32("_views", token);
		return archive;
	};
	const auto managed = [](BMessage top, const std::vector<BMessage>& others) {
		for (const BMessage& other : others)
			top.AddMessage("_managed_archivable", &other);
		top.AddBool("_managed_archive", true);
		return top;
	};
	const auto tabbed
		= [&](std::vector<int32> views, std::vector<int32> tabs, std::vector<int32> pages) {
			  BMessage archive = child("BTabView", views);
			  for (int32 token : tabs)
				  archive.AddInt32("_l_items", token);
			  for (int32 token : pages)
				  archive.AddInt32("_view_list", token);
			  return archive;
		  };
	const BMessage view = child("BView", {});
	const BMessage tab = child("BTab", {});
	BMessage field = child("BTextControl", {});
	for (const char* name : {"BView", "BTextView", "_BTextInput_", "BPrivate::_BTextInput_"}) {
		BMessage part = child(name, {});
		part.AddString("_name", "_input_");
		part.AddInt32("_max", -1);
		part.AddInt32("_sel", 7);
		part.AddData("_dis_ch", B_RAW_TYPE, "12345", 5, false);
		field.AddMessage("_views", &part);
	}
	field.AddString("_name", "_red");
	field.AddInt32("_a_label", -1);
	field.AddFloat("_divide", NAN);
	BMessage color = child("BColorControl", {});
	for (const BMessage& part : {field, field, view})
		color.AddMessage("_views", &part);
	color.AddString("_name", "_red");
	color.AddInt32("_layout", -4);
	color.AddFloat("_csize", -INFINITY);
	BMessage menuField = child("BMenuField", {});
	BMessage bar = child("_BMCMenuBar_", {});
	const BMessage item = child("BMenuItem", {});
	bar.AddMessage("_items", &item);
	for (const BMessage& part : {bar, field, bar})
		menuField.AddMessage("_views", &part);
	std::vector<BMessage> chain;
	for (int32 token = 2; token <= 10000; token++)
		chain.push_back(child("BView", {token}));
	BMessage deep = child("BView", {});
	BMessage menus;
	menus.AddString("class", "BMenu");
	for (int i = 0; i < 1000; i++) {
		BMessage outer = child("BView", {});
		outer.AddMessage("_views", &deep);
		deep = outer;
		BMessage item = child("BMenuItem", {});
		item.AddMessage("_submenu", &menus);
		menus.MakeEmpty();
		menus.AddString("class", "BMenu");
		menus.AddMessage("_items", &item);
	}
	const auto changed = [&](std::function<void(BMessage&)> change) {
		BMessage archive(whole);
		change(archive);
		return archive;
	};

	const struct {
		const char* name;
		BMessage archive;
		bool isBuilt;
	} kCases[] = {
		{"nothing but the class", child("BView", {}), true},
		{"a token without objects", child("BView", {1}), true},
		{"managed, a token out of range", managed(child("BView", {1}), {}), false},
		{"a negative token", managed(child("BView", {-7}), {}), false},
		{"no child", managed(child("BView", {-1}), {}), false},
		{"its own child", managed(child("BView", {0}), {}), false},
		{"children of each other",
			managed(child("BView", {1}), {child("BView", {2}), child("BView", {1})}), false},
		{"one child twice", managed(child("BView", {1, 1}), {child("BView", {})}), false},
		{"a child of two",
			managed(child("BView", {1, 2}), {child("BView", {2}), child("BView", {})}), false},
		{"an unknown class", managed(child("BView", {1}), {child("TUnknown", {})}), false},
		{"no view", managed(child("BView", {1}), {child("BMenuItem", {})}), false},
		{"a window as a view", managed(child("BView", {1}), {child("BWindow", {})}), false},
		{"a tab", managed(tabbed({}, {1, 3}, {2, -1}), {tab, view, tab}), true},
		{"a tab twice", managed(tabbed({}, {1, 1}, {2, 3}), {tab, view, view}), false},
		{"a view of two tabs", managed(tabbed({}, {1, 2}, {3, 3}), {tab, tab, view}), false},
		{"the view that is seen, of two tabs",
			managed(tabbed({4}, {1, 2}, {3, 3}), {tab, tab, view, child("BView", {3})}), false},
		{"a tab's view that is a child",
			managed(child("BView", {1, 2}), {tabbed({}, {3}, {4}), child("BView", {4}), tab, view}),
			false},
		{"a child that is a tab's view",
			managed(child("BView", {2, 1}), {tabbed({}, {3}, {4}), child("BView", {4}), tab, view}),
			false},
		{"a tab for all the tabs", managed(tabbed({2}, {1}, {0}), {tab, view}), false},
		{"a tab for the container", managed(tabbed({2}, {1}, {2}), {tab, view}), false},
		{"a tab without a token for its view", managed(tabbed({}, {1}, {}), {tab}), false},
		{"no tab", managed(tabbed({}, {1, -1}, {2, 3}), {tab, view, view}), false},
		{"a view as a tab", managed(tabbed({}, {1}, {2}), {view, view}), false},
		{"a text control of four lines", field, true},
		{"a color control with the name of its number", color, true},
		{"a menu field of two bars", menuField, true},
		{"objects that nobody asks for", managed(child("BView", {}), {child("BView", {0})}), true},
		{"10 000 levels", managed(child("BView", {1}), chain), false},
		{"1000 nested levels", deep, true},
		{"1000 menus", menus, true},
		{"another type of children", changed([](BMessage& m) {
			 m.RemoveName("_views");
			 m.AddString("_views", "x");
		 }),
			false},
		{"no objects", changed([](BMessage& m) { m.RemoveName("_managed_archivable"); }), false},
		{"objects of another type", changed([](BMessage& m) {
			 m.RemoveName("_managed_archivable");
			 m.AddInt32("_managed_archivable", 1);
		 }),
			false},
		{"managed is no bool", changed([](BMessage& m) {
			 m.RemoveName("_managed_archive");
			 m.AddInt32("_managed_archive", 1);
		 }),
			true},
		{"no number as a frame",
			changed([](BMessage& m) { m.ReplaceRect("_frame", BRect(NAN, -INFINITY, 1e30f, 0)); }),
			true},
		{"fields of other types", changed([](BMessage& m) {
			 for (const char* field : {"_frame", "_flags", "_color", "_show", "_name"}) {
				 m.RemoveName(field);
				 m.AddDouble(field, 1);
			 }
		 }),
			true},
	};
	for (const auto& test : kCases) {
		SCOPED_TRACE(test.name);
		const std::unique_ptr<BView> view = built<BView>(test.archive);
		EXPECT_EQ(view != nullptr, test.isBuilt);
		if (view != nullptr)
			archive_of(*view);
		BMessage direct(test.archive);
		HiddenView(&direct).CountChildren();
		archive_of(BTabView(&direct));
	}
}

//! In parts, each of which has the time of a test.
class DamagedArchive : public testing::TestWithParam<int> { };

constexpr int kParts = 5;

TEST_P(DamagedArchive, DoesNoHarm)
{
	const std::unique_ptr<BView> original(dialog());
	const std::string bytes = flat(archive_of(*original));
	std::mt19937 random(42);
	for (int i = 0; i < 300; i++) {
		std::string damaged = bytes;
		for (int change = random() % 8; change >= 0; change--)
			damaged[random() % damaged.size()] = char(random());
		if (i % kParts != GetParam())
			continue;
		// read as a stream, since a changed length may be more than there is
		BMemoryIO stream(damaged.data(), damaged.size());
		BMessage archive;
		if (archive.Unflatten(&stream) == B_OK) {
			HiddenView view(&archive);
			BTabView tabs(&archive);
		}
		if (const std::unique_ptr<BView> view = built<BView>(archive))
			archive_of(*view);
	}
}

INSTANTIATE_TEST_SUITE_P(Archive, DamagedArchive, testing::Range(0, kParts));
