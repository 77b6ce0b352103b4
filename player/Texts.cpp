#include "Texts.h"

namespace {

constexpr const char* kEnglish[] = {
	"File",
	"Open…",
	"Quit",
	"Playback",
	"Play",
	"Pause",
	"Previous",
	"Next",
	"5 seconds back",
	"5 seconds forward",
	"To the start",
	"Softer",
	"Louder",
	"Add-ons",
	"No add-ons",
	"Show",
	"Preferences…",
	"About…",
	"Volume: %d %%",
	"Drop music files or folders here",
	"No sound device: playing in silence",
	"Cannot play %s: %s",
	"Cannot play anything: %s",
};
static_assert(sizeof(kEnglish) / sizeof(*kEnglish) == kTextCount);

} // namespace

const char*
text(TextKey key)
{
	return kEnglish[key];
}
