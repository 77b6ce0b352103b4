#pragma once

#include "PlayState.h"

/*!	What plays and takes the user's commands: the engine, or another player that is followed. State() tells what plays.
	Thread: any; the calls never wait, they only ask. What cannot be done is not done. */
class Transport {
public:
	virtual ~Transport() = default;

	virtual const PlayState& State() const = 0;

	//! Plays a song of the list, from `position` (µs) on; `fade`: after 0.5 s in which the old one fades out.
	virtual void Play(int32 index, bool fade = false, bigtime_t position = 0) = 0;
	//! Plays, goes on, or starts again after the end.
	virtual void Resume() = 0;
	virtual void Pause() = 0;
	virtual void TogglePause() = 0;
	//! Back to the song's start when it has played for a while, else the song before it.
	virtual void Previous() = 0;
	virtual void Next() = 0;
	virtual void SeekTo(bigtime_t position) = 0;
	virtual void SeekBy(bigtime_t offset) = 0;
	virtual void SetVolume(int32 percent) = 0;
	virtual void Stop() = 0;
};
