#include <List.h>
#include <String.h>

#include <gtest/gtest.h>

TEST(String, TakesNothingForNothing)
{
	BString string(static_cast<const char*>(nullptr));
	string.Append(nullptr).Insert(nullptr, 5).Prepend(nullptr).SetTo(nullptr, 7);
	string << nullptr;
	EXPECT_STREQ(string.String(), "");
	EXPECT_TRUE(string.IsEmpty());
	EXPECT_EQ(string.Compare(nullptr), 0);
	EXPECT_EQ(string.FindFirst(static_cast<const char*>(nullptr)), B_ERROR);
	EXPECT_EQ(string.ReplaceAll(nullptr, nullptr), "");
	EXPECT_EQ(BString("abc", -1), "");
	EXPECT_EQ(BString("abc", 100), "abc");
}

TEST(String, ClipsOffsetsThatLieOutside)
{
	const BString base("abcdef");
	BString copy;
	EXPECT_EQ(BString(base).Insert("X", -3), "Xabcdef");
	EXPECT_EQ(BString(base).Insert("XYZ", 2, 99), "abcdefXY");
	EXPECT_EQ(BString(base).Remove(4, 99), "abcd");
	EXPECT_EQ(BString(base).Remove(99, 1), "abcdef");
	EXPECT_EQ(BString(base).Truncate(-1), "");
	EXPECT_EQ(BString(base).Truncate(99).Length(), 6);
	EXPECT_EQ(base.CopyInto(copy, 2, 99), "cdef");
	EXPECT_EQ(base.CopyInto(copy, 2, -1), "");
	EXPECT_EQ(base.ByteAt(-1), 0);
	EXPECT_EQ(base.ByteAt(6), 0);
	EXPECT_EQ(base.FindFirst("a", -1), B_ERROR);
	EXPECT_EQ(base.FindFirst("f", 99), B_ERROR);
	EXPECT_EQ(base.FindLast("f", 5), B_ERROR);
	EXPECT_EQ(base.FindLast("f", 6), 5);
}

TEST(String, ReplacesWithoutLosingOrLoopingEndlessly)
{
	EXPECT_EQ(BString("aaa").ReplaceAll("a", "aa"), "aaaaaa");
	EXPECT_EQ(BString("aaa").ReplaceAll("", "x"), "aaa");
	EXPECT_EQ(BString("abab").Replace("ab", "c", 1), "cab");
	EXPECT_EQ(BString("abab").ReplaceLast("ab", ""), "ab");
	EXPECT_EQ(BString("aXbX").ReplaceAll("X", "yy", 2), "aXbyy");
	EXPECT_EQ(BString("a\tb\nc").ReplaceSet("\t\n", ' '), "a b c");
	EXPECT_EQ(BString("a/b:c").RemoveSet("/:"), "abc");
	BString self("xy");
	self.Append(self.String()).Insert(self.String(), 1).SetTo(self.String() + 1);
	EXPECT_EQ(self, "xyxyyxy");
}

TEST(String, IgnoresTheCaseOfASCIIOnly)
{
	const BString string("Ärger mit JIS");
	EXPECT_EQ(string.IFindFirst("MIT jis"), 7);
	EXPECT_TRUE(string.IEndsWith("jis"));
	EXPECT_FALSE(string.EndsWith("jis"));
	EXPECT_TRUE(string.IStartsWith("ÄRGER"));
	EXPECT_FALSE(string.IStartsWith("ärger"));
	EXPECT_EQ(BString("É a").ToLower(), "É a");
	EXPECT_LT(BString("abc").ICompare("ABD"), 0);
	EXPECT_EQ(BString("abcX").ICompare("ABCY", 3), 0);
	EXPECT_EQ(string.CountChars(), 13);
}

TEST(String, LendsItsBuffer)
{
	BString string("ab");
	char* buffer = string.LockBuffer(10);
	EXPECT_STREQ(buffer, "ab");
	strcpy(buffer + 2, "cdefgh");
	EXPECT_EQ(string.UnlockBuffer(), "abcdefgh");
	string.LockBuffer(0);
	EXPECT_EQ(string.UnlockBuffer(3), "abc");
	BString text;
	text.SetToFormat("%s=%d", "n", 5) << ' ' << 1.5 << ' ' << true << ' ' << -7LL;
	EXPECT_EQ(text, "n=5 1.50 true -7");
	EXPECT_EQ(BString(" \t a b\n").Trim(), "a b");
}

static int
compare_numbers(const void* a, const void* b)
{
	const auto number = [](const void* item) { return **static_cast<const int* const*>(item); };
	return number(a) - number(b);
}

TEST(List, RefusesIndicesThatLieOutside)
{
	int numbers[] = {3, 1, 2};
	BList list;
	EXPECT_EQ(list.Items(), nullptr);
	EXPECT_EQ(list.FirstItem(), nullptr);
	EXPECT_FALSE(list.AddItem(&numbers[0], 1));
	for (int& number : numbers)
		list.AddItem(&number);
	EXPECT_EQ(list.ItemAt(3), nullptr);
	EXPECT_EQ(list.ItemAt(-1), nullptr);
	EXPECT_EQ(list.RemoveItem(3), nullptr);
	EXPECT_FALSE(list.RemoveItem(&list));
	EXPECT_FALSE(list.SwapItems(0, 3));
	EXPECT_FALSE(list.MoveItem(0, 3));
	EXPECT_FALSE(list.ReplaceItem(-1, nullptr));
	EXPECT_FALSE(list.RemoveItems(-1, 1));
	EXPECT_FALSE(list.AddList(nullptr));
	EXPECT_EQ(list.IndexOf(&list), -1);

	list.SortItems(compare_numbers);
	EXPECT_EQ(list.FirstItem(), &numbers[1]);
	EXPECT_TRUE(list.MoveItem(0, 2));
	EXPECT_EQ(list.LastItem(), &numbers[1]);
	EXPECT_TRUE(list.AddList(&list, 1));
	EXPECT_EQ(list.CountItems(), 6);
	EXPECT_EQ(list.ItemAt(1), list.ItemAt(0));
	EXPECT_TRUE(list.RemoveItems(1, 99));
	int visited = 0;
	list.DoForEach(
		[](void*, void* count) {
			++*static_cast<int*>(count);
			return true;
		},
		&visited);
	EXPECT_EQ(visited, 1);
}
