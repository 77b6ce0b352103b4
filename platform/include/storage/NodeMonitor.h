#pragma once

#include <Messenger.h>
#include <Node.h>

class BHandler;
class BLooper;

// What to watch a node for.
#define B_STOP_WATCHING 0x0000
#define B_WATCH_NAME 0x0001      // it is moved or removed
#define B_WATCH_STAT 0x0002      // its content or attributes changed
#define B_WATCH_ATTR 0x0004      // taken for B_WATCH_STAT
#define B_WATCH_DIRECTORY 0x0008 // entries of this folder are created, moved, removed
#define B_WATCH_ALL 0x000f

/*	"opcode" (int32) of a B_NODE_MONITOR message, and its other fields; "device" is int32, nodes
	and directories int64, names strings:
	B_ENTRY_CREATED	device, directory, node, name
	B_ENTRY_REMOVED	device, directory, node, name
	B_ENTRY_MOVED	device, from directory, to directory, node, name (the new), from name
	B_STAT_CHANGED	device, node */
#define B_ENTRY_CREATED 1
#define B_ENTRY_REMOVED 2
#define B_ENTRY_MOVED 3
#define B_STAT_CHANGED 4

/*!	Sends B_NODE_MONITOR messages to the target when something happens to the node.
	Flags add to those the target watches the node for; B_STOP_WATCHING ends it.
	B_STAT_CHANGED comes when a writer has closed the file or its attributes changed, not at each
	write. B_ENTRY_CREATED of a regular file waits until its writer has closed it, at most 100 ms.
	A move from or to a folder that nobody watches is B_ENTRY_REMOVED or B_ENTRY_CREATED. After the
	system lost events each watcher of a node gets B_STAT_CHANGED, of a folder what became of it.
	B_BAD_VALUE: NULL, or nothing to stop; B_ENTRY_NOT_FOUND: the node is not where the kit has
	seen it last, or it was not the kit that gave the node_ref; B_NO_MEMORY: too many watches.
	Any thread. A target that is gone is forgotten. */
status_t watch_node(const node_ref* node, uint32 flags, BMessenger target);
//!	A handler with its looper, or with NULL the looper that it belongs to.
status_t watch_node(
	const node_ref* node, uint32 flags, const BHandler* handler, const BLooper* looper = NULL);

//!	Ends all of the target's watches. Messages on their way still arrive.
status_t stop_watching(BMessenger target);
status_t stop_watching(const BHandler* handler, const BLooper* looper = NULL);
