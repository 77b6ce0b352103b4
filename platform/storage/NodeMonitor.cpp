#include <NodeMonitor.h>

#include "storage/NodeMonitorThread.h"

using BPrivate::NodeMonitorThread;

status_t
watch_node(const node_ref* node, uint32 flags, BMessenger target)
{
	if (node == NULL || (flags & ~B_WATCH_ALL) != 0)
		return B_BAD_VALUE;
	if (flags == B_STOP_WATCHING)
		return NodeMonitorThread::Default().StopWatching(*node, target);
	if (!target.IsValid())
		return B_BAD_VALUE;
	return NodeMonitorThread::Default().Watch(*node, flags, target);
}

status_t
watch_node(const node_ref* node, uint32 flags, const BHandler* handler, const BLooper* looper)
{
	status_t status;
	BMessenger target(handler, looper, &status);
	return status == B_OK ? watch_node(node, flags, target) : status;
}

status_t
stop_watching(BMessenger target)
{
	NodeMonitorThread::Default().StopWatching(target);
	return B_OK;
}

status_t
stop_watching(const BHandler* handler, const BLooper* looper)
{
	status_t status;
	BMessenger target(handler, looper, &status);
	return status == B_OK ? stop_watching(target) : status;
}
