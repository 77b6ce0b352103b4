#include "PlayerNames.h"

#include "mpris_names.h"

#include <systemd/sd-bus.h>

namespace {

constexpr const char* kChangesRule
	= "type='signal',sender='org.freedesktop.DBus',path='/org/freedesktop/DBus',"
	  "interface='org.freedesktop.DBus',member='NameOwnerChanged',"
	  "arg0namespace='org.mpris.MediaPlayer2'";

//! "" if it is no player's.
std::string
player_name(const std::string& name)
{
	const std::string prefix = kPlayerPrefix;
	return name.starts_with(prefix) ? name.substr(prefix.size()) : "";
}

} // namespace

PlayerNames::PlayerNames(BusThread& bus, std::function<void()> changed)
	: fBus(bus),
	  fChanged(std::move(changed))
{ }

//! What comes and goes is told before what is there is listed: nobody is missed.
void
PlayerNames::Begin()
{
	sd_bus_add_match_async(
		fBus.Bus(), fChangesSlot.Put(), kChangesRule,
		[](sd_bus_message* message, void* self, sd_bus_error*) {
			static_cast<PlayerNames*>(self)->OwnerChanged(message);
			return 0;
		},
		nullptr, this);
	sd_bus_call_method_async(
		fBus.Bus(), fListSlot.Put(), kBusName, kBusPath, kBusName, "ListNames",
		[](sd_bus_message* message, void* self, sd_bus_error*) {
			static_cast<PlayerNames*>(self)->ListReceived(message);
			return 0;
		},
		this, "");
}

void
PlayerNames::End()
{
	fChangesSlot.Drop();
	fListSlot.Drop();
	fQuestions.clear();
	fOwners.clear();
}

void
PlayerNames::ListReceived(sd_bus_message* message)
{
	fListed = true;
	if (sd_bus_message_enter_container(message, 'a', "s") > 0) {
		const char* text;
		while (sd_bus_message_read_basic(message, 's', &text) > 0) {
			if (const std::string name = player_name(text); !name.empty())
				Ask(name, "");
		}
	}
	Changed();
}

//! Who has the name, or the process of who has.
void
PlayerNames::Ask(const std::string& name, const std::string& owner)
{
	std::unique_ptr<Question>& question = fQuestions[name];
	question.reset(new Question{this, name, owner, {}});
	sd_bus_call_method_async(
		fBus.Bus(), question->slot.Put(), kBusName, kBusPath, kBusName,
		owner.empty() ? "GetNameOwner" : "GetConnectionUnixProcessID",
		[](sd_bus_message* message, void* asked, sd_bus_error*) {
			auto question = static_cast<Question*>(asked);
			question->names->AnswerReceived(message, *question);
			return 0;
		},
		question.get(), "s", (owner.empty() ? kPlayerPrefix + name : owner).c_str());
}

void
PlayerNames::AnswerReceived(sd_bus_message* message, const Question& question)
{
	const std::string name = question.name;
	const std::string owner = question.owner;
	const bool isError = sd_bus_message_is_method_error(message, nullptr) > 0;
	if (owner.empty()) {
		const char* found = "";
		if (!isError)
			sd_bus_message_read_basic(message, 's', &found);
		SetOwner(name, found);
		return;
	}
	uint32 process = 0;
	if (!isError)
		sd_bus_message_read_basic(message, 'u', &process);
	fQuestions.erase(name);
	fOwners[name] = {owner, process};
	Changed();
}

void
PlayerNames::OwnerChanged(sd_bus_message* message)
{
	const char* name;
	const char* before;
	const char* owner;
	if (sd_bus_message_read(message, "sss", &name, &before, &owner) > 0
		&& !player_name(name).empty())
		SetOwner(player_name(name), owner);
}

void
PlayerNames::SetOwner(const std::string& name, const std::string& owner)
{
	fQuestions.erase(name);
	fOwners.erase(name);
	if (!owner.empty())
		Ask(name, owner);
	Changed();
}

void
PlayerNames::Changed()
{
	fKnown = fKnown || (fListed && fQuestions.empty());
	fChanged();
}
