#pragma once

#include <Handler.h>

class BMessageFilter;

enum filter_result { B_SKIP_MESSAGE, B_DISPATCH_MESSAGE };

/*!	Looks at a message before its target does, and may give it another one of the same looper by writing `*target`. */
typedef filter_result (*filter_hook)(BMessage* message, BHandler** target, BMessageFilter* filter);

enum message_delivery { B_ANY_DELIVERY, B_DROPPED_DELIVERY, B_PROGRAMMED_DELIVERY };
enum message_source { B_ANY_SOURCE, B_REMOTE_SOURCE, B_LOCAL_SOURCE };

/*!	Sees the messages of a handler, or of all handlers of a looper, that fit its code, delivery and source.
	Thread: the looper's, locked. Owner: the handler or looper that it is added to. Whoever takes one off before its own code goes away
	holds the looper's lock. */
class BMessageFilter {
public:
	BMessageFilter(uint32 what, filter_hook func = NULL);
	BMessageFilter(message_delivery delivery, message_source source, filter_hook func = NULL);
	BMessageFilter(
		message_delivery delivery, message_source source, uint32 what, filter_hook func = NULL);
	//! The copy belongs to no handler.
	BMessageFilter(const BMessageFilter& other);
	virtual ~BMessageFilter();
	BMessageFilter& operator=(const BMessageFilter& other);

	//! Hook; not called for a filter with a hook function. B_SKIP_MESSAGE: the message ends here.
	virtual filter_result Filter(BMessage* message, BHandler** target);

	message_delivery MessageDelivery() const { return fDelivery; }
	message_source MessageSource() const { return fSource; }
	//! Without a meaning when the filter takes any code.
	uint32 Command() const { return fWhat; }
	bool FiltersAnyCommand() const { return fFiltersAny; }
	BLooper* Looper() const { return fLooper; }

private:
	friend class BLooper;
	friend class BHandler;

	void SetLooper(BLooper* looper) { fLooper = looper; }
	bool Fits(const BMessage* message) const;
	filter_result Ask(BMessage* message, BHandler** target);

	bool fFiltersAny;
	uint32 fWhat = 0;
	message_delivery fDelivery = B_ANY_DELIVERY;
	message_source fSource = B_ANY_SOURCE;
	BLooper* fLooper = nullptr;
	filter_hook fHook;
};
