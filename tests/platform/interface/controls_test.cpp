#include "support/LoggingWindow.h"

#include "server/ServerList.h"
#include "server/ServerSlider.h"

#include <Entry.h>
#include <ListView.h>
#include <Message.h>
#include <Path.h>
#include <QAccessible>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QScrollBar>
#include <ScrollView.h>
#include <Slider.h>
#include <StringView.h>
#include <atomic>
#include <ctime>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "support/temp_folder.h"

using namespace BPrivate;

namespace {

//! Writes down what its controls send.
class ControlWindow : public LoggingWindow {
public:
	ControlWindow() : LoggingWindow(BRect(100, 100, 399, 399), "controls", B_TITLED_WINDOW, 0) { }

	void MessageReceived(BMessage* message) override
	{
		switch (message->what) {
			case 'modi':
			case 'done':
			case 'slct':
			case 'invk': {
				std::string line = TextOf(message, " ");
				int32 value;
				for (int32 i = 0; message->FindInt32("index", i, &value) == B_OK; i++)
					line += " " + std::to_string(value);
				Note(line + "; ");
				break;
			}
			case B_SIMPLE_DATA: {
				std::lock_guard lock(fMutex);
				fDropped = *message;
				break;
			}
			default:
				BWindow::MessageReceived(message);
		}
	}

	std::mutex fMutex;
	BMessage fDropped;
};

class SliderTest : public testing::Test {
protected:
	SliderTest()
	{
		fSlider
			= new BSlider(BRect(10, 10, 219, 49), "Volume", "Loud", new BMessage('done'), 0, 100);
		fSlider->SetModificationMessage(new BMessage('modi'));
		fWindow->Lock();
		fWindow->AddChild(fSlider);
		fWindow->Unlock();
		fWindow->Show();
		settle(fWindow);
	}

	template<typename Function> auto OnSlider(Function function)
	{
		return on_widget<ServerSlider>(fSlider, function);
	}
	int32 Value()
	{
		fWindow->Lock();
		int32 value = fSlider->Value();
		fWindow->Unlock();
		return value;
	}
	int Shown()
	{
		return OnSlider([](ServerSlider& slider) { return slider.value(); });
	}
	void Key(Qt::Key key)
	{
		OnSlider([=](ServerSlider& slider) {
			QTest::keyClick(&slider, key);
			return true;
		});
	}
	void Mouse(QEvent::Type type, int x)
	{
		OnSlider([=](ServerSlider& slider) {
			const QPoint where(x, slider.height() - 10);
			if (type == QEvent::MouseButtonPress)
				QTest::mousePress(&slider, Qt::LeftButton, {}, where);
			else if (type == QEvent::MouseButtonRelease)
				QTest::mouseRelease(&slider, Qt::LeftButton, {}, where);
			else {
				QMouseEvent move(QEvent::MouseMove, where, slider.mapToGlobal(where), Qt::NoButton,
					Qt::LeftButton, {});
				QCoreApplication::sendEvent(&slider, &move);
			}
			return true;
		});
	}

	WindowHolder<ControlWindow> fWindow;
	BSlider* fSlider;
};

class ListTest : public testing::Test {
protected:
	ListTest()
	{
		fList = new BListView(BRect(10, 10, 199, 199), "Playlist");
		fList->SetSelectionMessage(new BMessage('slct'));
		fList->SetInvocationMessage(new BMessage('invk'));
		fScroll = new BScrollView("scroll", fList, B_FOLLOW_ALL, 0, false, true);
		fWindow->Lock();
		fWindow->AddChild(fScroll);
		fWindow->Unlock();
		fWindow->Show();
	}
	~ListTest() override
	{
		// before the items
		fWindow->Lock();
		fScroll->RemoveSelf();
		delete fScroll;
		fWindow->Unlock();
	}

	BStringItem* NewItem(const std::string& text)
	{
		fItems.push_back(std::make_unique<BStringItem>(text.c_str()));
		return fItems.back().get();
	}
	void Fill(std::initializer_list<const char*> texts)
	{
		fWindow->Lock();
		for (const char* text : texts)
			fList->AddItem(NewItem(text));
		fWindow->Unlock();
		settle(fWindow);
	}
	int32 Selected(int32 index = 0)
	{
		fWindow->Lock();
		int32 selected = fList->CurrentSelection(index);
		fWindow->Unlock();
		return selected;
	}
	template<typename Function> auto OnList(Function function)
	{
		return on_widget<ServerList>(fList, function);
	}
	//! The texts that are shown; those that are selected in brackets.
	std::string Shown()
	{
		return OnList([](ServerList& list) {
			QString all;
			for (int i = 0; i < list.model()->rowCount(); i++) {
				const QModelIndex index = list.model()->index(i, 0);
				bool selected = list.selectionModel()->isSelected(index);
				all += (selected ? "[" + index.data().toString() + "]" : index.data().toString());
			}
			return all.toStdString();
		});
	}
	void ClickRow(int row, Qt::KeyboardModifiers modifiers = {}, bool twice = false)
	{
		OnList([=](ServerList& list) {
			const QPoint where = list.visualRect(list.model()->index(row, 0)).center();
			QTest::mouseClick(list.viewport(), Qt::LeftButton, modifiers, where);
			if (twice)
				QTest::mouseDClick(list.viewport(), Qt::LeftButton, modifiers, where);
			return true;
		});
	}
	void Key(Qt::Key key)
	{
		OnList([=](ServerList& list) {
			QTest::keyClick(&list, key);
			return true;
		});
	}

	WindowHolder<ControlWindow> fWindow;
	std::vector<std::unique_ptr<BStringItem>> fItems;
	BListView* fList;
	BScrollView* fScroll;
};

} // namespace

TEST_F(SliderTest, TheProgramSendsNothing)
{
	fWindow->Lock();
	fSlider->SetValue(30);
	EXPECT_EQ(fSlider->Value(), 30);
	fSlider->SetValue(1000);
	EXPECT_EQ(fSlider->Value(), 100) << "beyond the limit";
	fSlider->SetLimits(-20, 60);
	EXPECT_EQ(fSlider->Value(), 60);
	fSlider->SetLimits(5, 4);
	int32 smallest;
	int32 largest;
	fSlider->GetLimits(&smallest, &largest);
	EXPECT_EQ(smallest, -20);
	EXPECT_EQ(largest, 60);
	fWindow->Unlock();
	EXPECT_EQ(fWindow->Take(), "");
	EXPECT_EQ(Shown(), 60);
}

TEST_F(SliderTest, KeysModifyAndInvoke)
{
	fWindow->Lock();
	fSlider->SetValue(50);
	fSlider->SetKeyIncrementValue(7);
	fWindow->Unlock();
	Key(Qt::Key_Right);
	EXPECT_EQ(fWindow->Take(), "modi 57; done 57; ");
	Key(Qt::Key_End);
	EXPECT_EQ(fWindow->Take(), "modi 100; done 100; ");
	Key(Qt::Key_Right);
	EXPECT_EQ(fWindow->Take(), "") << "it was at the end";
	EXPECT_EQ(Value(), 100);
}

TEST_F(SliderTest, AClickJumpsAndADragGoesOn)
{
	Mouse(QEvent::MouseButtonPress, 105);
	EXPECT_EQ(fWindow->Take(), "modi 50; ");
	Mouse(QEvent::MouseMove, 208);
	EXPECT_EQ(fWindow->Take(), "modi 100; ");
	// the program's idea of the position does not take the thumb away
	fWindow->Lock();
	fSlider->SetValue(3);
	fWindow->Unlock();
	settle(fWindow);
	EXPECT_EQ(Shown(), 100);
	Mouse(QEvent::MouseMove, 2);
	Mouse(QEvent::MouseButtonRelease, 2);
	EXPECT_EQ(fWindow->Take(), "modi 0; done 0; ");
	EXPECT_EQ(Value(), 0);
}

TEST_F(SliderTest, HoldingTheThumbStillInvokesNothing)
{
	Mouse(QEvent::MouseButtonPress, 2);
	fWindow->Lock();
	fSlider->SetValue(40);
	fWindow->Unlock();
	settle(fWindow);
	Mouse(QEvent::MouseButtonRelease, 2);
	EXPECT_EQ(fWindow->Take(), "");
	EXPECT_EQ(Shown(), 40);
}

TEST_F(SliderTest, ADragEndsWhenTheSliderIsDisabled)
{
	Mouse(QEvent::MouseButtonPress, 105);
	fWindow->Take();
	fWindow->Lock();
	fSlider->SetEnabled(false);
	fWindow->Unlock();
	EXPECT_EQ(fWindow->Take(), "done 50; ");
}

TEST_F(SliderTest, HasItsLabelAboveAndByName)
{
	EXPECT_EQ(OnSlider([](ServerSlider& slider) {
		return QAccessible::queryAccessibleInterface(&slider)
			->text(QAccessible::Name)
			.toStdString();
	}),
		"Loud");
	float high;
	fSlider->GetPreferredSize(NULL, &high);
	fWindow->Lock();
	fSlider->SetLabel(NULL);
	fWindow->Unlock();
	float low;
	fSlider->GetPreferredSize(NULL, &low);
	EXPECT_GT(high, low + 8);
}

TEST_F(ListTest, TheUserSelectsAndInvokes)
{
	Fill({"one", "two", "three"});
	ClickRow(1);
	EXPECT_EQ(fWindow->Take(), "slct 1; ");
	EXPECT_EQ(Selected(), 1);
	fWindow->Lock();
	EXPECT_TRUE(fItems[1]->IsSelected());
	fWindow->Unlock();
	ClickRow(1);
	EXPECT_EQ(fWindow->Take(), "") << "it was selected already";
	Key(Qt::Key_Down);
	Key(Qt::Key_Return);
	EXPECT_EQ(fWindow->Take(), "slct 2; invk 2; ");
	ClickRow(0, {}, true);
	EXPECT_EQ(fWindow->Take(), "slct 0; invk 0; ");
}

TEST_F(ListTest, TheProgramSelects)
{
	Fill({"one", "two", "three"});
	fWindow->Lock();
	fList->Select(2);
	EXPECT_EQ(fList->CurrentSelection(), 2);
	fList->Select(1, true); // there is only one in such a list
	fList->Select(7);
	EXPECT_EQ(fList->CurrentSelection(1), -1);
	fWindow->Unlock();
	EXPECT_EQ(fWindow->Take(), "slct 2; slct 1; ");
	EXPECT_EQ(Shown(), "one[two]three");
	fWindow->Lock();
	fList->DeselectAll();
	fWindow->Unlock();
	EXPECT_EQ(fWindow->Take(), "slct -1; ");
	EXPECT_EQ(Shown(), "onetwothree");
}

TEST_F(ListTest, SeveralMayBeSelected)
{
	Fill({"a", "b", "c", "d", "e"});
	fWindow->Lock();
	fList->SetListType(B_MULTIPLE_SELECTION_LIST);
	fList->Select(0, 1);
	fWindow->Unlock();
	settle(fWindow);
	ClickRow(3, Qt::ControlModifier);
	EXPECT_EQ(fWindow->Take(), "slct 0 1; slct 0 1 3; ");
	EXPECT_EQ(Selected(2), 3);
	fWindow->Lock();
	fList->Deselect(1);
	fWindow->Unlock();
	settle(fWindow);
	EXPECT_EQ(Shown(), "[a]bc[d]e");
	fWindow->Lock();
	fList->SetListType(B_SINGLE_SELECTION_LIST);
	fWindow->Unlock();
	settle(fWindow);
	EXPECT_EQ(Shown(), "[a]bcde");
}

TEST_F(ListTest, ItemsComeAndGo)
{
	Fill({"one", "two", "three"});
	ClickRow(1);
	EXPECT_EQ(fWindow->Take(), "slct 1; ");
	fWindow->Lock();
	EXPECT_FALSE(fList->AddItem(NewItem("never"), 9));
	EXPECT_FALSE(fList->AddItem(NULL));
	EXPECT_TRUE(fList->AddItem(NewItem("zero"), 0));
	EXPECT_EQ(fList->CurrentSelection(), 2) << "the selection goes with its item";
	EXPECT_EQ(fList->RemoveItem(int32(3)), fItems[2].get());
	fItems[0]->SetText("ONE");
	fList->InvalidateItem(1);
	fWindow->Unlock();
	settle(fWindow);
	EXPECT_EQ(Shown(), "zeroONE[two]");

	fWindow->Lock();
	EXPECT_TRUE(fList->RemoveItem(fItems[1].get()));
	EXPECT_EQ(fList->CurrentSelection(), -1);
	EXPECT_FALSE(fList->RemoveItem(fItems[1].get()));
	fWindow->Unlock();
	settle(fWindow);
	EXPECT_EQ(Shown(), "zeroONE") << "a neighbour was selected";
	fWindow->Lock();
	fItems[0]->SetEnabled(false);
	fList->InvalidateItem(1);
	fWindow->Unlock();
	settle(fWindow);
	ClickRow(1);
	EXPECT_EQ(fWindow->Take(), "");
	fWindow->Lock();
	fList->MakeEmpty();
	fWindow->Unlock();
	settle(fWindow);
	EXPECT_EQ(Shown(), "");
	EXPECT_TRUE(fList->IsEmpty());
}

//! The user's click waits for the lock while the program puts a row before it.
TEST_F(ListTest, AClickDuringAChangeSelectsTheItemThatWasMeant)
{
	Fill({"one", "two", "three"});
	fWindow->Lock();
	ClickRow(1);
	fList->AddItem(NewItem("zero"), 0);
	fWindow->Unlock();
	EXPECT_TRUE(wait_until([&] {
		settle(fWindow);
		return Selected() == 2;
	}));
	EXPECT_EQ(Shown(), "zeroone[two]three");
	EXPECT_EQ(fWindow->Take(), "slct 2; ");
}

TEST_F(ListTest, TenThousandItemsAreQuick)
{
	constexpr int32 kCount = 10000;
	BList items;
	for (int32 i = 0; i < kCount; i++)
		items.AddItem(NewItem("item " + std::to_string(i)));
	const clock_t start = clock(); // what other programs take does not count
	fWindow->Lock();
	EXPECT_TRUE(fList->AddList(&items));
	for (int32 i = 0; i < 1000; i++)
		fList->AddItem(NewItem("more"));
	fList->Select(kCount - 1);
	fList->ScrollToSelection();
	fWindow->Unlock();
	settle(fWindow);
	EXPECT_LT(clock() - start, 5 * CLOCKS_PER_SEC);
	EXPECT_TRUE(OnList([](ServerList& list) {
		return list.viewport()->rect().contains(list.visualRect(list.model()->index(kCount - 1, 0)))
			&& list.verticalScrollBar()->isVisible();
	}));
}

TEST_F(ListTest, FillsItsScrollView)
{
	// border, list and scroll bar
	EXPECT_EQ(fScroll->Frame(), BRect(8, 8, 215, 201));
	fWindow->Lock();
	fWindow->ResizeBy(40, 30);
	fWindow->Unlock();
	settle(fWindow);
	EXPECT_EQ(OnList([](ServerList& list) { return list.geometry(); }), QRect(8, 8, 248, 224));
}

TEST_F(ListTest, FilesMayBeDroppedOnIt)
{
	TempFolder folder;
	const std::string path = folder.Write("song.ogg", "x");
	Fill({"one"});
	// as a drag enters what is under the pointer: from there up to the first one that takes files
	OnList([path](ServerList& list) {
		QMimeData data;
		data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
		const QPoint where(40, 40);
		QDragEnterEvent enter(where, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
		QCoreApplication::sendEvent(list.viewport(), &enter);
		QDropEvent drop(where, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
		QCoreApplication::sendEvent(list.viewport(), &drop);
		return true;
	});
	EXPECT_TRUE(wait_until([&] {
		std::lock_guard lock(fWindow->fMutex);
		return fWindow->fDropped.HasRef("refs");
	}));
}

TEST_F(ListTest, KeysThatItHasNoUseForAreTheWindows)
{
	Fill({"one"});
	fWindow->Lock();
	fWindow->AddShortcut('T', 0, new BMessage('invk'));
	fList->MakeFocus();
	fWindow->Unlock();
	settle(fWindow);
	type_key(fWindow, Qt::Key_T, Qt::AltModifier);
	EXPECT_TRUE(wait_until([&] { return fWindow->Take() == "invk; "; }));
}

TEST(StringView, ShowsItsTextAndSaysWhenThereIsMore)
{
	WindowHolder<ControlWindow> window;
	auto* view = new BStringView(BRect(10, 10, 109, 29), "text", "a title");
	window->Lock();
	window->AddChild(view);
	view->SetAlignment(B_ALIGN_RIGHT);
	view->SetHighColor(255, 0, 0);
	window->Unlock();
	window->Show();
	settle(window);
	EXPECT_STREQ(view->Text(), "a title");
	EXPECT_EQ(on_widget<QLabel>(view,
				  [](QLabel& label) {
					  return QAccessible::queryAccessibleInterface(&label)
						  ->text(QAccessible::Name)
						  .toStdString();
				  }),
		"a title");
	const auto columns = [&] {
		QImage image = pixels_of(window).convertToFormat(QImage::Format_RGB32);
		std::string drawn(image.width(), ' ');
		for (int x = 0; x < image.width(); x++) {
			for (int y = 0; y < 40; y++) {
				QColor color = image.pixelColor(x, y);
				if (color.red() > color.green() + 60)
					drawn[x] = '#';
			}
		}
		return drawn;
	};
	std::string drawn = columns();
	EXPECT_GT(drawn.find('#'), 30u) << "not at the right";
	EXPECT_NE(drawn.find('#', 100), std::string::npos);

	window->Lock();
	view->SetText("a very long title, which does not fit into a hundred pixels at all");
	window->Unlock();
	settle(window);
	drawn = columns();
	EXPECT_EQ(drawn.find('#', 110), std::string::npos) << "it goes beyond its edge";
	float width;
	view->GetPreferredSize(&width, NULL);
	EXPECT_GT(width, 200);
	window->Lock();
	view->SetText(NULL);
	window->Unlock();
	settle(window);
	EXPECT_EQ(columns().find('#'), std::string::npos);
	EXPECT_EQ(view->Text(), nullptr);
}
