#pragma once

#include "../Transport.h"
#include "BusThread.h"
#include "PlayerNames.h"
#include "PositionReader.h"
#include "RemotePlayer.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

/*!	Takes what another player on the session bus plays for what plays here, and passes commands on to it. Of several players it is
	the one that began to play last, unless one is pinned; never this program itself, nor a proxy of other players.
	It finds players all the time, and listens to them while it is on.
	Thread: the public calls may come from any thread and never wait; all else is done on the bus thread. */
class Follower : public Transport, private BusThread::Client, private RemotePlayer::Listener {
public:
	//! Names are those on the bus behind the common prefix, in any case; "vlc" is "vlc.instance7" as well.
	struct Wish {
		std::vector<std::string> names;   // of the only players that count; none: all
		std::vector<std::string> ignored; // of players that do not
		std::string lyricsFolder;         // for tracks without a file
	};
	struct Report {
		bool on = false;
		bool looked = false; // at the bus: who is there is known
		bool seeks = false;  // the followed player can
		std::vector<std::string> players;
		std::string pinned;
		std::string
			text; // for the user: what is followed, or why there is nothing. "": not known yet
		bool operator==(const Report&) const = default;
	};
	class Listener {
	public:
		virtual ~Listener() = default;
		//! On the bus thread: what plays, or the report.
		virtual void FollowingChanged() = 0;
	};

	Follower(BusThread& bus, const Wish& wish, Listener& listener);
	~Follower() override;

	//! Off, it holds nothing that plays.
	void SetOn(bool on);
	//! Only this player from now on, or when it comes again; "": whichever began last.
	void Pin(const std::string& name);
	Report Tell() const;

	const PlayState& State() const override { return fState; }
	void Play(int32 index, bool fade = false, bigtime_t position = 0) override;
	void Resume() override;
	void Pause() override;
	void TogglePause() override;
	void Previous() override;
	void Next() override;
	void SeekTo(bigtime_t position) override;
	void SeekBy(bigtime_t offset) override;
	//! The followed player keeps its own.
	void SetVolume(int32) override { }
	void Stop() override;

private:
	void BusConnected() override;
	void BusLost() override;
	void PlayerChanged(RemotePlayer& player) override;
	void PlayerSeeked(RemotePlayer& player, bigtime_t position) override;

	// who is there
	bool IsAllowed(const std::string& name, const std::string& owner) const;
	bool IsSecondName(const std::string& name, uint32 process) const;
	void Reconcile();
	void DropAll();

	// what plays
	RemotePlayer* Chosen() const;
	bool IsPinned(const std::string& name) const;
	void Refresh();
	void Show(const RemotePlayer& player);
	void ShowStatus(const RemotePlayer& player);
	void ShowTrack(const RemoteTrack& track);
	void ShowNothing();
	SongTags Tags(const RemoteTrack& track) const;
	void TellReport(const RemotePlayer* player);
	std::string Text(const RemotePlayer* player) const;
	std::string TextOf(const RemotePlayer& player) const;
	void Do(const char* method);
	void SeekNow(bigtime_t position);

	BusThread& fBus;
	const Wish fWish;
	Listener& fListener;
	PlayState fState;

	mutable std::mutex fLock; // of the report
	Report fReport;

	// the bus thread only
	PlayerNames fNames;
	std::map<std::string, std::unique_ptr<RemotePlayer>> fPlayers;
	PositionReader fReader;
	std::string fPinned;
	std::string fFollowed; // unique name
	RemoteTrack fTrack;    // what is shown, with its file, status and rate
	std::string fFile;
	PlayState::State fStatus = PlayState::kStopped;
	double fRate = 0;
	bool fOn = false;
	bool fNoBus = false;
};
