#include <DataIO.h>

#include <gtest/gtest.h>
#include <string.h>
#include <string>

TEST(MemoryIO, StaysWithinItsBuffer)
{
	char buffer[] = "0123456789abcdef";
	BMemoryIO stream(buffer, 10);
	char read[32] = {};
	EXPECT_EQ(stream.Read(read, sizeof(read)), 10);
	EXPECT_EQ(std::string(read), "0123456789");
	EXPECT_EQ(stream.Read(read, 1), 0);
	EXPECT_EQ(stream.WriteAt(8, "XYZ", 3), 2);
	EXPECT_EQ(std::string(buffer), "01234567XYabcdef");
	EXPECT_EQ(stream.WriteAt(10, "X", 1), 0);
	EXPECT_EQ(stream.WriteAt(-1, "X", 1), B_BAD_VALUE);
	EXPECT_EQ(stream.ReadAt(-1, read, 1), B_BAD_VALUE);
	EXPECT_EQ(stream.ReadAt(INT64_MAX, read, 1), 0);
	EXPECT_EQ(stream.Read(nullptr, 1), B_BAD_VALUE);

	EXPECT_EQ(stream.SetSize(4), B_OK);
	EXPECT_EQ(stream.ReadAt(0, read, sizeof(read)), 4);
	EXPECT_EQ(stream.SetSize(11), B_ERROR);
	EXPECT_EQ(stream.WriteAt(5, "!", 1), 1);
	off_t size = 0;
	EXPECT_EQ(stream.GetSize(&size), B_OK);
	EXPECT_EQ(size, 6);

	BMemoryIO constant(static_cast<const void*>(buffer), 10);
	EXPECT_EQ(constant.Write("X", 1), B_NOT_ALLOWED);
	EXPECT_EQ(constant.SetSize(2), B_NOT_ALLOWED);
}

template<class Stream>
static void
expect_seeks(Stream&& stream, off_t end)
{
	EXPECT_EQ(stream.Seek(3, SEEK_SET), 3);
	EXPECT_EQ(stream.Seek(2, SEEK_CUR), 5);
	EXPECT_EQ(stream.Seek(-1, SEEK_END), end - 1);
	EXPECT_EQ(stream.Seek(-end - 1, SEEK_END), B_BAD_VALUE);
	EXPECT_EQ(stream.Seek(0, 99), B_BAD_VALUE);
	EXPECT_EQ(stream.Seek(INT64_MAX, SEEK_CUR), B_BAD_VALUE);
	EXPECT_EQ(stream.Position(), end - 1) << "a seek that fails must not move";
}

TEST(PositionIO, SeeksNowhereOutside)
{
	char buffer[10] = {};
	expect_seeks(BMemoryIO(buffer, sizeof(buffer)), 10);
	BMallocIO stream;
	stream.WriteAt(0, buffer, sizeof(buffer));
	expect_seeks(stream, 10);
}

TEST(MallocIO, GrowsAndFillsGaps)
{
	BMallocIO stream;
	EXPECT_EQ(stream.Buffer(), nullptr);
	EXPECT_EQ(stream.Write("begin", 5), 5);
	EXPECT_EQ(stream.WriteAt(1000, "end", 3), 3);
	EXPECT_EQ(stream.Position(), 5);
	ASSERT_EQ(stream.BufferLength(), 1003u);
	const char* data = static_cast<const char*>(stream.Buffer());
	EXPECT_EQ(memcmp(data, "begin", 5), 0);
	EXPECT_EQ(std::string(data + 5, 995), std::string(995, '\0'));
	// what was cut off does not come back
	EXPECT_EQ(stream.SetSize(3), B_OK);
	EXPECT_EQ(stream.SetSize(10), B_OK);
	EXPECT_EQ(memcmp(stream.Buffer(), "beg\0\0\0\0\0\0\0", 10), 0);
	char read[32];
	EXPECT_EQ(stream.ReadAt(8, read, sizeof(read)), 2);
	EXPECT_EQ(stream.WriteAt(-1, "x", 1), B_BAD_VALUE);
	EXPECT_EQ(stream.WriteAt(INT64_MAX - 1, "xyz", 3), B_NO_MEMORY);
	EXPECT_EQ(stream.SetSize(-1), B_BAD_VALUE);
	EXPECT_EQ(stream.BufferLength(), 10u);
}
