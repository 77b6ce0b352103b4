#include "support/display.h"

#include "server/Desktop.h"

#include <List.h>
#include <MenuBar.h>
#include <MenuItem.h>
#include <Message.h>
#include <PopUpMenu.h>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

using namespace BPrivate;

namespace {

std::atomic<int> sItems = 0;

//! One that is counted.
class CountedItem : public BMenuItem {
public:
	explicit CountedItem(const char* label, uint32 code = 0, char shortcut = 0, uint32 keys = 0)
		: BMenuItem(label, code != 0 ? new BMessage(code) : NULL, shortcut, keys)
	{
		sItems++;
	}
	~CountedItem() override { sItems--; }
};

//! Writes down what it gets, and opens its menu when it is told to.
class MenuWindow : public BWindow {
public:
	MenuWindow() : BWindow(BRect(100, 100, 399, 299), "menus", B_TITLED_WINDOW, 0) { }
	~MenuWindow() override
	{
		if (fPopUp != NULL)
			fPopUp.reset();
	}

	void MessageReceived(BMessage* message) override
	{
		switch (message->what) {
			case 'wait':
				fWaits = true;
				fChosen = fPopUp->Go(BPoint(150, 150), message->GetBool("deliver", false), true);
				fReturned++;
				break;
			case 'asyn':
				fChosen = fPopUp->Go(BPoint(150, 150), true, message->GetBool("open", true), true);
				fReturned++;
				break;
			case 'dele':
				fPopUp.reset();
				break;
			case 'renm':
				fPopUp->ItemAt(0)->SetLabel("renamed");
				break;
			default:
				if (message->what < 'aaaa') {
					BWindow::MessageReceived(message);
					break;
				}
				std::lock_guard lock(fMutex);
				fLast = *message;
				fCount++;
		}
	}

	//! Waits for the message number `count`, and answers its code.
	uint32 Got(int count)
	{
		if (!wait_until([&] { return fCount >= count; }))
			return 0;
		std::lock_guard lock(fMutex);
		return fLast.what;
	}

	//! All that have come: first the menu's event, then what the item sends.
	int CountAll()
	{
		settle(this);
		settle(this);
		return fCount;
	}

	std::mutex fMutex;
	BMessage fLast;
	std::atomic<int> fCount = 0;
	std::unique_ptr<BPopUpMenu> fPopUp;
	std::atomic<BMenuItem*> fChosen = nullptr;
	std::atomic<int> fReturned = 0;
	std::atomic<bool> fWaits = false;
};

//! With a bar: File (Open, a line, Mute, Size > Small, Large), Empty.
class BarWindow : public MenuWindow {
public:
	BarWindow()
	{
		fBar = new BMenuBar(BRect(0, 0, 299, 5), "bar");
		auto file = new BMenu("File");
		file->AddItem(new CountedItem("Open & more", 'open', 'O'));
		file->AddSeparatorItem();
		file->AddItem(new CountedItem("Mute", 'mute', 'm', B_SHIFT_KEY | B_CONTROL_KEY));
		fSize = new BMenu("Size");
		fSize->SetRadioMode(true);
		fSize->AddItem(new CountedItem("Small", 'smal'));
		fSize->AddItem(new CountedItem("Large", 'larg'));
		file->AddItem(fSize);
		fBar->AddItem(file);
		fBar->AddItem(new BMenu("Empty"));
		AddChild(fBar);
	}

	BMenuBar* fBar;
	BMenu* fSize;
};

QMenu*
open_menu()
{
	return qobject_cast<QMenu*>(QApplication::activePopupWidget());
}

QAction*
action_of(QWidget* menu, const QString& label)
{
	for (QAction* action : menu->actions()) {
		if (action->text() == label)
			return action;
	}
	return nullptr;
}

//! On the server's thread, once a menu is open that has such an item.
template<typename Function>
bool
with_menu(const char* label, Function function)
{
	return wait_until([=] {
		return *ServerLink::Default().Call([=] {
			QMenu* menu = open_menu();
			QAction* action = menu != nullptr ? action_of(menu, label) : nullptr;
			if (action != nullptr)
				function(*menu, *action);
			return action != nullptr;
		});
	});
}

bool
is_open(const char* label)
{
	return with_menu(label, [](QMenu&, QAction&) {});
}

bool
click_item(const char* label)
{
	return with_menu(label, [](QMenu& menu, QAction& action) {
		QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(&action).center());
	});
}

bool
menu_key(const char* label, Qt::Key key)
{
	return with_menu(label, [key](QMenu& menu, QAction&) { QTest::keyClick(&menu, key); });
}

//! Wherever the pointer may have selected something before.
bool
choose_by_keys(const char* label)
{
	return with_menu(label, [](QMenu& menu, QAction& action) {
		for (int i = 0; i < 10 && menu.activeAction() != &action; i++)
			QTest::keyClick(&menu, Qt::Key_Down);
		QTest::keyClick(&menu, Qt::Key_Return);
	});
}

int
count_open_menus()
{
	return *ServerLink::Default().Call([] {
		const QWidgetList widgets = QApplication::topLevelWidgets();
		return static_cast<int>(std::count_if(widgets.begin(), widgets.end(), [](QWidget* widget) {
			return qobject_cast<QMenu*>(widget) != nullptr && widget->isVisible();
		}));
	});
}

bool
all_closed()
{
	return wait_until([] { return count_open_menus() == 0; });
}

/*!	Shortcuts are the active window's, and menus close when the application has none: on the offscreen platform, whenever a window or
	a menu has gone. */
void
make_active(BWindow* window)
{
	EXPECT_TRUE(wait_until([=] {
		return on_server(window, [](ServerWindow& server) {
			// first the news of what has gone
			QCoreApplication::processEvents();
			server.activateWindow();
			QCoreApplication::processEvents();
			return QApplication::activeWindow() == &server;
		});
	}));
	settle(window);
}

void
show_active(BWindow* window)
{
	window->Show();
	make_active(window);
}

void
click_title(BarWindow* window, int index)
{
	QPoint where = on_widget<QMenuBar>(window->fBar,
		[=](QMenuBar& bar) { return bar.actionGeometry(bar.actions().at(index)).center(); });
	click(window, BPoint(where.x(), where.y()));
}

std::unique_ptr<BPopUpMenu>
make_popup()
{
	auto menu = std::make_unique<BPopUpMenu>("popup", false, false);
	menu->AddItem(new CountedItem("Hide", 'hide'));
	menu->AddSeparatorItem();
	auto below = new BMenu("Position");
	below->AddItem(new CountedItem("Above", 'abov'));
	below->AddItem(new CountedItem("Below", 'belo'));
	menu->AddItem(below);
	auto off = new CountedItem("Off", 'off!');
	off->SetEnabled(false);
	menu->AddItem(off);
	return menu;
}

} // namespace

TEST(Menu, OwnsWhatItHas)
{
	sItems = 0;
	{
		BMenu menu("outer");
		auto inner = new BMenu("inner");
		auto item = new CountedItem("one", 'one!');
		EXPECT_TRUE(inner->AddItem(item));
		EXPECT_FALSE(menu.AddItem(item)) << "it is in a menu already";
		EXPECT_TRUE(menu.AddItem(inner));
		EXPECT_FALSE(menu.AddItem(inner));
		EXPECT_FALSE(menu.AddItem(static_cast<BMenuItem*>(NULL)));
		auto two = new CountedItem("two", 'two!');
		EXPECT_FALSE(menu.AddItem(two, 2)) << "beyond the end";
		EXPECT_TRUE(menu.AddItem(two, 0));
		EXPECT_EQ(menu.IndexOf(two), 0);
		EXPECT_EQ(menu.IndexOf(inner), 1);
		EXPECT_EQ(menu.SubmenuAt(1), inner);
		EXPECT_EQ(inner->Supermenu(), &menu);
		EXPECT_EQ(menu.FindItem('one!'), item) << "sub-menus are searched too";
		EXPECT_EQ(menu.FindItem("one"), item);
		EXPECT_EQ(menu.FindItem('none'), nullptr);
		EXPECT_EQ(menu.ItemAt(2), nullptr);
		EXPECT_EQ(menu.RemoveItem(int32(5)), nullptr);

		EXPECT_TRUE(menu.RemoveItem(two));
		EXPECT_EQ(two->Menu(), nullptr);
		EXPECT_EQ(sItems, 2) << "what is removed is not deleted";
		BList list;
		list.AddItem(two);
		list.AddItem(new CountedItem("three"));
		list.AddItem(new CountedItem("four"));
		EXPECT_TRUE(menu.AddList(&list, 1));
		EXPECT_STREQ(menu.ItemAt(3)->Label(), "four");
		EXPECT_TRUE(menu.RemoveItems(2, 100, true));
		EXPECT_EQ(menu.CountItems(), 2);
		EXPECT_EQ(sItems, 2);
		delete two;
		EXPECT_EQ(menu.CountItems(), 1) << "a deleted item takes itself off";
	}
	EXPECT_EQ(sItems, 0);
}

TEST(Menu, MarksAndEnablingFollowTheTree)
{
	BMenu outer("outer");
	auto inner = new BMenu("inner");
	outer.AddItem(inner);
	inner->SetLabelFromMarked(true);
	EXPECT_TRUE(inner->IsRadioMode());
	for (const char* label : {"a", "b", "c"})
		inner->AddItem(new BMenuItem(label, NULL));
	inner->ItemAt(1)->SetMarked(true);
	EXPECT_STREQ(outer.ItemAt(0)->Label(), "b");
	inner->ItemAt(2)->SetMarked(true);
	EXPECT_EQ(inner->FindMarked(), inner->ItemAt(2));
	EXPECT_FALSE(inner->ItemAt(1)->IsMarked());

	outer.ItemAt(0)->SetEnabled(false);
	EXPECT_FALSE(inner->IsEnabled());
	EXPECT_FALSE(inner->ItemAt(0)->IsEnabled());
	inner->SetEnabled(true);
	EXPECT_TRUE(inner->ItemAt(0)->IsEnabled());
	uint32 modifiers;
	inner->ItemAt(0)->SetShortcut('x', B_SHIFT_KEY);
	EXPECT_EQ(inner->ItemAt(0)->Shortcut(&modifiers), 'x');
	EXPECT_EQ(modifiers, uint32(B_SHIFT_KEY | B_COMMAND_KEY));
}

TEST(MenuBar, ItemsAreInvokedByMouseKeyboardAndShortcut)
{
	WindowHolder<BarWindow> window;
	show_active(window);
	EXPECT_GT(window->fBar->Bounds().Height(), 10) << "not as high as its items";
	click_title(window, 0);
	ASSERT_TRUE(click_item("Open && more"));
	EXPECT_EQ(window->Got(1), uint32('open'));
	{
		std::lock_guard lock(window->fMutex);
		void* source = NULL;
		EXPECT_EQ(window->fLast.FindPointer("source", &source), B_OK);
		EXPECT_EQ(source, static_cast<BInvoker*>(window->fBar->FindItem('open')));
		EXPECT_EQ(window->fLast.GetInt32("index", -1), 0);
		EXPECT_GT(window->fLast.GetInt64("when", 0), 0);
	}
	EXPECT_TRUE(all_closed());
	make_active(window);
	click_title(window, 0);
	ASSERT_TRUE(choose_by_keys("Mute"));
	EXPECT_EQ(window->Got(2), uint32('mute'));

	EXPECT_TRUE(all_closed());
	make_active(window);
	type_key(window, Qt::Key_O, Qt::AltModifier);
	EXPECT_EQ(window->Got(3), uint32('open'));
	type_key(window, Qt::Key_M, Qt::AltModifier | Qt::ShiftModifier | Qt::ControlModifier);
	EXPECT_EQ(window->Got(4), uint32('mute'));
	type_key(window, Qt::Key_M, Qt::AltModifier);
	type_key(window, Qt::Key_O);
	EXPECT_EQ(window->CountAll(), 4) << "a key without its modifiers";
}

TEST(MenuBar, ASubMenuInRadioModeHasOneMark)
{
	WindowHolder<BarWindow> window;
	show_active(window);
	for (const char* label : {"Large", "Small", "Small"}) {
		int before = window->fCount;
		make_active(window);
		click_title(window, 0);
		ASSERT_TRUE(click_item("Size"));
		ASSERT_TRUE(click_item(label));
		window->Got(before + 1);
		settle(window);
		window->Lock();
		ASSERT_NE(window->fSize->FindMarked(), nullptr);
		EXPECT_STREQ(window->fSize->FindMarked()->Label(), label);
		window->Unlock();
		std::string shown = on_widget<QMenuBar>(window->fBar, [](QMenuBar& bar) {
			QString marked;
			QMenu* size = action_of(bar.actions().at(0)->menu(), "Size")->menu();
			for (QAction* action : size->actions()) {
				if (action->isChecked())
					marked += action->text();
			}
			return marked.toStdString();
		});
		EXPECT_EQ(shown, label);
		EXPECT_TRUE(all_closed());
	}
}

TEST(MenuBar, ShowsWhatChanges)
{
	WindowHolder<BarWindow> window;
	show_active(window);
	window->Lock();
	BMenu* file = window->fBar->SubmenuAt(0);
	file->ItemAt(0)->SetEnabled(false);
	file->ItemAt(2)->SetLabel("Stumm");
	file->ItemAt(2)->SetMarked(true);
	delete file->RemoveItem(int32(3));
	file->AddItem(new CountedItem("First", 'frst', 'X'), 0);
	window->fBar->SubmenuAt(1)->AddItem(new CountedItem("Second", 'scnd', 'x'));
	window->Unlock();
	settle(window);
	std::string labels = on_widget<QMenuBar>(window->fBar, [](QMenuBar& bar) {
		QString all;
		for (QAction* action : bar.actions().at(0)->menu()->actions())
			all += (action->isSeparator() ? "-" : action->text())
				+ (action->isEnabled() ? "" : " off") + (action->isChecked() ? " on" : "") + "|";
		return all.toStdString();
	});
	EXPECT_EQ(labels, "First|Open && more off|- off|Stumm on|");

	type_key(window, Qt::Key_O, Qt::AltModifier);
	type_key(window, Qt::Key_X, Qt::AltModifier);
	EXPECT_EQ(window->Got(1), uint32('scnd')) << "of two shortcuts the last one";
	EXPECT_EQ(window->CountAll(), 1) << "a disabled item was invoked";

	// a click does not set or take the mark: that is the program's affair
	click_title(window, 0);
	ASSERT_TRUE(click_item("Stumm"));
	EXPECT_EQ(window->Got(2), uint32('mute'));
	EXPECT_TRUE(on_widget<QMenuBar>(window->fBar, [](QMenuBar& bar) {
		return action_of(bar.actions().at(0)->menu(), "Stumm")->isChecked();
	}));
}

TEST(MenuBar, AnItemThatWasRemovedMeanwhileIsNotInvoked)
{
	WindowHolder<BarWindow> window;
	show_active(window);
	window->Lock();
	type_key(window, Qt::Key_O, Qt::AltModifier); // waits for the lock
	delete window->fBar->SubmenuAt(0)->RemoveItem(int32(0));
	window->Unlock();
	EXPECT_EQ(window->CountAll(), 0);
}

TEST(MenuBar, AWindowEndsWithItsMenuOpen)
{
	for (int round = 0; round < 5; round++) {
		WindowHolder<BarWindow> window;
		show_active(window);
		click_title(window, 0);
		ASSERT_TRUE(click_item("Size"));
		ASSERT_TRUE(is_open("Large"));
	}
	EXPECT_TRUE(all_closed());
}

TEST(PopUpMenu, WaitsForTheChoice)
{
	WindowHolder<MenuWindow> window;
	window->fPopUp = make_popup();
	show_active(window);
	window->PostMessage('wait');
	ASSERT_TRUE(is_open("Off"));
	EXPECT_EQ(window->fReturned, 0);
	ASSERT_TRUE(click_item("Off")); // does nothing
	ASSERT_TRUE(click_item("Position"));
	ASSERT_TRUE(click_item("Below"));
	ASSERT_TRUE(wait_until([&] { return window->fReturned == 1; }));
	EXPECT_EQ(window->fChosen, window->fPopUp->FindItem('belo'));
	EXPECT_TRUE(all_closed());
	make_active(window);
	window->PostMessage('wait');
	ASSERT_TRUE(menu_key("Hide", Qt::Key_Escape));
	ASSERT_TRUE(wait_until([&] { return window->fReturned == 2; }));
	EXPECT_EQ(window->fChosen, nullptr);
	EXPECT_EQ(window->fCount, 0) << "it was not to be delivered";

	make_active(window);
	BMessage deliver('wait');
	deliver.AddBool("deliver", true);
	window->Lock();
	window->fPopUp->SetTargetForItems(static_cast<MenuWindow*>(window));
	window->Unlock();
	window->PostMessage(&deliver);
	ASSERT_TRUE(choose_by_keys("Hide"));
	EXPECT_EQ(window->Got(1), uint32('hide'));
}

TEST(PopUpMenu, WhoWaitsGivesUpWhenItMustQuit)
{
	auto window = new MenuWindow;
	window->fPopUp = make_popup();
	show_active(window);
	BMessenger messenger(window);
	window->PostMessage('wait');
	ASSERT_TRUE(is_open("Hide"));
	window->PostMessage(B_QUIT_REQUESTED);
	EXPECT_TRUE(wait_until([&] { return !messenger.IsValid(); })) << "it waits for the user";
	EXPECT_TRUE(all_closed());
}

TEST(PopUpMenu, DeliversLater)
{
	WindowHolder<MenuWindow> window;
	window->fPopUp = make_popup();
	window->fPopUp->SetTargetForItems(static_cast<MenuWindow*>(window));
	window->fPopUp->SetRadioMode(true);
	show_active(window);
	window->PostMessage('asyn');
	ASSERT_TRUE(wait_until([&] { return window->fReturned == 1; })) << "it waited";
	ASSERT_TRUE(is_open("Hide"));
	window->PostMessage('renm');
	ASSERT_TRUE(click_item("renamed"));
	EXPECT_EQ(window->Got(1), uint32('hide'));
	EXPECT_TRUE(all_closed());
	window->Lock();
	EXPECT_EQ(window->fPopUp->FindMarked(), window->fPopUp->ItemAt(0));
	window->Unlock();

	make_active(window);
	window->PostMessage('asyn');
	ASSERT_TRUE(menu_key("renamed", Qt::Key_Escape));
	EXPECT_TRUE(all_closed());
	EXPECT_EQ(window->CountAll(), 1);
	make_active(window);
	window->PostMessage('asyn');
	EXPECT_TRUE(is_open("renamed")) << "it does not open again";
	// once more while it is open
	window->PostMessage('asyn');
	settle(window);
	EXPECT_LE(count_open_menus(), 1);
}

TEST(PopUpMenu, OpensWithoutAButtonOnlyWhenItMay)
{
	WindowHolder<MenuWindow> window;
	window->fPopUp = make_popup();
	show_active(window);
	BMessage ask('asyn');
	ask.AddBool("open", false);
	window->PostMessage(&ask);
	ASSERT_TRUE(wait_until([&] { return window->fReturned == 1; }));
	settle(window);
	EXPECT_TRUE(all_closed());
	window->PostMessage('asyn');
	EXPECT_TRUE(is_open("Hide"));
}

TEST(PopUpMenu, MayBeDeletedWhileItIsOpen)
{
	WindowHolder<MenuWindow> window;
	show_active(window);
	for (int round = 0; round < 10; round++) {
		make_active(window);
		window->Lock();
		window->fPopUp = make_popup();
		window->fPopUp->SetTargetForItems(static_cast<MenuWindow*>(window));
		window->Unlock();
		window->PostMessage('asyn');
		ASSERT_TRUE(is_open("Hide"));
		if (round % 2 == 0)
			window->PostMessage('dele');
		else {
			// the choice and the end at once
			window->Lock();
			ASSERT_TRUE(click_item("Hide"));
			window->fPopUp.reset();
			window->Unlock();
		}
		EXPECT_TRUE(all_closed());
	}
	EXPECT_EQ(window->CountAll(), 0);
}

TEST(PopUpMenu, AWindowEndsWithItOpen)
{
	for (int round = 0; round < 5; round++) {
		WindowHolder<MenuWindow> window;
		window->fPopUp = make_popup();
		show_active(window);
		window->PostMessage('asyn');
		ASSERT_TRUE(is_open("Hide"));
	}
	EXPECT_TRUE(all_closed());
}

TEST(PopUpMenu, AMenuOutlivesTheWindowThatOpenedIt)
{
	BPopUpMenu menu("popup", false, false);
	menu.AddItem(new CountedItem("Hide", 'hide'));
	class Opener : public BWindow {
	public:
		explicit Opener(BPopUpMenu* menu)
			: BWindow(BRect(0, 0, 99, 99), "opener", B_TITLED_WINDOW, 0),
			  fMenu(menu)
		{ }
		void MessageReceived(BMessage* message) override
		{
			if (message->what == 'asyn')
				fMenu->Go(BPoint(10, 10), true, true, true);
			else
				BWindow::MessageReceived(message);
		}
		BPopUpMenu* fMenu;
	};
	for (int round = 0; round < 2; round++) {
		WindowHolder<Opener> window(&menu);
		show_active(window);
		window->PostMessage('asyn');
		EXPECT_TRUE(is_open("Hide")) << "round " << round;
	}
	EXPECT_TRUE(all_closed());
}
