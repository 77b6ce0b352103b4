#include "lyrics/lyrics_fname.h"

#include <Entry.h>

#include "framework/file_utils.h"

std::string
lyrics_fname(QuboSongEntry entry)
{
	const std::string first = merion::reext(entry.Filename(), "lrc");
	if (BEntry(first.c_str()).Exists())
		return first;
	return merion::reext(entry.Filename(), "txt");
}
