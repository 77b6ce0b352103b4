#include <MessageFilter.h>

#include <Message.h>

BMessageFilter::BMessageFilter(uint32 what, filter_hook func)
	: fFiltersAny(false),
	  fWhat(what),
	  fHook(func)
{ }

BMessageFilter::BMessageFilter(message_delivery delivery, message_source source, filter_hook func)
	: fFiltersAny(true),
	  fDelivery(delivery),
	  fSource(source),
	  fHook(func)
{ }

BMessageFilter::BMessageFilter(
	message_delivery delivery, message_source source, uint32 what, filter_hook func)
	: fFiltersAny(false),
	  fWhat(what),
	  fDelivery(delivery),
	  fSource(source),
	  fHook(func)
{ }

BMessageFilter::BMessageFilter(const BMessageFilter& other)
{
	*this = other;
}

BMessageFilter::~BMessageFilter() = default;

BMessageFilter&
BMessageFilter::operator=(const BMessageFilter& other)
{
	fFiltersAny = other.fFiltersAny;
	fWhat = other.fWhat;
	fDelivery = other.fDelivery;
	fSource = other.fSource;
	fHook = other.fHook;
	return *this;
}

filter_result
BMessageFilter::Filter(BMessage*, BHandler**)
{
	return B_DISPATCH_MESSAGE;
}

bool
BMessageFilter::Fits(const BMessage* message) const
{
	if (!fFiltersAny && fWhat != message->what)
		return false;
	if (fDelivery != B_ANY_DELIVERY && message->WasDropped() != (fDelivery == B_DROPPED_DELIVERY))
		return false;
	return fSource == B_ANY_SOURCE || message->IsSourceRemote() == (fSource == B_REMOTE_SOURCE);
}

filter_result
BMessageFilter::Ask(BMessage* message, BHandler** target)
{
	return fHook != NULL ? fHook(message, target, this) : Filter(message, target);
}
