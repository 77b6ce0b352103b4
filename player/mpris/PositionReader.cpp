#include "PositionReader.h"

#include "../PlayState.h"
#include "mpris_names.h"
#include "player_values.h"

#include <utility>

#include <systemd/sd-bus.h>

namespace {

constexpr bigtime_t kMs = 1000;
// One reading alone is 25 ms late in the middle and 50 at worst with a common player; of eight that are spread over its
// period the largest is 3 and 7 ms late.
constexpr bigtime_t kQuickInterval = 7 * kMs;
constexpr int32 kQuickReadings = 60; // until it moves: some players renew it three times a second
constexpr int32 kMovingReadings = 16;
constexpr int32 kSettlingReadings = kMovingReadings + 12;
constexpr int32 kReadingsAtOnce = 4; // later on
constexpr bigtime_t kSettlingInterval = 400 * kMs;
constexpr bigtime_t kWaitingInterval = 40 * kMs;
constexpr bigtime_t kWaitingTime = 1300 * kMs;
constexpr bigtime_t kLoadingInterval = 250 * kMs;
constexpr bigtime_t kLoadingTime = 10000 * kMs;
// No whole number of any period in which players renew their positions.
constexpr bigtime_t kSteadyInterval = 3137 * kMs;
constexpr bigtime_t kAnswerTime = 2000 * kMs;
constexpr bigtime_t kPausedInterval = 500 * kMs;
constexpr int32 kPausedReadings = 2; // the second after whatever was under way

} // namespace

PositionReader::PositionReader(BusThread& bus, PlayState& state, std::function<void()> changed)
	: fBus(bus),
	  fState(state),
	  fChanged(std::move(changed))
{ }

void
PositionReader::Follow(const std::string& player)
{
	fPlayer = player;
	fQuestion.Drop();
	fBus.Cancel(std::exchange(fTimer, 0));
	fClock = {};
	fRate = 0;
	fClock.SetRate(0, system_time());
	fFixed = fHangs = false;
	if (!fPlayer.empty())
		PositionChanged();
}

void
PositionReader::SetRate(double rate)
{
	const bigtime_t now = system_time();
	fRate = rate;
	fClock.SetRate(rate, now);
	if (rate > 0)
		fState.SetRate(rate);
	PositionChanged();
}

void
PositionReader::TrackStarted()
{
	fClock.ForgetMoves();
	Seeked(0);
}

void
PositionReader::PositionChanged()
{
	fClock.Restart(system_time());
	BeginReading();
}

void
PositionReader::Seeked(bigtime_t position)
{
	fClock.RestartAt(position, system_time());
	fState.Jump(position);
	BeginReading();
}

// #pragma mark - asking

void
PositionReader::BeginReading()
{
	fBegin = system_time();
	fReadings = fMovingOnes = 0;
	fQuestion.Drop(); // its answer could be of the time before
	Ask();
}

void
PositionReader::Ask()
{
	fBus.Cancel(std::exchange(fTimer, 0));
	sd_bus_message* question = nullptr;
	if (fPlayer.empty() || fBus.Bus() == nullptr
		|| sd_bus_message_new_method_call(
			   fBus.Bus(), &question, fPlayer.c_str(), kPlayerPath, kPropertiesInterface, "Get")
			< 0)
		return;
	if (sd_bus_message_append(question, "ss", kPlayerInterface, "Position") >= 0) {
		sd_bus_call_async(
			fBus.Bus(), fQuestion.Put(), question,
			[](sd_bus_message* message, void* self, sd_bus_error*) {
				static_cast<PositionReader*>(self)->AnswerReceived(message);
				return 0;
			},
			this, kAnswerTime);
	}
	sd_bus_message_unref(question);
}

void
PositionReader::AnswerReceived(sd_bus_message* message)
{
	const bigtime_t now = system_time();
	if (sd_bus_message_is_method_error(message, SD_BUS_ERROR_NO_REPLY) > 0) {
		TellTrouble(fFixed, true);
		AskAt(now + kSteadyInterval);
		return;
	}
	// one that has no position is taken as one whose position never moves
	const bigtime_t position = read_position(message).value_or(0);
	fReadings++;
	if (fClock.Read(position, now)) {
		fBegin = now;
		fReadings = fMovingOnes = 0;
	}
	if (fClock.IsMoving())
		fMovingOnes++;
	Tell(now);
	TellTrouble(fRate > 0 && fClock.IsFixed(now), false);
	if (const bigtime_t interval = NextInterval(now); interval > 0)
		AskAt(now + interval);
}

void
PositionReader::AskAt(bigtime_t when)
{
	fBus.Cancel(fTimer);
	fTimer = fBus.CallAt(when, [this] { Ask(); });
}

//! 0: no more questions.
bigtime_t
PositionReader::NextInterval(bigtime_t now) const
{
	if (fRate == 0)
		return fReadings < kPausedReadings ? kPausedInterval : 0;
	if (fClock.IsMoving()) {
		if (fMovingOnes < kMovingReadings || fMovingOnes % kReadingsAtOnce != 0)
			return kQuickInterval;
		return fMovingOnes < kSettlingReadings ? kSettlingInterval : kSteadyInterval;
	}
	if (fReadings < kQuickReadings)
		return kQuickInterval;
	if (now - fBegin < kWaitingTime)
		return kWaitingInterval;
	return now - fBegin < kLoadingTime ? kLoadingInterval : kSteadyInterval;
}

// #pragma mark - telling

void
PositionReader::Tell(bigtime_t now)
{
	const bigtime_t position = fClock.Position(now);
	if (fRate == 0 || fClock.Runs(now))
		fState.Sample(position, now);
	else
		fState.Stand(position, now);
}

void
PositionReader::TellTrouble(bool fixed, bool hangs)
{
	if (fixed == fFixed && hangs == fHangs)
		return;
	fFixed = fixed;
	fHangs = hangs;
	fChanged();
}
