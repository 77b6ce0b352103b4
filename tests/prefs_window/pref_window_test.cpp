#include <Button.h>
#include <CheckBox.h>
#include <ColorControl.h>
#include <MenuItem.h>
#include <RadioButton.h>
#include <gmock/gmock.h>

#include "PrefWindowFixture.h"
#include "prefs/window/pref_codes.h"
#include "support/label_faults.h"
#include "support/languages.h"
#include "support/temp_folder.h"

namespace {

class PrefWindow : public PrefWindowFixture { };

//! A picture for a look at it, when a folder for them is given.
void
save_picture(const BWindow* window, const std::string& name)
{
	if (const char* folder = getenv("TAVORA_PICTURES"))
		pixels_of(window).save(QString("%1/%2.png").arg(folder, name.c_str()));
}

std::string
marked_label(BMenuField* field)
{
	const BMenuItem* marked = field->Menu()->FindMarked();
	return marked != nullptr ? marked->Label() : "";
}

TEST_F(PrefWindow, CheckBoxesApplyAtOnce)
{
	const struct {
		const char* name;
		merion::TShared<bool> TPref::*field;
		const char* told;
	} cases[] = {
		{"CBoxStayOnTop", &TPref::fStayOnTop, "Spsc"},
		{"CBoxAntiAliasing", &TPref::fAntiAliasing, "Spac"},
		{"CBoxUseActiveFrame", &TPref::fUseActiveFrame, "Spac"},
		{"CBoxUseBGImage", &TPref::fUseBGImage, "Spac"},
		{"CBoxDoubleBuffering", &TPref::fDoubleBuffering, "pdbc"},
		{"CBoxShowToolButton", &TPref::fShowToolBar, "Splc"},
	};
	Open();
	EXPECT_EQ(Told(), "") << "opening changes nothing";
	for (const auto& example : cases) {
		const auto* box = Show<BCheckBox>(example.name);
		ASSERT_NE(box, nullptr) << example.name;
		const bool before = gPref->*example.field;
		EXPECT_EQ(box->Value() == B_CONTROL_ON, before) << example.name;
		for (const bool expected : {!before, before}) {
			Press(box);
			EXPECT_EQ(gPref->*example.field, expected) << example.name;
			EXPECT_EQ(Told(), example.told) << example.name;
		}
	}
}

TEST_F(PrefWindow, NumbersAreBoundedOnceTheyAreLeft)
{
	const struct {
		const char* typed;
		float stored;
		const char* shown;
	} sizes[] = {{"12.5", 12.5f, "12.5"}, {"100", 50, "50"}, {"2", 5, "5"}, {"", 5, "5"},
		{"abc", 5, "5"}, {"1e9", 50, "50"}, {"1e99999", 50, "50"}, {"1e-99999", 5, "5"},
		{"-3", 5, "5"}, {"٣", 5, "5"}, {"nan", 5, "5"}, {"inf", 5, "5"}, {" +20 pt", 20, "20"},
		{"12,7", 12, "12"}};
	Open();
	const auto* size = Show<BTextControl>("TxtCtrlFontSize");
	for (const auto& example : sizes) {
		Type(size, example.typed);
		EXPECT_EQ(gPref->fFontSize, example.stored) << example.typed;
		EXPECT_STREQ(size->Text(), example.shown) << example.typed;
		EXPECT_EQ(Told(), "Spac") << example.typed;
	}
	const struct {
		const char* typed;
		int32 stored;
	} differences[]
		= {{"-9000", -5000}, {"99999999999999", 5000}, {"-12", -12}, {"1e3", 1}, {"", 0}, {"٣", 0}};
	const auto* difference = Show<BTextControl>("TxtCtrlTimeDifference");
	for (const auto& example : differences) {
		Type(difference, example.typed);
		EXPECT_EQ(gPref->fTimeDifference, example.stored) << example.typed;
		EXPECT_EQ(difference->Text(), std::to_string(example.stored)) << example.typed;
		EXPECT_EQ(Told(), "Sptc") << example.typed;
	}
	// what is being typed is left alone, until the page goes
	Type(difference, "77", false);
	EXPECT_EQ(Told(), "");
	Show<BCheckBox>("CBoxStayOnTop");
	EXPECT_EQ(gPref->fTimeDifference, 77);
	EXPECT_EQ(Told(), "Sptc");
}

TEST_F(PrefWindow, NumberedMenusStoreThePosition)
{
	const struct {
		const char* name;
		merion::TShared<int32> TPref::*field;
		const char* told;
		std::vector<int32> positions;
	} cases[] = {
		{"MFieldReadEncoding", &TPref::fReadEncoding, "Sprc", {0, 1, 2, 4}},
		{"MFieldWriteEncoding", &TPref::fWriteEncoding, "Spec", {4, 2, 1, 0}},
		{"MFieldWriteCRType", &TPref::fWriteCRType, "Spcc", {2, 1, 0}},
	};
	Open();
	for (const auto& example : cases) {
		auto* field = Show<BMenuField>(example.name);
		for (const int32 position : example.positions) {
			Choose(field, position);
			EXPECT_EQ(gPref->*example.field, position) << example.name;
			EXPECT_EQ(marked_label(field), field->Menu()->ItemAt(position)->Label());
			EXPECT_EQ(Told(), example.told) << example.name;
		}
	}
}

TEST_F(PrefWindow, ColoursAreEditedOneAtATime)
{
	Open();
	auto* field = Show<BMenuField>("MFieldColor");
	auto* control = Show<BColorControl>("ColCtrlAppearance");
	auto* shown = Show<BView>("ViewDispColor");
	for (int32 i = 0; i < kColorCount; i++) {
		Choose(field, i);
		const rgb_color before = gPref->Color(i);
		EXPECT_EQ(control->ValueAsColor(), before) << i;
		EXPECT_EQ(Told(), "") << "choosing is no change";
		SetColorPart(control, i % 3, 100 + i);
		EXPECT_EQ(Told(), "Spac");
		rgb_color expected = before;
		(i % 3 == 0 ? expected.red : i % 3 == 1 ? expected.green : expected.blue) = 100 + i;
		EXPECT_EQ(gPref->Color(i).Get(), expected) << i;
		EXPECT_EQ(shown->ViewColor(), expected) << i;
	}
	const TPref defaults;
	EXPECT_EQ(gPref->fActiveFrameColor.Get().red, defaults.fActiveFrameColor.Get().red)
		<< "another colour has gone over it";
}

TEST_F(PrefWindow, BackgroundImageControlsFollowTheirSwitch)
{
	Open();
	const auto* use = Show<BCheckBox>("CBoxUseBGImage");
	const auto areEnabled = [this](bool expected) {
		for (const char* name :
			{"TxtCtrlBGImageFName", "ButtonBrowseBGImg", "RButtonTile", "RButtonScaleToFit"}) {
			if (Show<BControl>(name)->IsEnabled() != expected)
				return false;
		}
		return true;
	};
	EXPECT_TRUE(areEnabled(false));
	Press(use);
	EXPECT_TRUE(areEnabled(true));
	Told();
	Press(Show<BRadioButton>("RButtonScaleToFit"));
	EXPECT_EQ(gPref->fBGImageAlign, kBGImageScaleToFit);
	EXPECT_EQ(Told(), "Spac");
	Press(Show<BRadioButton>("RButtonTile"));
	EXPECT_EQ(gPref->fBGImageAlign, kBGImageTile);
	EXPECT_EQ(Told(), "Spac");
	Type(Show<BTextControl>("TxtCtrlBGImageFName"), "/no such/image.png");
	EXPECT_EQ(gPref->fBGImageFile.Get(), "/no such/image.png");
	EXPECT_EQ(Told(), "Spac");
	Press(use);
	EXPECT_TRUE(areEnabled(false));
}

TEST_F(PrefWindow, ALanguageIsChosenByItsFile)
{
	Open();
	auto* field = Show<BMenuField>("MFieldLanguage");
	ASSERT_EQ(field->Menu()->CountItems(), int32(std::size(kLanguages)));
	EXPECT_EQ(marked_label(field), "English");
	const BMenuItem* german = field->Menu()->FindItem("Deutsch");
	ASSERT_NE(german, nullptr);
	Choose(field, field->Menu()->IndexOf(const_cast<BMenuItem*>(german)));
	EXPECT_EQ(gPref->fLanguageFile.Get(), "German.llt");
	EXPECT_EQ(Told(), "plgc");
	EXPECT_EQ(marked_label(field), "Deutsch");
}

// ---- the four buttons

class PrefWindowButtons : public PrefWindowFixture {
protected:
	//! What holds before the window opens is not the defaults.
	PrefWindowButtons()
	{
		gPref->fLanguageFile = "French.llt";
		gPref->fReadEncoding = kEncodingJIS;
		gPref->fFontSize = 20;
		Open();
		std::filesystem::remove(PrefFile());
		Told();
	}

	static std::filesystem::path PrefFile()
	{
		return std::filesystem::path(getenv("XDG_CONFIG_HOME"))
			/ "MERION/Shared/TavoraShared_Prefs.arc";
	}

	//! One change of each kind, as if the controls had made it.
	void ChangeAll()
	{
		Press(Show<BCheckBox>("CBoxStayOnTop"));
		Choose(Show<BMenuField>("MFieldReadEncoding"), kEncodingAuto);
		Type(Show<BTextControl>("TxtCtrlFontSize"), "30");
		Press(Show<BCheckBox>("CBoxDoubleBuffering"));
		Press(Show<BCheckBox>("CBoxShowToolButton"));
		EXPECT_EQ(Told(), "Spsc Sprc Spac pdbc Splc");
	}

	bool IsHidden()
	{
		fWindow->Lock();
		const bool isHidden = fWindow->IsHidden();
		fWindow->Unlock();
		return isHidden;
	}

	void ExpectFirstPreferences()
	{
		EXPECT_FALSE(gPref->fStayOnTop);
		EXPECT_EQ(gPref->fReadEncoding, kEncodingJIS);
		EXPECT_EQ(gPref->fFontSize, 20);
		EXPECT_TRUE(gPref->fDoubleBuffering);
		EXPECT_TRUE(gPref->fShowToolBar);
		EXPECT_EQ(gPref->fLanguageFile.Get(), "French.llt");
		EXPECT_STREQ(Show<BTextControl>("TxtCtrlFontSize")->Text(), "20");
		EXPECT_EQ(Show<BCheckBox>("CBoxStayOnTop")->Value(), B_CONTROL_OFF);
		EXPECT_EQ(marked_label(Show<BMenuField>("MFieldReadEncoding")),
			gLLT->Text("PopMItem_Encoding_2"));
	}
};

TEST_F(PrefWindowButtons, CancelEscapeAndTheCloseBoxPutEverythingBack)
{
	for (const char* way : {"button", "Escape", "close box"}) {
		ChangeAll();
		if (way == std::string("button"))
			Press(Show<BButton>("ButtonCancel"));
		else if (way == std::string("Escape"))
			TypeKey(Show<BTextControl>("TxtCtrlFontSize"), Qt::Key_Escape);
		else
			on_server(fWindow, [](BPrivate::ServerWindow& window) { return window.close(); });
		EXPECT_TRUE(wait_until([this] { return IsHidden(); })) << way;
		EXPECT_EQ(Told(), "Splc Sedr Spsc Spac pdbc") << way;
		ExpectFirstPreferences();
		EXPECT_FALSE(std::filesystem::exists(PrefFile())) << "nothing is to be written";
		Appear();
	}
}

TEST_F(PrefWindowButtons, DefaultAndCancelRestoreWhatHeldBefore)
{
	Press(Show<BButton>("ButtonDefault"));
	EXPECT_EQ(Told(), "plgc Spac");
	EXPECT_FALSE(IsHidden());
	EXPECT_EQ(gPref->fFontSize, TPref().fFontSize);
	EXPECT_EQ(gPref->fReadEncoding, TPref().fReadEncoding);
	EXPECT_STREQ(Show<BTextControl>("TxtCtrlFontSize")->Text(), "12");
	EXPECT_FALSE(std::filesystem::exists(PrefFile()));
	Press(Show<BButton>("ButtonCancel"));
	EXPECT_EQ(Told(), "plgc Sedr Spac");
	ExpectFirstPreferences();
}

TEST_F(PrefWindowButtons, OKSavesAndIsWhatCancelGoesBackTo)
{
	ChangeAll();
	// not told yet, and the key leaves the focus where it is
	Type(Show<BTextControl>("TxtCtrlTimeDifference"), "123", false);
	TypeKey(Show<BTextControl>("TxtCtrlTimeDifference"), Qt::Key_O, Qt::AltModifier);
	EXPECT_TRUE(wait_until([this] { return IsHidden(); }));
	const std::vector<BMessage> notices = TakeNotices();
	ASSERT_EQ(notices.size(), 2u);
	EXPECT_EQ(notices[0].what, uint32('Sptc'));
	EXPECT_EQ(notices[1].what, uint32('Sssr'));
	EXPECT_STREQ(notices[1].GetString("StatBarStr", ""), gLLT->Text("StatBarStr_Pref_Changed"));
	TPref saved;
	EXPECT_TRUE(saved.Load(BEntry(PrefFile().c_str())));
	EXPECT_TRUE(saved.fStayOnTop);
	EXPECT_EQ(saved.fTimeDifference, 123);
	EXPECT_EQ(saved.fFontSize, 30);

	// Changed from outside while it was hidden: Cancel takes that back too.
	gPref->fStayOnTop = false;
	fWindow->PostMessage(kStayOnTopItemChanged);
	Appear();
	EXPECT_EQ(Show<BCheckBox>("CBoxStayOnTop")->Value(), B_CONTROL_OFF);
	Press(Show<BButton>("ButtonCancel"));
	EXPECT_EQ(Told(), "Sedr Spsc");
	EXPECT_TRUE(gPref->fStayOnTop);
}

TEST_F(PrefWindowButtons, ReturnInATextKeepsIt)
{
	const auto* size = Show<BTextControl>("TxtCtrlFontSize");
	Type(size, "31", false);
	TypeKey(size, Qt::Key_Return);
	EXPECT_TRUE(wait_until([this] { return IsHidden(); }));
	EXPECT_EQ(Told(), "Spac Sssr");
	EXPECT_EQ(gPref->fFontSize, 31);
}

// ---- changes from elsewhere

TEST_F(PrefWindow, FollowsWhatIsDroppedOnTheDisplay)
{
	Open();
	gPref->fBGImageFile = "/pictures/sea.png";
	gPref->fUseBGImage = true;
	gPref->fBGColor = rgb_color{1, 2, 3, 255};
	fWindow->PostMessage(kBGImageItemChanged);
	Settle();
	EXPECT_EQ(Show<BCheckBox>("CBoxUseBGImage")->Value(), B_CONTROL_ON);
	EXPECT_STREQ(Show<BTextControl>("TxtCtrlBGImageFName")->Text(), "/pictures/sea.png");
	EXPECT_TRUE(Show<BButton>("ButtonBrowseBGImg")->IsEnabled());
	Choose(Show<BMenuField>("MFieldColor"), kColorBG);
	EXPECT_EQ(Show<BColorControl>("ColCtrlAppearance")->ValueAsColor(), gPref->fBGColor.Get());
	EXPECT_EQ(Told(), "");
}

TEST_F(PrefWindow, TakesADroppedImage)
{
	TempFolder folder;
	const std::string image = folder.Write("image.png", "P6\n1 1\n255\nabc");
	Open();
	const auto drop = [&](const std::string& path) {
		entry_ref ref;
		EXPECT_EQ(get_ref_for_path(path.c_str(), &ref), B_OK);
		BMessage dropped(B_SIMPLE_DATA);
		dropped.AddRef("refs", &ref);
		BMessenger(fView).SendMessage(&dropped);
	};
	drop(folder.Path());
	EXPECT_EQ(Told(), "") << "a folder is no image";
	drop(image);
	EXPECT_EQ(Told(), "Spac");
	EXPECT_EQ(gPref->fBGImageFile.Get(), image);
	EXPECT_TRUE(gPref->fUseBGImage);
	EXPECT_STREQ(Show<BTextControl>("TxtCtrlBGImageFName")->Text(), image.c_str());
}

TEST_F(PrefWindow, ShowsWhatItDoesNotKnow)
{
	gPref->fLanguageFile = "Klingon.llt";
	gPref->fReadEncoding = 3;
	gPref->fWriteCRType = -1;
	gPref->fFontSize = 99.5f;
	Open();
	const auto shown = [this](const char* name) {
		return std::string(Show<BMenuField>(name)->MenuItem()->Label());
	};
	EXPECT_EQ(shown("MFieldLanguage"), "Klingon.llt");
	EXPECT_EQ(shown("MFieldReadEncoding"), "");
	EXPECT_EQ(shown("MFieldWriteCRType"), "");
	EXPECT_STREQ(Show<BTextControl>("TxtCtrlFontSize")->Text(), "99.5");
	Press(Show<BButton>("ButtonOK"));
	EXPECT_EQ(gPref->fReadEncoding, 3) << "nobody has changed it";
	EXPECT_EQ(gPref->fFontSize, 99.5f);
}

TEST_F(PrefWindow, RefusesAnArchiveThatLacksAControl)
{
	BMessage empty;
	EXPECT_EQ(TPrefView(&empty).InitCheck(), B_BAD_DATA);
}

// ---- the keyboard

class PrefWindowKeys : public PrefWindowFixture {
protected:
	PrefWindowKeys()
	{
		gPref->fUseBGImage = true;
		Open();
	}

	void Key(Qt::Key key)
	{
		type_key(fWindow, key);
		Settle();
	}

	//! What has the focus, a part of a control by the control's name.
	std::string FocusName()
	{
		fWindow->Lock();
		BView* view = fWindow->CurrentFocus();
		while (view != nullptr && (view->Name() == nullptr || view->Name()[0] == '_'))
			view = view->Parent();
		const std::string name = view != nullptr ? view->Name() : "";
		fWindow->Unlock();
		return name;
	}

	bool GoTo(const std::string& name)
	{
		for (int i = 0; i < 30 && FocusName() != name; i++)
			Key(Qt::Key_Tab);
		return FocusName() == name;
	}

	//! From the tabs round to them again.
	std::vector<std::string> Round()
	{
		std::vector<std::string> names;
		EXPECT_TRUE(GoTo("TabViewCategory"));
		for (int i = 0; i < 30; i++) {
			Key(Qt::Key_Tab);
			const std::string name = FocusName();
			if (name == "TabViewCategory")
				break;
			if (names.empty() || names.back() != name)
				names.push_back(name);
		}
		return names;
	}
};

TEST_F(PrefWindowKeys, ReachEverythingOnEveryPage)
{
	const std::vector<std::string> buttons
		= {"ButtonHelp", "ButtonDefault", "ButtonCancel", "ButtonOK"};
	const std::vector<std::string> pages[] = {
		{"CBoxStayOnTop", "MFieldLanguage", "MFieldReadEncoding"},
		{"MFieldFontFamily", "TxtCtrlFontSize", "CBoxAntiAliasing", "MFieldColor",
			"ColCtrlAppearance", "CBoxUseActiveFrame", "MFieldOption"},
		{"CBoxUseBGImage", "TxtCtrlBGImageFName", "ButtonBrowseBGImg", "RButtonTile"},
		{"CBoxDoubleBuffering"},
		{"MFieldWriteCRType", "MFieldWriteEncoding", "TxtCtrlTimeDifference", "CBoxShowToolButton"},
	};
	for (const std::vector<std::string>& page : pages) {
		std::vector<std::string> expected = page;
		expected.insert(expected.end(), buttons.begin(), buttons.end());
		EXPECT_THAT(Round(), testing::ElementsAreArray(expected));
		Key(Qt::Key_Right);
	}
}

TEST_F(PrefWindowKeys, EditAndKeep)
{
	ASSERT_TRUE(GoTo("CBoxStayOnTop"));
	Key(Qt::Key_Space);
	EXPECT_TRUE(gPref->fStayOnTop);
	ASSERT_TRUE(GoTo("MFieldReadEncoding"));
	for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Up, Qt::Key_Return})
		Key(key);
	EXPECT_EQ(gPref->fReadEncoding, kEncodingJIS) << "the separator is passed over";
	ASSERT_TRUE(GoTo("TabViewCategory"));
	Key(Qt::Key_Right);
	ASSERT_TRUE(GoTo("TxtCtrlFontSize"));
	for (const Qt::Key key : {Qt::Key_1, Qt::Key_8})
		Key(key);
	EXPECT_EQ(gPref->fFontSize, TPref().fFontSize) << "it is still being typed";
	ASSERT_TRUE(GoTo("ColCtrlAppearance"));
	EXPECT_EQ(gPref->fFontSize, 18) << "the new text takes the place of the old one";
	Key(Qt::Key_Left);
	EXPECT_LT(gPref->fLyricsColor.Get().red, 255);
	ASSERT_TRUE(GoTo("ButtonOK"));
	Key(Qt::Key_Space);
	EXPECT_TRUE(wait_until([this] {
		fWindow->Lock();
		const bool isHidden = fWindow->IsHidden();
		fWindow->Unlock();
		return isHidden;
	}));
	EXPECT_EQ(Told(), "Spsc Sprc Spac Spac Sssr");
}

// ---- labels

TEST_F(PrefWindow, HasRoomForItsLabelsInEveryLanguage)
{
	Open();
	for (const char* language : kLanguages) {
		ASSERT_TRUE(load_shipped_language(language));
		fWindow->Lock();
		fWindow->LanguageChanged();
		fWindow->Unlock();
		Settle();
		fWindow->Lock();
		EXPECT_EQ(label_faults(fView), "") << language;
		EXPECT_STREQ(fWindow->Title(), gLLT->Text("Win_Title_Pref"));
		auto* tabs = static_cast<BTabView*>(fView->FindView("TabViewCategory"));
		const int32 count = tabs->CountTabs();
		fWindow->Unlock();
		EXPECT_EQ(count, 5);
		for (int32 i = 0; i < count; i++) {
			fWindow->Lock();
			tabs->Select(i);
			fWindow->Unlock();
			Settle();
			save_picture(fWindow, std::string("pref-") + language + "-" + std::to_string(i));
		}
	}
}

} // namespace
