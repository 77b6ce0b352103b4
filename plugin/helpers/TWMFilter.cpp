#include "plugin/helpers/TWMFilter.h"

#include <AppDefs.h>
#include <Message.h>

#include "plugin/helpers/commman_codes.h"

TWMFilter::TWMFilter(const BMessenger& displayWindow)
	: BMessageFilter(B_ANY_DELIVERY, B_ANY_SOURCE, B_WINDOW_MOVED),
	  fDisplayWindow(displayWindow)
{ }

filter_result
TWMFilter::Filter(BMessage*, BHandler**)
{
	// The display window may just be waiting for this window's lock: to wait for room in its queue would be a deadlock.
	// Where there is no room, a notice waits there already or the next one will do.
	constexpr bigtime_t kNoWaiting = 0;
	BMessage notice(kHostWindowMoved);
	fDisplayWindow.SendMessage(&notice, static_cast<BHandler*>(nullptr), kNoWaiting);
	return B_DISPATCH_MESSAGE;
}
