#pragma once

#include <Messenger.h>
#include <map>
#include <vector>

namespace BPrivate {

/*!	Who watches a handler, and for what. Handlers are kept by their tokens: one that is gone is found no more.
	Thread: that of the handler it belongs to. */
class ObserverList {
public:
	void Add(uint32 what, const BMessenger& observer);
	//! B_BAD_HANDLER if it was not there.
	status_t Remove(uint32 what, const BMessenger& observer);
	bool IsEmpty() const { return fObservers.empty(); }
	//! To those that watch `what` itself; forgets those that are gone.
	void Notify(uint32 what, BMessage* notice);

private:
	std::map<uint32, std::vector<BMessenger>> fObservers;
};

/*!	How a handler is kept in the list, which it may be before it has a looper: a messenger without a port. */
BMessenger observer_of(const BHandler* handler);

} // namespace BPrivate
