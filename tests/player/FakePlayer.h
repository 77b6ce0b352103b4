#pragma once

#include "player/mpris/BusThread.h"
#include "player/mpris/mpris_names.h"

#include <atomic>
#include <cmath>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include <systemd/sd-bus.h>

/*!	A player on the bus that does what its script says: it plays, lags, lies, hangs and crashes. Its position is carried on by the
	clock and renewed every `step`. Thread: any. */
class FakePlayer : private BusThread::Client {
public:
	using Append = std::function<void(sd_bus_message*)>;

	struct Script {
		std::string status = "Playing";
		double rate = 1;
		bigtime_t step = 50000;
		bool fixed = false;        // its position is 0
		bool noPosition = false;   // it is not told at all
		bool hangs = false;        // it answers nothing
		Append metadata;           // a{sv} in a variant; none: an empty one
		Append more = [](auto) {}; // more properties
	};

	FakePlayer(const std::string& address, const std::string& name, const Script& script)
		: fScript(script),
		  fName(kPlayerPrefix + name),
		  fBus(address)
	{
		fBus.Add(*this);
		while (!fIsThere)
			snooze(200);
	}
	~FakePlayer() override
	{
		fBus.Remove(*this, [this] { fObject.Drop(); });
	}

	//! One track's metadata of these fields; "" and 0 are left out.
	static Append Track(const std::string& url, const std::string& title = "",
		const std::string& artist = "", int64_t length = 0, const std::string& id = "/track/1")
	{
		return [=](sd_bus_message* m) {
			sd_bus_message_open_container(m, 'v', "a{sv}");
			sd_bus_message_open_container(m, 'a', "{sv}");
			if (!id.empty())
				sd_bus_message_append(m, "{sv}", "mpris:trackid", "o", id.c_str());
			if (length != 0)
				sd_bus_message_append(m, "{sv}", "mpris:length", "x", length);
			if (!url.empty())
				sd_bus_message_append(m, "{sv}", "xesam:url", "s", url.c_str());
			if (!title.empty())
				sd_bus_message_append(m, "{sv}", "xesam:title", "s", title.c_str());
			if (!artist.empty())
				sd_bus_message_append(m, "{sv}", "xesam:artist", "as", 1, artist.c_str());
			sd_bus_message_close_container(m);
			sd_bus_message_close_container(m);
		};
	}

	//! Where its sound is.
	bigtime_t Position()
	{
		std::lock_guard lock(fLock);
		return At(system_time());
	}
	//! Changes the script, and tells the properties as changed, or only that they have.
	void Change(const std::function<void(Script&)>& change, bool tell = true, bool values = true)
	{
		Do([&] {
			Rebase(At(system_time()));
			change(fScript);
			if (tell)
				TellProperties(values);
		});
	}
	void StartTrack(const Append& metadata)
	{
		Do([&] {
			fScript.metadata = metadata;
			Rebase(0);
			TellProperties(true);
		});
	}
	void Seek(bigtime_t position, bool tell = true)
	{
		Do([&] {
			Rebase(position);
			if (tell)
				sd_bus_emit_signal(
					fBus.Bus(), kPlayerPath, kPlayerInterface, "Seeked", "x", position);
		});
	}
	//! The commands that came, with their numbers.
	std::vector<std::string> Commands()
	{
		std::lock_guard lock(fLock);
		return fCommands;
	}
	int Questions() const { return fQuestions; }

private:
	bigtime_t At(bigtime_t now) const
	{
		const double run = fScript.status == "Playing" ? fScript.rate : 0;
		return fBase + std::llround(static_cast<double>(now - fBaseTime) * run);
	}
	void Rebase(bigtime_t position)
	{
		fBase = position;
		fBaseTime = system_time();
	}
	void Do(const std::function<void()>& job)
	{
		std::atomic<bool> done = false;
		fBus.Post([&] {
			std::lock_guard lock(fLock);
			job();
			done = true;
		});
		while (!done)
			snooze(200);
	}
	void BusConnected() override
	{
		std::lock_guard lock(fLock);
		Rebase(0);
		sd_bus_add_object(
			fBus.Bus(), fObject.Put(), kPlayerPath,
			[](sd_bus_message* message, void* self, sd_bus_error*) {
				return static_cast<FakePlayer*>(self)->Received(message);
			},
			this);
		sd_bus_request_name(fBus.Bus(), fName.c_str(), 0);
		fIsThere = true;
	}
	void BusLost() override { }

	void AppendMetadata(sd_bus_message* m)
	{
		if (fScript.metadata)
			fScript.metadata(m);
		else
			sd_bus_message_append(m, "v", "a{sv}", 0);
	}
	void AppendAll(sd_bus_message* m)
	{
		sd_bus_message_open_container(m, 'a', "{sv}");
		sd_bus_message_append(m, "{sv}", "PlaybackStatus", "s", fScript.status.c_str());
		sd_bus_message_append(m, "{sv}", "Rate", "d", fScript.rate);
		sd_bus_message_open_container(m, 'e', "sv");
		sd_bus_message_append(m, "s", "Metadata");
		AppendMetadata(m);
		sd_bus_message_close_container(m);
		fScript.more(m);
		sd_bus_message_close_container(m);
	}
	void TellProperties(bool values)
	{
		sd_bus_message* m = nullptr;
		sd_bus_message_new_signal(
			fBus.Bus(), &m, kPlayerPath, kPropertiesInterface, "PropertiesChanged");
		sd_bus_message_append(m, "s", kPlayerInterface);
		if (values) {
			AppendAll(m);
			sd_bus_message_append(m, "as", 0);
		} else
			sd_bus_message_append(m, "a{sv}as", 0, 2, "Metadata", "PlaybackStatus");
		sd_bus_send(fBus.Bus(), m, nullptr);
		sd_bus_message_unref(m);
	}
	int Received(sd_bus_message* message)
	{
		std::lock_guard lock(fLock);
		fQuestions++;
		if (fScript.hangs)
			return 1;
		if (sd_bus_message_is_method_call(message, kPropertiesInterface, "GetAll") > 0)
			return Answer(message, [this](auto reply) { AppendAll(reply); });
		if (sd_bus_message_is_method_call(message, kPropertiesInterface, "Get") > 0)
			return AnswerPosition(message);
		std::string command = sd_bus_message_get_member(message);
		const char* id;
		int64_t number;
		if (sd_bus_message_has_signature(message, "ox") > 0
			&& sd_bus_message_read(message, "ox", &id, &number) > 0)
			command += std::string(" ") + id + " " + std::to_string(number);
		else if (sd_bus_message_has_signature(message, "x") > 0
			&& sd_bus_message_read(message, "x", &number) > 0)
			command += " " + std::to_string(number);
		fCommands.push_back(command);
		return 1;
	}
	int AnswerPosition(sd_bus_message* message)
	{
		if (fScript.noPosition)
			return sd_bus_reply_method_errorf(message, SD_BUS_ERROR_UNKNOWN_PROPERTY, "none");
		const bigtime_t position
			= fScript.fixed ? 0 : At(system_time()) / fScript.step * fScript.step;
		return Answer(
			message, [&](auto reply) { sd_bus_message_append(reply, "v", "x", position); });
	}
	int Answer(sd_bus_message* message, const Append& append)
	{
		sd_bus_message* reply = nullptr;
		sd_bus_message_new_method_return(message, &reply);
		append(reply);
		sd_bus_send(fBus.Bus(), reply, nullptr);
		sd_bus_message_unref(reply);
		return 1;
	}

	std::mutex fLock; // of all that follows but the bus
	Script fScript;
	const std::string fName;
	bigtime_t fBase = 0;
	bigtime_t fBaseTime = 0;
	std::vector<std::string> fCommands;
	std::atomic<int> fQuestions = 0;
	std::atomic<bool> fIsThere = false;
	BusSlot fObject;
	BusThread fBus; // the first to go
};
