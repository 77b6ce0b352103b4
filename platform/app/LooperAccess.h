#pragma once

#include "app/LooperLock.h"
#include "app/MessagePort.h"
#include <Looper.h>

namespace BPrivate {

//! Leaves the thread of a looper that has deleted itself; caught where the thread began.
struct LooperEnded { };

//! What the other kits may do with a looper.
class LooperAccess {
public:
	//! Where the display server posts its events; it keeps a weak pointer.
	static std::shared_ptr<MessagePort> Port(const BLooper* looper) { return looper->fPort; }
	//! The looper that runs on the calling thread, NULL on others.
	static BLooper* OfThisThread();
};

} // namespace BPrivate
