#include "app/Observers.h"

#include "app/LooperList.h"
#include "app/MessageAccess.h"
#include "app/MessagePort.h"
#include "app/TokenTable.h"
#include <algorithm>

namespace BPrivate {

namespace {

//! Only the token counts: the looper is looked up when there is something to tell.
BMessenger
address_of(const BMessenger& observer)
{
	BLooper* looper = NULL;
	if (!TokenTable::Find(MessengerAccess::Token(observer), nullptr, &looper))
		return BMessenger();
	const std::shared_ptr<MessagePort> port = LooperList::PortOf(looper);
	return port != nullptr ? MessengerAccess::Make(port->Id(), MessengerAccess::Token(observer))
						   : BMessenger();
}

bool
is_by_token(const BMessenger& observer)
{
	return MessengerAccess::Port(observer) < 0;
}

bool
is_gone(const BMessenger& observer)
{
	const int32 token = MessengerAccess::Token(observer);
	return is_by_token(observer) ? !TokenTable::Find(token, nullptr, nullptr) : !observer.IsValid();
}

} // namespace

BMessenger
observer_of(const BHandler* handler)
{
	return MessengerAccess::Make(-1, MessengerAccess::TokenOf(handler));
}

void
ObserverList::Add(uint32 what, const BMessenger& observer)
{
	std::vector<BMessenger>& list = fObservers[what];
	if (std::find(list.begin(), list.end(), observer) == list.end())
		list.push_back(observer);
}

status_t
ObserverList::Remove(uint32 what, const BMessenger& observer)
{
	const auto found = fObservers.find(what);
	if (found == fObservers.end() || std::erase(found->second, observer) == 0)
		return B_BAD_HANDLER;
	if (found->second.empty())
		fObservers.erase(found);
	return B_OK;
}

void
ObserverList::Notify(uint32 what, BMessage* notice)
{
	const auto found = fObservers.find(what);
	if (found == fObservers.end())
		return;
	std::erase_if(found->second, is_gone);
	if (found->second.empty()) {
		fObservers.erase(found);
		return;
	}
	for (const BMessenger& observer : found->second) {
		const BMessenger target = is_by_token(observer) ? address_of(observer) : observer;
		target.SendMessage(notice, BMessenger(), 0);
	}
}

} // namespace BPrivate
