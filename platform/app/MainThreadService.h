#pragma once

namespace BPrivate {

/*!	What the application kit asks of the display server, if there is one: the server owns the process's main thread while
	the application runs. The library that holds the server sets gMainThreadService from a static initialiser; without
	it (a program that shows nothing) BApplication works all the same.
	Start() and Run() are called on the thread that makes the BApplication; Stop() on any. */
class MainThreadService {
public:
	virtual ~MainThreadService() = default;
	//! From BApplication's constructor, before any window is made: start the server on the calling thread.
	virtual void Start() = 0;
	//! From BApplication::Run(): serve until Stop().
	virtual void Run() = 0;
	//! When the last looper of the process has ended.
	virtual void Stop() = 0;
};

extern MainThreadService* gMainThreadService;

} // namespace BPrivate
