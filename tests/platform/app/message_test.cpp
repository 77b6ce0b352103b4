// The fields of a message, and what a message owes to who sent it.

#include "platform/app/app_test_support.h"
#include <DataIO.h>
#include <Entry.h>
#include <PropertyInfo.h>
#include <String.h>
#include <gtest/gtest.h>
#include <string.h>

TEST(Message, FindingAnswersAsDocumented)
{
	BMessage message('test');
	message.AddInt32("n", 1);
	message.AddInt32("n", 2);
	message.AddString("s", "text");
	int32 n = 99;
	EXPECT_EQ(message.FindInt32("n", 1, &n), B_OK);
	EXPECT_EQ(n, 2);
	n = 99;
	EXPECT_EQ(message.FindInt32("n", 2, &n), B_BAD_INDEX);
	EXPECT_EQ(message.FindInt32("n", -1, &n), B_BAD_VALUE);
	EXPECT_EQ(message.FindInt32("none", &n), B_NAME_NOT_FOUND);
	EXPECT_EQ(message.FindInt32("s", &n), B_BAD_TYPE);
	EXPECT_EQ(message.FindInt32(NULL, &n), B_BAD_VALUE);
	EXPECT_EQ(n, 99);
	const void* data;
	ssize_t size;
	EXPECT_EQ(message.FindData("s", B_ANY_TYPE, &data, &size), B_OK);
	EXPECT_EQ(size, 5);
	EXPECT_EQ(BMessage().FindInt32("n", &n), B_NAME_NOT_FOUND);
	EXPECT_STREQ(message.GetString("s"), "text");
	EXPECT_STREQ(message.GetString("n", "default"), "default");
	EXPECT_EQ(message.GetInt32("n", 1, -1), 2);
	EXPECT_EQ(message.GetInt32("n", 5, -1), -1);
}

TEST(Message, AddingRefusesWhatDoesNotFit)
{
	BMessage message;
	EXPECT_EQ(message.AddInt32("n", 1), B_OK);
	EXPECT_EQ(message.AddString("n", "x"), B_BAD_TYPE);
	EXPECT_EQ(message.AddString("s", static_cast<const char*>(NULL)), B_BAD_VALUE);
	EXPECT_EQ(message.AddData("d", B_RAW_TYPE, "", 0), B_BAD_VALUE);
	EXPECT_EQ(message.AddData(NULL, B_RAW_TYPE, "x", 1), B_BAD_VALUE);
	EXPECT_EQ(message.AddData("d", B_RAW_TYPE, "1234", 4), B_OK);
	EXPECT_EQ(message.AddData("d", B_RAW_TYPE, "12345", 5), B_BAD_VALUE);
	EXPECT_EQ(message.AddInt32(std::string(70000, 'x').c_str(), 1), B_BAD_VALUE);
	EXPECT_EQ(message.ReplaceData("d", B_RAW_TYPE, "12345", 5), B_BAD_VALUE);
	EXPECT_EQ(message.ReplaceInt32("n", 1, 5), B_BAD_INDEX);
	EXPECT_EQ(message.ReplaceInt32("none", 5), B_NAME_NOT_FOUND);
	EXPECT_EQ(message.Rename("n", "d"), B_NAME_IN_USE);
	EXPECT_EQ(message.RemoveData("n", 1), B_BAD_INDEX);
	EXPECT_EQ(message.RemoveName("none"), B_NAME_NOT_FOUND);
	EXPECT_EQ(message.CountNames(B_ANY_TYPE), 2);
}

TEST(Message, GetInfoWalksTheFieldsOfAType)
{
	BMessage message;
	message.AddString("a", "1");
	message.AddInt32("b", 1);
	message.AddString("c", "2");
	message.AddString("c", "3");
	char* name;
	type_code type;
	int32 count;
	EXPECT_EQ(message.GetInfo(B_STRING_TYPE, 1, &name, &type, &count), B_OK);
	EXPECT_STREQ(name, "c");
	EXPECT_EQ(count, 2);
	EXPECT_EQ(message.GetInfo(B_STRING_TYPE, 2, &name, &type), B_BAD_INDEX);
	EXPECT_EQ(message.GetInfo(B_RECT_TYPE, 0, &name, &type), B_BAD_TYPE);
	EXPECT_EQ(message.GetInfo("none", &type, &count), B_NAME_NOT_FOUND);
	EXPECT_EQ(count, 0);
	EXPECT_EQ(message.CountNames(B_STRING_TYPE), 2);
}

// Everything that changes a message may be given bytes of that same message.
TEST(Message, MayBeFedWithItsOwnBytes)
{
	BMessage message;
	message.AddString("first", std::string(500, 'a').c_str());
	for (int i = 0; i < 50; i++) {
		EXPECT_EQ(message.AddString("again", message.GetString("first")), B_OK);
		EXPECT_EQ(message.AddInt32(message.GetString("first"), i), B_OK);
	}
	message.AddString("short", "s");
	EXPECT_EQ(message.ReplaceString("short", message.GetString("again", 7, NULL)), B_OK);
	EXPECT_EQ(message.Rename("short", message.GetString("first") + 1), B_OK);
	EXPECT_EQ(message.GetString(std::string(499, 'a').c_str()), std::string(500, 'a'));
	EXPECT_EQ(message.GetInt32(message.GetString("first"), 49, 0), 49);
}

TEST(Message, CopiesDoNotShareChanges)
{
	BMessage original('orig');
	original.AddString("s", "before");
	BMessage copy(original);
	copy.ReplaceString("s", "after, and longer");
	copy.AddInt32("n", 1);
	EXPECT_STREQ(original.GetString("s"), "before");
	EXPECT_EQ(original.CountNames(B_ANY_TYPE), 1);
	original = copy;
	copy.MakeEmpty();
	EXPECT_STREQ(original.GetString("s"), "after, and longer");
	EXPECT_EQ(copy.what, uint32('orig'));
}

TEST(Message, CopiesMayBeChangedByDifferentThreads)
{
	BMessage original;
	original.AddString("s", "shared");
	std::vector<std::thread> threads;
	for (int i = 0; i < 4; i++) {
		threads.emplace_back([copy = original, i]() mutable {
			for (int n = 0; n < 2000; n++) {
				BMessage another(copy);
				another.AddInt32("n", i);
				copy = another;
				copy.RemoveName("n");
			}
			EXPECT_STREQ(copy.GetString("s"), "shared");
		});
	}
	for (std::thread& thread : threads)
		thread.join();
	EXPECT_EQ(original.CountNames(B_ANY_TYPE), 1);
}

TEST(Message, RefsAndMessengersComeBackAsTheyWere)
{
	BMessage message;
	const entry_ref ref(0xfff80005, 0x1122334455LL, "name"), unset;
	message.AddRef("refs", &ref);
	message.AddRef("refs", &unset);
	entry_ref found;
	EXPECT_EQ(message.FindRef("refs", 0, &found), B_OK);
	EXPECT_EQ(found, ref);
	EXPECT_EQ(message.FindRef("refs", 1, &found), B_OK);
	EXPECT_EQ(found.name, nullptr);
	EXPECT_EQ(found.device, unset.device);
	message.AddMessenger("m", BMessenger());
	BMessenger messenger;
	EXPECT_EQ(message.FindMessenger("m", &messenger), B_OK);
	EXPECT_FALSE(messenger.IsValid());
	message.AddData("short ref", B_REF_TYPE, "12345", 5, false);
	EXPECT_EQ(message.FindRef("short ref", &found), B_BAD_VALUE);
}

TEST(Message, StringsWithoutAnEndAreNotGivenOut)
{
	BMessage message;
	message.AddData("s", B_STRING_TYPE, "abc", 3, false);
	const char* text = "untouched";
	EXPECT_EQ(message.FindString("s", &text), B_BAD_VALUE);
	EXPECT_STREQ(text, "untouched");
}

// What a file says about replies must not reach any looper of this process.
TEST(Message, OutOfAFileOwesNobodyAReply)
{
	BMessage message;
	Bytes bytes = flatten(message);
	const uint32 flags = 0x13; // valid, reply required, delivered
	const int32 port = 1;
	memcpy(&bytes[8], &flags, sizeof(flags));
	memcpy(&bytes[24], &port, sizeof(port));
	ASSERT_EQ(message.Unflatten(bytes.data()), B_OK);
	EXPECT_EQ(flatten(message), bytes);
	EXPECT_FALSE(message.IsSourceWaiting());
	EXPECT_FALSE(message.ReturnAddress().IsValid());
	EXPECT_EQ(message.SendReply(B_REPLY), B_BAD_REPLY);
}

TEST(Message, FlattenToAStreamTellsShortWrites)
{
	BMessage message;
	message.AddString("s", "text");
	char small[20];
	BMemoryIO full(small, sizeof(small));
	EXPECT_NE(message.Flatten(&full), B_OK);
	EXPECT_EQ(message.Flatten(small, sizeof(small)), B_BAD_VALUE);
	BMallocIO stream;
	ssize_t size = 0;
	EXPECT_EQ(message.Flatten(&stream, &size), B_OK);
	EXPECT_EQ(size, message.FlattenedSize());
}

TEST(Message, PropertyInfosTravelInAMessage)
{
	const property_info table[] = {
		{"CurrentLine", {B_GET_PROPERTY}, {B_DIRECT_SPECIFIER}, "the line", 7, {B_STRING_TYPE}},
		{"Line", {}, {B_INDEX_SPECIFIER, B_NAME_SPECIFIER}, NULL, 8, {}},
		{NULL, {}, {}, NULL, 0, {}},
	};
	const BPropertyInfo info(table);
	BMessage message;
	ASSERT_EQ(message.AddFlat("messages", &info), B_OK);
	BPropertyInfo found;
	ASSERT_EQ(message.FindFlat("messages", &found), B_OK);
	ASSERT_EQ(found.CountProperties(), 2);
	EXPECT_STREQ(found.Properties()[0].usage, "the line");
	BMessage get(B_GET_PROPERTY);
	uint32 extra = 0;
	EXPECT_EQ(found.FindMatch(&get, 0, NULL, B_DIRECT_SPECIFIER, "CurrentLine", &extra), 0);
	EXPECT_EQ(extra, 7u);
	EXPECT_EQ(found.FindMatch(&get, 1, NULL, B_DIRECT_SPECIFIER, "CurrentLine"), -1);
	EXPECT_EQ(found.FindMatch(&get, 1, NULL, B_NAME_SPECIFIER, "Line"), 1);
	EXPECT_EQ(found.FindMatch(&get, 0, NULL, B_DIRECT_SPECIFIER, "Line"), -1);

	const void* data;
	ssize_t size;
	message.FindData("messages", B_PROPERTY_INFO_TYPE, &data, &size);
	for (ssize_t cut = 0; cut < size; cut++) {
		const Bytes bytes(static_cast<const char*>(data), static_cast<const char*>(data) + cut);
		EXPECT_NE(found.Unflatten(B_PROPERTY_INFO_TYPE, bytes.data(), cut), B_OK) << cut;
		EXPECT_EQ(found.CountProperties(), 0);
	}
}
