#pragma once

#include <Messenger.h>
#include <Window.h>

/*!	A window of the manager's while it is open. The application may quit it at any time; the slot is empty then.
	Thread: the manager's. */
template<typename Window> class WindowSlot {
public:
	void Set(Window* window)
	{
		fWindow = window;
		fMessenger = BMessenger(window);
	}

	//! Null while it is closed.
	Window* Get() const { return fMessenger.IsValid() ? fWindow : nullptr; }

	//! As Get(), and empties the slot; the window stays as it is.
	Window* Take()
	{
		Window* window = Get();
		fMessenger = BMessenger();
		fWindow = nullptr;
		return window;
	}

	//! To the window itself; does nothing while it is closed.
	void Post(BMessage* message) const { fMessenger.SendMessage(message); }

	//! False while it is closed.
	bool GetFrame(BRect* frame) const
	{
		if (!fMessenger.LockTarget())
			return false;
		*frame = fWindow->Frame();
		fWindow->Unlock();
		return true;
	}

private:
	// May be gone, and another window in its place: only fMessenger tells.
	Window* fWindow = nullptr;
	BMessenger fMessenger;
};
