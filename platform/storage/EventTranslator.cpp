#include "storage/EventTranslator.h"

#include <algorithm>
#include <filesystem>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <utility>

#include <NodeMonitor.h>

#include "storage/FileDescriptor.h"

namespace BPrivate {

namespace {

const bigtime_t kHoldCreated = 100000;
const bigtime_t kHoldMove
	= 20000; // both halves are reported at one go, but others may come between

BMessage
make_message(int32 opcode, dev_t device, ino_t node)
{
	BMessage message(B_NODE_MONITOR);
	message.AddInt32("opcode", opcode);
	message.AddInt32("device", static_cast<int32>(device));
	message.AddInt64("node", static_cast<int64>(node));
	return message;
}

BMessage
make_entry_message(int32 opcode, const node_ref& folder, const std::string& name, ino_t node)
{
	BMessage message = make_message(opcode, folder.device, node);
	message.AddInt64("directory", static_cast<int64>(folder.node));
	message.AddString("name", name.c_str());
	return message;
}

//!	Adds those who watch the node for this; each is told once.
void
add_targets(std::vector<BMessenger>& targets, const WatchedNode* node, uint32 flags)
{
	if (node == NULL)
		return;
	for (const Watcher& watcher : node->watchers) {
		if ((watcher.flags & flags) != 0
			&& std::find(targets.begin(), targets.end(), watcher.target) == targets.end())
			targets.push_back(watcher.target);
	}
}

bool
stat_entry(const WatchedNode& folder, const std::string& name, struct stat& stat)
{
	return !folder.path.empty() && lstat(path_in(folder.path, name).c_str(), &stat) == 0;
}

//!	The node that has the name now; unset when nothing has it.
node_ref
node_of(const WatchedNode& folder, const std::string& name)
{
	struct stat stat;
	if (!stat_entry(folder, name, stat))
		return node_ref();
	return node_ref(stat.st_dev, stat.st_ino);
}

} // namespace

EventTranslator::EventTranslator(WatchList& list) : fList(list) { }

void
EventTranslator::Handle(const inotify_event& event)
{
	if ((event.mask & IN_Q_OVERFLOW) != 0) {
		_EventsLost();
		return;
	}
	if (_EndsMove(event))
		_EndMove(); // which may end watches, too
	WatchedNode* node = fList.FindWatch(event.wd);
	if (node == NULL)
		return; // of a watch that was ended meanwhile
	if (event.len > 0)
		_HandleEntry(*node, event);
	else
		_HandleNode(*node, event.mask);
}

bigtime_t
EventTranslator::NextTime() const
{
	bigtime_t time = fHeld.empty() ? B_INFINITE_TIMEOUT : fHeld.front().time;
	return fMove ? std::min(time, fMove->time) : time;
}

void
EventTranslator::HandleTime(bigtime_t now)
{
	if (fMove && fMove->time <= now)
		_EndMove();
	while (!fHeld.empty() && fHeld.front().time <= now)
		_TellIfHeld(node_ref(fHeld.front().folder), std::string(fHeld.front().name));
}

std::vector<Delivery>
EventTranslator::TakeDeliveries()
{
	return std::exchange(fDeliveries, {});
}

void
EventTranslator::_HandleEntry(WatchedNode& folder, const inotify_event& event)
{
	std::string name = event.name;
	if ((event.mask & IN_CREATE) != 0)
		_EntryCreated(folder, name);
	else if ((event.mask & IN_CLOSE_WRITE) != 0)
		_TellIfHeld(folder.ref, name);
	else if ((event.mask & IN_DELETE) != 0)
		_EntryRemoved(folder, name);
	else if ((event.mask & IN_MOVED_FROM) != 0)
		_EntryMovedFrom(folder, name, event.cookie);
	else if ((event.mask & IN_MOVED_TO) != 0)
		_EntryMovedTo(folder, name, event);
}

void
EventTranslator::_HandleNode(WatchedNode& node, uint32 mask)
{
	if ((mask & (IN_CLOSE_WRITE | IN_ATTRIB)) != 0)
		_SendStatChanged(node, B_WATCH_STAT | B_WATCH_ATTR);
	if ((mask & (IN_DELETE_SELF | IN_UNMOUNT)) != 0)
		_NodeGone(node);
	if ((mask & IN_IGNORED) != 0)
		fList.Forget(node);
}

/*!	What is not there any more was moved or removed: that is told next. */
void
EventTranslator::_EntryCreated(WatchedNode& folder, const std::string& name)
{
	struct stat stat;
	if (!folder.isListed || !stat_entry(folder, name, stat))
		return;
	folder.entries[name] = node_ref(stat.st_dev, stat.st_ino);
	// A second link has nobody who writes it at this moment.
	if (S_ISREG(stat.st_mode) && stat.st_nlink == 1)
		fHeld.push_back({folder.ref, name, system_time() + kHoldCreated});
	else
		_SendCreated(folder, name);
}

void
EventTranslator::_EntryRemoved(WatchedNode& folder, const std::string& name)
{
	_TellIfHeld(folder.ref, name);
	auto entry = folder.entries.find(name);
	if (entry == folder.entries.end())
		return;
	node_ref ref = entry->second;
	folder.entries.erase(entry);
	WatchedNode* node = fList.Find(ref);
	if (node != NULL && (node->folder != folder.ref || node->name != name))
		node = NULL; // has another name, too

	Targets targets;
	add_targets(targets, &folder, B_WATCH_DIRECTORY);
	add_targets(targets, node, B_WATCH_NAME);
	_Send(make_entry_message(B_ENTRY_REMOVED, folder.ref, name, ref.node), targets);
	// Its number may have been given to the next of that name, and that one is watched already.
	if (node != NULL && node_of(folder, name) == ref)
		folder.entries[name] = ref;
	else if (node != NULL)
		fList.LostName(*node); // the folder may be gone after this
}

void
EventTranslator::_EntryMovedFrom(WatchedNode& folder, const std::string& name, uint32 cookie)
{
	_TellIfHeld(folder.ref, name);
	fMove = Move{cookie, folder.ref, name, node_ref(), system_time() + kHoldMove};
	auto entry = folder.entries.find(name);
	if (entry != folder.entries.end()) {
		fMove->node = entry->second;
		folder.entries.erase(entry);
	}
}

void
EventTranslator::_EntryMovedTo(
	WatchedNode& folder, const std::string& name, const inotify_event& event)
{
	_TellIfHeld(folder.ref, name);
	std::optional<Move> from;
	if (fMove && fMove->cookie == event.cookie)
		from = std::exchange(fMove, std::nullopt);

	node_ref ref = from ? from->node : node_ref();
	if (ref == node_ref())
		ref = node_of(folder, name);

	// Moved over another: that one is gone.
	auto entry = folder.entries.find(name);
	if (entry != folder.entries.end() && entry->second != ref) {
		node_ref folderRef = folder.ref;
		_EntryRemoved(folder, name);
		if (fList.Find(folderRef) == NULL)
			return; // it was watched for the other's sake only
	}
	if (ref == node_ref())
		return; // gone again
	if (from) {
		_NodeMoved(folder, name, ref, *from);
		return;
	}
	WatchedNode* known = fList.Find(ref);
	bool isBack = known != NULL && known->name.empty();
	if (isBack || folder.isListed)
		folder.entries[name] = ref;
	if (isBack)
		fList.Moved(*known, folder, name);
	_SendCreated(folder, name);
}

/*!	Within a folder or from one that is watched to another. */
void
EventTranslator::_NodeMoved(
	WatchedNode& folder, const std::string& name, const node_ref& ref, const Move& from)
{
	WatchedNode* fromFolder = fList.Find(from.folder);
	WatchedNode* node = fList.Find(ref);
	if (folder.isListed || node != NULL)
		folder.entries[name] = ref;

	BMessage message = make_message(B_ENTRY_MOVED, folder.ref.device, ref.node);
	message.AddInt64("from directory", static_cast<int64>(from.folder.node));
	message.AddInt64("to directory", static_cast<int64>(folder.ref.node));
	message.AddString("name", name.c_str());
	message.AddString("from name", from.name.c_str());
	Targets targets;
	add_targets(targets, fromFolder, B_WATCH_DIRECTORY);
	add_targets(targets, &folder, B_WATCH_DIRECTORY);
	add_targets(targets, node, B_WATCH_NAME);
	_Send(message, targets);

	if (fromFolder != NULL && !fromFolder->path.empty() && !folder.path.empty())
		fList.FolderMoved(path_in(fromFolder->path, from.name), path_in(folder.path, name));
	if (node != NULL && node->name == from.name && node->folder == from.folder)
		fList.Moved(*node, folder, name);
}

/*!	Mostly its folder has told it before. */
void
EventTranslator::_NodeGone(WatchedNode& node)
{
	if (node.name.empty())
		return;
	Targets targets;
	add_targets(targets, &node, B_WATCH_NAME);
	_Send(make_entry_message(B_ENTRY_REMOVED, node.folder, node.name, node.ref.node), targets);
	fList.LostName(node);
}

void
EventTranslator::_EventsLost()
{
	if (fMove)
		_EndMove();
	while (!fHeld.empty())
		_TellIfHeld(node_ref(fHeld.front().folder), std::string(fHeld.front().name));
	for (const node_ref& ref : fList.All()) {
		WatchedNode* node = fList.Find(ref);
		if (node == NULL)
			continue;
		_SendStatChanged(*node, B_WATCH_ALL);
		if (node->isFolder)
			_CompareEntries(*node);
	}
}

//!	Tells what has changed in a folder since its watchers were told the last time.
void
EventTranslator::_CompareEntries(WatchedNode& folder)
{
	node_ref ref = folder.ref;
	std::map<std::string, node_ref> known = folder.entries;
	for (const auto& [name, node] : known) {
		if (node_of(folder, name) != node)
			_EntryRemoved(folder, name);
		if (fList.Find(ref) == NULL)
			return;
	}
	if (!folder.isListed)
		return;
	std::error_code error;
	for (std::filesystem::directory_iterator entry(folder.path, error), end; !error && entry != end;
		 entry.increment(error)) {
		std::string name = entry->path().filename();
		node_ref node = node_of(folder, name);
		if (folder.entries.count(name) == 0 && node != node_ref()) {
			folder.entries[name] = node;
			_SendCreated(folder, name);
		}
	}
}

void
EventTranslator::_TellIfHeld(const node_ref& folder, const std::string& name)
{
	auto held = std::find_if(fHeld.begin(), fHeld.end(),
		[&](const Created& created) { return created.folder == folder && created.name == name; });
	if (held == fHeld.end())
		return;
	fHeld.erase(held);
	WatchedNode* node = fList.Find(folder);
	if (node != NULL)
		_SendCreated(*node, name);
}

//!	Whether the other half of the move does not come any more, as far as it matters for the event.
bool
EventTranslator::_EndsMove(const inotify_event& event) const
{
	if (!fMove || ((event.mask & IN_MOVED_TO) != 0 && event.cookie == fMove->cookie))
		return false;
	if ((event.mask & IN_MOVED_FROM) != 0)
		return true;
	WatchedNode* folder = fList.FindWatch(event.wd);
	return event.len > 0 && folder != NULL && folder->ref == fMove->folder
		&& fMove->name == event.name;
}

//!	The other half does not come: it went where nobody watches.
void
EventTranslator::_EndMove()
{
	Move move = *std::exchange(fMove, std::nullopt);
	WatchedNode* folder = fList.Find(move.folder);
	if (folder == NULL || move.node == node_ref())
		return;
	folder->entries[move.name] = move.node;
	_EntryRemoved(*folder, move.name);
}

void
EventTranslator::_SendCreated(WatchedNode& folder, const std::string& name)
{
	auto entry = folder.entries.find(name);
	if (entry == folder.entries.end())
		return;
	Targets targets;
	add_targets(targets, &folder, B_WATCH_DIRECTORY);
	_Send(make_entry_message(B_ENTRY_CREATED, folder.ref, name, entry->second.node), targets);
}

void
EventTranslator::_SendStatChanged(const WatchedNode& node, uint32 flags)
{
	Targets targets;
	add_targets(targets, &node, flags);
	BMessage message = make_message(B_STAT_CHANGED, node.ref.device, node.ref.node);
	for (const BMessenger& target : targets)
		fDeliveries.push_back({target, message, node.ref});
}

void
EventTranslator::_Send(const BMessage& message, const Targets& targets)
{
	for (const BMessenger& target : targets)
		fDeliveries.push_back({target, message, std::nullopt});
}

} // namespace BPrivate
