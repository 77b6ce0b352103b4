#pragma once

/*!	The names of the MPRIS D-Bus interface, version 2.2 (specifications.freedesktop.org). */
constexpr const char* kPlayerPrefix = "org.mpris.MediaPlayer2.";
constexpr const char* kPlayerPath = "/org/mpris/MediaPlayer2";
constexpr const char* kPlayerInterface = "org.mpris.MediaPlayer2.Player";
constexpr const char* kPropertiesInterface = "org.freedesktop.DBus.Properties";
constexpr const char* kNoTrack = "/org/mpris/MediaPlayer2/TrackList/NoTrack";

constexpr const char* kBusName = "org.freedesktop.DBus";
constexpr const char* kBusPath = "/org/freedesktop/DBus";
