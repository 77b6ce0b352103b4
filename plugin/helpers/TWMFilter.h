#pragma once

#include <MessageFilter.h>
#include <Messenger.h>

/*!	Sits on the host's window and tells the display window that it has moved ('Scwm').
	Thread: the host window's. Owner: the host's window, from which the display window takes it off again. */
class TWMFilter : public BMessageFilter {
public:
	explicit TWMFilter(const BMessenger& displayWindow);

	//! Always lets the message through, and never waits.
	filter_result Filter(BMessage* message, BHandler** target) override;

private:
	BMessenger fDisplayWindow;
};
