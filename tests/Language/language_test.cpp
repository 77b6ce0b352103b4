#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "framework/TLLT.h"
#include "framework/language_files.h"

namespace fs = std::filesystem;
using merion::TLLT;

namespace {

const fs::path kSources = TAVORA_SOURCES;
const char* const kEnglish = "English.llt";
constexpr size_t kLineLength = 2048; // bytes that the reader takes of a line

//! The texts of one program: where they are, and whose sources ask for them.
struct Program {
	std::string name;
	fs::path languages;
	std::vector<std::string> folders;
	std::string keys; // what a literal in the sources begins with when it is a key
};

//! What lists of the tests call it.
void
PrintTo(const Program& program, std::ostream* list)
{
	*list << program.languages.string();
}

const Program kPrograms[] = {
	{"addon", "Language", {"framework", "host", "lyrics", "plugin", "prefs"},
		"PopMItem|Tab|CBox|MField|TxtCtrl|RButton|Box|StrView|StatBarStr|Button|Win_Title|Panel_"
		"Title|"
		"Ask|Err|Hint|Info|About|Alert|App"},
	{"player", "player/Language", {"player"}, "Menu|MItem|Button|Text|Reason"},
};

std::string
bytes_of(const fs::path& path)
{
	std::ostringstream bytes;
	bytes << std::ifstream(path, std::ios::binary).rdbuf();
	return bytes.str();
}

//! The pairs under [Data] as they are written: no part of the program has touched them.
std::vector<std::pair<std::string, std::string>>
written_texts(const std::string& bytes)
{
	std::vector<std::pair<std::string, std::string>> texts;
	std::istringstream lines(bytes.substr(bytes.find("[Data]\n") + 7));
	for (std::string line; std::getline(lines, line);) {
		const size_t equals = line.find(" = ");
		if (!line.empty() && line[0] != ';')
			texts.emplace_back(
				line.substr(0, equals), equals == std::string::npos ? "" : line.substr(equals + 3));
	}
	return texts;
}

//! What every language must have alike in a text: line ends at either end, and what the program puts in.
std::string
frame_of(const std::string& text)
{
	static const std::regex kFrame("^(\n*)[^]*?(\n*)$");
	std::smatch match;
	std::regex_match(text, match, kFrame);
	std::string frame = std::to_string(match.length(1)) + "," + std::to_string(match.length(2));
	for (const char* placeholder : {"%1", "%2"}) {
		if (text.find(placeholder) != std::string::npos)
			frame.append(placeholder);
	}
	return frame;
}

class LanguageTest : public testing::TestWithParam<Program> {
protected:
	fs::path Folder() const { return kSources / GetParam().languages; }

	std::vector<fs::path> Files() const
	{
		std::vector<fs::path> files;
		for (const auto& entry : fs::directory_iterator(Folder())) {
			if (entry.path().extension() == ".llt")
				files.push_back(entry.path());
		}
		return files;
	}

	std::map<std::string, std::string> English() const
	{
		TLLT table;
		EXPECT_TRUE(merion::load_language_text(bytes_of(Folder() / kEnglish), &table));
		return table.TextMap();
	}
};

TEST_P(LanguageTest, FilesAreWellFormed)
{
	static const std::regex kGoodEscapes("(?:[^#]|#[nts#])*");
	ASSERT_THAT(Files(), testing::SizeIs(6));
	for (const fs::path& file : Files()) {
		const std::string bytes = bytes_of(file);
		EXPECT_EQ(bytes.find('\r'), std::string::npos) << file;
		std::set<std::string> keys;
		for (auto& [key, text] : written_texts(bytes)) {
			EXPECT_FALSE(text.empty()) << file << ": " << key;
			EXPECT_LE(key.size() + 3 + text.size(), kLineLength) << file << ": " << key;
			EXPECT_TRUE(std::regex_match(text, kGoodEscapes)) << file << ": " << key;
			std::string lower = key;
			std::transform(lower.begin(), lower.end(), lower.begin(), tolower);
			EXPECT_TRUE(keys.insert(lower).second) << file << " has it twice: " << key;
		}
	}
}

TEST_P(LanguageTest, LanguagesHaveTheSameTexts)
{
	const std::map<std::string, std::string> english = English();
	std::set<std::string> names;
	for (const fs::path& file : Files()) {
		TLLT table;
		ASSERT_TRUE(merion::load_language_text(bytes_of(file), &table)) << file;
		EXPECT_TRUE(names.insert(table.LanguageName()).second) << file;
		EXPECT_NE(table.LanguageName(), "") << file;
		EXPECT_NE(table.Writer(), "") << file;
		for (const auto& [key, text] : english)
			EXPECT_EQ(table.TextMap().count(key), 1u) << file << " lacks " << key;
		for (const auto& [key, text] : table.TextMap()) {
			ASSERT_EQ(english.count(key), 1u) << file << " alone has " << key;
			EXPECT_EQ(frame_of(text), frame_of(english.at(key))) << file << ": " << key;
			EXPECT_EQ(text.find('@'), std::string::npos) << file << ": " << key << " = " << text;
		}
	}
}

//! A key that ends in "_" is one of several, to which the program adds a number.
TEST_P(LanguageTest, SourcesAskForTextsThatAreThere)
{
	const std::map<std::string, std::string> english = English();
	const std::regex literal("\"((?:" + GetParam().keys + ")_[A-Za-z0-9_]*)\"");
	for (const std::string& folder : GetParam().folders) {
		for (const auto& entry : fs::recursive_directory_iterator(kSources / folder)) {
			if (entry.path().extension() != ".cpp" && entry.path().extension() != ".h")
				continue;
			const std::string source = bytes_of(entry.path());
			for (std::sregex_iterator found(source.begin(), source.end(), literal), end;
				 found != end; ++found) {
				const std::string key = (*found)[1];
				const auto text = english.lower_bound(key);
				EXPECT_TRUE(text != english.end()
					&& (key.back() == '_' ? text->first.starts_with(key) : text->first == key))
					<< entry.path() << " asks for " << key;
			}
		}
	}
}

INSTANTIATE_TEST_SUITE_P(Programs, LanguageTest, testing::ValuesIn(kPrograms),
	[](const auto& info) { return info.param.name; });

//! The help shows labels in <b>; a line end in one is a blank.
TEST(HelpTest, NamesLabelsThatAreThere)
{
	static const std::regex kLabel("<b>([^<]*)</b>");
	for (const std::string language : {"English", "Japanese"}) {
		TLLT table;
		ASSERT_TRUE(merion::load_language_text(
			bytes_of(kSources / "Language" / (language + ".llt")), &table));
		std::set<std::string> labels;
		for (const auto& [key, text] : table.TextMap())
			labels.insert(text);
		const std::string page = bytes_of(kSources / "Help" / (language + ".html"));
		size_t found = 0;
		for (std::sregex_iterator label(page.begin(), page.end(), kLabel), end; label != end;
			 ++label, ++found) {
			std::string text = (*label)[1];
			std::replace(text.begin(), text.end(), '\n', ' ');
			EXPECT_EQ(labels.count(text), 1u) << language << ": " << text;
		}
		EXPECT_GT(found, 0u);
	}
}

} // namespace
