#include "framework/TNodeMonitorHandler.h"

#include <Looper.h>
#include <Message.h>
#include <MessageRunner.h>
#include <NodeMonitor.h>

namespace merion {

namespace {

constexpr uint32 kMergeTimeOver = 'NMmt'; // runner -> handler; none

} // namespace

TNodeMonitorHandler::TNodeMonitorHandler(uint32 noticeCode)
	: BHandler("Node monitor handler"),
	  fNoticeCode(noticeCode)
{ }

TNodeMonitorHandler::~TNodeMonitorHandler()
{
	if (Looper() != nullptr)
		stop_watching(this);
}

void
TNodeMonitorHandler::Watch(const Nodes& nodes)
{
	for (const auto& [node, flags] : fNodes) {
		if (!nodes.contains(node))
			watch_node(&node, B_STOP_WATCHING, this);
	}
	// The known ones too: a node that was deleted is watched no more, and its number may be another file's by now.
	for (const auto& [node, flags] : nodes)
		watch_node(&node, flags, this);
	fNodes = nodes;
}

void
TNodeMonitorHandler::Notify()
{
	NodeChanged();
}

void
TNodeMonitorHandler::MessageReceived(BMessage* message)
{
	switch (message->what) {
		case B_NODE_MONITOR:
			NodeChanged();
			break;
		case kMergeTimeOver:
			MergeTimeIsOver();
			break;
		default:
			BHandler::MessageReceived(message);
	}
}

void
TNodeMonitorHandler::NodeChanged()
{
	if (fRunner != nullptr)
		return;
	const BMessage over(kMergeTimeOver);
	fRunner = std::make_unique<BMessageRunner>(BMessenger(this), over, kMergeTime, 1);
	if (fRunner->InitCheck() != B_OK)
		MergeTimeIsOver();
}

void
TNodeMonitorHandler::MergeTimeIsOver()
{
	fRunner.reset();
	Looper()->PostMessage(fNoticeCode);
}

} // namespace merion
