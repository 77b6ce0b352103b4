#include "support/display.h"

#include <Box.h>
#include <Button.h>
#include <CheckBox.h>
#include <DataIO.h>
#include <MenuBar.h>
#include <MenuItem.h>
#include <Message.h>
#include <PopUpMenu.h>
#include <QLabel>
#include <QPushButton>
#include <RadioButton.h>
#include <StringView.h>
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
	return dialog;
}

//! The form of older systems: objects lie in each other, and nothing says that they are managed.
BMessage
nested_form(const BMessage& archive, const BMessage& top)
{
	BMessage nested(archive);
	nested.RemoveName("_managed_archive");
	nested.RemoveName("_managed_archivable");
	nested.RemoveName("_views");
	nested.RemoveName("BView:layout");
	int32 token;
	for (int32 i = 0; archive.FindInt32("_views", i, &token) == B_OK; i++) {
		BMessage child;
		EXPECT_EQ(top.FindMessage("_managed_archivable", token - 1, &child), B_OK);
		child = nested_form(child, top);
		nested.AddMessage("_views", &child);
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
	EXPECT_EQ(count, 8); // the menus are in the bar's own archive

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
	}

	// an add-on's own class is built directly; its base finds the children
	BMessage own(read);
	own.ReplaceString("class", "HiddenView");
	EXPECT_EQ(instantiate_object(&own), nullptr);
	EXPECT_EQ(HiddenView(&own).CountChildren(), 3);
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
	ASSERT_TRUE(box != nullptr && text != nullptr);
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
	}

	std::mt19937 random(42);
	const std::string bytes = flat(whole);
	for (int i = 0; i < 500; i++) {
		std::string damaged = bytes;
		for (int change = random() % 8; change >= 0; change--)
			damaged[random() % damaged.size()] = char(random());
		// read as a stream, since a changed length may be more than there is
		BMemoryIO stream(damaged.data(), damaged.size());
		BMessage archive;
		if (archive.Unflatten(&stream) == B_OK)
			HiddenView view(&archive);
		if (const std::unique_ptr<BView> view = built<BView>(archive))
			archive_of(*view);
	}
}
