#include <gtest/gtest.h>

#include <Application.h>
#include <DataIO.h>
#include <Resources.h>
#include <TypeConstants.h>
#include <atomic>
#include <thread>

#include "framework/TIniFile.h"
#include "framework/TLLT.h"
#include "support/temp_folder.h"

using merion::TIniFile;
using merion::TLLT;

namespace {

const std::string kHeader = "[Informations]\nHeader=LLT File Format 100\n";

status_t
load(TLLT* table, std::string_view text, int lineLength = 2048)
{
	BMemoryIO stream(text.data(), text.size());
	TIniFile ini(&stream, lineLength);
	return table->Load(&ini);
}

std::string
decoded(std::string text)
{
	const char* const passes[][2] = {{"#n", "\n"}, {"#t", "\t"}, {"#s", " "}, {"##", "#"}};
	for (const auto& pass : passes)
		TLLT::Decode(&text, pass[0], pass[1]);
	return text;
}

} // namespace

TEST(LanguageTable, DecodesEscapes)
{
	const struct {
		const char *in, *out;
	} rows[] = {{"", ""}, {"Line one#nLine two", "Line one\nLine two"}, {"50##", "50#"},
		{"#s#sIndented", "  Indented"}, {"##n", "#n"}, {"###n", "#\n"}, {"####n", "##n"},
		{"a#t#n#sb", "a\t\n b"}, {"#", "#"}, {"###", "##"}, {"#x#N", "#x#N"}, {"#n##n#n", "\n#n\n"},
		{"##s###s", "#s# "}};
	for (const auto& row : rows)
		EXPECT_EQ(decoded(row.in), row.out) << row.in;
}

TEST(LanguageTable, WhatIsNoLanguageFileChangesNothing)
{
	TempFolder folder;
	TLLT table;
	ASSERT_EQ(load(&table, kHeader + "Language=First\n[Data]\nKey=text\n"), B_OK);
	const std::string rest = "\nLanguage=Second\n[Data]\nKey=other\n";
	const std::string texts[] = {"", "[Informations]", "[Data]\nKey=other\n",
		"Header=LLT File Format 100" + rest, "[Informations]\nHeader=LLT File Format 101" + rest,
		"[Informations]\nHeader=llt file format 100" + rest,
		"[Informations]\nHeader=LLT File Format 100 x" + rest,
		"[Informations]\rHeader=LLT File Format 100\rLanguage=Second",
		"\xef\xbb\xbf" + kHeader + rest.substr(1), std::string(5000, '\0'),
		"\x7f"
		"ELF\x01\x02"
			+ std::string(3000, '\xff')};
	for (const std::string& text : texts) {
		const std::string path = folder.Write("a.llt", text);
		EXPECT_EQ(table.Load(path.c_str()), B_ERROR) << text;
	}
	EXPECT_EQ(table.Load((folder / "missing").c_str()), B_ERROR);
	EXPECT_EQ(table.Load(folder.Path().c_str()), B_ERROR);
	EXPECT_EQ(table.LanguageName(), "First");
	EXPECT_STREQ(table.Text("Key"), "text");
	EXPECT_EQ(table.TextMap().size(), 1u);
}

TEST(LanguageTable, ASecondFileIsMergedIntoTheFirst)
{
	TLLT table;
	EXPECT_STREQ(table.Text("Hide"), "! ERROR !");
	EXPECT_STREQ(table.Text(nullptr), "! ERROR !");
	ASSERT_EQ(load(&table,
				  kHeader
					  + "Language=English\nWriter=Ann #n\nSpecialThanks= to all\n"
						"[Data]\nHide=Hide\nShow=Show\nEmpty=\nEMPTY=x\n"),
		B_OK);
	ASSERT_EQ(load(&table,
				  "[INFORMATIONS]\r\nheader=LLT File Format 100\r\nlanguage=日本語\r\n"
				  "[data]\r\nHide=\x89\x42\x82\xb7\r\nNew=#sNeu##"),
		B_OK);
	EXPECT_EQ(table.LanguageName(), "日本語");
	EXPECT_EQ(table.Writer(), "Ann #n");
	EXPECT_EQ(table.SpecialThanks(), "to all");
	const std::map<std::string, std::string> texts = {{"EMPTY", ""}, {"Empty", ""},
		{"Hide", "\x89\x42\x82\xb7"}, {"New", " Neu#"}, {"Show", "Show"}};
	EXPECT_EQ(table.TextMap(), texts);
	for (const auto& [key, text] : texts)
		EXPECT_EQ(table.Text(key.c_str()), text);
	EXPECT_STREQ(table.Text("hide"), "! ERROR !");
	EXPECT_EQ(load(&table, kHeader), B_OK) << "no texts are no fault";
	EXPECT_EQ(table.TextMap(), texts);
}

TEST(LanguageTable, LongTextsAreCutAtTheLine)
{
	TLLT table;
	const std::string text = kHeader + "[Data]\nk=" + std::string(3000, 'x') + "\n";
	ASSERT_EQ(load(&table, text, 8192), B_OK);
	EXPECT_EQ(table.Text("k"), std::string(2048, 'x'));
	ASSERT_EQ(load(&table, text), B_OK);
	EXPECT_EQ(table.Text("k"), std::string(2046, 'x'));
}

TEST(LanguageTable, ReferencesTakeTheTextsOfTheWholeTable)
{
	TLLT table;
	ASSERT_EQ(load(&table,
				  kHeader
					  + "[Data]\nHelp=the manual\nA=See @Help@\nB=@A@!\nC=@D@\nD=@Help@\nE=@Help@ "
						"@Help@\n"
						"F=a@b\nG=@none@ @Help@\nH=x@H@y\nI=#@Help#@\nJ=@Z#s@\nOld=@New@\n"),
		B_OK);
	const std::map<std::string, std::string> texts = {{"Help", "the manual"},
		{"A", "See the manual"}, {"B", "See the manual!"}, {"C", "@Help@"}, {"D", "the manual"},
		{"E", "the manual @Help@"}, {"F", "a@b"}, {"G", "@none@ @Help@"}, {"H", "xx@H@yy"},
		{"I", "#@Help#@"}, {"J", "@Z @"}, {"Old", "@New@"}};
	EXPECT_EQ(table.TextMap(), texts);
	ASSERT_EQ(load(&table, kHeader + "[Data]\nNew=it\n"), B_OK);
	EXPECT_STREQ(table.Text("Old"), "it");
	EXPECT_STREQ(table.Text("C"), "the manual");
}

TEST(LanguageTable, PointersOutliveTheirTexts)
{
	TLLT english, german, table;
	ASSERT_EQ(load(&english, kHeader + "Language=English\n[Data]\nHide=Hide\nMore=More\n"), B_OK);
	ASSERT_EQ(load(&german, kHeader + "Language=Deutsch\n[Data]\nHide=Verbergen\n"), B_OK);
	table = english;
	const char* hide = table.Text("Hide");
	const char* more = table.Text("More");
	for (int i = 0; i < 3; i++) {
		table = german;
		EXPECT_STREQ(table.Text("Hide"), "Verbergen");
		EXPECT_STREQ(table.Text("More"), "! ERROR !");
		EXPECT_EQ(table.LanguageName(), "Deutsch");
		EXPECT_STREQ(hide, "Hide");
		EXPECT_STREQ(more, "More");
		table = english;
		EXPECT_EQ(table.Text("Hide"), hide) << "equal texts are kept once";
		ASSERT_EQ(load(&table, kHeader + "[Data]\nHide=Other\n"), B_OK);
		EXPECT_STREQ(hide, "Hide");
	}
	EXPECT_STREQ(TLLT(german).Text("Hide"), "Verbergen");
	EXPECT_STREQ(german.Text("Hide"), "Verbergen");
}

TEST(LanguageTable, IsSwitchedWhileTextsAreLookedUp)
{
	TLLT tables[2], table;
	ASSERT_EQ(load(&tables[0], kHeader + "Language=0\n[Data]\nA=zero\nB=@A@\n"), B_OK);
	ASSERT_EQ(load(&tables[1], kHeader + "Language=1\n[Data]\nA=one\nB=@A@\n"), B_OK);
	table = tables[0];
	std::atomic<bool> isDone = false;
	std::atomic<int> wrong = 0;
	const auto look = [&] {
		while (!isDone) {
			for (const char* text : {table.Text("A"), table.Text("B")})
				wrong += strcmp(text, "zero") != 0 && strcmp(text, "one") != 0;
			wrong += table.LanguageName().size() != 1;
		}
	};
	std::thread first(look), second(look);
	for (int i = 0; i < 500; i++) {
		table = tables[i % 2];
		EXPECT_EQ(load(&table, kHeader + "[Data]\nA=one\nB=@A@\n"), B_OK);
	}
	isDone = true;
	first.join();
	second.join();
	EXPECT_EQ(wrong, 0);
}

TEST(LanguageTable, IsLoadedFromResources)
{
	TLLT fromFile;
	ASSERT_EQ(fromFile.Load(DEFAULT_LANGUAGE), B_OK);
	EXPECT_EQ(fromFile.LanguageName(), "English");
	EXPECT_FALSE(fromFile.TextMap().empty());

	BResources addOn(ADD_ON);
	ASSERT_EQ(addOn.InitCheck(), B_OK);
	EXPECT_TRUE(addOn.HasResource(B_STRING_TYPE, "DefaultLanguage"));
	TLLT table;
	EXPECT_EQ(table.Load(&addOn, 2), B_ERROR);
	ASSERT_EQ(table.Load(&addOn, 1), B_OK);
	EXPECT_EQ(table.TextMap(), fromFile.TextMap());

	TLLT own;
	EXPECT_EQ(own.Load(static_cast<BResources*>(nullptr), 2), B_ERROR);
	ASSERT_EQ(own.Load(static_cast<BResources*>(nullptr), 7), B_OK) << "this program's own";
	EXPECT_EQ(own.TextMap(), fromFile.TextMap());

	BResources empty;
	EXPECT_EQ(own.Load(&empty, 1), B_ERROR);
}
