#include "DialogControls.h"

#include "server/ServerMenuField.h"

#include <MenuBar.h>
#include <MenuField.h>
#include <MenuItem.h>
#include <PopUpMenu.h>
#include <QAccessible>
#include <QApplication>
#include <atomic>
#include <ctime>

class MenuFields : public DialogControls {
protected:
	MenuFields()
	{
		auto* menu = new BPopUpMenu("choose");
		menu->AddItem(new BMenuItem("日本語 & more", new BMessage('item')));
		menu->AddItem(new BMenuItem("English", new BMessage('item')));
		menu->AddSeparatorItem();
		auto* below = new BMenu("More");
		below->AddItem(new BMenuItem("Español", new BMessage('less')));
		menu->AddItem(below);
		fField = Add(new BMenuField(BRect(10, 10, 209, 34), "field", "Language", menu));
		Show();
	}

	std::string Shown() { return spoken(fField->MenuBar(), QAccessible::Value); }
	template<typename Function> bool WithMenu(Function function)
	{
		return wait_until([=] {
			return *ServerLink::Default().Call([=] {
				auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
				if (menu != nullptr)
					function(*menu);
				return menu != nullptr;
			});
		});
	}

	BMenuField* fField;
};

TEST_F(MenuFields, AreOperatedByKeysAndShowWhatIsMarked)
{
	EXPECT_EQ(Shown(), "choose");
	Locked([this] {
		fField->MakeFocus();
		fField->Menu()->ItemAt(0)->SetMarked(true);
	});
	EXPECT_EQ(Shown(), "日本語 & more");
	EXPECT_EQ(fWindow->Take(), "");
	type_key(fWindow, Qt::Key_Space);
	EXPECT_TRUE(WithMenu([](QMenu& menu) {
		EXPECT_TRUE(menu.actions()[0]->isChecked());
		EXPECT_TRUE(menu.actions()[2]->isSeparator());
		QTest::keyClick(&menu, Qt::Key_Down);
		QTest::keyClick(&menu, Qt::Key_Return);
	}));
	EXPECT_EQ(fWindow->Take(), "item ");
	EXPECT_EQ(Shown(), "English");
	Locked([this] { EXPECT_STREQ(fField->MenuItem()->Label(), "English"); });
	type_key(fWindow, Qt::Key_Down);
	EXPECT_TRUE(WithMenu([](QMenu& menu) {
		QTest::keyClick(&menu, Qt::Key_Down);
		QTest::keyClick(&menu, Qt::Key_Right);
		QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
	}));
	EXPECT_EQ(fWindow->Take(), "less ") << "of a sub-menu";
	EXPECT_EQ(Shown(), "English");

	float width;
	float wider;
	Locked([&] {
		fField->GetPreferredSize(&width, NULL);
		fField->Menu()->AddItem(new BMenuItem("a label that is very long indeed", NULL));
		fField->GetPreferredSize(&wider, NULL);
		fField->SetEnabled(false);
	});
	EXPECT_GT(wider, width + 50);
	type_key(fWindow, Qt::Key_Space);
	EXPECT_EQ(
		*ServerLink::Default().Call([] { return QApplication::activePopupWidget(); }), nullptr)
		<< "it is disabled";
}

namespace {

constexpr int32 kMany = 1000;

//! Has its items when it opens: every hundredth has a name of its own.
class LateMenu : public BPopUpMenu {
public:
	LateMenu() : BPopUpMenu("late") { AddItem(Item("only")); }

	std::string fStates;

protected:
	bool AddDynamicItem(add_state state) override
	{
		fStates += state == B_INITIAL_ADD ? 'i' : 'p';
		if (state == B_INITIAL_ADD) {
			RemoveItems(0, CountItems(), true);
			return true;
		}
		for (int i = 0; i < kMany / 2; i++) {
			const int32 number = CountItems();
			const std::string name = number % 100 == 0 ? "Zebra " : "family ";
			AddItem(Item((name + std::to_string(number)).c_str()));
			if (number == 700)
				ItemAt(number)->SetMarked(true);
		}
		return CountItems() < kMany;
	}

private:
	static BMenuItem* Item(const char* label) { return new BMenuItem(label, new BMessage('late')); }
};

std::string
active_label(QMenu& menu)
{
	return menu.activeAction() != nullptr ? menu.activeAction()->text().toStdString() : "none";
}

} // namespace

TEST_F(MenuFields, AMenuThatIsFilledWhenItOpensIsQuickAndSearched)
{
	LateMenu* late = new LateMenu;
	BMenuField* field = Add(new BMenuField(BRect(10, 50, 209, 74), "late field", "Late", late));
	Locked([&] {
		late->ItemAt(0)->SetMarked(true);
		field->MakeFocus();
	});
	EXPECT_EQ(spoken(field->MenuBar(), QAccessible::Value), "only");
	EXPECT_EQ(late->fStates, "") << "it did not open yet";

	const clock_t begin = clock();
	type_key(fWindow, Qt::Key_Space);
	EXPECT_TRUE(WithMenu([](QMenu& menu) {
		EXPECT_EQ(menu.actions().size(), kMany);
		EXPECT_EQ(active_label(menu), "Zebra 700") << "the marked one";
		EXPECT_TRUE(menu.rect().contains(menu.actionGeometry(menu.activeAction())));
	}));
	// 26 ms; what other programs take does not count
	EXPECT_LT(clock() - begin, 2 * CLOCKS_PER_SEC);
	EXPECT_TRUE(WithMenu([](QMenu& menu) {
		const auto type = [&menu](const char* text) {
			QTest::keyClicks(&menu, text);
			return active_label(menu);
		};
		EXPECT_EQ(type("zeb"), "Zebra 0") << "in any case";
		EXPECT_EQ(type("ra 50"), "Zebra 500") << "a blank is part of the name";
		EXPECT_EQ(type("?"), "Zebra 500") << "there is none";
		QTest::qWait(1100);
		EXPECT_EQ(type("y 999"), "family 999") << "anew after a pause, in the middle of a name";
		EXPECT_TRUE(menu.rect().contains(menu.actionGeometry(menu.activeAction())));
		QTest::keyClick(&menu, Qt::Key_Return);
	}));
	EXPECT_EQ(fWindow->Take(), "late ");
	EXPECT_EQ(spoken(field->MenuBar(), QAccessible::Value), "family 999");
	Locked([&] { EXPECT_EQ(late->fStates, "ipp"); });

	// the user has gone on before the window came to it
	Locked([&] {
		type_key(fWindow, Qt::Key_Space);
		on_widget<ServerMenuField>(field->MenuBar(), [](ServerMenuField& shown) {
			shown.hidePopup();
			return true;
		});
	});
	settle(fWindow);
	EXPECT_EQ(
		*ServerLink::Default().Call([] { return QApplication::activePopupWidget(); }), nullptr);
}
