#include <AppDefs.h>
#include <Application.h>
#include <Button.h>
#include <CheckBox.h>
#include <StringView.h>
#include <atomic>
#include <filesystem>
#include <thread>

#include "framework/TIAPItemAccKeyFormat.h"
#include "framework/TIAPItemFlatToolBar.h"
#include "framework/TIAPView.h"
#include "framework/TIAPWin.h"
#include "framework/TInterAppPrefs.h"
#include "framework/TLabelLayout.h"
#include "framework/TMERDlgView.h"
#include "framework/TMERDlgWin.h"
#include "framework/accelerator.h"
#include "framework/dialogs.h"
#include "framework/framework_codes.h"
#include "support/display.h"
#include "support/label_faults.h"
#include "support/languages.h"
#include "support/temp_folder.h"

using namespace merion;

namespace {

// ---- room for labels

constexpr uint32 kRightBottom = B_FOLLOW_RIGHT | B_FOLLOW_BOTTOM;

/*	label  [value      ]
	label2 [value2     ]
	[x] check   (inner box: [x] inner)
	            [cancel] [ok] */
class FormView : public BView {
public:
	FormView() : BView(BRect(0, 0, 319, 149), "form", B_FOLLOW_ALL, B_WILL_DRAW)
	{
		Add(this, new BStringView(BRect(10, 10, 69, 29), "label", ""));
		Add(this,
			new BStringView(
				BRect(80, 10, 309, 29), "value", "", B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP));
		Add(this, new BStringView(BRect(10, 36, 69, 55), "label2", ""));
		Add(this,
			new BStringView(
				BRect(80, 36, 309, 55), "value2", "", B_FOLLOW_LEFT_RIGHT | B_FOLLOW_TOP));
		Add(this, new BCheckBox(BRect(10, 66, 109, 89), "check", "", nullptr));
		auto* inner
			= new BView(BRect(140, 62, 309, 101), "inner box", B_FOLLOW_LEFT_TOP, B_WILL_DRAW);
		Add(inner, new BCheckBox(BRect(4, 4, 103, 27), "inner", "", nullptr));
		AddChild(inner);
		Add(this, new BButton(BRect(150, 112, 219, 139), "cancel", "", nullptr, kRightBottom));
		Add(this, new BButton(BRect(230, 112, 309, 139), "ok", "", nullptr, kRightBottom));
	}

	void SetLabel(const char* name, const std::string& label)
	{
		BView* view = FindView(name);
		if (auto* control = dynamic_cast<BControl*>(view))
			control->SetLabel(label.c_str());
		else
			static_cast<BStringView*>(view)->SetText(label.c_str());
	}

private:
	static void Add(BView* parent, BView* child) { parent->AddChild(child); }
};

std::string
frames_of(BView* view)
{
	std::string frames;
	for (int32 i = 0; BView* child = view->ChildAt(i); i++) {
		const BRect frame = child->Frame();
		for (const float edge : {frame.left, frame.top, frame.right, frame.bottom})
			frames += std::to_string(int(edge)) + " ";
		frames += frames_of(child);
	}
	return frames;
}

class LabelLayout : public testing::Test {
protected:
	LabelLayout()
		: fWindow(BRect(100, 100, 419, 249), "labels", B_TITLED_WINDOW, 0),
		  fForm(new FormView)
	{
		fWindow->AddChild(fForm);
		fLayout = std::make_unique<TLabelLayout>(fForm);
	}
	~LabelLayout() override { fWindow->Unlock(); }

	void Update()
	{
		const BSize size = fLayout->MinSize();
		fWindow->ResizeTo(size.width, size.height);
		fLayout->Apply(size);
	}

	WindowHolder<> fWindow; // locked, as it is never shown
	FormView* fForm;
	std::unique_ptr<TLabelLayout> fLayout;
};

TEST_F(LabelLayout, MakesRoomForAnyLabelAndGivesItBack)
{
	const std::string designed = frames_of(fForm);
	Update();
	EXPECT_EQ(frames_of(fForm), designed);
	const std::string longLabel(60, 'W');
	for (const char* name : {"label", "value2", "check", "inner", "cancel", "ok"}) {
		fForm->SetLabel(name, longLabel);
		Update();
		EXPECT_EQ(label_faults(fForm), "") << "with a long " << name;
		EXPECT_GE(fForm->Bounds().Width(), 319);
		EXPECT_EQ(fForm->FindView("label")->Frame().left, fForm->FindView("label2")->Frame().left);
		EXPECT_EQ(fForm->FindView("value")->Frame().left, fForm->FindView("value2")->Frame().left);
		EXPECT_EQ(fForm->FindView("ok")->Frame().right, fForm->Bounds().Width() - 10);
		fForm->SetLabel(name, "");
	}
	Update();
	EXPECT_EQ(frames_of(fForm), designed);
	for (const char* name : {"label", "value", "check", "inner", "cancel", "ok"})
		fForm->SetLabel(name, longLabel);
	Update();
	EXPECT_EQ(label_faults(fForm), "") << "with all of them long";
}

TEST_F(LabelLayout, TakesEmptyRoomBeforeItMovesAnything)
{
	const float before = fForm->FindView("inner box")->Frame().left;
	float width = 0;
	for (std::string label = "wide"; width < 105; label += 'i') {
		fForm->SetLabel("check", label);
		fForm->FindView("check")->GetPreferredSize(&width, nullptr);
	}
	Update();
	EXPECT_EQ(fForm->FindView("inner box")->Frame().left, before);
	EXPECT_EQ(label_faults(fForm), "");
}

// ---- dialogs

class RecordingDialogView : public TMERDlgView {
public:
	RecordingDialogView() : TMERDlgView(BRect(0, 0, 299, 99), "dialog", B_FOLLOW_ALL, B_WILL_DRAW)
	{
		BRect frame(10, 60, 79, 89);
		for (const char* name : {"ButtonHelp", "ButtonDefault", "ButtonCancel", "ButtonOK"}) {
			AddChild(new BButton(frame, name, "", nullptr, kRightBottom));
			frame.OffsetBy(72, 0);
		}
	}

	void ButtonOKClicked() override { fTold = 'o'; }
	void ButtonDefaultClicked() override { fTold = 'd'; }
	void ButtonHelpClicked() override { fTold = 'h'; }
	void ButtonCancelClicked() override
	{
		TMERDlgView::ButtonCancelClicked();
		fTold = 'c';
	}

	bool Told(char what)
	{
		return wait_until([&] { return fTold == what; });
	}

private:
	std::atomic<char> fTold{0};
};

class TestDialog : public TMERDlgWin {
public:
	explicit TestDialog(RecordingDialogView* view)
		: TMERDlgWin(
			BRect(100, 100, 399, 199), "dialog", B_TITLED_WINDOW_LOOK, B_NORMAL_WINDOW_FEEL, 0)
	{
		SetDlgView(view);
	}
};

bool
is_hidden(BWindow* window)
{
	return wait_until([&] {
		window->Lock();
		const bool hidden = window->IsHidden();
		window->Unlock();
		return hidden;
	});
}

TEST(Dialog, KeysButtonsAndTheCloseButtonAct)
{
	ASSERT_TRUE(load_shipped_language("English"));
	auto* view = new RecordingDialogView;
	WindowHolder<TestDialog> window(view);
	window->Appear();
	settle(window);
	type_key(window, Qt::Key_Return);
	EXPECT_TRUE(view->Told('o')) << "Return is not OK";
	for (const auto& [name, told] :
		{std::pair("ButtonDefault", 'd'), std::pair("ButtonHelp", 'h')}) {
		const BRect frame = view->FindView(name)->Frame();
		click(window, BPoint((frame.left + frame.right) / 2, (frame.top + frame.bottom) / 2));
		EXPECT_TRUE(view->Told(told)) << name;
	}
	type_key(window, Qt::Key_Escape);
	EXPECT_TRUE(view->Told('c')) << "Escape is not Cancel";
	EXPECT_TRUE(is_hidden(window));
	window->Appear();
	settle(window);
	type_key(window, Qt::Key_Return);
	EXPECT_TRUE(view->Told('o'));
	window->PostMessage(B_QUIT_REQUESTED);
	EXPECT_TRUE(view->Told('c')) << "closing is not Cancel";
	ASSERT_TRUE(window->Lock());
	EXPECT_TRUE(window->QuitRequested()) << "the application may close it";
	window->Unlock();
}

// ---- boxes

class Box : public testing::Test {
protected:
	Box()
	{
		EXPECT_TRUE(load_shipped_language("English"));
		allow_alerts();
	}
	~Box() override
	{
		dismiss_alerts();
		for (std::thread& thread : fThreads)
			thread.join();
		allow_alerts();
	}

	void Ask(std::atomic<int32>* answer)
	{
		fThreads.emplace_back(
			[answer] { *answer = show_alert("Box", "A question?", "Yes", "Perhaps", "No", "YP"); });
	}

	static BWindow* FindBox()
	{
		for (int32 i = 0; BWindow* window = be_app->WindowAt(i); i++) {
			if (!window->Lock())
				continue;
			const bool isBox = strcmp(window->Title(), "Box") == 0 && !window->IsHidden();
			window->Unlock();
			if (isBox)
				return window;
		}
		return nullptr;
	}

	static bool IsAnswered(const std::atomic<int32>& answer)
	{
		return wait_until([&] { return answer != kNone; });
	}

	static constexpr int32 kNone = -100;

private:
	std::vector<std::thread> fThreads;
};

TEST_F(Box, IsAnsweredByKeys)
{
	const struct {
		Qt::Key key;
		Qt::KeyboardModifiers modifiers;
		int32 answer;
	} cases[] = {{Qt::Key_Escape, {}, 2}, {Qt::Key_Return, {}, 2}, {Qt::Key_Y, Qt::AltModifier, 0},
		{Qt::Key_P, Qt::AltModifier, 1}};
	for (const auto& example : cases) {
		std::atomic<int32> answer{kNone};
		Ask(&answer);
		ASSERT_TRUE(wait_until([] { return FindBox() != nullptr; })) << "no box is shown";
		BWindow* box = FindBox();
		settle(box);
		type_key(box, example.key, example.modifiers);
		ASSERT_TRUE(IsAnswered(answer)) << "key " << example.key;
		EXPECT_EQ(answer, example.answer);
	}
}

TEST_F(Box, IsDismissedAtOnceFromAnotherThread)
{
	bigtime_t fastest = B_INFINITE_TIMEOUT; // a busy machine may be slow, but not always
	for (int round = 0; round < 20; round++) {
		std::atomic<int32> answers[] = {kNone, kNone};
		Ask(&answers[0]);
		Ask(&answers[1]);
		// at any moment: before they are there, or while they are
		if (round % 2 == 0) {
			ASSERT_TRUE(wait_until([] { return FindBox() != nullptr; }));
		}
		const bigtime_t start = system_time();
		dismiss_alerts();
		for (const auto& answer : answers) {
			ASSERT_TRUE(IsAnswered(answer)) << "a box stays open";
			EXPECT_EQ(answer, 2);
		}
		fastest = std::min(fastest, system_time() - start);
		EXPECT_EQ(show_alert("Box", "?", "OK"), 0) << "there is no box any more";
		allow_alerts();
	}
	EXPECT_LT(fastest, 200000);
}

// ---- the common preferences

TEST(CommonPreferences, ApplyAtOnceAndCancelPutsBack)
{
	const TempFolder settings;
	setenv("XDG_CONFIG_HOME", (settings / "").c_str(), 1);
	ASSERT_TRUE(load_shipped_language("English"));
	std::atomic<int> failures = 0;
	TInterAppPrefs prefs;
	prefs.SetFailureReport([&failures] { failures++; });
	prefs.AddItem(new TIAPItemAccKeyFormat);
	prefs.AddItem(new TIAPItemFlatToolBar);
	ASSERT_EQ(prefs.ChangeValue("FlatToolBar", 0), B_OK);
	WindowHolder<TIAPWin> window(&prefs);
	window->Appear();
	settle(window);
	const auto value = [&](int32 expected) {
		return wait_until([&] {
			int32 now;
			return prefs.GetValue("FlatToolBar", &now) == B_OK && now == expected;
		});
	};
	const auto clickBox = [&] {
		window->Lock();
		const BRect frame = window->FindView("FlatToolBar")->Frame();
		window->Unlock();
		click(window, BPoint(frame.left + 8, (frame.top + frame.bottom) / 2));
	};
	clickBox();
	EXPECT_TRUE(value(1)) << "a change is not in effect";
	type_key(window, Qt::Key_Escape);
	EXPECT_TRUE(value(0)) << "Cancel has not put it back";
	window->Appear();
	settle(window);
	clickBox();
	EXPECT_TRUE(value(1));
	type_key(window, Qt::Key_Return);
	EXPECT_TRUE(is_hidden(window));
	EXPECT_TRUE(value(1)) << "OK does not keep it";
	EXPECT_EQ(failures, 0);

	const std::filesystem::path file = settings / "MERION/Shared/MERION_Common_Prefs.arc";
	ASSERT_TRUE(std::filesystem::remove(file));
	std::filesystem::create_directories(file / "in its place");
	window->Appear();
	settle(window);
	clickBox();
	EXPECT_TRUE(value(0)) << "it is not even in effect";
	EXPECT_TRUE(wait_until([&] { return failures == 1; })) << "nobody says that it will not last";
	for (const char* language : kLanguages) {
		ASSERT_TRUE(load_shipped_language(language));
		ASSERT_TRUE(window->Lock());
		window->LanguageChanged();
		EXPECT_EQ(label_faults(window->ChildAt(0)), "") << language;
		window->Unlock();
	}
}

TEST(AcceleratorKey, IsMergedIntoALabel)
{
	const struct {
		const char *label, *key;
		int32 format;
		const char* merged;
	} cases[] = {{"Open", "O", 0, "Open"}, {"Open", "O", 1, "Open (O)"},
		{"Open", "O", 2, "Open  Alt+O"}, {"Open…", "O", 1, "Open (O)…"},
		{"Open...", "O", 2, "Open...  Alt+O"}, {"開く", "O", 1, "開く (O)"},
		{"Open", "", 1, "Open"}, {"Open", "O", 3, "Open"}, {"Open", "O", -1, "Open"}};
	for (const auto& example : cases)
		EXPECT_EQ(
			merge_accelerator_key(example.label, example.key, example.format), example.merged);
}

} // namespace
