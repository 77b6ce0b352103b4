#pragma once

#include <MessageFilter.h>
#include <Messenger.h>

/*!	Sits on the application and passes notices of changed inter-app preferences ('_ipc') on to the communication manager.
	Thread: the application's. Owner: the application, from which the manager takes it off again. */
class TIAPFilter : public BMessageFilter {
public:
	explicit TIAPFilter(const BMessenger& manager);

	//! Always lets the message through, and never waits.
	filter_result Filter(BMessage* message, BHandler** target) override;

private:
	BMessenger fManager;
};
