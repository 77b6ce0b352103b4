#include "DialogControls.h"

#include "server/ServerBox.h"
#include "server/ServerRadio.h"
#include "server/ServerTabs.h"
#include "server/ServerText.h"

#include <Box.h>
#include <Button.h>
#include <CheckBox.h>
#include <MenuBar.h>
#include <MenuField.h>
#include <Message.h>
#include <PopUpMenu.h>
#include <QAccessible>
#include <RadioButton.h>
#include <TabView.h>
#include <TextControl.h>
#include <TextView.h>
#include <atomic>
#include <string>

class Radios : public DialogControls {
protected:
	Radios()
	{
		BView* boxes[2];
		for (int i = 0; i < 2; i++) {
			boxes[i] = Add(new BBox(BRect(10, 10 + 140 * i, 199, 139 + 140 * i)));
			for (int row = 0; row < 3; row++) {
				const BRect frame(10, 30 + 30 * row, 179, 54 + 30 * row);
				fRadios[i][row] = Add(
					new BRadioButton(frame, "radio", "A & B", new BMessage('pick')), boxes[i]);
			}
		}
		Locked([this] { fRadios[1][2]->SetValue(B_CONTROL_ON); });
		Show();
	}

	//! As the program knows them, and as they are shown.
	std::string States()
	{
		std::string known;
		std::string shown;
		fWindow->Lock();
		for (auto& group : fRadios) {
			for (BRadioButton* radio : group)
				known += radio->Value() == B_CONTROL_ON ? '*' : '-';
		}
		fWindow->Unlock();
		for (auto& group : fRadios) {
			for (BRadioButton* radio : group) {
				const bool on = on_widget<ServerRadio>(
					radio, [](ServerRadio& widget) { return widget.isChecked(); });
				shown += on ? '*' : '-';
			}
		}
		return known == shown ? known : known + " but shown as " + shown;
	}
	void Click(int box, int row)
	{
		on_widget<ServerRadio>(fRadios[box][row], [](ServerRadio& widget) {
			widget.click();
			return true;
		});
	}

	BRadioButton* fRadios[2][3];
};

TEST_F(Radios, ExcludeTheirSiblingsOnly)
{
	EXPECT_EQ(States(), "-----*");
	Click(0, 0);
	EXPECT_EQ(fWindow->Take(), "pick1 ");
	EXPECT_EQ(States(), "*----*");
	// two clicks before the window has dealt with the first
	fWindow->Lock();
	Click(0, 1);
	Click(0, 2);
	fWindow->Unlock();
	EXPECT_EQ(fWindow->Take(), "pick1 pick1 ");
	EXPECT_EQ(States(), "--*--*");

	Locked([this] { fRadios[0][1]->SetValue(B_CONTROL_ON); });
	EXPECT_EQ(States(), "-*---*");
	Locked([this] { fRadios[0][1]->SetValue(B_CONTROL_OFF); });
	EXPECT_EQ(States(), "-----*") << "the program may turn all of them off";
	EXPECT_EQ(fWindow->Take(), "") << "the program sends nothing";
	Click(0, 0);
	EXPECT_EQ(fWindow->Take(), "pick1 ");
	EXPECT_EQ(States(), "*----*");
	Locked([this] { fRadios[0][0]->MakeFocus(); });
	press_key(fRadios[0][0], Qt::Key_Down);
	EXPECT_EQ(fWindow->Take(), "pick1 ");
	EXPECT_EQ(States(), "-*---*") << "by the arrow key";
}

TEST_F(DialogControls, LabelsAreShownAtOnceAndArePlain)
{
	auto* box = Add(new BBox(BRect(0, 0, 199, 99), "box"));
	auto* radio = Add(new BRadioButton(BRect(10, 30, 99, 49), "radio", "old", NULL), box);
	auto* text = Add(new BTextControl(BRect(0, 100, 199, 124), "text", NULL, "", NULL));
	auto* field
		= Add(new BMenuField(BRect(0, 130, 199, 154), "menu", "old", new BPopUpMenu("none")));
	auto* tabs = Add(new BTabView(BRect(200, 0, 399, 199), "tabs"));
	tabs->AddTab(new BView(BRect(0, 0, 99, 99), "old", B_FOLLOW_ALL, 0));
	Show();
	EXPECT_EQ(spoken(input_of(text)), "text") << "without a label it goes by its name";
	float before;
	radio->GetPreferredSize(&before, NULL);
	Locked([=] {
		box->SetLabel("Größe & 行");
		radio->SetLabel("Größe & 行");
		text->SetLabel("Größe & 行");
		field->SetLabel("Größe & 行");
		tabs->TabAt(0)->SetLabel("Größe & 行");
		radio->SetEnabled(false);
		text->SetEnabled(false);
		field->SetEnabled(false);
	});
	for (const BView* view : {static_cast<BView*>(box), static_cast<BView*>(radio), input_of(text)})
		EXPECT_EQ(spoken(view), "Größe & 行") << view->Name();
	EXPECT_EQ(label_of(field->MenuBar()), "Größe & 行");
	EXPECT_EQ(on_widget<ServerTabs>(tabs,
				  [](ServerTabs& widget) {
					  return widget.findChild<QTabBar*>()->tabText(0).toStdString();
				  }),
		"Größe && 行");
	EXPECT_STREQ(tabs->TabAt(0)->Label(), "Größe & 行");
	for (const BView* view : {static_cast<BView*>(radio), input_of(text),
			 static_cast<BView*>(field->MenuBar()), static_cast<BView*>(text)})
		EXPECT_FALSE(on_widget<QWidget>(view, [](QWidget& widget) { return widget.isEnabled(); }));
	float after;
	radio->GetPreferredSize(&after, NULL);
	EXPECT_GT(after, before + 20);
}

class TextLine : public DialogControls {
protected:
	TextLine()
	{
		fText = Add(
			new BTextControl(BRect(10, 10, 209, 34), "size", "Size", "12", new BMessage('done')));
		fText->SetModificationMessage(new BMessage('modi'));
		fNext = Add(new BTextControl(BRect(10, 40, 209, 64), "next", "", "", NULL));
		fButton = Add(new BButton(BRect(10, 80, 109, 104), "ok", "OK", new BMessage('okay')));
		Show();
		Locked([this] { fText->MakeFocus(); });
	}

	std::string Text()
	{
		settle(fWindow);
		fWindow->Lock();
		const std::string text = fText->Text();
		fWindow->Unlock();
		return text;
	}

	BTextControl* fText;
	BTextControl* fNext;
	BButton* fButton;
};

TEST_F(TextLine, IsSentOnceWhenItHasChanged)
{
	ASSERT_TRUE(has_focus(input_of(fText)));
	press_key(input_of(fText), Qt::Key_Return);
	EXPECT_EQ(fWindow->Take(), "") << "nothing has changed";
	press_keys(input_of(fText), "34");
	EXPECT_EQ(fWindow->Take(), "modi0 modi0 ");
	EXPECT_EQ(Text(), "34") << "Return selects all of it";
	press_key(input_of(fText), Qt::Key_Return);
	EXPECT_EQ(fWindow->Take(), "done0 ");
	Locked([this] { fNext->MakeFocus(); });
	EXPECT_EQ(fWindow->Take(), "") << "it was sent already";

	Locked([this] { fText->MakeFocus(); });
	press_keys(input_of(fText), "5");
	press_key(input_of(fText), Qt::Key_Tab);
	EXPECT_TRUE(has_focus(input_of(fNext)));
	EXPECT_EQ(fWindow->Take(), "modi0 done0 ");

	Locked([this] {
		fText->SetText("program");
		fText->MakeFocus();
		fNext->MakeFocus();
	});
	EXPECT_EQ(fWindow->Take(), "") << "the program sends nothing";
	Locked([this] { fText->MakeFocus(); });
	press_keys(input_of(fText), "x");
	EXPECT_EQ(fWindow->Take(), "modi0 ");
	Locked([this] {
		fText->RemoveSelf();
		delete fText;
	});
	EXPECT_EQ(fWindow->Take(), "done0 ") << "the change went with its control";
}

TEST_F(TextLine, ReturnPressesTheDefaultButtonAfterIt)
{
	Locked([this] { fButton->MakeDefault(true); });
	press_keys(input_of(fText), "3");
	type_key(fWindow, Qt::Key_Return);
	std::string log;
	EXPECT_TRUE(wait_until([&] {
		log += fWindow->Take();
		return log.find("okay") != std::string::npos;
	}));
	EXPECT_EQ(log, "modi0 done0 okay1 ");
}

TEST_F(TextLine, LeavesTheWindowItsKeys)
{
	Locked([this] {
		fWindow->AddShortcut('S', 0, new BMessage('save'));
		fWindow->SetFlags(fWindow->Flags() | B_CLOSE_ON_ESCAPE);
		auto* second = new BButton(BRect(10, 110, 109, 134), "no", "No", new BMessage('noop'));
		fWindow->AddChild(second);
		fButton->MakeDefault(true);
		second->MakeDefault(true);
		EXPECT_FALSE(fButton->IsDefault());
	});
	type_key(fWindow, Qt::Key_S, Qt::AltModifier);
	EXPECT_EQ(fWindow->Take(), "save ");
	EXPECT_EQ(Text(), "12") << "a shortcut was written";
	type_key(fWindow, Qt::Key_Escape);
	EXPECT_EQ(fWindow->Take(), "quit ");
	type_key(fWindow, Qt::Key_Return);
	EXPECT_TRUE(wait_until([this] { return fWindow->Take() == "noop1 "; }));
}

TEST_F(TextLine, CountsBytesAndKeepsToItsRules)
{
	BTextView* view = fText->TextView();
	int32 from;
	int32 to;
	Locked([&] {
		fText->SetText("a😀é"); // 1, 4 and 2 bytes
		EXPECT_EQ(fText->TextLength(), 7);
		EXPECT_EQ(view->ByteAt(1), 0xf0);
		view->Select(1, 5);
		view->GetSelection(&from, &to);
		EXPECT_EQ(from, 1);
		EXPECT_EQ(to, 5);
		view->Select(3, 7); // from within a character
		view->GetSelection(&from, &to);
		EXPECT_EQ(from, 1);
		EXPECT_EQ(to, 7);
		view->SelectAll();
		char buffer[4];
		view->GetText(5, 3, buffer);
		EXPECT_STREQ(buffer, "é");
	});
	Locked([&] {
		fText->SetText("");
		view->SetMaxBytes(6);
		view->DisallowChar('x');
		view->DisallowChar(0x1f600);
	});
	on_widget<QLineEdit>(view, [](QLineEdit& edit) {
		QInputMethodEvent input;
		input.setCommitString(QString::fromUtf8("x野😀a"));
		QCoreApplication::sendEvent(&edit, &input);
		return edit.cursorPosition();
	});
	EXPECT_EQ(Text(), "野a");
	press_keys(view, "xbcd");
	EXPECT_EQ(Text(), "野abc");
	EXPECT_EQ(fWindow->Take(), "modi0 modi0 modi0 ");
	Locked([&] { view->SetMaxBytes(2); });
	EXPECT_EQ(Text(), "") << "half a character was left";
}

TEST_F(DialogControls, LongTextIsReadOnly)
{
	auto* view = Add(new BTextView(
		BRect(0, 0, 199, 99), "text", BRect(4, 4, 190, 90), B_FOLLOW_ALL, B_WILL_DRAW));
	view->MakeEditable(false);
	view->SetText("eine 長い line that has to be broken somewhere\nsecond");
	Show();
	press_keys(view, "abc");
	Locked([=] { EXPECT_TRUE(strstr(view->Text(), "長い") != NULL && view->TextLength() > 40); });
	int32 from = -1;
	int32 to = -1;
	on_widget<QPlainTextEdit>(view, [](QPlainTextEdit& edit) {
		edit.setFocus();
		QTest::keyClick(&edit, Qt::Key_A, Qt::ControlModifier);
		return true;
	});
	Locked([&] { view->GetSelection(&from, &to); });
	EXPECT_EQ(from, 0);
	EXPECT_EQ(to, view->TextLength()) << "it cannot be copied";
	EXPECT_FALSE(on_widget<ServerTextArea>(view, [](ServerTextArea& area) {
		return area.HeightFor(150) <= area.HeightFor(2000);
	})) << "its lines are not broken";
}

namespace {

//! Notes when it is asked to show another tab.
class LogTabs : public BTabView {
public:
	LogTabs() : BTabView(BRect(10, 10, 309, 209), "tabs") { }

	void Select(int32 index) override
	{
		fAsked += std::to_string(index);
		BTabView::Select(index);
	}

	std::string fAsked;
};

} // namespace

class Tabs : public DialogControls {
protected:
	Tabs()
	{
		fTabs = Add(new LogTabs);
		for (int i = 0; i < 3; i++) {
			auto* page = new BView(fTabs->ContainerView()->Bounds(), "page", B_FOLLOW_ALL, 0);
			fBoxes[i] = new BCheckBox(BRect(10, 10, 99, 34), "box", "Box", NULL);
			page->AddChild(fBoxes[i]);
			fTabs->AddTab(page);
		}
		fButton = Add(new BButton(BRect(10, 220, 99, 249), "ok", "OK", NULL));
		Show();
	}

	bool IsSeen(int page)
	{
		settle(fWindow);
		return on_widget<QWidget>(fBoxes[page], [](QWidget& widget) { return widget.isVisible(); });
	}
	//! Through the tabs, as Tab does it, from the row of tabs on.
	std::string FocusOrder()
	{
		std::string order;
		Locked([this] { fTabs->MakeFocus(); });
		for (int i = 0; i < 3; i++) {
			if (has_focus(fTabs))
				order += 't';
			else if (has_focus(fButton))
				order += 'b';
			for (int page = 0; page < 3; page++) {
				if (has_focus(fBoxes[page]))
					order += std::to_string(page);
			}
			type_key(fWindow, Qt::Key_Tab);
			settle(fWindow);
		}
		return order;
	}

	LogTabs* fTabs;
	BCheckBox* fBoxes[3];
	BButton* fButton;
};

TEST_F(Tabs, ShowOnePage)
{
	EXPECT_TRUE(IsSeen(0));
	EXPECT_FALSE(IsSeen(1));
	Locked([this] { fTabs->Select(2); });
	EXPECT_TRUE(IsSeen(2));
	EXPECT_FALSE(IsSeen(0));
	EXPECT_EQ(fBoxes[0]->Window(), nullptr) << "as the platform has it";
	EXPECT_TRUE(fTabs->TabAt(2)->IsSelected());
	Locked([this] { fTabs->Select(9); });
	EXPECT_EQ(fTabs->Selection(), 2);

	// the user, faster than the window
	fWindow->Lock();
	fTabs->fAsked.clear();
	on_widget<ServerTabs>(fTabs, [](ServerTabs& widget) {
		QTest::keyClick(widget.focusProxy(), Qt::Key_Left);
		QTest::keyClick(widget.focusProxy(), Qt::Key_Left);
		return true;
	});
	fWindow->Unlock();
	settle(fWindow);
	EXPECT_EQ(fTabs->fAsked, "10");
	EXPECT_TRUE(IsSeen(0));

	Locked([this] {
		fTabs->TabAt(1)->SetEnabled(false);
		BTab* last = fTabs->RemoveTab(2);
		EXPECT_EQ(last->View()->FindView("box"), fBoxes[2]);
		delete last;
		EXPECT_EQ(fTabs->CountTabs(), 2);
	});
	const BRect frame = fTabs->TabFrame(1);
	EXPECT_GT(frame.left, 20);
	click(fWindow, frame.LeftTop() + BPoint(10 + 8, 10 + 8));
	EXPECT_TRUE(IsSeen(0)) << "the tab is disabled";
	Locked([this] { delete fTabs->RemoveTab(0); });
	EXPECT_EQ(fTabs->Selection(), 0);
	EXPECT_TRUE(IsSeen(1));
}

TEST_F(Tabs, TheFocusGoesThroughThePage)
{
	EXPECT_EQ(FocusOrder(), "t0b");
	Locked([this] { fTabs->Select(1); });
	EXPECT_EQ(FocusOrder(), "t1b") << "a page that came later";
}

//! A box has a fill of its own, which must not hide what its children draw.
TEST_F(DialogControls, ChildrenThatAreDrawnAreSeenAndClickedInABox)
{
	class Swatch : public BView {
	public:
		Swatch() : BView(BRect(40, 40, 79, 79), "swatch", B_FOLLOW_LEFT_TOP, B_WILL_DRAW)
		{
			SetViewColor(255, 0, 0);
		}
		void MouseDown(BPoint) override { fClicks++; }

		std::atomic<int> fClicks = 0;
	};
	auto* box = Add(new BBox(BRect(10, 10, 209, 109)));
	auto* swatch = Add(new Swatch, box);
	Show();
	const auto colorAt = [this](int x, int y) {
		const QImage image = pixels_of(fWindow);
		const int scale = image.devicePixelRatio();
		return image.pixelColor(x * scale, y * scale);
	};
	EXPECT_EQ(colorAt(70, 70), QColor(255, 0, 0));
	click(fWindow, BPoint(70, 70));
	EXPECT_TRUE(wait_until([=] { return swatch->fClicks == 1; }));
	Locked([=] { swatch->MoveBy(60, 0); });
	EXPECT_NE(colorAt(70, 70), QColor(255, 0, 0));
	EXPECT_EQ(colorAt(130, 70), QColor(255, 0, 0));
}
