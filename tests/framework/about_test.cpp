#include <StringView.h>

#include "framework/TMERAboutWin.h"
#include "framework/TSimpleAboutView.h"
#include "plugin/TTavInfoView.h"
#include "support/display.h"
#include "support/label_faults.h"
#include "support/languages.h"

using namespace merion;

namespace {

TMERAboutWin*
new_about_window()
{
	return new TMERAboutWin(
		new TSimpleAboutView(new TTavInfoView(TSimpleAboutView::AppInfoFrame())));
}

std::string
text_of(BWindow* window, const char* name)
{
	const auto* view = dynamic_cast<BStringView*>(window->FindView(name));
	return view != nullptr && view->Text() != nullptr ? view->Text() : "";
}

TEST(AboutWindow, SaysItAllInEveryLanguage)
{
	ASSERT_TRUE(load_shipped_language("English"));
	TMERAboutWin* window = new_about_window();
	window->Appear();
	settle(window);
	for (const char* language : kLanguages) {
		ASSERT_TRUE(load_shipped_language(language));
		BMessage notice('_lgc');
		window->PostMessage(&notice);
		settle(window);
		ASSERT_TRUE(window->Lock());
		EXPECT_EQ(window->Title(), std::string(gLLT->Text("Win_Title_About")));
		EXPECT_EQ(label_faults(window->ChildAt(0)), "") << language;
		EXPECT_EQ(text_of(window, "StrViewAppName"), "Tavora Displayer");
		EXPECT_EQ(text_of(window, "StrViewAppVersion"),
			gLLT->Text("About_Version") + std::string(" " TAVORA_VERSION));
		window->Unlock();
	}
	// hidden by the user, never gone
	for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {
		window->Appear();
		settle(window);
		type_key(window, key);
		EXPECT_TRUE(wait_until([&] {
			window->Lock();
			const bool hidden = window->IsHidden();
			window->Unlock();
			return hidden;
		})) << key;
	}
	ASSERT_TRUE(window->Lock());
	window->Quit();
}

} // namespace
