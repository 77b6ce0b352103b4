#include "PlayerServer.h"

#include "../Engine.h"
#include "../PlayState.h"
#include "mpris_names.h"
#include "track_path.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include <systemd/sd-bus.h>
#include <unistd.h>

namespace {

constexpr const char* kRootInterface = "org.mpris.MediaPlayer2";
constexpr uint32 kNamePrimaryOwner = 1; // the answer of RequestName
constexpr uint32 kNameAlreadyOwner = 4;

// made of the desktop file by CMake
constexpr const char* kMimeTypes[] = {
#include "MimeTypes.inc"
	nullptr};
constexpr const char* kUriSchemes[] = {"file", nullptr};

int
append_texts(sd_bus_message* reply, const char* const* texts)
{
	return sd_bus_message_append_strv(reply, const_cast<char**>(texts));
}

} // namespace

/*!	What the bus library calls, on the bus thread: `self` is the server. */
struct PlayerInterface {
	template<bool Value>
	static int Constant(
		sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*)
	{
		return sd_bus_message_append(reply, "b", Value);
	}

	static int RootTexts(sd_bus*, const char*, const char*, const char* property,
		sd_bus_message* reply, void*, sd_bus_error*)
	{
		const std::string_view name = property;
		if (name == "SupportedUriSchemes")
			return append_texts(reply, kUriSchemes);
		if (name == "SupportedMimeTypes")
			return append_texts(reply, kMimeTypes);
		return sd_bus_message_append(reply, "s", name == "Identity" ? "Qubo" : "qubo");
	}

	static int Value(sd_bus*, const char*, const char*, const char* property, sd_bus_message* reply,
		void* self, sd_bus_error*)
	{
		auto& server = *static_cast<PlayerServer*>(self);
		const ServedValues values = ServedValues::Of(server.fState, server.fEngine);
		const std::string_view name = property;
		if (name == "PlaybackStatus")
			return sd_bus_message_append(reply, "s", values.status.c_str());
		if (name == "Metadata")
			return append_metadata(reply, values);
		if (name == "Position")
			return sd_bus_message_append(reply, "x", server.fState.Position());
		if (name == "Volume")
			return sd_bus_message_append(reply, "d", values.volume);
		if (name.ends_with("Rate"))
			return sd_bus_message_append(reply, "d", 1.0);
		const bool can = name == "CanGoNext" ? values.canGoNext
			: name == "CanGoPrevious"        ? values.canGoPrevious
			: name == "CanPlay"              ? values.canPlay
			: name == "CanPause"             ? values.canPause
											 : values.canSeek;
		return sd_bus_message_append(reply, "b", can);
	}

	static int SetVolume(sd_bus*, const char*, const char*, const char*, sd_bus_message* value,
		void* self, sd_bus_error*)
	{
		double volume;
		const int status = sd_bus_message_read(value, "d", &volume);
		if (status < 0)
			return status;
		if (!std::isnan(volume))
			static_cast<PlayerServer*>(self)->fListener.VolumeAsked(
				static_cast<int32>(std::lround(std::clamp(volume, 0.0, 1.0) * 100)));
		return 0;
	}

	//! There is one rate only; another one is not an error.
	static int SetRate(
		sd_bus*, const char*, const char*, const char*, sd_bus_message*, void*, sd_bus_error*)
	{
		return 0;
	}

	//! The calls without arguments.
	static int Call(sd_bus_message* call, void* self, sd_bus_error*)
	{
		auto& server = *static_cast<PlayerServer*>(self);
		const std::string_view name = sd_bus_message_get_member(call);
		if (name == "Raise")
			server.fListener.RaiseAsked();
		else if (name == "Quit")
			server.fListener.QuitAsked();
		else if (name == "Next")
			server.fEngine.Next();
		else if (name == "Previous")
			server.fEngine.Previous();
		else if (name == "Pause")
			server.fEngine.Pause();
		else if (name == "PlayPause")
			server.fEngine.TogglePause();
		else if (name == "Stop")
			server.fEngine.Stop();
		else if (name == "Play")
			server.fEngine.Resume();
		return sd_bus_reply_method_return(call, "");
	}

	static int Seek(sd_bus_message* call, void* self, sd_bus_error*)
	{
		int64_t offset;
		const int status = sd_bus_message_read(call, "x", &offset);
		if (status < 0)
			return status;
		constexpr int64_t kFar = 1'000'000'000'000'000; // µs; no sum goes over
		static_cast<PlayerServer*>(self)->fEngine.SeekBy(std::clamp(offset, -kFar, kFar));
		return sd_bus_reply_method_return(call, "");
	}

	//! For the track that was meant only, and only within it.
	static int SetPosition(sd_bus_message* call, void* self, sd_bus_error*)
	{
		auto& server = *static_cast<PlayerServer*>(self);
		const char* track;
		int64_t position;
		const int status = sd_bus_message_read(call, "ox", &track, &position);
		if (status < 0)
			return status;
		const ServedValues values = ServedValues::Of(server.fState, server.fEngine);
		if (track == values.trackId && position >= 0 && position <= values.tags.length)
			server.fEngine.SeekTo(position);
		return sd_bus_reply_method_return(call, "");
	}

	static int OpenUri(sd_bus_message* call, void* self, sd_bus_error* error)
	{
		const char* url;
		const int status = sd_bus_message_read(call, "s", &url);
		if (status < 0)
			return status;
		const std::string file = file_of_url(url);
		if (file.empty())
			return sd_bus_error_set(
				error, SD_BUS_ERROR_INVALID_ARGS, "Only files of this machine can be played");
		static_cast<PlayerServer*>(self)->fListener.OpenAsked(file);
		return sd_bus_reply_method_return(call, "");
	}

	static int NameAnswered(sd_bus_message* answer, void* self, sd_bus_error*)
	{
		static_cast<PlayerServer*>(self)->NameAnswered(answer);
		return 0;
	}
};

namespace {

using Interface = PlayerInterface;

constexpr uint64_t kConst = SD_BUS_VTABLE_PROPERTY_CONST;
constexpr uint64_t kChanges = SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE;
constexpr uint64_t kOpen = SD_BUS_VTABLE_UNPRIVILEGED;

const sd_bus_vtable kRootTable[] = {
	SD_BUS_VTABLE_START(0),
	SD_BUS_METHOD("Raise", "", "", Interface::Call, kOpen),
	SD_BUS_METHOD("Quit", "", "", Interface::Call, kOpen),
	SD_BUS_PROPERTY("CanQuit", "b", Interface::Constant<true>, 0, kConst),
	SD_BUS_PROPERTY("CanRaise", "b", Interface::Constant<true>, 0, kConst),
	SD_BUS_PROPERTY("HasTrackList", "b", Interface::Constant<false>, 0, kConst),
	SD_BUS_PROPERTY("Identity", "s", Interface::RootTexts, 0, kConst),
	SD_BUS_PROPERTY("DesktopEntry", "s", Interface::RootTexts, 0, kConst),
	SD_BUS_PROPERTY("SupportedUriSchemes", "as", Interface::RootTexts, 0, kConst),
	SD_BUS_PROPERTY("SupportedMimeTypes", "as", Interface::RootTexts, 0, kConst),
	SD_BUS_VTABLE_END,
};

const sd_bus_vtable kPlayerTable[] = {
	SD_BUS_VTABLE_START(0),
	SD_BUS_METHOD("Next", "", "", Interface::Call, kOpen),
	SD_BUS_METHOD("Previous", "", "", Interface::Call, kOpen),
	SD_BUS_METHOD("Pause", "", "", Interface::Call, kOpen),
	SD_BUS_METHOD("PlayPause", "", "", Interface::Call, kOpen),
	SD_BUS_METHOD("Stop", "", "", Interface::Call, kOpen),
	SD_BUS_METHOD("Play", "", "", Interface::Call, kOpen),
	SD_BUS_METHOD("Seek", "x", "", Interface::Seek, kOpen),
	SD_BUS_METHOD("SetPosition", "ox", "", Interface::SetPosition, kOpen),
	SD_BUS_METHOD("OpenUri", "s", "", Interface::OpenUri, kOpen),
	SD_BUS_SIGNAL("Seeked", "x", 0),
	SD_BUS_PROPERTY("PlaybackStatus", "s", Interface::Value, 0, kChanges),
	SD_BUS_WRITABLE_PROPERTY(
		"Rate", "d", Interface::Value, Interface::SetRate, 0, kChanges | kOpen),
	SD_BUS_PROPERTY("Metadata", "a{sv}", Interface::Value, 0, kChanges),
	SD_BUS_WRITABLE_PROPERTY(
		"Volume", "d", Interface::Value, Interface::SetVolume, 0, kChanges | kOpen),
	SD_BUS_PROPERTY("Position", "x", Interface::Value, 0, 0),
	SD_BUS_PROPERTY("MinimumRate", "d", Interface::Value, 0, kConst),
	SD_BUS_PROPERTY("MaximumRate", "d", Interface::Value, 0, kConst),
	SD_BUS_PROPERTY("CanGoNext", "b", Interface::Value, 0, kChanges),
	SD_BUS_PROPERTY("CanGoPrevious", "b", Interface::Value, 0, kChanges),
	SD_BUS_PROPERTY("CanPlay", "b", Interface::Value, 0, kChanges),
	SD_BUS_PROPERTY("CanPause", "b", Interface::Value, 0, kChanges),
	SD_BUS_PROPERTY("CanSeek", "b", Interface::Value, 0, kChanges),
	SD_BUS_PROPERTY("CanControl", "b", Interface::Constant<true>, 0, kConst),
	SD_BUS_VTABLE_END,
};

} // namespace

PlayerServer::PlayerServer(
	BusThread& bus, const PlayState& state, Engine& engine, Listener& listener)
	: fBus(bus),
	  fState(state),
	  fEngine(engine),
	  fListener(listener)
{
	fBus.Add(*this);
}

PlayerServer::~PlayerServer()
{
	fBus.Remove(*this, [this] { Drop(); });
}

void
PlayerServer::SetOn(bool on)
{
	fBus.Post([this, on] {
		if (std::exchange(fOn, on) == on || fBus.Bus() == nullptr)
			return;
		if (on)
			TakeName();
		else
			GiveNameBack();
	});
}

void
PlayerServer::PlayingChanged()
{
	fBus.Post([this] { TellChanges(); });
}

void
PlayerServer::Sought()
{
	fBus.Post([this] {
		if (!fName.empty() && fBus.Bus() != nullptr)
			sd_bus_emit_signal(fBus.Bus(), kPlayerPath, kPlayerInterface, "Seeked", "x",
				static_cast<int64_t>(fState.Position()));
	});
}

// #pragma mark - the bus thread

void
PlayerServer::BusConnected()
{
	if (sd_bus_add_object_vtable(
			fBus.Bus(), fRootSlot.Put(), kPlayerPath, kRootInterface, kRootTable, this)
			< 0
		|| sd_bus_add_object_vtable(
			   fBus.Bus(), fPlayerSlot.Put(), kPlayerPath, kPlayerInterface, kPlayerTable, this)
			< 0)
		return; // without a name nobody asks
	if (fOn)
		TakeName();
}

void
PlayerServer::BusLost()
{
	fName.clear();
	Drop();
}

void
PlayerServer::TakeName()
{
	fTold = ServedValues::Of(fState, fEngine);
	RequestName(std::string(kPlayerPrefix) + "qubo");
}

void
PlayerServer::RequestName(const std::string& name)
{
	fName = name;
	if (sd_bus_request_name_async(
			fBus.Bus(), fNameCall.Put(), name.c_str(), 0, PlayerInterface::NameAnswered, this)
		< 0)
		fName.clear();
}

void
PlayerServer::NameAnswered(sd_bus_message* answer)
{
	uint32 result = 0;
	const std::string mine = std::string(kPlayerPrefix) + "qubo";
	const bool isMine = sd_bus_message_is_method_error(answer, nullptr) <= 0
		&& sd_bus_message_read(answer, "u", &result) >= 0
		&& (result == kNamePrimaryOwner || result == kNameAlreadyOwner);
	if (!isMine && fName == mine)
		RequestName(mine + ".instance" + std::to_string(getpid()));
	else if (!isMine)
		fName.clear();
}

void
PlayerServer::GiveNameBack()
{
	if (!fName.empty())
		sd_bus_release_name_async(fBus.Bus(), nullptr, fName.c_str(), nullptr, nullptr);
	fName.clear();
	fNameCall.Drop();
}

void
PlayerServer::TellChanges()
{
	if (fName.empty() || fBus.Bus() == nullptr)
		return;
	const ServedValues now = ServedValues::Of(fState, fEngine);
	std::vector<const char*> names = now.DifferenceTo(fTold);
	fTold = now;
	if (names.size() > 1)
		sd_bus_emit_properties_changed_strv(
			fBus.Bus(), kPlayerPath, kPlayerInterface, const_cast<char**>(names.data()));
}

void
PlayerServer::Drop()
{
	fNameCall.Drop();
	fPlayerSlot.Drop();
	fRootSlot.Drop();
}
