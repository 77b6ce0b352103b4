#include "plugin/helpers/TIAPFilter.h"

#include <Message.h>

#include "plugin/helpers/commman_codes.h"

TIAPFilter::TIAPFilter(const BMessenger& manager)
	: BMessageFilter(B_ANY_DELIVERY, B_ANY_SOURCE, kIAPChanged),
	  fManager(manager)
{ }

filter_result
TIAPFilter::Filter(BMessage* message, BHandler**)
{
	// The manager may just be waiting for the application's lock, to take this filter off.
	constexpr bigtime_t kNoWaiting = 0;
	BMessage notice(*message);
	fManager.SendMessage(&notice, static_cast<BHandler*>(nullptr), kNoWaiting);
	return B_DISPATCH_MESSAGE;
}
