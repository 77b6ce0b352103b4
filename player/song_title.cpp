#include "song_title.h"

namespace {

constexpr const char* kReplacement = "\xef\xbf\xbd";

bool
is_continuation(unsigned char byte)
{
	return (byte & 0xc0) == 0x80;
}

//! Length of the well-formed character at `at`, 0 if there is none.
size_t
character_length(const std::string& text, size_t at)
{
	unsigned char lead = text[at];
	if (lead < 0x80)
		return 1;
	size_t length = lead >= 0xf0 && lead <= 0xf4 ? 4 : lead >= 0xe0 ? 3 : 2;
	if (lead < 0xc2 || lead > 0xf4 || at + length > text.size())
		return 0;
	for (size_t i = 1; i < length; i++) {
		if (!is_continuation(text[at + i]))
			return 0;
	}
	unsigned char second = text[at + 1];
	bool overlong = (lead == 0xe0 && second < 0xa0) || (lead == 0xf0 && second < 0x90);
	bool outside = (lead == 0xed && second >= 0xa0) || (lead == 0xf4 && second >= 0x90);
	return overlong || outside ? 0 : length;
}

bool
is_control(const std::string& text, size_t at, size_t length)
{
	unsigned char first = text[at];
	if (length == 1)
		return first < 0x20 || first == 0x7f;
	// C1 controls, and the line and paragraph separators
	if (length == 2)
		return first == 0xc2 && static_cast<unsigned char>(text[at + 1]) < 0xa0;
	return text.compare(at, length, "\u2028") == 0 || text.compare(at, length, "\u2029") == 0;
}

std::string
trimmed(const std::string& text)
{
	size_t first = text.find_first_not_of(' ');
	if (first == std::string::npos)
		return "";
	return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string
cleaned(const std::string& text)
{
	std::string result;
	for (size_t at = 0; at < text.size();) {
		size_t length = character_length(text, at);
		if (length == 0)
			result += kReplacement;
		else if (is_control(text, at, length))
			result += ' ';
		else
			result.append(text, at, length);
		at += length == 0 ? 1 : length;
	}
	return trimmed(result);
}

} // namespace

std::string
song_title(const std::string& artist, const std::string& title, const std::string& fileName)
{
	std::string cleanTitle = cleaned(title);
	if (cleanTitle.empty())
		return cleaned(fileName);
	std::string cleanArtist = cleaned(artist);
	return cleanArtist.empty() ? cleanTitle : cleanArtist + " - " + cleanTitle;
}

std::string
cut_utf8(const std::string& text, size_t limit)
{
	if (text.size() <= limit)
		return text;
	while (limit > 0 && is_continuation(text[limit]))
		limit--;
	return text.substr(0, limit);
}

std::string
numbered_title(const std::string& base, int number)
{
	std::string suffix = number > 1 ? " (" + std::to_string(number) + ")" : "";
	return cut_utf8(base, kSongTitleBytes - suffix.size()) + suffix;
}
