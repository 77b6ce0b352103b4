/*	Any bytes as a skin's colour file. Colours that it does not tell stay, and what comes in front of the section and after
	its ten words does not count. */

#include <cstdlib>
#include <sstream>
#include <string>

#include "prefs/TPref.h"
#include "prefs/rgb_color_utils.h"
#include "prefs/skin_colors.h"

namespace {

void
read(const std::string& bytes, TPref* pref)
{
	std::istringstream text(bytes);
	read_skin_colors(text, pref);
}

} // namespace

extern "C" int
LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
	const std::string text(reinterpret_cast<const char*>(bytes), size);
	TPref pref, again;
	const rgb_color frame = pref.fActiveFrameColor;
	read(text, &pref);
	if (compare_rgb_color(pref.fActiveFrameColor, frame))
		abort();
	const bool hasSection = text.find("[Text]") != std::string::npos;
	read("Normal=#010203 " + text + (hasSection ? " [Text]" : ""), &again);
	for (int32 i = 0; i < kColorCount; i++) {
		const rgb_color color = pref.Color(i);
		if (color.alpha != 255)
			abort();
		if (compare_rgb_color(color, again.Color(i)))
			abort();
		if (!hasSection && compare_rgb_color(color, TPref().Color(i)))
			abort();
	}
	return 0;
}
