#include "plugin/helpers/show_help.h"

#include <filesystem>
#include <gtest/gtest.h>

#include "support/temp_folder.h"

TEST(Help, IsThePageOfTheLanguageElseTheEnglishOne)
{
	const TempFolder folder;
	const std::string addOn = folder / "gen_Add-on.so";
	std::filesystem::create_directories(folder / "Help/Empty.html");
	const std::string english = folder / "Help/English.html";
	const std::string japanese = folder.Write("Help/Japanese.html", "page");
	folder.Write("Secret.html", "page");
	const struct {
		const char* languageFile;
		std::string page;
	} cases[] = {{"Japanese.llt", japanese}, {"Klingon.llt", english}, {"", english},
		{"../Secret.llt", english}, {"Empty.llt", english}, {"Japanese", japanese}};
	for (const auto& example : cases)
		EXPECT_EQ(help_page(addOn, example.languageFile), example.page) << example.languageFile;
}
