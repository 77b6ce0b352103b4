#include <String.h>

#include <algorithm>
#include <limits.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <string_view>

//! At most `maxLength` bytes; none for NULL or a negative length.
static std::string_view
view(const char* string, int32 maxLength = INT_MAX)
{
	if (string == nullptr || maxLength <= 0)
		return {};
	return {string, strnlen(string, maxLength)};
}

static int32
offset_of(size_t found)
{
	return found != std::string::npos ? static_cast<int32>(found) : B_ERROR;
}

static char
lower(char c)
{
	return c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c;
}

static std::string
lower(std::string_view text)
{
	std::string result(text);
	std::transform(result.begin(), result.end(), result.begin(), [](char c) { return lower(c); });
	return result;
}

int32
BString::Clip(int32 offset) const
{
	return std::clamp<int32>(offset, 0, Length());
}

BString::BString(const char* string) : fText(view(string)) { }

BString::BString(const char* string, int32 maxLength) : fText(view(string, maxLength)) { }

int32
BString::CountChars() const
{
	const auto begins_character = [](char c) { return (c & 0xc0) != 0x80; };
	return static_cast<int32>(std::count_if(fText.begin(), fText.end(), begins_character));
}

char
BString::ByteAt(int32 index) const
{
	return index >= 0 && index < Length() ? fText[index] : 0;
}

BString&
BString::SetTo(const char* string)
{
	fText = std::string(view(string)); // may be a part of this very string
	return *this;
}

BString&
BString::SetTo(const char* string, int32 maxLength)
{
	fText = std::string(view(string, maxLength));
	return *this;
}

BString&
BString::SetTo(const BString& string, int32 maxLength)
{
	fText = string.fText.substr(0, std::max<int32>(maxLength, 0));
	return *this;
}

BString&
BString::SetTo(char c, int32 count)
{
	fText.assign(std::max<int32>(count, 0), c);
	return *this;
}

BString&
BString::SetToFormat(const char* format, ...)
{
	va_list arguments, again;
	va_start(arguments, format);
	va_copy(again, arguments);
	const int length = vsnprintf(nullptr, 0, format, arguments);
	va_end(arguments);
	std::string text(std::max(length, 0), '\0');
	vsnprintf(text.data(), text.size() + 1, format, again);
	va_end(again);
	fText = std::move(text);
	return *this;
}

BString&
BString::CopyInto(BString& into, int32 fromOffset, int32 length) const
{
	into.fText = fText.substr(Clip(fromOffset), std::max<int32>(length, 0));
	return into;
}

void
BString::CopyInto(char* into, int32 fromOffset, int32 length) const
{
	if (into != nullptr)
		fText.copy(into, std::max<int32>(length, 0), Clip(fromOffset));
}

BString&
BString::Append(const BString& string)
{
	fText += string.fText;
	return *this;
}

BString&
BString::Append(const BString& string, int32 length)
{
	fText += string.fText.substr(0, std::max<int32>(length, 0));
	return *this;
}

BString&
BString::Append(const char* string)
{
	fText += view(string);
	return *this;
}

BString&
BString::Append(const char* string, int32 length)
{
	fText += view(string, length);
	return *this;
}

BString&
BString::Append(char c, int32 count)
{
	fText.append(std::max<int32>(count, 0), c);
	return *this;
}

BString&
BString::Insert(const BString& string, int32 position)
{
	fText.insert(Clip(position), string.fText);
	return *this;
}

BString&
BString::Insert(const char* string, int32 position)
{
	return Insert(string, INT_MAX, position);
}

BString&
BString::Insert(const char* string, int32 length, int32 position)
{
	fText.insert(Clip(position), view(string, length));
	return *this;
}

BString&
BString::Insert(char c, int32 count, int32 position)
{
	fText.insert(Clip(position), std::max<int32>(count, 0), c);
	return *this;
}

BString&
BString::Truncate(int32 newLength, bool lazy)
{
	fText.resize(Clip(newLength));
	if (!lazy)
		fText.shrink_to_fit();
	return *this;
}

BString&
BString::Remove(int32 from, int32 length)
{
	fText.erase(Clip(from), std::max<int32>(length, 0));
	return *this;
}

BString&
BString::RemoveFirst(const char* string)
{
	return ReplaceFirst(string, "");
}

BString&
BString::RemoveLast(const char* string)
{
	return ReplaceLast(string, "");
}

BString&
BString::RemoveAll(const char* string)
{
	return ReplaceAll(string, "");
}

BString&
BString::RemoveSet(const char* bytes)
{
	return ReplaceSet(bytes, "");
}

BString&
BString::Trim()
{
	constexpr const char* kSpace = " \t\n\v\f\r";
	fText.erase(fText.find_last_not_of(kSpace) + 1);
	fText.erase(0, fText.find_first_not_of(kSpace));
	return *this;
}

int
BString::Compare(const char* string) const
{
	return strcmp(String(), string != nullptr ? string : "");
}

int
BString::Compare(const char* string, int32 length) const
{
	return strncmp(String(), string != nullptr ? string : "", std::max<int32>(length, 0));
}

int
BString::ICompare(const char* string) const
{
	return lower(fText).compare(lower(view(string)));
}

int
BString::ICompare(const char* string, int32 length) const
{
	return lower(view(String(), length)).compare(lower(view(string, length)));
}

int32
BString::FindFirst(const char* string, int32 fromOffset) const
{
	if (string == nullptr || fromOffset < 0)
		return B_ERROR;
	return offset_of(fText.find(string, fromOffset));
}

int32
BString::FindFirst(const BString& string, int32 fromOffset) const
{
	return FindFirst(string.String(), fromOffset);
}

int32
BString::FindFirst(char c, int32 fromOffset) const
{
	return fromOffset < 0 ? B_ERROR : offset_of(fText.find(c, fromOffset));
}

int32
BString::FindLast(const char* string) const
{
	return string != nullptr ? offset_of(fText.rfind(string)) : B_ERROR;
}

int32
BString::FindLast(const char* string, int32 beforeOffset) const
{
	if (string == nullptr || beforeOffset <= 0)
		return B_ERROR;
	return offset_of(fText.rfind(string, beforeOffset - 1));
}

int32
BString::FindLast(char c) const
{
	return offset_of(fText.rfind(c));
}

int32
BString::IFindFirst(const char* string, int32 fromOffset) const
{
	if (string == nullptr || fromOffset < 0)
		return B_ERROR;
	return offset_of(lower(fText).find(lower(view(string)), fromOffset));
}

int32
BString::IFindLast(const char* string) const
{
	return string != nullptr ? offset_of(lower(fText).rfind(lower(view(string)))) : B_ERROR;
}

bool
BString::StartsWith(const char* string) const
{
	return fText.starts_with(view(string));
}

bool
BString::IStartsWith(const char* string) const
{
	return lower(fText).starts_with(lower(view(string)));
}

bool
BString::EndsWith(const char* string) const
{
	return fText.ends_with(view(string));
}

bool
BString::IEndsWith(const char* string) const
{
	return lower(fText).ends_with(lower(view(string)));
}

BString&
BString::ReplaceFirst(const char* replaceThis, const char* withThis)
{
	return Replace(replaceThis, withThis, 1);
}

BString&
BString::ReplaceLast(const char* replaceThis, const char* withThis)
{
	const int32 offset = FindLast(replaceThis);
	if (offset >= 0)
		fText.replace(offset, strlen(replaceThis), view(withThis));
	return *this;
}

BString&
BString::ReplaceAll(const char* replaceThis, const char* withThis, int32 fromOffset)
{
	return Replace(replaceThis, withThis, INT_MAX, fromOffset);
}

BString&
BString::Replace(
	const char* replaceThis, const char* withThis, int32 maxReplaceCount, int32 fromOffset)
{
	const std::string from(view(replaceThis)), to(view(withThis));
	if (from.empty())
		return *this;
	size_t at = Clip(fromOffset);
	for (int32 i = 0; i < maxReplaceCount; i++) {
		at = fText.find(from, at);
		if (at == std::string::npos)
			break;
		fText.replace(at, from.size(), to);
		at += to.size();
	}
	return *this;
}

BString&
BString::ReplaceFirst(char replaceThis, char withThis)
{
	const size_t found = fText.find(replaceThis);
	if (found != std::string::npos)
		fText[found] = withThis;
	return *this;
}

BString&
BString::ReplaceAll(char replaceThis, char withThis, int32 fromOffset)
{
	std::replace(fText.begin() + Clip(fromOffset), fText.end(), replaceThis, withThis);
	return *this;
}

BString&
BString::ReplaceSet(const char* setOfBytes, const char* withThis)
{
	const std::string_view set = view(setOfBytes), to = view(withThis);
	std::string result;
	for (const char c : fText) {
		if (set.find(c) != std::string_view::npos)
			result += to;
		else
			result += c;
	}
	fText = std::move(result);
	return *this;
}

BString&
BString::ReplaceSet(const char* setOfBytes, char withThis)
{
	const char string[2] = {withThis, '\0'};
	return ReplaceSet(setOfBytes, string);
}

BString&
BString::ToLower()
{
	fText = lower(fText);
	return *this;
}

BString&
BString::ToUpper()
{
	std::transform(fText.begin(), fText.end(), fText.begin(),
		[](char c) -> char { return c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c; });
	return *this;
}

char*
BString::LockBuffer(int32 maxLength)
{
	fText.resize(std::max(maxLength, Length()));
	return fText.data();
}

BString&
BString::UnlockBuffer(int32 length)
{
	fText.resize(length < 0 ? strlen(fText.c_str()) : Clip(length));
	return *this;
}

BString&
BString::operator<<(bool value)
{
	return Append(value ? "true" : "false");
}

BString&
BString::operator<<(int value)
{
	return Append(std::to_string(value).c_str());
}

BString&
BString::operator<<(unsigned int value)
{
	return Append(std::to_string(value).c_str());
}

BString&
BString::operator<<(long value)
{
	return Append(std::to_string(value).c_str());
}

BString&
BString::operator<<(unsigned long value)
{
	return Append(std::to_string(value).c_str());
}

BString&
BString::operator<<(long long value)
{
	return Append(std::to_string(value).c_str());
}

BString&
BString::operator<<(unsigned long long value)
{
	return Append(std::to_string(value).c_str());
}

BString&
BString::operator<<(double value)
{
	char text[352]; // the longest double has 309 digits before the point
	snprintf(text, sizeof(text), "%.2f", value);
	return Append(text);
}
