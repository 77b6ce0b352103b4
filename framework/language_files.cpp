#include "framework/language_files.h"

#include <algorithm>

#include <DataIO.h>
#include <Directory.h>
#include <Entry.h>
#include <LocaleRoster.h>
#include <Message.h>

#include "framework/TIniFile.h"
#include "framework/TLLT.h"
#include "framework/TNameIndex.h"
#include "framework/file_utils.h"

namespace merion {

namespace {

constexpr std::string_view kExtension = ".llt";
constexpr size_t kMaxSize = 1024 * 1024; // bytes; a whole language has some 20 000
constexpr int kLineLength = 2048;

//! Which file is whose. The codes are those of ISO 639-1; "zh" is written in two ways, see is_traditional_chinese().
constexpr struct {
	std::string_view code;
	std::string_view name;
} kLanguageCodes[] = {
	{"de", "German"},
	{"en", "English"},
	{"es", "Spanish"},
	{"fr", "French"},
	{"ja", "Japanese"},
	{"zh", "SimplifiedChinese"},
};

//! The length of the character at the text's beginning, 0 when it is not well-formed.
size_t
character_length(std::string_view text)
{
	const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
	const unsigned char lead = byte(0);
	if (lead < 0x80)
		return 1;
	const size_t length = lead >= 0xf0 ? 4 : lead >= 0xe0 ? 3 : 2;
	if (lead < 0xc2 || lead > 0xf4 || text.size() < length)
		return 0;
	for (size_t i = 1; i < length; i++) {
		if ((byte(i) & 0xc0) != 0x80)
			return 0;
	}
	// longer than need be, a surrogate, or beyond the last character
	if ((lead == 0xe0 && byte(1) < 0xa0) || (lead == 0xed && byte(1) > 0x9f)
		|| (lead == 0xf0 && byte(1) < 0x90) || (lead == 0xf4 && byte(1) > 0x8f))
		return 0;
	return length;
}

bool
is_utf8(std::string_view text)
{
	while (!text.empty()) {
		const size_t length = character_length(text);
		if (length == 0 || text[0] == '\0')
			return false;
		text.remove_prefix(length);
	}
	return true;
}

bool
is_bare_name(std::string_view name)
{
	return !name.empty() && name.find('/') == std::string_view::npos;
}

bool
goes_before(const language_file& a, const language_file& b)
{
	const int order = compare_names(a.language, b.language);
	return order != 0 ? order < 0 : a.name < b.name;
}

std::string
shown_name(const TLLT& table, const std::string& name)
{
	const std::string language = table.LanguageName();
	return !language.empty() ? language : name.substr(0, name.size() - kExtension.size());
}

bool
is_traditional_chinese(std::string_view code)
{
	for (const std::string_view part : {"Hant", "TW", "HK", "MO"}) {
		if (code.find(part) != std::string_view::npos)
			return code.starts_with("zh");
	}
	return false;
}

std::string
file_for_code(std::string_view code, const std::vector<language_file>& languages)
{
	if (is_traditional_chinese(code))
		return {};
	const std::string_view language = code.substr(0, code.find_first_of("_-"));
	for (const auto& known : kLanguageCodes) {
		const std::string name = std::string(known.name).append(kExtension);
		if (known.code == language
			&& std::any_of(languages.begin(), languages.end(),
				[&](const language_file& file) { return file.name == name; }))
			return name;
	}
	return {};
}

} // namespace

std::string
language_folder(std::string_view applicationPath)
{
	const size_t slash = applicationPath.rfind('/');
	if (slash == std::string_view::npos)
		return {};
	return std::string(applicationPath.substr(0, slash)).append("/Language");
}

std::optional<std::string>
read_language_file(const std::string& folder, const std::string& name)
{
	if (folder.empty() || !is_bare_name(name))
		return std::nullopt;
	std::string bytes;
	if (read_file(BEntry((folder + "/" + name).c_str()), kMaxSize, &bytes) != B_OK)
		return std::nullopt;
	return bytes;
}

bool
load_language_text(const std::string& bytes, TLLT* table)
{
	constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
	std::string_view text = bytes;
	if (text.starts_with(kByteOrderMark))
		text.remove_prefix(kByteOrderMark.size());
	if (!is_utf8(text))
		return false;
	BMemoryIO stream(text.data(), text.size());
	TIniFile ini(&stream, kLineLength);
	return table->Load(&ini) == B_OK;
}

std::vector<language_file>
list_languages(const std::string& folder)
{
	std::vector<language_file> languages;
	BDirectory directory(folder.c_str());
	BEntry entry;
	while (directory.GetNextEntry(&entry) == B_OK) {
		const std::string name = entry.Name();
		if (!name.ends_with(kExtension) || name.size() == kExtension.size())
			continue;
		TLLT table;
		const std::optional<std::string> bytes = read_language_file(folder, name);
		if (bytes.has_value() && load_language_text(*bytes, &table))
			languages.push_back({name, shown_name(table, name)});
	}
	std::sort(languages.begin(), languages.end(), goes_before);
	return languages;
}

std::string
desktop_language(const std::vector<language_file>& languages)
{
	BMessage preferred;
	BLocaleRoster::Default()->GetPreferredLanguages(&preferred);
	const char* code = nullptr;
	for (int32 i = 0; preferred.FindString("language", i, &code) == B_OK; i++) {
		const std::string file = file_for_code(code, languages);
		if (!file.empty())
			return file;
	}
	return {};
}

} // namespace merion
