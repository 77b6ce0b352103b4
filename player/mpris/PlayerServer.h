#pragma once

#include "BusThread.h"
#include "served_values.h"

#include <atomic>
#include <string>

struct sd_bus_message;

class Engine;
class PlayState;

/*!	Makes the player an MPRIS2 one, so that media keys and other programs drive it: "org.mpris.MediaPlayer2.qubo" on the session
	bus, and with ".instancePID" behind it where that name is taken. It has a name only while it is on.
	Thread: the public calls from any, they only post; all else on the bus thread. Commands go to the engine, which never waits; what
	is the window's or the program's business goes to the listener. */
class PlayerServer : private BusThread::Client {
public:
	class Listener {
	public:
		virtual ~Listener() = default;
		// on the bus thread; they must not wait
		virtual void RaiseAsked() = 0;
		virtual void QuitAsked() = 0;
		virtual void OpenAsked(const std::string& file) = 0;
		virtual void VolumeAsked(int32 percent) = 0;
	};

	//! `state` is the engine's. Off at first.
	PlayerServer(BusThread& bus, const PlayState& state, Engine& engine, Listener& listener);
	~PlayerServer() override;

	void SetOn(bool on);
	//! Something that is told may have changed.
	void PlayingChanged();
	//! The position has gone elsewhere in the song.
	void Sought();

private:
	friend struct PlayerInterface; // the bus library's callbacks

	void BusConnected() override;
	void BusLost() override;
	void TakeName();
	void RequestName(const std::string& name);
	void GiveNameBack();
	void NameAnswered(sd_bus_message* answer);
	void TellChanges();
	void Drop();

	BusThread& fBus;
	const PlayState& fState;
	Engine& fEngine;
	Listener& fListener;

	// the bus thread only
	bool fOn = false;
	std::string fName;  // that it has or asks for; "": none
	ServedValues fTold; // when something changed last
	BusSlot fRootSlot;
	BusSlot fPlayerSlot;
	BusSlot fNameCall;
};
