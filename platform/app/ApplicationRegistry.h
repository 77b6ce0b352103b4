#pragma once

#include <Messenger.h>

namespace BPrivate {

/*!	What other threads may know of the process's application. Any thread. */

//! From BApplication's constructor; false when there is one already.
bool register_application(const char* signature, int32 port);
void unregister_application(int32 port);
//! Letters in any case.
bool is_application(const char* signature);
//! Aimed at the application itself; invalid without one.
BMessenger application_messenger();

//! The path of the running program; empty if it cannot be told.
const char* executable_path();

} // namespace BPrivate
