#include "RemotePlayer.h"

#include "mpris_names.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include <systemd/sd-bus.h>

namespace {

constexpr uint64_t kAnswerTime = 2000000;
constexpr bigtime_t kRetryTime = 3000000;
constexpr double kLowestRate
	= 0.01; // 0 is a pause, in the standard's words, that is told by a false rate
constexpr double kHighestRate = 100;

} // namespace

RemotePlayer::RemotePlayer(
	BusThread& bus, const std::string& name, const std::string& owner, Listener& listener)
	: fBus(bus),
	  fListener(listener),
	  fName(name),
	  fOwner(owner)
{
	sd_bus_match_signal_async(
		fBus.Bus(), fPropertiesSlot.Put(), fOwner.c_str(), kPlayerPath, kPropertiesInterface,
		"PropertiesChanged",
		[](sd_bus_message* message, void* self, sd_bus_error*) {
			static_cast<RemotePlayer*>(self)->PropertiesChanged(message);
			return 0;
		},
		nullptr, this);
	sd_bus_match_signal_async(
		fBus.Bus(), fSeekedSlot.Put(), fOwner.c_str(), kPlayerPath, kPlayerInterface, "Seeked",
		[](sd_bus_message* message, void* self, sd_bus_error*) {
			static_cast<RemotePlayer*>(self)->SeekedReceived(message);
			return 0;
		},
		nullptr, this);
	AskAll(); // the watching comes first: no change is lost between
}

RemotePlayer::~RemotePlayer()
{
	fBus.Cancel(fRetry);
}

// #pragma mark - what it says

void
RemotePlayer::AskAll()
{
	sd_bus_message* question = nullptr;
	if (fBus.Bus() == nullptr
		|| sd_bus_message_new_method_call(
			   fBus.Bus(), &question, fOwner.c_str(), kPlayerPath, kPropertiesInterface, "GetAll")
			< 0)
		return;
	if (sd_bus_message_append(question, "s", kPlayerInterface) >= 0) {
		sd_bus_call_async(
			fBus.Bus(), fAllSlot.Put(), question,
			[](sd_bus_message* message, void* self, sd_bus_error*) {
				static_cast<RemotePlayer*>(self)->AllReceived(message);
				return 0;
			},
			this, kAnswerTime);
	}
	sd_bus_message_unref(question);
}

//! What does not answer may be busy; it is asked again.
void
RemotePlayer::AllReceived(sd_bus_message* message)
{
	RemoteValues values;
	const bool hung = std::exchange(fHangs,
		sd_bus_message_is_method_error(message, nullptr) > 0 || !read_values(message, values));
	if (fHangs) {
		fBus.Cancel(fRetry);
		fRetry = fBus.CallAt(system_time() + kRetryTime, [this] { AskAll(); });
		if (!hung)
			fListener.PlayerChanged(*this);
		return;
	}
	fKnown = true;
	Take(values);
}

void
RemotePlayer::PropertiesChanged(sd_bus_message* message)
{
	const char* interface = nullptr;
	RemoteValues values;
	if (sd_bus_message_read_basic(message, 's', &interface) <= 0
		|| strcmp(interface, kPlayerInterface) != 0)
		return;
	if (!read_values(message, values) || sd_bus_message_at_end(message, false) > 0
		|| sd_bus_message_enter_container(message, 'a', "s") <= 0
		|| sd_bus_message_at_end(message, false) == 0)
		AskAll(); // some properties are only said to have changed
	Take(values);
}

void
RemotePlayer::Take(const RemoteValues& values)
{
	if (values.status && *values.status != fStatus) {
		fStatus = *values.status;
		if (fStatus == PlayState::kPlaying)
			fBegan = system_time();
	}
	if (values.rate)
		fRate = std::clamp(*values.rate > 0 ? *values.rate : 1, kLowestRate, kHighestRate);
	if (values.track)
		fTrack = *values.track;
	if (values.canSeek)
		fCanSeek = *values.canSeek;
	if (fKnown)
		fListener.PlayerChanged(*this);
}

void
RemotePlayer::SeekedReceived(sd_bus_message* message)
{
	int64_t position;
	if (sd_bus_message_read_basic(message, 'x', &position) > 0)
		fListener.PlayerSeeked(*this, std::clamp<bigtime_t>(position, 0, kLongestTime));
}

// #pragma mark - commands

void
RemotePlayer::Command(const char* method)
{
	if (fBus.Bus() != nullptr)
		sd_bus_call_method_async(fBus.Bus(), nullptr, fOwner.c_str(), kPlayerPath, kPlayerInterface,
			method, nullptr, nullptr, "");
}

//! By the track's id where there is one: the position then is of no other track.
void
RemotePlayer::SeekTo(bigtime_t position, bigtime_t from)
{
	if (fBus.Bus() == nullptr || !fCanSeek)
		return;
	const bool hasId = sd_bus_object_path_is_valid(fTrack.id.c_str()) > 0 && fTrack.id != kNoTrack;
	if (hasId)
		sd_bus_call_method_async(fBus.Bus(), nullptr, fOwner.c_str(), kPlayerPath, kPlayerInterface,
			"SetPosition", nullptr, nullptr, "ox", fTrack.id.c_str(),
			static_cast<int64_t>(position));
	else
		sd_bus_call_method_async(fBus.Bus(), nullptr, fOwner.c_str(), kPlayerPath, kPlayerInterface,
			"Seek", nullptr, nullptr, "x", static_cast<int64_t>(position - from));
}
