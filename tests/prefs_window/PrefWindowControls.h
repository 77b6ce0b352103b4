#pragma once

#include <gtest/gtest.h>

#include <MenuBar.h>
#include <MenuField.h>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QSpinBox>
#include <TabView.h>
#include <TextControl.h>
#include <TextView.h>

#include "support/display.h"

//! The controls of a preferences window that is shown, used as a user does it. They must be on the page that is shown.
class PrefWindowControls {
public:
	explicit PrefWindowControls(BWindow* window = nullptr) : fControlled(window) { }
	void SetWindow(BWindow* window) { fControlled = window; }

	//! Until the events, and the messages that they cause, are dealt with.
	void Settle()
	{
		settle(fControlled);
		settle(fControlled);
	}

	//! Presses a button, a check box or a radio button by the space bar.
	void Press(const BView* control)
	{
		on_widget<QWidget>(control, [](QWidget& widget) {
			QTest::keyClick(&widget, Qt::Key_Space);
			return true;
		});
		Settle();
	}

	//! Until the window is the active one, without which a control does not notice that it is left.
	void Activate()
	{
		EXPECT_TRUE(wait_until([this] {
			return on_server(fControlled, [](BPrivate::ServerWindow& window) {
				// the offscreen platform forgets at times which one has the focus
				if (!window.isActiveWindow())
					QApplication::setActiveWindow(&window);
				return window.isActiveWindow();
			});
		})) << "the window does not become active";
	}

	//! Types another text, and goes on to the next control.
	void Type(const BTextControl* control, const char* text, bool isLeft = true)
	{
		Activate();
		on_widget<QLineEdit>(control->TextView(), [text, isLeft](QLineEdit& edit) {
			// in this very turn: a late change of the active window may have come since
			if (!edit.isActiveWindow())
				QApplication::setActiveWindow(edit.window());
			edit.setFocus();
			edit.selectAll();
			QTest::keyClick(&edit, Qt::Key_Delete);
			edit.insert(QString::fromUtf8(text));
			if (isLeft)
				QTest::keyClick(&edit, Qt::Key_Tab);
			return true;
		});
		Settle();
	}

	void TypeKey(const BTextControl* control, Qt::Key key, Qt::KeyboardModifiers modifiers = {})
	{
		on_widget<QLineEdit>(control->TextView(), [key, modifiers](QLineEdit& edit) {
			QTest::keyClick(&edit, key, modifiers);
			return true;
		});
	}

	/*!	Opens the menu of a field by the space bar. A field whose window loses the focus opens none, and one may have lost it to a box or
		a menu that was closed just before: then the key is pressed again, as anybody would. */
	void OpenMenu(const BMenuField* field)
	{
		bool isOpen = false;
		for (int attempt = 0; attempt < 10 && !isOpen; attempt++) {
			Activate();
			on_widget<QComboBox>(field->MenuBar(), [](QComboBox& box) {
				QTest::keyClick(&box, Qt::Key_Space);
				return true;
			});
			isOpen = wait_until(
				[] {
					return *BPrivate::ServerLink::Default().Call([] {
						return qobject_cast<QMenu*>(QApplication::activePopupWidget()) != nullptr;
					});
				},
				std::chrono::seconds(2));
		}
		ASSERT_TRUE(isOpen) << "the menu did not open";
	}

	/*!	Opens the menu and calls a function with it on the server's thread. A late change of the active window closes a menu: then it is
		opened again. */
	template<typename Function> void InMenu(const BMenuField* field, Function function)
	{
		bool isDone = false;
		for (int i = 0; !isDone && i < 5; i++) {
			OpenMenu(field);
			isDone = *BPrivate::ServerLink::Default().Call([&function] {
				auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
				if (menu != nullptr)
					function(*menu);
				return menu != nullptr;
			});
		}
		ASSERT_TRUE(isDone) << "the menu does not stay open";
		Settle();
	}

	//! Opens the menu and chooses its item; separators count.
	void Choose(const BMenuField* field, int index)
	{
		InMenu(field, [index](QMenu& menu) {
			ASSERT_LT(index, menu.actions().size());
			menu.setActiveAction(menu.actions()[index]);
			QTest::keyClick(&menu, Qt::Key_Return);
		});
	}

	//! Shows the page with the control, and answers it.
	template<typename Control> Control* Show(const char* name)
	{
		fControlled->Lock();
		auto* control = dynamic_cast<Control*>(fControlled->FindView(name));
		auto* tabs = static_cast<BTabView*>(fControlled->FindView("TabViewCategory"));
		for (int32 i = 0; i < tabs->CountTabs() && control == nullptr; i++) {
			control = dynamic_cast<Control*>(tabs->ViewForTab(i)->FindView(name));
			if (control != nullptr)
				tabs->Select(i);
		}
		fControlled->Unlock();
		Settle();
		return control;
	}

	//! Types a number of a colour control: 0 red, 1 green, 2 blue.
	void SetColorPart(const BView* control, int part, int value)
	{
		on_widget<QWidget>(control, [part, value](QWidget& widget) {
			widget.findChildren<QSpinBox*>()[part]->setValue(value);
			return true;
		});
		Settle();
	}

private:
	BWindow* fControlled;
};
