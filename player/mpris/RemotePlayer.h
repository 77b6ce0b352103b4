#pragma once

#include "BusThread.h"
#include "player_values.h"

#include <string>

/*!	A player on the bus: what it says of itself, and the commands to it.
	Thread: the bus thread only. Owner: the follower. */
class RemotePlayer {
public:
	class Listener {
	public:
		virtual ~Listener() = default;
		//! Something of what it says, or whether it answers.
		virtual void PlayerChanged(RemotePlayer& player) = 0;
		virtual void PlayerSeeked(RemotePlayer& player, bigtime_t position) = 0;
	};

	//! `name`: on the bus, without the prefix of all players; `owner`: its unique name. The bus is connected.
	RemotePlayer(
		BusThread& bus, const std::string& name, const std::string& owner, Listener& listener);
	~RemotePlayer();
	RemotePlayer(const RemotePlayer&) = delete;
	RemotePlayer& operator=(const RemotePlayer&) = delete;

	const std::string& Name() const { return fName; }
	const std::string& Owner() const { return fOwner; }
	//! It has told about itself.
	bool IsKnown() const { return fKnown; }
	//! It does not answer what it is asked.
	bool Hangs() const { return fHangs; }
	PlayState::State Status() const { return fStatus; }
	//! Above 0.
	double Rate() const { return fRate; }
	const RemoteTrack& Track() const { return fTrack; }
	//! When it last began to play, 0: never since it is known.
	bigtime_t BeganAt() const { return fBegan; }
	bool CanSeek() const { return fCanSeek; }

	//! "Play", "Next" and the like; no answer is waited for.
	void Command(const char* method);
	void SeekTo(bigtime_t position, bigtime_t from);

private:
	void AskAll();
	void AllReceived(sd_bus_message* message);
	void PropertiesChanged(sd_bus_message* message);
	void SeekedReceived(sd_bus_message* message);
	void Take(const RemoteValues& values);

	BusThread& fBus;
	Listener& fListener;
	const std::string fName;
	const std::string fOwner;
	BusSlot fPropertiesSlot;
	BusSlot fSeekedSlot;
	BusSlot fAllSlot;
	BusThread::TimerId fRetry = 0;
	PlayState::State fStatus = PlayState::kStopped;
	RemoteTrack fTrack;
	double fRate = 1;
	bigtime_t fBegan = 0;
	bool fCanSeek = true;
	bool fKnown = false;
	bool fHangs = false;
};
