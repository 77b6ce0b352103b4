#include "PrefWindowFixture.h"

#include <Alert.h>
#include <Application.h>
#include <Button.h>
#include <ColorControl.h>
#include <Font.h>
#include <MenuItem.h>
#include <QDialogButtonBox>
#include <QListView>
#include <QPushButton>
#include <TextControl.h>

#include "prefs/presets.h"
#include "server/ServerFilePanel.h"
#include "support/temp_folder.h"

using BPrivate::ServerFilePanel;

namespace fs = std::filesystem;

namespace {

// Places in the option menu.
constexpr int kLoad = 0;
constexpr int kSave = 1;
constexpr int kSaveNew = 2;
constexpr int kDelete = 3;
constexpr int kDeleteAll = 4;
constexpr int kSkin = 6;

class OptionTest : public PrefWindowFixture {
protected:
	OptionTest()
	{
		fs::remove_all(Settings());
		Open();
		fOption = Show<BMenuField>("MFieldOption");
	}

	template<typename Function> bool OnceOnServer(Function function)
	{
		return wait_until([=] { return *BPrivate::ServerLink::Default().Call(function); });
	}

	//! What the sub-menu at that place of the option menu says, joined by semicolons; chooses `label`, if there is one.
	std::string ChooseBelow(int index, const char* label)
	{
		QStringList labels;
		InMenu(fOption, [&](QMenu& menu) {
			QAction* chosen = nullptr;
			const QList<QAction*> actions = menu.actions()[index]->menu()->actions();
			for (QAction* action : actions) {
				labels << action->text();
				if (action->text() == label && action->isEnabled())
					chosen = action;
			}
			menu.close();
			if (chosen != nullptr)
				chosen->trigger();
		});
		return labels.join(';').toStdString();
	}

	// Boxes

	static BAlert* LockBox()
	{
		for (int32 i = 0; BWindow* window = be_app->WindowAt(i); i++) {
			if (!window->Lock())
				continue;
			auto* box = dynamic_cast<BAlert*>(window);
			if (box != nullptr && !box->IsHidden())
				return box;
			window->Unlock();
		}
		return nullptr;
	}
	static bool IsBoxOpen()
	{
		BAlert* box = LockBox();
		if (box != nullptr)
			box->Unlock();
		return box != nullptr;
	}
	//! Waits for a box that says `part`, and presses one of its buttons.
	void Answer(const char* part, int32 button)
	{
		ASSERT_TRUE(wait_until(IsBoxOpen)) << part;
		BAlert* box = LockBox();
		ASSERT_NE(box, nullptr);
		EXPECT_NE(std::string(box->TextView()->Text()).find(part), std::string::npos)
			<< box->TextView()->Text();
		box->ButtonAt(button)->Invoke();
		box->Unlock();
		EXPECT_TRUE(wait_until([] { return !IsBoxOpen(); }));
		Settle();
	}

	// Panels: the one that is shown, by its title

	template<typename Function> bool OnPanel(const char* title, Function function)
	{
		return OnceOnServer([=] {
			for (QWidget* window : QApplication::topLevelWidgets()) {
				auto* dialog = window->findChild<ServerFilePanel*>();
				if (dialog != nullptr && window->isVisible() && window->windowTitle() == title)
					return function(*dialog);
			}
			return false;
		});
	}
	static QLineEdit* NameEdit(const ServerFilePanel& panel)
	{
		return panel.findChild<QLineEdit*>("fileNameEdit");
	}
	//! Types a name, or the way to a file, and presses the button of that label.
	void Enter(const char* title, const std::string& name, const char* button)
	{
		EXPECT_TRUE(OnPanel(title, [=](ServerFilePanel& panel) {
			NameEdit(panel)->setText(QString::fromStdString(name));
			const auto buttons = panel.findChild<QDialogButtonBox*>("buttonBox")->buttons();
			for (QAbstractButton* known : buttons) {
				if (known->text() == button && known->isEnabled()) {
					QTest::mouseClick(known, Qt::LeftButton);
					return true;
				}
			}
			return false;
		})) << title;
		EXPECT_TRUE(wait_until([&] { return !IsPanelOpen(title); })) << title;
		Settle();
	}
	static bool IsPanelOpen(const char* title)
	{
		return *BPrivate::ServerLink::Default().Call([=] {
			for (QWidget* window : QApplication::topLevelWidgets()) {
				if (window->isVisible() && window->windowTitle() == title)
					return true;
			}
			return false;
		});
	}

	//! The thread of the panel, shown or not, and its priority.
	static std::pair<thread_id, int32> PanelThread(const char* title)
	{
		thread_info info = {};
		for (int32 i = 0; BWindow* window = be_app->WindowAt(i); i++) {
			if (!window->Lock())
				continue;
			if (strcmp(window->Title(), title) == 0)
				get_thread_info(window->Thread(), &info);
			window->Unlock();
		}
		return {info.thread, info.priority};
	}

	void SaveAsNew(const char* name)
	{
		Choose(fOption, kSaveNew);
		Enter("Save New Preset", name, "Save");
	}
	//! The test program has settings of its own.
	static fs::path Settings() { return fs::path(getenv("XDG_CONFIG_HOME")) / "MERION"; }
	static fs::path Preset(const std::string& name)
	{
		return Settings() / "Shared" / "Presets" / name;
	}
	static bool IsFile(const std::string& name) { return fs::exists(Preset(name)); }
	//! What the field shows.
	std::string Shown(const BMenuField* field)
	{
		fWindow->Lock();
		const std::string label = field->MenuItem()->Label();
		fWindow->Unlock();
		return label;
	}

	void SetSize(float size)
	{
		fWindow->Lock();
		gPref->fFontSize = size;
		fView->UpdateCompos();
		fWindow->Unlock();
	}

	TempFolder fFolder;
	BMenuField* fOption = nullptr;
};

} // namespace

TEST_F(OptionTest, FontFamiliesAreListedWhenTheMenuOpens)
{
	auto* field = Show<BMenuField>("MFieldFontFamily");
	font_family plain;
	be_plain_font->GetFamilyAndStyle(&plain, nullptr);
	const std::string missing = std::string("Haru (") + plain + ")";
	EXPECT_EQ(Shown(field), missing) << "what is drawn in its place";
	EXPECT_EQ(field->Menu()->CountItems(), 1);

	const int32 count = count_font_families();
	font_family last;
	ASSERT_EQ(get_font_family(count - 1, &last), B_OK);
	Choose(field, count); // after the one that is not installed
	EXPECT_EQ(field->Menu()->CountItems(), count + 1);
	EXPECT_EQ(gPref->fFontFamily.Get(), last);
	EXPECT_EQ(Shown(field), last);
	EXPECT_EQ(Told(), "Spac");

	Press(fWindow->FindView("ButtonDefault"));
	EXPECT_EQ(Shown(field), missing);
	EXPECT_EQ(Told(), "Spac");
	Choose(field, 1);
	EXPECT_NE(Shown(field), missing);
	Press(fWindow->FindView("ButtonCancel"));
	EXPECT_EQ(Shown(field), missing);
	EXPECT_EQ(gPref->fFontFamily.Get(), "Haru");
}

TEST_F(OptionTest, PresetsAreSavedLoadedAndDeleted)
{
	EXPECT_EQ(ChooseBelow(kLoad, "No presets"), "No presets");
	SetSize(20);
	gPref->fUseActiveFrame = false;
	SaveAsNew("Night & day");
	EXPECT_TRUE(IsFile("Night & day"));
	SetSize(30);
	SaveAsNew("Über");
	std::ofstream(Preset("damaged")) << "no preset";
	gPref->fTimeDifference = 7;
	EXPECT_EQ(Told(), "");

	EXPECT_EQ(ChooseBelow(kLoad, "Night && day"), "Night && day;Über");
	EXPECT_EQ(gPref->fFontSize, 20);
	EXPECT_EQ(gPref->fTimeDifference, 7) << "not of the appearance";
	EXPECT_EQ(Told(), "Spac");
	EXPECT_STREQ(Show<BTextControl>("TxtCtrlFontSize")->Text(), "20");
	EXPECT_EQ(Show<BControl>("CBoxUseActiveFrame")->Value(), B_CONTROL_OFF);

	// over the other one: Cancel keeps it
	TPref saved;
	for (const float size : {30, 20}) {
		ChooseBelow(kSave, "Über");
		Answer("“Über”", size == 30 ? 1 : 0);
		ASSERT_EQ(load_preset("Über", &saved), B_OK);
		EXPECT_EQ(saved.fFontSize, size);
	}
	for (const bool isCancelled : {true, false}) {
		ChooseBelow(kDelete, "Über");
		Answer("“Über”", isCancelled ? 1 : 0);
		EXPECT_EQ(IsFile("Über"), isCancelled);
	}
	for (const bool isCancelled : {true, false}) {
		Choose(fOption, kDeleteAll);
		Answer("all presets", isCancelled ? 1 : 0);
		EXPECT_EQ(IsFile("Night & day"), isCancelled);
	}
	EXPECT_TRUE(IsFile("damaged")) << "it was not listed";
	EXPECT_EQ(Told(), "");
}

TEST_F(OptionTest, WhatCannotBeDoneWithPresetsIsTold)
{
	SaveAsNew(".hidden");
	Answer("cannot be saved", 0);
	SaveAsNew("one");

	// from another folder the panel cannot know that there is one of the name
	SetSize(40);
	SaveAsNew((fFolder / "one").c_str());
	Answer("Replace the preset", 0);
	EXPECT_FALSE(fs::exists(fFolder / "one"));
	TPref saved;
	ASSERT_EQ(load_preset("one", &saved), B_OK);
	EXPECT_EQ(saved.fFontSize, 40);

	// gone between the menu and the choice
	BMessage gone('plps');
	gone.AddString("PresetName", "gone");
	BMessenger(fView).SendMessage(&gone);
	Answer("cannot be read:\ngone", 0);
	fs::remove_all(Settings());
	std::ofstream(Settings()) << "a file where the folder should be";
	SaveAsNew((fFolder / "two").c_str());
	Answer("cannot be saved", 0);
	EXPECT_EQ(Told(), "");

	// a question does not outlive the window that it is about
	Choose(fOption, kDeleteAll);
	ASSERT_TRUE(wait_until(IsBoxOpen));
	Press(fWindow->FindView("ButtonCancel"));
	EXPECT_FALSE(IsBoxOpen());
}

TEST_F(OptionTest, ColoursComeOutOfASkin)
{
	fs::create_directory(fFolder / "skin");
	fs::create_directory(fFolder / "empty");
	fFolder.Write("skin/pledit.txt", "[Text]\r\nNormal=#00ff80\r\nSelectedBG=#010203\r\n");
	Choose(fOption, kSkin);
	Enter("Choose a Skin", fFolder / "empty", "Choose");
	Answer("PLEDIT.TXT is missing", 0);
	EXPECT_EQ(gPref->fLyricsColor.Get(), TPref().fLyricsColor.Get());

	Choose(fOption, kSkin);
	Enter("Choose a Skin", fFolder / "skin", "Choose");
	const rgb_color green = gPref->fLyricsColor;
	EXPECT_EQ(green, (rgb_color{0, 255, 128, 255}));
	EXPECT_EQ(Show<BColorControl>("ColCtrlAppearance")->ValueAsColor(), green);
	EXPECT_EQ(Told(), "") << "with the next change of the appearance";
	EXPECT_FALSE(IsBoxOpen());

	const std::string word = "Normal=#a1B2c3";
	rgb_color color = {};
	fView->GetSkinColor(&word, 1, "Normal=#", &color);
	EXPECT_EQ(color, (rgb_color{0xa1, 0xb2, 0xc3, 0}));
	EXPECT_EQ(fView->HexToInt('f'), 15);
}

TEST_F(OptionTest, PanelsSpeakTheLanguageAndGoWithTheWindow)
{
	fFolder.Write("image.png", "P6\n1 1\n255\nabc");
	fFolder.Write("broken.png", "\x89PNG\r\n no picture");
	fFolder.Write("text.txt", "");
	gPref->fUseBGImage = true;
	gPref->fBGImageFile = fFolder / "old.png";
	BMessage changed('piic');
	BMessenger(fWindow).SendMessage(&changed);
	Type(Show<BTextControl>("TxtCtrlBGImageFName"), (fFolder / "text.txt").c_str());
	Answer("The image cannot be read", 0);
	Type(Show<BTextControl>("TxtCtrlBGImageFName"), (fFolder / "old.png").c_str());
	Answer("The image cannot be read", 0);
	Told();
	Press(Show<BButton>("ButtonBrowseBGImg"));
	EXPECT_TRUE(OnPanel("Choose a Background Image", [](ServerFilePanel& panel) {
		const auto* list = panel.findChild<QListView*>("listView");
		return list->model()->rowCount(list->rootIndex()) == 2; // the images, beside the old one
	}));
	Enter("Choose a Background Image", fFolder / "broken.png", "Choose");
	Answer("The image cannot be read", 0);
	EXPECT_EQ(gPref->fBGImageFile.Get(), fFolder / "old.png");
	EXPECT_EQ(Told(), "");

	Press(Show<BButton>("ButtonBrowseBGImg"));
	ASSERT_TRUE(wait_until([] { return IsPanelOpen("Choose a Background Image"); }));
	ASSERT_EQ(gLLT->Load(TEST_DATA "/../../Language/German.llt"), B_OK);
	BMessenger(fWindow).SendMessage('_lgc');
	Settle();
	EXPECT_FALSE(IsPanelOpen("Choose a Background Image"));
	const std::string title = gLLT->Text("Panel_Title_BG_Image");
	Enter(title.c_str(), fFolder / "image.png", gLLT->Text("Button_Choose"));
	EXPECT_EQ(gPref->fBGImageFile.Get(), fFolder / "image.png");
	EXPECT_EQ(Told(), "Spac");

	Press(Show<BButton>("ButtonBrowseBGImg"));
	ASSERT_TRUE(wait_until([&] { return IsPanelOpen(title.c_str()); }));
	const auto [thread, priority] = PanelThread(title.c_str());
	EXPECT_EQ(priority, B_NORMAL_PRIORITY);
	Press(fWindow->FindView("ButtonOK"));
	EXPECT_TRUE(wait_until([&] { return !IsPanelOpen(title.c_str()); }));
	Settle();
	EXPECT_EQ(PanelThread(title.c_str()), (std::pair<thread_id, int32>(thread, B_LOW_PRIORITY)))
		<< "the same panel, at rest";
}
