#include "MpvPlayer.h"

#include "Texts.h"

#include <cmath>
#include <cstdlib>
#include <vector>

#include <dlfcn.h>

struct MpvFunctions {
	decltype(&::mpv_create) create;
	decltype(&::mpv_initialize) initialize;
	decltype(&::mpv_terminate_destroy) terminateDestroy;
	decltype(&::mpv_set_option_string) setOptionString;
	decltype(&::mpv_command) command;
	decltype(&::mpv_command_ret) commandRet;
	decltype(&::mpv_free_node_contents) freeNodeContents;
	decltype(&::mpv_set_property) setProperty;
	decltype(&::mpv_set_property_string) setPropertyString;
	decltype(&::mpv_get_property) getProperty;
	decltype(&::mpv_get_property_string) getPropertyString;
	decltype(&::mpv_free) free;
	decltype(&::mpv_observe_property) observeProperty;
	decltype(&::mpv_wait_event) waitEvent;
	decltype(&::mpv_wakeup) wakeup;
	decltype(&::mpv_error_string) errorString;
};

namespace {

constexpr const char* kLibrary = "libmpv.so.2";

constexpr double kStartPatience = 5; // seconds
constexpr double kStartLook = 0.1;

// Sound only, nothing of the user's own mpv set-up, nothing on the terminal; a list of files is not played as one song.
constexpr std::pair<const char*, const char*> kOptions[] = {
	{"config", "no"},
	{"load-scripts", "no"},
	{"ytdl", "no"},
	{"terminal", "no"},
	{"input-default-bindings", "no"},
	{"vid", "no"},
	{"sid", "no"},
	{"audio-display", "no"},
	{"autoload-files", "no"},
	{"resume-playback", "no"},
	{"idle", "yes"},
	{"prefetch-playlist", "yes"},
	{"audio-fallback-to-null", "yes"},
	{"audio-client-name", "Qubo"},
	{"volume-max", "100"},
};

/*	What an output has in hand: each part of it that is played wakes several threads, and a tenth of a second or less costs more than
	the lyrics. The volume is heard as much later; silence may be written further ahead. The library itself holds as much again
	(kSilenceAhead and kSoundAhead). A library without the output does not know the option, which does no harm. */
constexpr std::pair<const char*, const char*> kOutputBuffers[] = {
	{"pipewire-buffer", "100"}, // ms; the server's own limit is less
	{"pulse-buffer", "250"},    // ms
	{"ao-null-buffer", "2"},    // s
};

// Scripts of the library's own, a thread each. Their options' names differ between its versions; one that is unknown does no harm.
constexpr const char* kNeedlessScripts[]
	= {"osc", "load-stats-overlay", "load-osd-console", "load-console", "load-auto-profiles",
		"load-select", "load-positioning", "load-commands", "load-context-menu"};

template<typename Function>
bool
resolve(void* library, const char* name, Function& function, std::string& error)
{
	function = reinterpret_cast<Function>(dlsym(library, name));
	if (function == nullptr && error.empty())
		error = std::string(kLibrary) + " has no " + name;
	return function != nullptr;
}

bool
resolve_all(void* library, MpvFunctions& mpv, std::string& error)
{
	bool ok = resolve(library, "mpv_create", mpv.create, error);
	ok &= resolve(library, "mpv_initialize", mpv.initialize, error);
	ok &= resolve(library, "mpv_terminate_destroy", mpv.terminateDestroy, error);
	ok &= resolve(library, "mpv_set_option_string", mpv.setOptionString, error);
	ok &= resolve(library, "mpv_command", mpv.command, error);
	ok &= resolve(library, "mpv_command_ret", mpv.commandRet, error);
	ok &= resolve(library, "mpv_free_node_contents", mpv.freeNodeContents, error);
	ok &= resolve(library, "mpv_set_property", mpv.setProperty, error);
	ok &= resolve(library, "mpv_set_property_string", mpv.setPropertyString, error);
	ok &= resolve(library, "mpv_get_property", mpv.getProperty, error);
	ok &= resolve(library, "mpv_get_property_string", mpv.getPropertyString, error);
	ok &= resolve(library, "mpv_free", mpv.free, error);
	ok &= resolve(library, "mpv_observe_property", mpv.observeProperty, error);
	ok &= resolve(library, "mpv_wait_event", mpv.waitEvent, error);
	ok &= resolve(library, "mpv_wakeup", mpv.wakeup, error);
	ok &= resolve(library, "mpv_error_string", mpv.errorString, error);
	return ok;
}

void
hear_nothing(const char*, int, const char*, int, const char*, ...)
{ }

/*!	Without a sound device one of the library's outputs would write twenty lines of its own to the terminal. */
void
silence_alsa()
{
	using SetHandler = int (*)(decltype(&hear_nothing));
	void* library = dlopen("libasound.so.2", RTLD_NOW | RTLD_NOLOAD);
	if (library == nullptr) // not one of this build's outputs
		return;
	if (auto set = reinterpret_cast<SetHandler>(dlsym(library, "snd_lib_error_set_handler")))
		set(hear_nothing);
}

/*!	The library's functions, opened once and kept; NULL, and why, if that fails. */
const MpvFunctions*
load_functions(std::string& error)
{
	static MpvFunctions sFunctions = {};
	static std::string sError;
	static const bool sLoaded = [] {
		void* library = dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL);
		if (library == nullptr) {
			sError = dlerror();
			return false;
		}
		silence_alsa();
		return resolve_all(library, sFunctions, sError);
	}();
	error = sError;
	return sLoaded ? &sFunctions : nullptr;
}

} // namespace

std::unique_ptr<MpvPlayer>
MpvPlayer::Create(std::string& error)
{
	const MpvFunctions* functions = load_functions(error);
	if (functions == nullptr)
		return nullptr;
	std::unique_ptr<MpvPlayer> player(new MpvPlayer(*functions));
	return player->Start(error) ? std::move(player) : nullptr;
}

MpvPlayer::MpvPlayer(const MpvFunctions& functions) : fMpv(functions) { }

MpvPlayer::~MpvPlayer()
{
	if (fHandle != nullptr)
		fMpv.terminateDestroy(fHandle);
}

bool
MpvPlayer::Start(std::string& error)
{
	fHandle = fMpv.create();
	if (fHandle == nullptr) {
		error = "mpv_create failed";
		return false;
	}
	for (auto [name, value] : kOptions) {
		if (!SetOption(name, value, error))
			return false;
	}
	for (auto [name, value] : kOutputBuffers)
		fMpv.setOptionString(fHandle, name, value);
	for (const char* script : kNeedlessScripts)
		fMpv.setOptionString(fHandle, script, "no");
	std::string output = WantedOutput();
	if (!output.empty() && !SetOption("ao", output.c_str(), error))
		return false;
	// its own clock can be asked there past the program, which is how the program's is measured
	const char* socket = getenv("QUBO_MPV_SOCKET");
	if (socket != nullptr && !SetOption("input-ipc-server", socket, error))
		return false;
	if (int status = fMpv.initialize(fHandle); status < 0) {
		error = fMpv.errorString(status);
		return false;
	}
	return WaitUntilIdle(error);
}

/*!	Before a player is idle for the first time it takes whatever is in its list by then and plays it from the top, whichever song it
	is told to play. */
bool
MpvPlayer::WaitUntilIdle(std::string& error)
{
	for (double waited = 0; waited < kStartPatience; waited += kStartLook) {
		if (WaitEvent(kStartLook)->event_id == MPV_EVENT_IDLE)
			return true;
	}
	error = text(kTextReasonNoStart);
	return false;
}

bool
MpvPlayer::SetOption(const char* name, const char* value, std::string& error)
{
	int status = fMpv.setOptionString(fHandle, name, value);
	if (status < 0)
		error = std::string(name) + ": " + fMpv.errorString(status);
	return status >= 0;
}

bool
MpvPlayer::Command(std::initializer_list<const char*> words)
{
	std::vector<const char*> arguments(words);
	arguments.push_back(nullptr);
	return fMpv.command(fHandle, arguments.data()) >= 0;
}

int64_t
MpvPlayer::AppendFile(const std::string& path)
{
	const char* arguments[] = {"loadfile", path.c_str(), "append", nullptr};
	mpv_node result = {};
	if (fMpv.commandRet(fHandle, arguments, &result) < 0)
		return -1;
	int64_t id = -1;
	if (result.format == MPV_FORMAT_NODE_MAP) {
		for (int i = 0; i < result.u.list->num; i++) {
			if (std::string("playlist_entry_id") == result.u.list->keys[i])
				id = result.u.list->values[i].u.int64;
		}
	}
	fMpv.freeNodeContents(&result);
	return id;
}

bool
MpvPlayer::SetText(const char* property, const char* value)
{
	return fMpv.setPropertyString(fHandle, property, value) >= 0;
}

bool
MpvPlayer::SetFlag(const char* property, bool value)
{
	int flag = value ? 1 : 0;
	return fMpv.setProperty(fHandle, property, MPV_FORMAT_FLAG, &flag) >= 0;
}

bool
MpvPlayer::SetNumber(const char* property, double value)
{
	return fMpv.setProperty(fHandle, property, MPV_FORMAT_DOUBLE, &value) >= 0;
}

std::optional<double>
MpvPlayer::Number(const char* property)
{
	double value = 0;
	if (fMpv.getProperty(fHandle, property, MPV_FORMAT_DOUBLE, &value) < 0)
		return std::nullopt;
	return value;
}

std::string
MpvPlayer::Text(const char* property)
{
	char* value = fMpv.getPropertyString(fHandle, property);
	std::string text = value != nullptr ? value : "";
	fMpv.free(value);
	return text;
}

SongTags
MpvPlayer::Tags()
{
	return {Text("metadata/by-key/artist"), Text("metadata/by-key/title"),
		std::llround(Number("duration").value_or(0) * 1e6)};
}

void
MpvPlayer::Observe(const char* property, mpv_format format)
{
	fMpv.observeProperty(fHandle, 0, property, format);
}

const mpv_event*
MpvPlayer::WaitEvent(double seconds)
{
	return fMpv.waitEvent(fHandle, seconds);
}

void
MpvPlayer::Wakeup()
{
	fMpv.wakeup(fHandle);
}

const char*
MpvPlayer::ErrorText(int error) const
{
	return fMpv.errorString(error);
}

std::string
MpvPlayer::WantedOutput()
{
	const char* output = getenv("QUBO_AO");
	return output != nullptr ? output : "";
}
