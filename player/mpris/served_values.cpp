#include "served_values.h"

#include "../Engine.h"
#include "../PlayState.h"
#include "../song_title.h"

#include <cctype>
#include <cstring>

#include <systemd/sd-bus.h>

namespace {

constexpr const char* kTrackPath = "/qubo/track/";                       // and the entry's number
constexpr const char* kStatusNames[] = {"Stopped", "Playing", "Paused"}; // by PlayState::State

bool
is_unreserved(unsigned char c)
{
	return c < 0x80 && (isalnum(c) != 0 || strchr("-._~/", c) != nullptr);
}

//! Of the reply {sv}: the key, and what `append` puts into its variant.
template<typename Append>
int
append_entry(sd_bus_message* message, const char* key, const char* type, Append append)
{
	int status = sd_bus_message_open_container(message, 'e', "sv");
	if (status >= 0)
		status = sd_bus_message_append(message, "s", key);
	if (status >= 0)
		status = sd_bus_message_open_container(message, 'v', type);
	if (status >= 0)
		status = append();
	if (status >= 0)
		status = sd_bus_message_close_container(message);
	return status >= 0 ? sd_bus_message_close_container(message) : status;
}

int
append_text(sd_bus_message* message, const char* key, const char* type, const std::string& text)
{
	return append_entry(
		message, key, type, [&] { return sd_bus_message_append(message, type, text.c_str()); });
}

int
append_track(sd_bus_message* message, const ServedValues& values)
{
	int status = append_text(message, "mpris:trackid", "o", values.trackId);
	if (status >= 0 && values.tags.length > 0)
		status = append_entry(message, "mpris:length", "x",
			[&] { return sd_bus_message_append(message, "x", values.tags.length); });
	if (status >= 0)
		status = append_text(message, "xesam:title", "s", values.tags.title);
	if (status >= 0 && !values.tags.artist.empty())
		status = append_entry(message, "xesam:artist", "as",
			[&] { return sd_bus_message_append(message, "as", 1, values.tags.artist.c_str()); });
	return status >= 0 ? append_text(message, "xesam:url", "s", values.url) : status;
}

bool
is_same_track(const ServedValues& a, const ServedValues& b)
{
	return a.trackId == b.trackId && a.url == b.url && a.tags.title == b.tags.title
		&& a.tags.artist == b.tags.artist && a.tags.length == b.tags.length;
}

} // namespace

ServedValues
ServedValues::Of(const PlayState& state, const Engine& engine)
{
	ServedValues values;
	PlaylistEntry entry;
	const QuboInfo info = state.Info();
	const int32 current = state.CurrentIndex();
	const bool isStopped = info.state == PlayState::kStopped;
	values.status = kStatusNames[info.state];
	values.volume = engine.Volume() / 100.0;
	values.canGoNext = state.NextPlayable(current + 1, 1) >= 0;
	values.canPlay = state.CountEntries() > 0;
	if (!state.GetEntry(current, entry))
		return values;
	values.trackId = kTrackPath + std::to_string(current);
	values.tags.artist = song_title("", entry.tags.artist, "");
	values.tags.title = song_title("", entry.tags.title, entry.title);
	values.tags.length = entry.lengthMs * bigtime_t(1000);
	values.url = url_of_file(entry.path);
	values.canGoPrevious = true; // at least to its start
	values.canPause = !isStopped;
	values.canSeek = !isStopped && entry.lengthMs > 0;
	return values;
}

std::vector<const char*>
ServedValues::DifferenceTo(const ServedValues& other) const
{
	std::vector<const char*> names;
	const auto compare = [&names](const char* name, bool isSame) {
		if (!isSame)
			names.push_back(name);
	};
	compare("PlaybackStatus", status == other.status);
	compare("Metadata", is_same_track(*this, other));
	compare("Volume", volume == other.volume);
	compare("CanGoNext", canGoNext == other.canGoNext);
	compare("CanGoPrevious", canGoPrevious == other.canGoPrevious);
	compare("CanPlay", canPlay == other.canPlay);
	compare("CanPause", canPause == other.canPause);
	compare("CanSeek", canSeek == other.canSeek);
	names.push_back(nullptr);
	return names;
}

int
append_metadata(sd_bus_message* message, const ServedValues& values)
{
	int status = sd_bus_message_open_container(message, 'a', "{sv}");
	if (status >= 0 && !values.trackId.empty())
		status = append_track(message, values);
	return status >= 0 ? sd_bus_message_close_container(message) : status;
}

std::string
url_of_file(const std::string& path)
{
	constexpr const char* kDigits = "0123456789ABCDEF";
	std::string url = "file://";
	for (const unsigned char c : path) {
		if (is_unreserved(c))
			url += static_cast<char>(c);
		else
			url += {'%', kDigits[c >> 4], kDigits[c & 15]};
	}
	return url;
}
