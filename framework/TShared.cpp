#include "framework/TShared.h"

namespace merion {

namespace {

std::string_view
cut_to_length(std::string_view text, size_t maxLength)
{
	if (text.size() <= maxLength)
		return text;
	size_t length = maxLength;
	while (length > 0 && (text[length] & 0xc0) == 0x80)
		length--;
	return text.substr(0, length);
}

} // namespace

TSharedText::TSharedText(std::string_view text, size_t maxLength)
	: fMaxLength(maxLength),
	  fText(cut_to_length(text, maxLength))
{ }

TSharedText::TSharedText(const TSharedText& other)
	: fMaxLength(other.fMaxLength),
	  fText(other.Get())
{ }

TSharedText&
TSharedText::operator=(const TSharedText& other)
{
	Set(other.Get());
	return *this;
}

TSharedText&
TSharedText::operator=(std::string_view text)
{
	Set(text);
	return *this;
}

std::string
TSharedText::Get() const
{
	std::lock_guard locker(fLock);
	return fText;
}

void
TSharedText::Set(std::string_view text)
{
	std::lock_guard locker(fLock);
	fText = cut_to_length(text, fMaxLength);
}

} // namespace merion
