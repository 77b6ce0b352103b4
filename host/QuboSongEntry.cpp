#include "host/QuboSongEntry.h"

#include <cstring>

QuboSongEntry::QuboSongEntry(const QuboSongEntry& other)
	: filename(CopyOf(other.filename.get())),
	  title(CopyOf(other.title.get())),
	  time(other.time),
	  nr(other.nr),
	  played(other.played)
{ }

QuboSongEntry&
QuboSongEntry::operator=(const QuboSongEntry& other)
{
	return *this = QuboSongEntry(other);
}

std::unique_ptr<char[]>
QuboSongEntry::CopyOf(const char* text)
{
	if (text == nullptr)
		return nullptr;
	const size_t size = strlen(text) + 1;
	auto copy = std::make_unique<char[]>(size);
	memcpy(copy.get(), text, size);
	return copy;
}
