#include "support/display.h"

#include "server/Desktop.h"

#include <Button.h>
#include <CheckBox.h>
#include <Entry.h>
#include <Message.h>
#include <Path.h>
#include <QApplication>
#include <QCheckBox>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QPushButton>
#include <View.h>
#include <atomic>
#include <mutex>
#include <string>
#include <vector>

#include "support/temp_folder.h"

using namespace BPrivate;

namespace {

//! Writes down what the user does to it.
class LogView : public BView {
public:
	LogView(BRect frame, const char* name) : BView(frame, name, B_FOLLOW_NONE, B_WILL_DRAW) { }

	void MouseDown(BPoint where) override
	{
		BMessage* message = Window()->CurrentMessage();
		Log("down", where, message->GetInt32("buttons", -1), message->GetInt32("clicks", -1));
		if (fTakesPointer)
			SetMouseEventMask(B_POINTER_EVENTS);
	}
	void MouseUp(BPoint where) override { Log("up", where, 0, 0); }
	void MouseMoved(BPoint where, uint32 transit, const BMessage* dragged) override
	{
		Log(dragged != NULL ? "drag" : "move", where, transit, 0);
	}
	void KeyDown(const char* bytes, int32 count) override
	{
		std::lock_guard lock(fMutex);
		fKeys.append(bytes, count);
	}
	void MessageReceived(BMessage* message) override
	{
		std::unique_lock lock(fMutex);
		if (message->what == B_UNMAPPED_KEY_DOWN)
			fUnmapped = message->GetInt32("key", -1);
		else if (message->what == B_SIMPLE_DATA) {
			fDropped = *message;
			fWasDropped = message->WasDropped();
			fDropPoint = message->DropPoint();
		} else {
			lock.unlock();
			BView::MessageReceived(message);
		}
	}

	void Log(const char* what, BPoint where, int32 first, int32 second)
	{
		char line[100];
		snprintf(
			line, sizeof(line), "%s %g,%g %d %d", what, where.x, where.y, int(first), int(second));
		std::lock_guard lock(fMutex);
		fLog.push_back(line);
	}
	bool Has(const std::string& line)
	{
		std::lock_guard lock(fMutex);
		return std::find(fLog.begin(), fLog.end(), line) != fLog.end();
	}
	std::string All()
	{
		std::lock_guard lock(fMutex);
		std::string all;
		for (const std::string& line : fLog)
			all += line + "; ";
		return all;
	}
	std::string Keys()
	{
		std::lock_guard lock(fMutex);
		return fKeys;
	}

	std::mutex fMutex;
	std::vector<std::string> fLog;
	std::string fKeys;
	int32 fUnmapped = -1;
	BMessage fDropped;
	bool fWasDropped = false;
	BPoint fDropPoint;
	std::atomic<bool> fTakesPointer = false;
};

//! Two views beside each other, and what controls send.
class InputWindow : public BWindow {
public:
	InputWindow() : BWindow(BRect(100, 100, 299, 199), "input", B_TITLED_WINDOW, 0)
	{
		fLeft = new LogView(BRect(0, 0, 99, 99), "left");
		fRight = new LogView(BRect(100, 0, 199, 99), "right");
		AddChild(fLeft);
		AddChild(fRight);
	}
	void MessageReceived(BMessage* message) override
	{
		if (message->what == 'ctrl') {
			fValue = message->GetInt32("be:value", -1);
			fInvoked++;
		} else
			BWindow::MessageReceived(message);
	}
	LogView* fLeft;
	LogView* fRight;
	std::atomic<int> fInvoked = 0;
	std::atomic<int32> fValue = -1;
};

void
move_pointer(BWindow* window, int x, int y)
{
	on_server(window, [=](ServerWindow& server) {
		QTest::mouseMove(server.windowHandle(), QPoint(x, y));
		return true;
	});
}

} // namespace

TEST(Input, ClicksReachTheViewUnderThePointer)
{
	WindowHolder<InputWindow> window;
	window->Show();
	settle(window);
	// however slow the machine is
	ServerLink::Default().CallJob([] { QApplication::setDoubleClickInterval(60000); });
	click(window, BPoint(120, 30));
	EXPECT_TRUE(wait_until([&] { return window->fRight->Has("up 20,30 0 0"); }))
		<< window->fRight->All();
	EXPECT_TRUE(window->fRight->Has("down 20,30 1 1")) << window->fRight->All();
	click(window, BPoint(10, 40), Qt::RightButton);
	EXPECT_TRUE(wait_until([&] { return window->fLeft->Has("up 10,40 0 0"); }));
	EXPECT_TRUE(window->fLeft->Has("down 10,40 2 1")) << window->fLeft->All();
	EXPECT_FALSE(window->fLeft->Has("down 20,30 1 1"));
	click(window, BPoint(10, 41), Qt::RightButton);
	EXPECT_TRUE(wait_until([&] { return window->fLeft->Has("down 10,41 2 2"); }))
		<< "no double click: " << window->fLeft->All();
}

TEST(Input, MovesTellWhereThePointerComesAndGoes)
{
	WindowHolder<InputWindow> window;
	window->Show();
	settle(window);
	move_pointer(window, 50, 50);
	EXPECT_TRUE(wait_until([&] { return window->fLeft->Has("move 50,50 0 0"); }))
		<< window->fLeft->All();
	move_pointer(window, 60, 50);
	EXPECT_TRUE(wait_until([&] { return window->fLeft->Has("move 60,50 1 0"); }));
	move_pointer(window, 110, 50);
	EXPECT_TRUE(wait_until([&] { return window->fRight->Has("move 10,50 0 0"); }));
	EXPECT_TRUE(wait_until([&] { return window->fLeft->Has("move 110,50 2 0"); }))
		<< window->fLeft->All();
}

TEST(Input, ABusyWindowFindsOneMoveWaiting)
{
	WindowHolder<InputWindow> window;
	window->Show();
	settle(window);
	window->Lock();
	// in one go: what waits for long is taken for lost
	on_server(window, [](ServerWindow& server) {
		for (int i = 0; i < 500; i++)
			QTest::mouseMove(server.windowHandle(), QPoint(i % 90 + 1, 50));
		QTest::mouseMove(server.windowHandle(), QPoint(77, 33));
		return true;
	});
	window->Unlock();
	EXPECT_TRUE(wait_until([&] {
		std::string log = window->fLeft->All();
		return log.find("move 77,33") != std::string::npos;
	}));
	std::lock_guard lock(window->fLeft->fMutex);
	EXPECT_LT(window->fLeft->fLog.size(), 100u);
}

TEST(Input, AViewKeepsThePointerUntilTheButtonIsUp)
{
	WindowHolder<InputWindow> window;
	window->fLeft->fTakesPointer = true;
	window->Show();
	settle(window);
	const auto server = [&](auto function) {
		on_server(window, [function](ServerWindow& w) {
			function(w.windowHandle());
			return true;
		});
	};
	server([](QWindow* w) { QTest::mousePress(w, Qt::LeftButton, {}, QPoint(20, 20)); });
	server([](QWindow* w) { QTest::mouseMove(w, QPoint(150, 20)); });
	server([](QWindow* w) { QTest::mouseRelease(w, Qt::LeftButton, {}, QPoint(160, 20)); });
	EXPECT_TRUE(wait_until([&] { return window->fLeft->Has("up 160,20 0 0"); }))
		<< window->fLeft->All();
	EXPECT_TRUE(wait_until([&] { return window->fRight->Has("up 60,20 0 0"); }));
	settle(window);
	click(window, BPoint(130, 20));
	EXPECT_TRUE(wait_until([&] { return window->fRight->Has("up 30,20 0 0"); }));
	EXPECT_FALSE(window->fLeft->Has("up 130,20 0 0")) << "it still has the pointer";
}

TEST(Input, KeysGoToTheFocus)
{
	WindowHolder<InputWindow> window;
	window->Show();
	settle(window);
	window->Lock();
	window->fRight->MakeFocus();
	EXPECT_EQ(window->CurrentFocus(), window->fRight);
	EXPECT_TRUE(window->fRight->IsFocus());
	window->Unlock();
	type_key(window, Qt::Key_A);
	type_key(window, Qt::Key_Return);
	type_key(window, Qt::Key_Left);
	type_key(window, Qt::Key_F5);
	EXPECT_TRUE(wait_until([&] { return window->fRight->Keys() == "a\x0a\x1c\x10"; }))
		<< window->fRight->Keys();
	type_key(window, Qt::Key_Menu);
	EXPECT_TRUE(wait_until([&] {
		std::lock_guard lock(window->fRight->fMutex);
		return window->fRight->fUnmapped == 0x68;
	}));
	EXPECT_EQ(window->fLeft->Keys(), "");
	window->Lock();
	window->RemoveChild(window->fRight);
	EXPECT_EQ(window->CurrentFocus(), nullptr);
	delete window->fRight;
	window->Unlock();
}

TEST(Input, ShortcutsAndEscapeWork)
{
	WindowHolder<InputWindow> window;
	window->Show();
	window->Lock();
	window->AddShortcut('T', 0, new BMessage('ctrl'));
	window->fLeft->MakeFocus();
	window->Unlock();
	settle(window);
	type_key(window, Qt::Key_T, Qt::AltModifier);
	EXPECT_TRUE(wait_until([&] { return window->fInvoked == 1; }));
	type_key(window, Qt::Key_T);
	EXPECT_TRUE(wait_until([&] { return window->fLeft->Keys() == "t"; }));
	EXPECT_EQ(window->fInvoked, 1);
}

TEST(Input, ModifiersAreThePlatforms)
{
	ServerLink::Default().CallJob(
		[] { Desktop::SetModifierSource([] { return uint32(B_SHIFT_KEY | B_OPTION_KEY); }); });
	EXPECT_EQ(modifiers(), uint32(B_SHIFT_KEY | B_OPTION_KEY));
	ServerLink::Default().CallJob([] { Desktop::SetModifierSource(nullptr); });
	EXPECT_EQ(modifiers(), 0u);
}

TEST(Input, ACheckBoxIsARealOne)
{
	WindowHolder<InputWindow> window;
	auto* box
		= new BCheckBox(BRect(10, 10, 89, 29), "box", "Stay on top && more", new BMessage('ctrl'));
	window->Lock();
	window->fLeft->AddChild(box);
	box->SetValue(B_CONTROL_ON);
	window->Unlock();
	window->Show();
	settle(window);
	EXPECT_EQ(on_widget<QCheckBox>(box, [](QCheckBox& widget) { return widget.geometry(); }),
		QRect(10, 10, 80, 20));
	EXPECT_TRUE(on_widget<QCheckBox>(
		box, [](QCheckBox& widget) { return widget.isChecked() && widget.isVisible(); }));
	EXPECT_EQ(window->fInvoked, 0) << "setting the value from the program invoked";
	click(window, BPoint(20, 20));
	EXPECT_TRUE(wait_until([&] { return window->fInvoked == 1; }));
	EXPECT_EQ(window->fValue, B_CONTROL_OFF);
	EXPECT_EQ(box->Value(), B_CONTROL_OFF);

	float width = 0;
	float height = 0;
	box->GetPreferredSize(&width, &height);
	EXPECT_GT(width, 30);
	EXPECT_GT(height, 8);

	window->Lock();
	box->SetEnabled(false);
	window->fLeft->Hide();
	window->Unlock();
	EXPECT_FALSE(on_widget<QCheckBox>(
		box, [](QCheckBox& widget) { return widget.isVisible() || widget.isEnabled(); }));
	window->Lock();
	box->RemoveSelf();
	delete box;
	window->Unlock();
}

TEST(Input, AClickBeforeAProgramsChangeDoesNotUndoIt)
{
	WindowHolder<InputWindow> window;
	auto* box = new BCheckBox(BRect(10, 10, 89, 29), "box", "box", new BMessage('ctrl'));
	window->Lock();
	window->fLeft->AddChild(box);
	window->Unlock();
	window->Show();
	settle(window);
	window->Lock();
	click(window, BPoint(20, 20)); // its event waits for the lock
	box->SetValue(B_CONTROL_OFF);
	window->Unlock();
	settle(window);
	EXPECT_EQ(box->Value(), B_CONTROL_OFF);
	EXPECT_FALSE(on_widget<QCheckBox>(box, [](QCheckBox& widget) { return widget.isChecked(); }));
	EXPECT_EQ(window->fInvoked, 0);
}

TEST(Input, AButtonInvokesAndTakesTheFocus)
{
	WindowHolder<InputWindow> window;
	auto* button = new BButton(BRect(10, 10, 89, 39), "button", "OK", new BMessage('ctrl'));
	window->Lock();
	window->AddChild(button);
	window->Unlock();
	window->Show();
	settle(window);
	window->Lock();
	button->MakeFocus();
	window->Unlock();
	// a window that is just being shown is made active some time later
	EXPECT_TRUE(wait_until([&] {
		return on_widget<QPushButton>(
			button, [](QPushButton& widget) { return widget.hasFocus(); });
	}));
	type_key(window, Qt::Key_Space);
	EXPECT_TRUE(wait_until([&] { return window->fInvoked == 1; }));
	EXPECT_EQ(window->fValue, B_CONTROL_ON);
	EXPECT_EQ(button->Value(), B_CONTROL_OFF);
	// the user goes on to another one
	window->Lock();
	window->fLeft->MakeFocus();
	window->Unlock();
	on_widget<QPushButton>(button, [](QPushButton& widget) {
		widget.setFocus();
		return true;
	});
	EXPECT_TRUE(wait_until([&] {
		window->Lock();
		bool focus = button->IsFocus();
		window->Unlock();
		return focus;
	}));
}

TEST(Input, DroppedFilesArriveAsRefs)
{
	TempFolder folder;
	const std::string path = folder.Write("曲 #1.lrc", "[00:01.00]la");
	WindowHolder<InputWindow> window;
	window->Show();
	settle(window);
	bool accepted = on_server(window, [path](ServerWindow& server) {
		QMimeData data;
		data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path)),
			QUrl("https://example.org/elsewhere.lrc")});
		const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction;
		QDragEnterEvent enter(QPoint(130, 40), actions, &data, Qt::LeftButton, Qt::NoModifier);
		QCoreApplication::sendEvent(server.Content(), &enter);
		QDropEvent drop(QPointF(130, 40), actions, &data, Qt::LeftButton, Qt::NoModifier);
		QCoreApplication::sendEvent(server.Content(), &drop);
		return enter.isAccepted() && drop.isAccepted() && drop.dropAction() == Qt::CopyAction;
	});
	EXPECT_TRUE(accepted);
	LogView* view = window->fRight;
	EXPECT_TRUE(wait_until([&] {
		std::lock_guard lock(view->fMutex);
		return view->fDropped.HasRef("refs");
	}));
	EXPECT_TRUE(view->Has("drag 30,40 0 0")) << view->All();
	std::lock_guard lock(view->fMutex);
	entry_ref ref;
	ASSERT_EQ(view->fDropped.FindRef("refs", &ref), B_OK);
	EXPECT_EQ(BPath(&ref).Path(), path);
	EXPECT_FALSE(view->fDropped.HasRef("refs", 1));
	EXPECT_TRUE(view->fWasDropped);
	EXPECT_EQ(view->fDropPoint, BPoint(230, 140));
}

TEST(Input, ADragWithoutFilesIsRefused)
{
	WindowHolder<InputWindow> window;
	window->Show();
	EXPECT_FALSE(on_server(window, [](ServerWindow& server) {
		QMimeData data;
		data.setText("no file");
		QDragEnterEvent enter(
			QPoint(130, 40), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
		QCoreApplication::sendEvent(server.Content(), &enter);
		return enter.isAccepted();
	}));
}
