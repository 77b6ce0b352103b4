// Messages against files that the platform itself has written.

#include "platform/app/app_test_support.h"
#include <DataIO.h>
#include <Entry.h>
#include <algorithm>
#include <ctime>
#include <filesystem>
#include <gtest/gtest.h>
#include <string.h>

namespace {

const std::string kFolder = std::string(TEST_DATA) + "/golden/";
const char* const kSong = "日本語の歌詞";

std::vector<std::string>
names_in(const std::string& folder, const std::string& ending)
{
	std::vector<std::string> names;
	for (const auto& entry : std::filesystem::directory_iterator(kFolder + folder)) {
		if (entry.path().extension() == ending)
			names.push_back(entry.path().stem());
	}
	std::sort(names.begin(), names.end());
	return names;
}

status_t
read(BMessage& message, const Bytes& bytes)
{
	BMemoryIO stream(static_cast<const void*>(bytes.data()), bytes.size());
	return message.Unflatten(&stream);
}

BMessage
golden(const std::string& file)
{
	BMessage message;
	EXPECT_EQ(read(message, read_file(kFolder + file)), B_OK) << file;
	return message;
}

void
add_preferences(BMessage& message)
{
	const rgb_color colours[] = {{0x33, 0x33, 0x00, 0xff}, {0xff, 0xff, 0x99, 0xff},
		{0xff, 0xff, 0xcc, 0xff}, {0, 0, 0, 0xff}, {0xff, 0xff, 0xff, 0xff}};
	const char* const colourNames[] = {"ABCl", "AFCl", "ALCl", "BGCl", "LyCl"};
	message.AddBool("SoTp", false);
	message.AddInt32("FntL", 0);
	message.AddInt32("REnc", 4);
	message.AddInt64("MTmI", 25000);
	message.AddString("LLTF", "English.llt");
	message.AddBool("AAli", true);
	message.AddBool("UAFr", true);
	message.AddBool("UBGI", false);
	message.AddString("FntF", "Haru");
	message.AddInt32("ImgA", 0);
	message.AddFloat("FntS", 12);
	for (int i = 0; i < 5; i++)
		message.AddData(colourNames[i], B_RAW_TYPE, &colours[i], 4);
	message.AddString("BGIF", "");
	message.AddBool("DbBf", true);
	message.AddBool("STlB", true);
	message.AddInt32("WCRT", 0);
	message.AddInt32("WEnc", 0);
	message.AddInt32("TmDf", 0);
}

void
add_all_types(BMessage& message)
{
	BMessage inner('nest');
	inner.AddString("name", "inner");
	inner.AddInt32("n", 42);
	const uint8 raw[] = {0x33, 0x33, 0x00, 0xff};
	const entry_ref ref(5, 0x1122334455LL, "file name");
	message.AddBool("bool", true);
	message.AddInt8("int8", -8);
	message.AddInt16("int16", -1616);
	message.AddInt32("int32", -32323232);
	message.AddInt64("int64", -6464646464646464LL);
	message.AddFloat("float", 3.25f);
	message.AddDouble("double", -2.718281828459045);
	message.AddString("string", "hello");
	message.AddString("empty", "");
	message.AddString("japanese", kSong);
	message.AddRect("rect", BRect(1, 2.5f, 300, 400));
	message.AddPoint("point", BPoint(-1.5f, 2000));
	message.AddData("raw", B_RAW_TYPE, raw, 4);
	message.AddMessage("message", &inner);
	for (int32 i = 1; i <= 3; i++)
		message.AddInt32("many", i);
	for (const char* text : {"one", "two", ""})
		message.AddString("strings", text);
	message.AddRef("ref", &ref);
}

struct Written {
	const char* name;
	uint32 what;
	void (*write)(BMessage&);
};

const Written kWritten[] = {
	{"empty", 0, [](BMessage&) {}},
	{"empty_what_pref", 'pref', [](BMessage&) {}},
	{"all_types", 0, add_all_types},
	{"many_fields", 0,
		[](BMessage& message) {
			add_all_types(message);
			for (int32 i = 0; i < 60; i++) {
				char name[16];
				snprintf(name, sizeof(name), "key%02d", int(i));
				message.AddInt32(name, i * i);
			}
		}},
	{"one_alignment", 0,
		[](BMessage& message) {
			message.AddAlignment("al", BAlignment(B_ALIGN_RIGHT, B_ALIGN_BOTTOM));
		}},
	{"one_color", 0,
		[](BMessage& message) {
			message.AddColor("c", rgb_color{0x33, 0x34, 0x35, 0xff});
		}},
	{"one_size", 0, [](BMessage& message) { message.AddSize("sz", BSize(12.5f, 7)); }},
	{"one_name_empty", 0, [](BMessage& message) { message.AddInt32("", 7); }},
	{"one_name_japanese", 0, [](BMessage& message) { message.AddInt32(kSong, 7); }},
	{"one_pointer64", 0,
		[](BMessage& message) {
			message.AddPointer("ptr", reinterpret_cast<void*>(0x1122334455667788));
		}},
	{"one_raw4_var", 0,
		[](BMessage& message) {
			message.AddData("raw", B_RAW_TYPE, "\x33\x33\x00\xff", 4, false);
		}},
	{"one_uint8", 0, [](BMessage& message) { message.AddUInt8("u8", 200); }},
	{"one_uint16", 0, [](BMessage& message) { message.AddUInt16("u16", 50000); }},
	{"one_uint32", 0, [](BMessage& message) { message.AddUInt32("u32", 3735928559u); }},
	{"one_uint64", 0, [](BMessage& message) { message.AddUInt64("u64", 18364758544493064720ull); }},
	{"several_interleaved", 0,
		[](BMessage& message) {
			message.AddInt32("a", 1);
			message.AddString("b", "b0");
			message.AddInt32("a", 2);
			message.AddString("b", "b1");
			message.AddInt32("c", 9);
			message.AddInt32("a", 3);
		}},
	{"specifiers", 'spec',
		[](BMessage& message) {
			message.AddSpecifier("Frame");
			message.AddSpecifier("View", 2);
		}},
	{"preferences", 0, add_preferences},
	{"preferences_what_PREF", 'PREF', add_preferences},
	{"preferences_removed", 0,
		[](BMessage& message) {
			add_preferences(message);
			EXPECT_EQ(message.RemoveName("LLTF"), B_OK);
			EXPECT_EQ(message.RemoveData("SoTp"), B_OK);
		}},
	{"preferences_renamed", 0,
		[](BMessage& message) {
			add_preferences(message);
			EXPECT_EQ(message.Rename("FntL", "FontList"), B_OK);
		}},
	{"preferences_replaced", 0,
		[](BMessage& message) {
			add_preferences(message);
			EXPECT_EQ(message.ReplaceString("LLTF", "Japanese.llt"), B_OK);
			EXPECT_EQ(message.ReplaceInt32("REnc", 5), B_OK);
			EXPECT_EQ(message.ReplaceString("BGIF", "/boot/home/x.png"), B_OK);
		}},
};

} // namespace

TEST(GoldenMessages, WritesWhatThePlatformWrites)
{
	for (const Written& row : kWritten) {
		SCOPED_TRACE(row.name);
		BMessage message(row.what);
		row.write(message);
		EXPECT_EQ(flatten(message), read_file(kFolder + "messages/" + row.name + ".hmf1"));
	}
}

TEST(GoldenMessages, NativeRoundTripKeepsEveryByte)
{
	const std::vector<std::string> names = names_in("messages", ".hmf1");
	EXPECT_GE(names.size(), 40u);
	for (const std::string& name : names) {
		SCOPED_TRACE(name);
		const Bytes bytes = read_file(kFolder + "messages/" + name + ".hmf1");
		BMessage fromStream, fromMemory;
		ASSERT_EQ(read(fromStream, bytes), B_OK);
		EXPECT_EQ(flatten(fromStream), bytes);
		ASSERT_EQ(fromMemory.Unflatten(bytes.data()), B_OK);
		EXPECT_EQ(flatten(fromMemory), bytes);
	}
}

TEST(GoldenMessages, R5SaysTheSameAsNative)
{
	for (const std::string& name : names_in("messages", ".fob1")) {
		SCOPED_TRACE(name);
		const Bytes old = read_file(kFolder + "messages/" + name + ".fob1");
		BMessage fromStream, fromMemory;
		ASSERT_EQ(read(fromStream, old), B_OK);
		ASSERT_EQ(fromMemory.Unflatten(old.data()), B_OK);
		const BMessage native = golden("messages/" + name + ".hmf1");
		EXPECT_EQ(describe(fromStream), describe(native));
		EXPECT_EQ(flatten(fromStream), flatten(fromMemory));
		EXPECT_EQ(fromStream.HasSpecifiers(), native.HasSpecifiers());
		// R5 keeps neither the current specifier nor how a renamed field is linked
		if (name != "specifiers" && name != "preferences_renamed") {
			EXPECT_EQ(flatten(fromStream), flatten(native));
		}
	}
}

TEST(GoldenMessages, R5MiniFormSaysTheSame)
{
	for (const std::string& name : names_in("handmade", ".fob1mini")) {
		SCOPED_TRACE(name);
		EXPECT_EQ(flatten(golden("handmade/" + name + ".fob1mini")),
			flatten(golden("messages/" + name + ".hmf1")));
	}
}

TEST(GoldenMessages, R5OfABigEndianMachineIsSwapped)
{
	for (const std::string& name : names_in("handmade", ".fob1swapped")) {
		SCOPED_TRACE(name);
		const Bytes bytes = read_file(kFolder + "handmade/" + name + ".fob1swapped");
		BMessage message, fromMemory;
		ASSERT_EQ(read(message, bytes), B_OK);
		ASSERT_EQ(fromMemory.Unflatten(bytes.data()), B_OK);
		EXPECT_EQ(describe(fromMemory), describe(message));
		BMessage native = golden("messages/" + name + ".hmf1");
		// the header is not swapped, and refs are left as they are
		EXPECT_EQ(message.what, __builtin_bswap32(native.what));
		message.what = native.what;
		message.RemoveName("ref");
		native.RemoveName("ref");
		EXPECT_EQ(describe(message), describe(native));
	}
}

TEST(GoldenMessages, DanoSaysTheSame)
{
	for (const std::string& name : names_in("handmade", ".fob2")) {
		SCOPED_TRACE(name);
		const Bytes bytes = read_file(kFolder + "handmade/" + name + ".fob2");
		BMessage fromMemory;
		ASSERT_EQ(fromMemory.Unflatten(bytes.data()), B_OK);
		EXPECT_EQ(
			describe(fromMemory, false), describe(golden("messages/" + name + ".hmf1"), false));
		EXPECT_EQ(flatten(golden("handmade/" + name + ".fob2")), flatten(fromMemory));
	}
}

namespace {

struct Damaged {
	const char* name;
	status_t status;
	int fields = 0;      // after it; kKept: the old one
	int found = -1;      // of them by name, when not all
	bool memory = false; // its header announces no more than is there: read from memory too
	status_t memoryStatus = B_OK;
};

constexpr int kKept = -1;

const Damaged kDamaged[] = {
	{"m_zero_bytes", B_NOT_A_MESSAGE, kKept},
	{"m_magic_only", B_BAD_VALUE},
	{"m_three_bytes", B_NOT_A_MESSAGE, kKept},
	{"m_header_cut_40", B_BAD_VALUE},
	{"m_header_cut_67", B_BAD_VALUE},
	{"m_header_only", B_BAD_VALUE},
	{"m_fields_cut", B_BAD_VALUE},
	{"m_fields_only", B_BAD_VALUE},
	{"m_data_cut_1", B_BAD_VALUE},
	{"m_data_cut_100", B_BAD_VALUE},
	{"m_extra_bytes", B_OK, 22, 22, true, B_OK},
	{"m_magic_wrong", B_NOT_A_MESSAGE, kKept, -1, true, B_NOT_A_MESSAGE},
	{"m_magic_swapped", B_NOT_A_MESSAGE, kKept, -1, true, B_NOT_A_MESSAGE},
	{"m_magic_text", B_NOT_A_MESSAGE, kKept, -1, true, B_NOT_A_MESSAGE},
	{"m_flag_not_valid", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_flag_pass_by_area", B_ERROR, 0, -1, true, B_ERROR},
	{"m_flag_pass_by_area_none", B_OK, 22, 22, true, B_OK},
	{"m_count_23", B_BAD_VALUE},
	{"m_count_21", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE}, // names without NUL
	{"m_count_huge", B_NO_MEMORY, 0, -1, true, B_NO_MEMORY},
	{"m_count_ffffffff", B_NO_MEMORY, 0, -1, true, B_NO_MEMORY},
	{"m_count_million", B_BAD_VALUE},
	{"m_count_0", B_OK, 0, -1, true, B_OK},
	{"m_datasize_plus1", B_BAD_VALUE},
	{"m_datasize_minus1", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_datasize_huge", B_NO_MEMORY, 0, -1, true, B_NO_MEMORY},
	{"m_datasize_ffffffff", B_NO_MEMORY, 0, -1, true, B_NO_MEMORY},
	{"m_datasize_0", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_hashsize_0", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_hashsize_7", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_hash_out_of_range", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_hash_equal_count", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_hash_all_empty", B_OK, 22, 0, true, B_OK},
	{"m_hash_loop", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_next_out_of_range", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_next_equal_count", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_next_negative", B_OK, 22, 16, true, B_OK},
	{"m_offset_out_of_range", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_offset_last_out", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_offset_wraps", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_offset_overlap", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE}, // its item is too long
	{"m_fieldsize_too_large", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_namelength_0", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_namelength_too_large", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_namelength_3", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_name_without_nul", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_name_without_nul_last", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_field_flag_not_valid", B_OK, 22, 18, true, B_OK},
	{"m_field_flag_fixed_string", B_OK, 22, 22, true, B_OK},
	{"m_field_flag_variable_int", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_item_count_0", B_OK, 22, 21, true, B_OK},
	{"m_item_count_0_fixed", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_item_count_3_fixed", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_item_count_100", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_item_size_huge", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_item_size_5", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_string_without_nul", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"m_fixed_size_wrong_type", B_OK, 22, 22, true, B_OK},
	{"m_nested_bad_magic", B_OK, 1, 1, true, B_OK},
	{"m_nested_cut", B_OK, 1, 1, true, B_OK},
	{"m_nested_field_out", B_OK, 1, 1, true, B_OK},
	{"r_header_cut", B_ERROR},
	{"r_cut_middle", B_ERROR},
	{"r_cut_last", B_ERROR},
	{"r_checksum_wrong", B_OK, 22, 22, true, B_OK},
	{"r_size_wrong", B_OK, 22, 22, true, B_ERROR},
	{"r_flags_0", B_OK, 22, 22, true, B_OK},
	{"r_item_size_huge", B_BAD_VALUE, 0, -1, true, B_BAD_VALUE},
	{"r_data_size_0", B_ERROR, 0, -1, true, B_ERROR},
	{"r_data_size_negative", B_ERROR, 0, -1, true, B_ERROR},
	{"d_magic_only", B_ERROR},
	{"d_cut", B_BAD_DATA},
	{"d_section_size_huge", B_BAD_DATA, 0, -1, true, B_BAD_DATA},
	{"d_size_wrong", B_BAD_DATA, 0, -1, true, B_BAD_DATA},
};

BMessage
old_message()
{
	BMessage message('OLD ');
	message.AddInt32("old", 1);
	return message;
}

int
count_found(const BMessage& message)
{
	int found = 0;
	char* name;
	type_code type;
	for (int32 i = 0; message.GetInfo(B_ANY_TYPE, i, &name, &type) == B_OK; i++)
		found += message.HasData(name, B_ANY_TYPE) ? 1 : 0;
	return found;
}

void
check_contents(const Damaged& row, status_t status, const BMessage& message)
{
	if (row.fields == kKept) {
		EXPECT_EQ(describe(message), describe(old_message()));
		return;
	}
	EXPECT_EQ(message.CountNames(B_ANY_TYPE), status == B_OK ? row.fields : 0);
	if (status == B_OK && row.found >= 0) {
		EXPECT_EQ(count_found(message), row.found);
	}
	BMessage again;
	EXPECT_EQ(again.Unflatten(flatten(message).data()), B_OK);
	EXPECT_EQ(flatten(again), flatten(message));
}

} // namespace

TEST(DamagedMessages, EveryFileHasARow)
{
	std::vector<std::string> rows, files;
	for (const Damaged& row : kDamaged)
		rows.push_back(row.name);
	for (const auto& entry : std::filesystem::directory_iterator(kFolder + "damaged")) {
		const std::string name = entry.path().filename();
		if (name.find_first_of("mrd") == 0 && name[1] == '_')
			files.push_back(name);
	}
	std::sort(rows.begin(), rows.end());
	std::sort(files.begin(), files.end());
	EXPECT_EQ(rows, files);
}

TEST(DamagedMessages, AreAnsweredAsTheTableSays)
{
	for (const Damaged& row : kDamaged) {
		SCOPED_TRACE(row.name);
		const Bytes bytes = read_file(kFolder + "damaged/" + row.name);
		BMessage message = old_message();
		EXPECT_EQ(read(message, bytes), row.status);
		check_contents(row, row.status, message);
		if (!row.memory)
			continue;
		SCOPED_TRACE("from memory");
		// a copy of its own, so that reading beyond it is seen
		const Bytes exact(bytes);
		BMessage fromMemory = old_message();
		EXPECT_EQ(fromMemory.Unflatten(exact.data()), row.memoryStatus);
		check_contents(row, row.memoryStatus, fromMemory);
	}
}

TEST(DamagedMessages, EveryCutOfAGoodMessageIsRefused)
{
	for (const char* name : {"messages/all_types.hmf1", "messages/all_types.fob1",
			 "handmade/all_types.fob2", "handmade/all_types.fob1mini"}) {
		const Bytes bytes = read_file(kFolder + name);
		for (size_t size = 0; size < bytes.size(); size++) {
			BMessage message = old_message();
			const Bytes cut(bytes.begin(), bytes.begin() + size);
			EXPECT_NE(read(message, cut), B_OK) << name << " cut at " << size;
			EXPECT_EQ(message.IsEmpty(), size >= 4) << name << " cut at " << size;
		}
	}
}

TEST(DamagedMessages, NestedOnesAreReadNoFurtherThanTheirItem)
{
	for (const char* name : {"m_nested_bad_magic", "m_nested_cut", "m_nested_field_out"}) {
		SCOPED_TRACE(name);
		const BMessage message = golden(std::string("damaged/") + name);
		BMessage inner = old_message();
		EXPECT_NE(message.FindMessage("m", &inner), B_OK);
		EXPECT_TRUE(inner.IsEmpty());
	}
}

TEST(DamagedMessages, AnItemThatIsTooShortForItsTypeIsNotFound)
{
	const BMessage message = golden("damaged/m_fixed_size_wrong_type");
	int64 value = 77;
	EXPECT_EQ(message.FindInt64("REnc", &value), B_BAD_VALUE);
	EXPECT_EQ(value, 77);
}

TEST(DamagedMessages, CanBeEditedWhenTheyAreTaken)
{
	for (const char* name :
		{"m_next_negative", "m_hash_all_empty", "m_field_flag_not_valid", "m_item_count_0"}) {
		SCOPED_TRACE(name);
		BMessage message = golden(std::string("damaged/") + name);
		for (const char* field : {"SoTp", "LLTF", "FntF", "TmDf", "none"}) {
			message.Rename(field, "longer than it was");
			message.RemoveName("longer than it was");
			message.AddString(field, "text");
			message.AddInt32(field, 1);
		}
		BMessage again;
		EXPECT_EQ(again.Unflatten(flatten(message).data()), B_OK);
		EXPECT_EQ(flatten(again), flatten(message));
	}
}

// A stream that gives little at a time and announces much must not cost the memory it announces.
TEST(DamagedMessages, AnnouncedSizesAreNotAllocatedInAdvance)
{
	Bytes bytes = read_file(kFolder + "messages/preferences.hmf1");
	const uint32 announced = 400 * 1024 * 1024;
	memcpy(&bytes[36], &announced, sizeof(announced));
	const clock_t start = clock();
	for (int i = 0; i < 200; i++) {
		BMessage message;
		EXPECT_EQ(read(message, bytes), B_BAD_VALUE);
	}
	// 200 times 400 MB would take minutes
	EXPECT_LT(clock() - start, 5 * CLOCKS_PER_SEC);
}
