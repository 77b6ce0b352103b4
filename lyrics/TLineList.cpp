#include "lyrics/TLineList.h"

#include <algorithm>
#include <cstring>

void
TLineList::Clear()
{
	fLines.clear();
	fText.reset();
}

void
TLineList::SetTo(std::string_view text)
{
	auto copy = std::make_unique_for_overwrite<char[]>(text.size());
	std::copy(text.begin(), text.end(), copy.get());
	Adopt(std::move(copy), text.size());
}

void
TLineList::Adopt(std::unique_ptr<char[]> text, size_t length)
{
	Clear();
	fText = std::move(text);
	const char* const start = fText.get();
	const char* const nul = static_cast<const char*>(memchr(start, '\0', length));
	const char* const end = nul != nullptr ? nul : start + length;

	constexpr size_t kUsualLineLength = 32;
	fLines.reserve((end - start) / kUsualLineLength + 1);
	for (const char* line = start; line < end;) {
		const char* lf = static_cast<const char*>(memchr(line, '\n', end - line));
		const char* lineEnd = lf != nullptr ? lf : end;
		fLines.push_back(
			{static_cast<uint32_t>(line - start), static_cast<uint32_t>(lineEnd - line)});
		line = lineEnd + 1;
	}
}

std::string_view
TLineList::operator[](size_t index) const
{
	return std::string_view(fText.get() + fLines[index].start, fLines[index].length);
}
