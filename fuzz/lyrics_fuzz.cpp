// Any bytes as a lyrics file: guessed, decoded, cut into lines, their tags read.

#include <cstdlib>
#include <cstring>
#include <string_view>

#include "framework/text_detection.h"
#include "lyrics/TTimeTable.h"
#include "lyrics/lyrics_text.h"
#include "prefs/TPref.h"

namespace {

void
require(bool holds)
{
	if (!holds)
		abort();
}

void
read_lines(const TLineList& lines)
{
	TTimeTable table;
	for (size_t i = 0; i < lines.CountLines(); i++) {
		const std::string_view line = lines[i];
		require(line.find('\n') == std::string_view::npos);
		require(line.find('\0') == std::string_view::npos);
		int32 time;
		bool hasHundredths;
		if (!time_tag_to_time(line, &time, &hasHundredths))
			continue;
		require(line[0] == '[' && line.size() >= 7);
		// The largest: nine and the byte 255 behind it, of both minutes and seconds.
		require(time >= -(48 * 61000 + 480) && time <= (90 + 207) * 61000 + (90 + 207) * 10);
		table.Add(time, i);

		std::string tag;
		int32 readBack;
		time_to_time_tag(time, &tag, true);
		require(tag.size() == 10 && time_tag_to_time(tag, &readBack, &hasHundredths));
	}
	table.Complete();
	for (int32 at : {INT32_MIN, 0, 1000, INT32_MAX}) {
		const int32 current = table.LineAt(at, 0);
		require(current >= 0 && (current == 0 || current < static_cast<int32>(lines.CountLines())));
		require(table.LineAfter(at, -1) < static_cast<int32>(lines.CountLines()));
	}
}

} // namespace

extern "C" int
LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
	for (const int32 readEncoding :
		{kEncodingAuto, kEncodingUTF8, kEncodingSJIS, kEncodingJIS, 3}) {
		auto raw = std::make_unique_for_overwrite<char[]>(size + 1);
		if (size > 0)
			memcpy(raw.get(), data, size);
		TLineList lines;
		int32 crType = -1;
		int32 encoding = -1;
		bytes_to_lines(std::move(raw), size, readEncoding, &lines, &crType, &encoding);
		require(crType >= 0 && crType <= 2);
		require(readEncoding == kEncodingAuto ? encoding >= 0 && encoding <= 2
											  : encoding == readEncoding);
		read_lines(lines);
	}
	return 0;
}
