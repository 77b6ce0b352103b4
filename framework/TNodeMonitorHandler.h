#pragma once

#include <map>
#include <memory>

#include <Handler.h>
#include <Node.h>

class BMessageRunner;

namespace merion {

/*!	Tells its looper, by one message without fields, that something happened to the nodes it watches. What comes within
	kMergeTime of the first report makes one notice; what comes after a notice makes another one.
	Thread: its looper's, all methods with that locked. Owner: its maker; it must belong to a looper before it watches. */
class TNodeMonitorHandler : public BHandler {
public:
	//! What of each node is watched, as flags of watch_node().
	using Nodes = std::map<node_ref, uint32>;

	//! `noticeCode`: of the message that the looper gets.
	explicit TNodeMonitorHandler(uint32 noticeCode);
	~TNodeMonitorHandler() override;

	//! From now on these are watched. Nothing is missed of a node that was watched before.
	void Watch(const Nodes& nodes);
	//! As if a node had changed.
	void Notify();

	void MessageReceived(BMessage* message) override;

	static constexpr bigtime_t kMergeTime = 100000; // µs

private:
	void NodeChanged();
	void MergeTimeIsOver();

	const uint32 fNoticeCode;
	Nodes fNodes;
	std::unique_ptr<BMessageRunner> fRunner; // while reports are gathered
};

} // namespace merion
