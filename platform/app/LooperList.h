#pragma once

#include <OS.h>
#include <memory>
#include <vector>

class BLooper;
class BWindow;

/*!	All loopers of the process, in the order of their making, and the threads they run on. Any thread.
	A looper in the answer may be gone the next moment: lock it, which fails then. Pointers are compared, not followed. */
namespace BPrivate {

class LooperLock;
class MessagePort;

namespace LooperList {

void Add(BLooper* looper, std::shared_ptr<LooperLock> lock, std::shared_ptr<MessagePort> port);
void Remove(BLooper* looper);
void SetName(BLooper* looper, const char* name);
//! NULL: it is no window (any more).
void SetWindow(BLooper* looper, BWindow* window);
//! When the lists name a window, which is when it is asked to quit with all the others.
enum QuitOrder {
	kQuitsFirst, // another one waits for it, locked
	kQuitsAsUsual,
	kQuitsLast, // it cannot refuse to quit
};
void SetQuitOrder(BLooper* looper, QuitOrder order);

//! NULL when the looper is gone.
std::shared_ptr<LooperLock> LockOf(const BLooper* looper);
std::shared_ptr<MessagePort> PortOf(const BLooper* looper);
//! The looper that reads a port, NULL without one; `lock` may be NULL.
BLooper* OfPort(int32 port, std::shared_ptr<LooperLock>* lock = nullptr);
BLooper* OfThread(thread_id thread);

struct Item {
	BLooper* looper;
	BWindow* window; // NULL if it is none
};
std::vector<Item> Loopers();
std::vector<Item> Windows();
//! By the name of a handler; NULL if there is none.
BLooper* Named(const char* name, bool windowsOnly);

// Threads: what a looper's thread runs of others' code lies between the two calls.

void ThreadBegins(thread_id thread);
void ThreadEnds(thread_id thread);
/*!	Until every looper's thread but `except` has ended. Names those that it waits for on standard error
	every five seconds. */
void WaitForThreads(thread_id except = -1);

} // namespace LooperList
} // namespace BPrivate
