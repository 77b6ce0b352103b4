/*	Any bytes as an INI file: it is read, all of it is asked for, changed and written, and what was written is read again.
	The first byte gives the line length. */

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <DataIO.h>
#include <List.h>

#include "framework/TIniFile.h"

using merion::TIniFile;

namespace {

//! As many bytes as the interface asks for, so that one more is a fault.
class Buffer {
public:
	explicit Buffer(TIniFile& ini) : fBytes(ini.LineLength() + 1) { }
	char* Bytes() { return fBytes.data(); }

private:
	std::vector<char> fBytes;
};

void
read_section(TIniFile& ini)
{
	Buffer buffer(ini);
	BList keys;
	ini.EnumKeys(&keys);
	for (int32 i = 0; i < keys.CountItems(); i++) {
		const char* key = static_cast<const char*>(keys.ItemAt(i));
		bool asBool;
		long asLong;
		long long asLongLong;
		float asFloat;
		rgb_color asColor;
		if (!ini.ReadValue(key, buffer.Bytes()) || !ini.ReadValue(key, &asBool)
			|| !ini.ReadValue(key, &asLong) || !ini.ReadValue(key, &asLongLong)
			|| !ini.ReadValue(key, &asFloat) || !ini.ReadValue(key, &asColor))
			abort();
	}
	while (ini.ReadComment(buffer.Bytes())) { }
}

void
read_all(TIniFile& ini)
{
	BList sections;
	ini.EnumSections(&sections);
	for (int32 i = 0; i < sections.CountItems(); i++) {
		const char* name = static_cast<const char*>(sections.ItemAt(i));
		if (!ini.SectionExists(name) || !ini.ChangeSection(name))
			abort();
		read_section(ini);
	}
}

//! A header can make more of them, which lose it when they are written.
int
count_global_sections(TIniFile& ini)
{
	BList sections;
	ini.EnumSections(&sections);
	int count = 0;
	for (int32 i = 0; i < sections.CountItems(); i++)
		count += strcmp(static_cast<const char*>(sections.ItemAt(i)), "_TIniF_GlobalSec") == 0;
	return count;
}

void
change(TIniFile& ini, const std::string& text)
{
	ini.ChangeSection(text.c_str());
	ini.WriteComment(text.c_str());
	ini.WriteValue(text.c_str(), text.c_str());
	ini.WriteValue((text + std::string(3000, 'k')).c_str(), std::string(3000, 'v').c_str());
	ini.WriteValue("number", -1234567890123456789LL);
	BList keys;
	ini.EnumKeys(&keys);
	const std::string first = static_cast<const char*>(keys.FirstItem());
	if (!ini.DeleteKey(first.c_str()))
		abort();
	ini.ChangeSection("other");
	ini.WriteValue("color", rgb_color{255, 0, 0, 255});
	if (!ini.DeleteSection(text.c_str()))
		abort();
	ini.WriteValue("more", 0.1f);
}

std::string
flushed(TIniFile& ini, BMallocIO& stream)
{
	if (!ini.Flush(true))
		abort();
	return {static_cast<const char*>(stream.Buffer()), static_cast<size_t>(stream.Position())};
}

} // namespace

extern "C" int
LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
	if (size == 0)
		return 0;
	const int lineLength = *bytes < 128 ? *bytes : 2048;
	BMallocIO stream;
	stream.WriteAt(0, bytes + 1, size - 1);
	TIniFile ini(&stream, lineLength);
	read_all(ini);
	const std::string text = flushed(ini, stream);

	// With room for what stands around the texts, what was written is what was read.
	BMallocIO copy;
	copy.WriteAt(0, text.data(), text.size());
	TIniFile again(&copy, 2 * ini.LineLength() + 10);
	if (flushed(again, copy) != text && count_global_sections(ini) == 1)
		abort();

	change(ini, std::string(reinterpret_cast<const char*>(bytes), size));
	read_all(ini);
	return 0;
}
