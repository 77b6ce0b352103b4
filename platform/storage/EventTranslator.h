#pragma once

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include <Message.h>

#include "storage/WatchList.h"

struct inotify_event;

namespace BPrivate {

//!	A message for somebody.
struct Delivery {
	BMessenger target;
	BMessage message;
	std::optional<node_ref> changed; // the node, of a B_STAT_CHANGED
};

/*!	Makes B_NODE_MONITOR messages of the system's events. Not locked.
	A file that was created is held back until it is closed, and the first half of a move until its
	other half comes: both for a short time only. */
class EventTranslator {
public:
	explicit EventTranslator(WatchList& list);

	void Handle(const inotify_event& event);
	//!	When HandleTime() has something to do, B_INFINITE_TIMEOUT for never.
	bigtime_t NextTime() const;
	void HandleTime(bigtime_t now);

	std::vector<Delivery> TakeDeliveries();

private:
	struct Created {
		node_ref folder;
		std::string name;
		bigtime_t time; // when it is told at the latest
	};
	struct Move {
		uint32 cookie;
		node_ref folder;
		std::string name;
		node_ref node; // unset when it was not seen before
		bigtime_t time;
	};
	using Targets = std::vector<BMessenger>;

	void _HandleEntry(WatchedNode& folder, const inotify_event& event);
	void _HandleNode(WatchedNode& node, uint32 mask);

	void _EntryCreated(WatchedNode& folder, const std::string& name);
	void _EntryRemoved(WatchedNode& folder, const std::string& name);
	void _EntryMovedFrom(WatchedNode& folder, const std::string& name, uint32 cookie);
	void _EntryMovedTo(WatchedNode& folder, const std::string& name, const inotify_event& event);
	void _NodeMoved(
		WatchedNode& folder, const std::string& name, const node_ref& ref, const Move& from);
	void _NodeGone(WatchedNode& node);
	void _EventsLost();
	void _CompareEntries(WatchedNode& folder);

	void _TellIfHeld(const node_ref& folder, const std::string& name);
	bool _EndsMove(const inotify_event& event) const;
	void _EndMove();

	void _SendCreated(WatchedNode& folder, const std::string& name);
	void _SendStatChanged(const WatchedNode& node, uint32 flags);
	void _Send(const BMessage& message, const Targets& targets);

	WatchList& fList;
	std::deque<Created> fHeld; // in the order of their times
	std::optional<Move> fMove;
	std::vector<Delivery> fDeliveries;
};

} // namespace BPrivate
