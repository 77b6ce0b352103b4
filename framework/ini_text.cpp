#include "framework/ini_text.h"

#include <charconv>
#include <cstdio>
#include <locale>
#include <memory>
#include <sstream>

#include "framework/TIniFilePair.h"
#include "framework/TIniFileSection.h"

namespace merion {

static constexpr bool
is_space(char c)
{
	return c == ' ' || (c >= '\t' && c <= '\r');
}

static std::string_view
strip_front(std::string_view text)
{
	while (!text.empty() && is_space(text.front()))
		text.remove_prefix(1);
	return text;
}

static std::string_view
strip(std::string_view text)
{
	text = strip_front(text);
	while (!text.empty() && is_space(text.back()))
		text.remove_suffix(1);
	return text;
}

ini_line
parse_ini_line(std::string_view line)
{
	line = strip_front(line);
	if (line.empty())
		return {ini_line::kEmpty, {}, {}};
	if (line.front() == ';')
		return {ini_line::kComment, {}, strip(line.substr(1))};
	if (line.front() == '[') {
		const size_t end = line.find(']');
		const std::string_view name
			= end != std::string_view::npos ? strip(line.substr(1, end - 1)) : std::string_view();
		return {ini_line::kHeader, name, {}};
	}
	const size_t sign = line.find('=');
	if (sign == std::string_view::npos)
		return {ini_line::kPair, {}, strip(line)};
	return {ini_line::kPair, strip(line.substr(0, sign)), strip(line.substr(sign + 1))};
}

void
append_ini_section(std::string* text, TIniFileSection* section, bool withHeader, int lineLength)
{
	if (withHeader)
		text->append("[ ").append(section->Name()).append(" ]\n");
	section->RewindComments();
	const std::unique_ptr<char[]> comment(new char[lineLength + 1]);
	while (section->ReadComment(comment.get()))
		text->append("; ").append(comment.get()).append("\n");
	section->RewindComments();
	const BList& pairs = section->Pairs();
	for (int32 i = 0; i < pairs.CountItems(); i++) {
		const TIniFilePair* pair = static_cast<const TIniFilePair*>(pairs.ItemAtFast(i));
		text->append(pair->Key()).append(" = ").append(pair->Value()).append("\n");
	}
	text->append("\n");
}

template<typename T>
static void
parse(const std::string& text, T* value)
{
	std::istringstream stream(text);
	stream.imbue(std::locale::classic());
	T parsed;
	if (stream >> parsed)
		*value = parsed;
}

void
parse_ini_value(const std::string& text, bool* value)
{
	parse(text, value);
}

void
parse_ini_value(const std::string& text, long* value)
{
	parse(text, value);
}

void
parse_ini_value(const std::string& text, long long* value)
{
	parse(text, value);
}

void
parse_ini_value(const std::string& text, float* value)
{
	parse(text, value);
}

void
parse_ini_value(const std::string& text, rgb_color* value)
{
	std::istringstream stream(text);
	stream.imbue(std::locale::classic());
	*value = {};
	int component;
	for (uint8* byte : {&value->red, &value->green, &value->blue, &value->alpha}) {
		if (stream >> component)
			*byte = static_cast<uint8>(component & 0xff);
	}
}

std::string
ini_text_of(float value)
{
	char text[32];
	const auto end = std::to_chars(
		text, text + sizeof(text), static_cast<double>(value), std::chars_format::general, 6);
	return {text, end.ptr};
}

std::string
ini_text_of(rgb_color value)
{
	char text[20];
	const int length = snprintf(
		text, sizeof(text), "%d %d %d %d", value.red, value.green, value.blue, value.alpha);
	return {text, static_cast<size_t>(length)};
}

} // namespace merion
