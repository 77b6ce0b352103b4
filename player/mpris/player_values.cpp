#include "player_values.h"

#include "../song_title.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <variant>

#include <systemd/sd-bus.h>

namespace {

using Value = std::variant<std::monostate, bool, double, std::string>;

constexpr const char* kBetweenNames = ";"; // as in files' tags

template<typename Number>
Value
take_number(sd_bus_message* message, char type)
{
	Number number = 0;
	if (sd_bus_message_read_basic(message, type, &number) <= 0)
		return {};
	return static_cast<double>(number);
}

Value
take_text(sd_bus_message* message, char type)
{
	const char* text = nullptr;
	if (sd_bus_message_read_basic(message, type, &text) <= 0)
		return {};
	return std::string(text);
}

Value
take_texts(sd_bus_message* message)
{
	std::string result;
	const char* text = nullptr;
	if (sd_bus_message_enter_container(message, 'a', "s") <= 0)
		return {};
	while (sd_bus_message_read_basic(message, 's', &text) > 0) {
		if (*text != '\0')
			result += (result.empty() ? "" : kBetweenNames) + std::string(text);
	}
	sd_bus_message_exit_container(message);
	return result;
}

//! What is in a variant, whose type is `signature`. Nothing is taken of what is of no use here.
Value
take_content(sd_bus_message* message, const std::string& signature)
{
	if (signature == "as")
		return take_texts(message);
	switch (signature.size() == 1 ? signature[0] : '\0') {
		case 'b': {
			int truth = 0;
			if (sd_bus_message_read_basic(message, 'b', &truth) <= 0)
				return {};
			return truth != 0;
		}
		case 'n':
			return take_number<int16_t>(message, 'n');
		case 'q':
			return take_number<uint16_t>(message, 'q');
		case 'i':
			return take_number<int32_t>(message, 'i');
		case 'u':
			return take_number<uint32_t>(message, 'u');
		case 'x':
			return take_number<int64_t>(message, 'x');
		case 't':
			return take_number<uint64_t>(message, 't');
		case 'd':
			return take_number<double>(message, 'd');
		case 's':
		case 'o':
			return take_text(message, signature[0]);
		default:
			return {};
	}
}

/*!	The variant at which the message stands; it is not gone past if nothing is taken of it. */
Value
take_value(sd_bus_message* message)
{
	char type;
	const char* content;
	if (sd_bus_message_peek_type(message, &type, &content) <= 0 || type != 'v')
		return {};
	const std::string signature = content;
	if (sd_bus_message_enter_container(message, 'v', signature.c_str()) <= 0)
		return {};
	Value value = take_content(message, signature);
	if (std::holds_alternative<std::monostate>(value))
		sd_bus_message_skip(message, signature.c_str());
	sd_bus_message_exit_container(message);
	return value;
}

bool
is_variant_of(sd_bus_message* message, const char* signature)
{
	char type;
	const char* content;
	return sd_bus_message_peek_type(message, &type, &content) > 0 && type == 'v'
		&& strcmp(content, signature) == 0;
}

//! Calls `take` for each entry of a{sv}; it has to go past the entry's variant.
bool
for_each_entry(sd_bus_message* message, const std::function<void(const std::string&)>& take)
{
	if (sd_bus_message_enter_container(message, 'a', "{sv}") <= 0)
		return false;
	while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
		const char* name = nullptr;
		if (sd_bus_message_read_basic(message, 's', &name) <= 0)
			return false;
		take(name);
		if (sd_bus_message_exit_container(message) < 0)
			return false;
	}
	return sd_bus_message_exit_container(message) >= 0;
}

std::string
text_of(const Value& value)
{
	const std::string* text = std::get_if<std::string>(&value);
	return text != nullptr ? *text : "";
}

std::optional<bigtime_t>
time_of(const Value& value)
{
	const double* number = std::get_if<double>(&value);
	if (number == nullptr || std::isnan(*number))
		return std::nullopt;
	return std::llround(std::clamp<double>(*number, 0, kLongestTime));
}

std::optional<bool>
truth_of(const Value& value)
{
	const bool* truth = std::get_if<bool>(&value);
	return truth != nullptr ? std::optional(*truth) : std::nullopt;
}

std::optional<double>
rate_of(const Value& value)
{
	const double* rate = std::get_if<double>(&value);
	return rate != nullptr && std::isfinite(*rate) ? std::optional(*rate) : std::nullopt;
}

std::optional<PlayState::State>
status_of(const Value& value)
{
	const std::string text = text_of(value);
	if (text == "Playing")
		return PlayState::kPlaying;
	if (text == "Paused")
		return PlayState::kPaused;
	return text == "Stopped" ? std::optional(PlayState::kStopped) : std::nullopt;
}

RemoteTrack
take_track(sd_bus_message* message)
{
	RemoteTrack track;
	for_each_entry(message, [&](const std::string& name) {
		const Value value = take_value(message);
		if (name == "mpris:trackid")
			track.id = text_of(value);
		else if (name == "mpris:length")
			track.tags.length = time_of(value).value_or(0);
		else if (name == "xesam:url")
			track.url = text_of(value);
		else if (name == "xesam:title")
			track.tags.title
				= song_title("", text_of(value), ""); // nothing, if nothing can be seen of it
		else if (name == "xesam:artist")
			track.tags.artist = text_of(value);
	});
	return track;
}

} // namespace

bool
read_values(sd_bus_message* message, RemoteValues& values)
{
	return for_each_entry(message, [&](const std::string& name) {
		if (name == "Metadata" && is_variant_of(message, "a{sv}")) {
			sd_bus_message_enter_container(message, 'v', "a{sv}");
			values.track = take_track(message);
			sd_bus_message_exit_container(message);
			return;
		}
		const Value value = take_value(message);
		if (name == "PlaybackStatus")
			values.status = status_of(value);
		else if (name == "Rate")
			values.rate = rate_of(value);
		else if (name == "CanSeek")
			values.canSeek = truth_of(value);
	});
}

std::optional<bigtime_t>
read_position(sd_bus_message* message)
{
	return time_of(take_value(message));
}
