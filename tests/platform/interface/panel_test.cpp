#include "support/display.h"

#include "server/ServerColorControl.h"
#include "server/ServerFilePanel.h"

#include <Application.h>
#include <ColorControl.h>
#include <Directory.h>
#include <FilePanel.h>
#include <Looper.h>
#include <Path.h>
#include <QAccessible>
#include <QDialogButtonBox>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QSpinBox>
#include <filesystem>
#include <memory>
#include <mutex>
#include <set>

#include "support/temp_folder.h"

using namespace BPrivate;

namespace {

//! The panel's target: writes down what comes, as "name, name", "save PATH" or "cancel".
class Target : public BLooper {
public:
	Target() : BLooper("panel target") { Run(); }

	void MessageReceived(BMessage* message) override
	{
		std::lock_guard lock(fMutex);
		last = *message;
		if (message->what == B_CANCEL) {
			fLog += "cancel; ";
			return;
		}
		BPath path;
		entry_ref ref;
		for (int32 i = 0; message->FindRef("refs", i, &ref) == B_OK; i++)
			fLog += path.SetTo(&ref) == B_OK ? std::string(path.Leaf()) + "; " : "no path; ";
		BDirectory folder;
		if (message->FindRef("directory", &ref) == B_OK && folder.SetTo(&ref) == B_OK
			&& path.SetTo(&folder, message->GetString("name", "?")) == B_OK)
			fLog += std::string("save ") + path.Path() + "; ";
	}
	//! All until the cancel that ends each showing.
	std::string UntilCancel()
	{
		EXPECT_TRUE(wait_until([this] {
			std::lock_guard lock(fMutex);
			return fLog.ends_with("cancel; ");
		})) << "the panel did not tell that it was hidden";
		std::lock_guard lock(fMutex);
		return std::exchange(fLog, std::string());
	}
	bool IsQuiet()
	{
		std::lock_guard lock(fMutex);
		return fLog.empty();
	}

	BMessage last;

private:
	std::mutex fMutex;
	std::string fLog;
};

class Panel : public BFilePanel {
public:
	using BFilePanel::BFilePanel;
	void WasHidden() override { hidden++; }
	void SelectionChanged() override { selections++; }
	std::atomic<int> hidden = 0;
	std::atomic<int> selections = 0;
};

class TextFilter : public BRefFilter {
public:
	bool Filter(const entry_ref*, BNode* node, struct stat_beos* stat, const char* type) override
	{
		if (on_server_thread() || node->InitCheck() != B_OK)
			return false;
		return S_ISDIR(stat->st_mode) ? strcmp(type, "application/x-vnd.Be-directory") == 0
									  : strcmp(type, "text/plain") == 0;
	}
};

class PanelTest : public testing::Test {
protected:
	PanelTest() : fTarget(new Target)
	{
		for (const char* name : {"plain.txt", "曲 #1 100%25.txt", "say \"hi\" & go.txt", "a.png"})
			fFolder.Write(name, "x");
		std::filesystem::create_directory(fFolder / "sub folder");
	}
	~PanelTest() override
	{
		EndPanel();
		fTarget->Lock();
		fTarget->Quit();
	}

	//! No hook of the derived class may run any more while it is destroyed.
	void EndPanel()
	{
		if (fPanel != nullptr && fWindow.LockTarget()) {
			BWindow* window = fPanel->Window();
			const bool isRunning = window->Thread() >= 0;
			window->Unlock();
			fPanel->Hide();
			if (isRunning)
				settle(window);
		}
		fPanel.reset();
	}

	void Make(file_panel_mode mode, uint32 flavors = 0, BRefFilter* filter = NULL,
		BMessage* message = NULL, bool several = true)
	{
		entry_ref folder;
		get_ref_for_path(fFolder.Path().c_str(), &folder);
		BMessenger target(fTarget);
		EndPanel();
		fPanel = std::make_unique<Panel>(mode, &target, &folder, flavors, several, message, filter);
		fWindow = BMessenger(fPanel->Window());
	}
	template<typename Function> auto OnDialog(Function function)
	{
		return on_server(fPanel->Window(),
			[=](ServerWindow& window) { return function(*window.findChild<ServerFilePanel*>()); });
	}
	//! Shows it, and waits until it lists so many entries.
	void Show(int entries)
	{
		fPanel->Show();
		ASSERT_TRUE(wait_until([&] { return Count() == entries; })) << "lists " << Count();
	}
	int Count()
	{
		return OnDialog([](ServerFilePanel& dialog) {
			auto* list = dialog.findChild<QListView*>("listView");
			return list->model()->rowCount(list->rootIndex());
		});
	}
	void Select(std::set<std::string> names)
	{
		OnDialog([=](ServerFilePanel& dialog) {
			// what was listed is put in order some turns later, unless it is asked for
			dialog.findChild<QFileSystemModel*>()->sort(0);
			auto* list = dialog.findChild<QListView*>("listView");
			for (int i = 0; i < list->model()->rowCount(list->rootIndex()); i++) {
				const QModelIndex row = list->model()->index(i, 0, list->rootIndex());
				if (names.count(row.data().toString().toStdString()) != 0)
					list->selectionModel()->select(
						row, QItemSelectionModel::Select | QItemSelectionModel::Rows);
			}
			return true;
		});
		settle(fPanel->Window());
	}
	//! Into the name's field, as a user does.
	void Type(const char* text)
	{
		OnDialog([text = QString(text)](ServerFilePanel& dialog) {
			auto* edit = dialog.findChild<QLineEdit*>("fileNameEdit");
			edit->setFocus();
			edit->selectAll();
			edit->insert(text);
			return true;
		});
	}
	void Press(Qt::Key key)
	{
		OnDialog([key](ServerFilePanel& dialog) {
			QTest::keyClick(dialog.findChild<QLineEdit*>("fileNameEdit"), key);
			return true;
		});
	}
	void ClickDefault()
	{
		OnDialog([](ServerFilePanel& dialog) {
			const auto buttons = dialog.findChild<QDialogButtonBox*>("buttonBox")->buttons();
			for (QAbstractButton* button : buttons) {
				if (static_cast<QPushButton*>(button)->isDefault())
					QTest::mouseClick(button, Qt::LeftButton);
			}
			return true;
		});
	}
	//! Of the question that is open; false when there is none.
	bool Answer(QMessageBox::StandardButton answer)
	{
		return OnDialog([=](ServerFilePanel& dialog) {
			for (QMessageBox* box : dialog.findChildren<QMessageBox*>()) {
				if (!box->isVisible())
					continue;
				QTest::mouseClick(box->button(answer), Qt::LeftButton);
				return true;
			}
			return false;
		});
	}

	TempFolder fFolder;
	Target* fTarget;
	std::unique_ptr<Panel> fPanel;
	BMessenger fWindow; // the panel's
};

class RefusingWindow : public BWindow {
public:
	RefusingWindow() : BWindow(BRect(0, 0, 99, 99), "refusing", B_TITLED_WINDOW, 0) { }
	bool QuitRequested() override { return false; }
};

class ColorWindow : public BWindow {
public:
	ColorWindow() : BWindow(BRect(50, 50, 449, 249), "colour", B_TITLED_WINDOW, 0) { }
	void MessageReceived(BMessage* message) override
	{
		if (message->what != 'colr') {
			BWindow::MessageReceived(message);
			return;
		}
		values.push_back(message->GetInt32("be:value", -1));
	}
	std::vector<uint32> values; // under the window's lock
};

class ColorTest : public testing::Test {
protected:
	ColorTest()
	{
		fColor = new BColorControl(BPoint(10, 10), B_CELLS_32x8, 8, "Colour", new BMessage('colr'));
		fWindow->Lock();
		fWindow->AddChild(fColor);
		fWindow->Unlock();
		fWindow->Show();
		settle(fWindow);
	}

	void SetValue(rgb_color color)
	{
		fWindow->Lock();
		fColor->SetValue(color);
		fWindow->Unlock();
	}
	template<typename Widget, typename Function> void OnPart(int index, Function function)
	{
		on_widget<ServerColorControl>(fColor, [=](ServerColorControl& control) {
			function(*control.findChildren<Widget*>()[index]);
			return true;
		});
	}
	std::vector<uint32> Take()
	{
		settle(fWindow);
		settle(fWindow);
		fWindow->Lock();
		std::vector<uint32> values = std::exchange(fWindow->values, {});
		fWindow->Unlock();
		return values;
	}

	WindowHolder<ColorWindow> fWindow;
	BColorControl* fColor;
};

} // namespace

TEST_F(PanelTest, SelectedEntriesComeAsUsableRefs)
{
	struct Case {
		const char* title;
		uint32 flavors;
		std::set<std::string> names;
		std::string received;
	};
	const Case kCases[] = {
		{"one with signs of addresses", 0, {"曲 #1 100%25.txt"}, "曲 #1 100%25.txt; cancel; "},
		{"quotation marks", 0, {"say \"hi\" & go.txt"}, "say \"hi\" & go.txt; cancel; "},
		{"several", 0, {"a.png", "plain.txt"}, "a.png; plain.txt; cancel; "},
		{"a folder is none of the files", 0, {"a.png", "sub folder"}, "a.png; cancel; "},
		{"folder and file", B_FILE_NODE | B_DIRECTORY_NODE, {"a.png", "sub folder"},
			"a.png; sub folder; cancel; "},
	};
	for (const Case& item : kCases) {
		SCOPED_TRACE(item.title);
		Make(B_OPEN_PANEL, item.flavors);
		Show(5);
		Select(item.names);
		ClickDefault();
		std::string received = fTarget->UntilCancel();
		// in the list's order, folders first
		if (received.starts_with("sub folder; a.png; "))
			received = item.received;
		EXPECT_EQ(received, item.received);
		EXPECT_FALSE(fPanel->IsShowing());
		EXPECT_TRUE(wait_until([this] { return fPanel->hidden == 1; }));
		EXPECT_GE(fPanel->selections, 1);
	}
}

TEST_F(PanelTest, OnePanelIsShownAgainAndAgain)
{
	BMessage own('mine');
	own.AddString("note", "kept");
	Make(B_OPEN_PANEL, 0, NULL, &own);
	Show(5);
	BWindow* window = fPanel->Window();
	ServerFilePanel* dialog = OnDialog([](ServerFilePanel& found) { return &found; });
	Type("plain.txt");
	Press(Qt::Key_Return);
	EXPECT_EQ(fTarget->UntilCancel(), "plain.txt; cancel; ");

	// cancel, with what the program needs to tell its panels apart
	Show(5);
	Press(Qt::Key_Escape);
	EXPECT_EQ(fTarget->UntilCancel(), "cancel; ");
	EXPECT_EQ(uint32(fTarget->last.GetInt32("old_what", 0)), uint32('mine'));
	EXPECT_STREQ(fTarget->last.GetString("note", ""), "kept");
	EXPECT_EQ(fTarget->last.GetPointer("source"), static_cast<BFilePanel*>(fPanel.get()));

	// the close button
	fPanel->Show();
	on_server(window, [](ServerWindow& server) { return server.close(); });
	EXPECT_EQ(fTarget->UntilCancel(), "cancel; ");
	EXPECT_TRUE(wait_until([this] { return fPanel->hidden == 3; }));

	// and the program itself, which needs no hook
	fPanel->Show();
	fPanel->Hide();
	fPanel->Hide();
	EXPECT_EQ(fTarget->UntilCancel(), "cancel; ");
	EXPECT_EQ(fPanel->hidden, 3);
	EXPECT_EQ(fPanel->Window(), window);
	EXPECT_EQ(OnDialog([](ServerFilePanel& found) { return &found; }), dialog);
}

TEST_F(PanelTest, TypedNamesLeadSomewhereOrNowhere)
{
	Make(B_OPEN_PANEL);
	Show(5);
	Type("sub folder/");
	Press(Qt::Key_Return);
	EXPECT_TRUE(wait_until([this] { return Count() == 0; }));
	settle(fPanel->Window());
	entry_ref ref;
	fPanel->GetPanelDirectory(&ref);
	EXPECT_STREQ(ref.name, "sub folder");
	Type("..");
	Press(Qt::Key_Return);
	EXPECT_TRUE(wait_until([this] { return Count() == 5; }));
	Type("not there");
	Press(Qt::Key_Return);
	EXPECT_TRUE(Answer(QMessageBox::Ok));
	EXPECT_TRUE(fPanel->IsShowing());
	EXPECT_TRUE(fTarget->IsQuiet());
	fPanel->Hide();
}

TEST_F(PanelTest, SaveTellsFolderAndName)
{
	struct Case {
		const char* typed;
		std::string saved; // within the folder's parent
	};
	const std::string name = std::filesystem::path(fFolder.Path()).filename();
	const std::string parent
		= std::filesystem::canonical(fFolder.Path()).parent_path().string() + "/";
	const Case kCases[] = {
		{"New 歌詞 #1 50%.txt", name + "/New 歌詞 #1 50%.txt"},
		{"say \"bye\"", name + "/say \"bye\""},
		{"sub folder/../sub folder/x", name + "/sub folder/x"},
		{"../tavora-panel-test", "tavora-panel-test"},
	};
	for (const Case& item : kCases) {
		SCOPED_TRACE(item.typed);
		Make(B_SAVE_PANEL);
		fPanel->SetSaveText("suggestion");
		Show(5);
		Type(item.typed);
		Press(Qt::Key_Return);
		EXPECT_EQ(fTarget->UntilCancel(), "save " + parent + item.saved + "; cancel; ");
	}
}

TEST_F(PanelTest, SaveAsksBeforeItReplacesAndRefusesWhatIsNoName)
{
	Make(B_SAVE_PANEL);
	fPanel->SetSaveText("plain.txt");
	Show(5);
	Press(Qt::Key_Return);
	EXPECT_TRUE(Answer(QMessageBox::No));
	EXPECT_TRUE(fTarget->IsQuiet());
	for (const std::string& bad : {std::string("no folder/x"), std::string(300, 'n')}) {
		Type(bad.c_str());
		Press(Qt::Key_Return);
		EXPECT_TRUE(Answer(QMessageBox::Ok)) << bad;
	}
	EXPECT_TRUE(fTarget->IsQuiet());
	Type("plain.txt");
	Press(Qt::Key_Return);
	EXPECT_TRUE(Answer(QMessageBox::Yes));
	EXPECT_TRUE(fTarget->UntilCancel().ends_with("/plain.txt; cancel; "));
	// hidden with a question open, it does not stand there alone
	Show(5);
	Type("plain.txt");
	Press(Qt::Key_Return);
	fPanel->Hide();
	EXPECT_FALSE(Answer(QMessageBox::Yes));
	EXPECT_EQ(fTarget->UntilCancel(), "cancel; ");
}

TEST_F(PanelTest, TheFilterDecidesWithoutTheServer)
{
	TextFilter filter;
	Make(B_OPEN_PANEL, 0, &filter);
	Show(4);
	fFolder.Write("new.txt", "x");
	EXPECT_TRUE(wait_until([this] { return Count() == 5; })) << "a new file is not judged";
	Type("a.png");
	Press(Qt::Key_Return);
	Type("new.txt");
	Press(Qt::Key_Return);
	EXPECT_EQ(fTarget->UntilCancel(), "new.txt; cancel; ");
	fPanel->SetRefFilter(NULL);
	Show(6);
	fPanel->Hide();
}

TEST_F(PanelTest, LabelsSelectionAndFolderAreTheProgramsToo)
{
	Make(B_OPEN_PANEL);
	fPanel->SetButtonLabel(B_DEFAULT_BUTTON, "Take & go");
	Show(5);
	EXPECT_EQ(OnDialog([](ServerFilePanel& dialog) {
		return dialog.labelText(QFileDialog::Accept).toStdString();
	}),
		"Take && go");
	Select({"a.png", "plain.txt"});
	entry_ref ref;
	EXPECT_GE(fPanel->selections, 1);
	fPanel->Rewind();
	EXPECT_EQ(fPanel->GetNextSelectedRef(&ref), B_OK);
	EXPECT_STREQ(ref.name, "a.png");
	EXPECT_EQ(fPanel->GetNextSelectedRef(&ref), B_OK);
	EXPECT_EQ(fPanel->GetNextSelectedRef(&ref), B_ENTRY_NOT_FOUND);
	EXPECT_EQ(fPanel->GetNextSelectedRef(NULL), B_BAD_VALUE);
	fPanel->SetPanelDirectory((fFolder / "plain.txt").c_str()); // no folder
	EXPECT_EQ(Count(), 5);
	fPanel->SetPanelDirectory((fFolder / "sub folder").c_str());
	EXPECT_TRUE(wait_until([this] { return Count() == 0; }));
}

TEST_F(PanelTest, ItMayBeDeletedWhileItsOwnMenuIsOpen)
{
	Make(B_OPEN_PANEL);
	Show(5);
	const int64 id = WindowData::Of(fPanel->Window()).id;
	// the menu runs a loop within the server's: no answer until that ends
	ServerLink::Default().Post([id] {
		auto* window = Registry::Default().Find<ServerWindow>(id);
		emit window->findChild<QListView*>("listView")->customContextMenuRequested(QPoint(5, 5));
	});
	EXPECT_TRUE(wait_until([] {
		return *ServerLink::Default().Call(
			[] { return QApplication::activePopupWidget() != nullptr; });
	}));
	fPanel.reset();
	EXPECT_TRUE(wait_until([] {
		return *ServerLink::Default().Call(
			[] { return QApplication::activePopupWidget() == nullptr; });
	}));
}

TEST_F(PanelTest, ItsWindowGoesWithTheApplicationOnly)
{
	Make(B_OPEN_PANEL);
	Show(5);
	{
		WindowHolder<RefusingWindow> refusing;
		EXPECT_FALSE(be_app->QuitRequested());
	}
	EXPECT_TRUE(fPanel->IsShowing());
	BWindow* window = fPanel->Window();
	ASSERT_TRUE(window->Lock());
	EXPECT_TRUE(window->QuitRequested());
	window->Quit();
	fPanel->Show();
	fPanel->SetSaveText("nobody");
	entry_ref ref;
	EXPECT_EQ(fPanel->GetNextSelectedRef(&ref), B_ERROR);
	EXPECT_FALSE(fPanel->IsShowing());
	EXPECT_EQ(fPanel->Window(), static_cast<BWindow*>(NULL));
}

TEST_F(ColorTest, KeysAndNumbersChangeOneComponentEach)
{
	SetValue(make_color(10, 20, 30, 7));
	EXPECT_TRUE(Take().empty());
	OnPart<ColorRamp>(0, [](ColorRamp& ramp) { QTest::keyClick(&ramp, Qt::Key_Right); });
	EXPECT_EQ(Take(), std::vector<uint32>{0x0b141e00});
	OnPart<ColorRamp>(1, [](ColorRamp& ramp) { QTest::keyClick(&ramp, Qt::Key_End); });
	EXPECT_EQ(Take(), std::vector<uint32>{0x0bff1e00});
	OnPart<QSpinBox>(2, [](QSpinBox& number) {
		number.selectAll();
		QTest::keyClicks(&number, "200");
	});
	EXPECT_EQ(Take(), (std::vector<uint32>{0x0bff0200, 0x0bff1400, 0x0bffc800}));
	// a click at the ramp's end
	OnPart<ColorRamp>(0, [](ColorRamp& ramp) {
		QTest::mouseClick(&ramp, Qt::LeftButton, {}, QPoint(ramp.width() - 1, 5));
	});
	EXPECT_EQ(Take(), std::vector<uint32>{0xffffc800});
	fWindow->Lock();
	EXPECT_EQ(fColor->ValueAsColor(), make_color(255, 255, 200));
	fColor->SetEnabled(false);
	fWindow->Unlock();
	OnPart<ColorRamp>(
		0, [](ColorRamp& ramp) { QTest::mouseClick(&ramp, Qt::LeftButton, {}, QPoint(2, 5)); });
	EXPECT_TRUE(Take().empty());
}

TEST_F(ColorTest, ValuesLayoutsAndNames)
{
	for (rgb_color color :
		{make_color(0, 0, 0), make_color(255, 255, 255), make_color(128, 1, 254)}) {
		SetValue(color);
		EXPECT_EQ(fColor->ValueAsColor(), color);
		EXPECT_EQ(on_widget<ServerColorControl>(fColor,
					  [](ServerColorControl& control) {
						  const auto numbers = control.findChildren<QSpinBox*>();
						  return make_color(
							  numbers[0]->value(), numbers[1]->value(), numbers[2]->value());
					  }),
			color);
	}
	fWindow->Lock();
	const BRect before = fColor->Frame();
	fColor->SetCellSize(-1);
	fColor->SetLayout(color_control_layout(5));
	EXPECT_EQ(fColor->Frame(), before);
	fColor->SetCellSize(4);
	EXPECT_LT(fColor->Frame().Width(), before.Width());
	fColor->SetLayout(B_CELLS_64x4);
	EXPECT_GE(fColor->Frame().Width(), 64 * 4 - 1);
	fWindow->Unlock();
	std::set<QString> names;
	for (int i = 0; i < 3; i++) {
		names.insert(*ServerLink::Default().Call([id = ViewData::Of(fColor).proxy->Id(), i] {
			auto* control = Registry::Default().Find<ServerColorControl>(id);
			QWidget* number = control->findChildren<QSpinBox*>()[i];
			return QAccessible::queryAccessibleInterface(number)->text(QAccessible::Name);
		}));
	}
	EXPECT_EQ(names.size(), 3u);
	EXPECT_EQ(names.count(""), 0u);
}
