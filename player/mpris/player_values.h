#pragma once

#include "../PlayState.h"

#include <limits>
#include <optional>
#include <string>

struct sd_bus_message;

//! No song is longer: what is told of times (µs) beyond it is nonsense.
constexpr bigtime_t kLongestTime = bigtime_t(1000) * std::numeric_limits<int32>::max();

/*!	What a player says about its track; what it does not say, or says as something else than it should be, is empty. */
struct RemoteTrack {
	std::string id;  // an object's path
	std::string url; // as told
	SongTags tags;   // several artists with ";" between them, length 0: unknown

	//! Whether it names anything that could be a track.
	bool IsAny() const { return !url.empty() || !tags.title.empty(); }
	//! Under the same names, from the same place; some players give new ids to what plays on.
	bool IsSameAs(const RemoteTrack& other) const
	{
		return url == other.url && tags.title == other.tags.title
			&& tags.artist == other.tags.artist;
	}
};

/*!	The properties of a player that were told at once; the others have no value. */
struct RemoteValues {
	std::optional<PlayState::State> status;
	std::optional<double> rate;
	std::optional<RemoteTrack> track;
	std::optional<bool> canSeek;
};

/*!	Reads the properties (a{sv}) at which the message stands, and goes past them. Values of unknown names or wrong types are passed
	over; numbers are taken in any type of number, a text for a list of one. False if there are no properties. */
[[nodiscard]] bool read_values(sd_bus_message* message, RemoteValues& values);

/*!	The position (µs, not below 0) in a variant; without a value if there is no number in it. */
std::optional<bigtime_t> read_position(sd_bus_message* message);
