#pragma once

#include "Playlist.h"

#include <initializer_list>
#include <memory>
#include <optional>
#include <string>

#include <mpv/client.h>

struct MpvFunctions;

/*!	One player of libmpv, with only what Engine needs. The library is opened by the first Create(), not with the program:
	without music none of it is loaded.
	Thread: one, but for Wakeup(), which may be called from any while the object lives. */
class MpvPlayer {
public:
	//! The player is never further ahead of what is heard, µs: in silence, and with any other output.
	static constexpr bigtime_t kSilenceAhead = 4500000;
	static constexpr bigtime_t kSoundAhead = 1000000;

	//! A player of sound only. NULL, and the reason in `error`, if there is none to be had.
	static std::unique_ptr<MpvPlayer> Create(std::string& error);
	~MpvPlayer();

	bool Command(std::initializer_list<const char*> words);
	//! Appends a file to the player's list; its id, -1 if that failed.
	int64_t AppendFile(const std::string& path);

	bool SetText(const char* property, const char* value);
	bool SetFlag(const char* property, bool value);
	bool SetNumber(const char* property, double value);
	std::optional<double> Number(const char* property);
	std::string Text(const char* property); // "" if there is none
	//! Of the loaded file.
	SongTags Tags();

	void Observe(const char* property, mpv_format format);
	//! The next event, MPV_EVENT_NONE after `seconds` or a Wakeup(). Good until the next call.
	const mpv_event* WaitEvent(double seconds);
	void Wakeup();
	const char* ErrorText(int error) const;

	//! The sound output that was asked for by name ($QUBO_AO), "" for the system's.
	static std::string WantedOutput();

private:
	explicit MpvPlayer(const MpvFunctions& functions);
	[[nodiscard]] bool Start(std::string& error);
	[[nodiscard]] bool WaitUntilIdle(std::string& error);
	bool SetOption(const char* name, const char* value, std::string& error);

	const MpvFunctions& fMpv;
	mpv_handle* fHandle = nullptr;
};
