// Any bytes as a language file, loaded over a table that is there: what Text() gave stays good, and the map agrees with it.

#include <cstdlib>
#include <string>
#include <vector>

#include <DataIO.h>

#include "framework/TIniFile.h"
#include "framework/TLLT.h"

using merion::TIniFile;
using merion::TLLT;

namespace {

status_t
load(TLLT* table, std::string_view text)
{
	BMemoryIO stream(text.data(), text.size());
	TIniFile ini(&stream, 2048);
	return table->Load(&ini);
}

void
check(const TLLT& table)
{
	for (const auto& [key, text] : table.TextMap()) {
		if (table.Text(key.c_str()) != text)
			abort();
	}
}

} // namespace

extern "C" int
LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
	const std::string header = "[Informations]\nHeader=LLT File Format 100\nLanguage=x\n[Data]\n";
	TLLT table;
	if (load(&table, header + "Hide=Hide @Help@\nHelp=##n#n\n") != B_OK)
		abort();
	const char* hide = table.Text("Hide");
	const std::string text = hide;

	const std::string any(reinterpret_cast<const char*>(bytes), size);
	if (load(&table, any) != B_OK && table.TextMap().size() != 2)
		abort();
	check(table);
	if (load(&table, header + any) != B_OK)
		abort();
	check(table);
	TLLT other(table);
	table = TLLT();
	check(other);
	if (text != hide || table.Text("Hide") == text)
		abort();

	std::string decoded = any;
	TLLT::Decode(&decoded, "#n", "\n");
	TLLT::Decode(&decoded, "##", "#");
	if (decoded.size() > any.size())
		abort();
	return 0;
}
