#pragma once

#include <QWidget>
#include <SupportDefs.h>

/*!	What Qt does not tell or do under X. Server thread only; without an X server every function does
	nothing and answers false. */
namespace BPrivate::X11Extras {

struct PointerMask {
	uint32 buttons = 0; // B_PRIMARY_MOUSE_BUTTON...
	uint32 locks = 0;   // B_CAPS_LOCK, B_NUM_LOCK
};

bool QueryPointer(PointerMask& mask);
//! After every show: the window gets no entry in the task bar and the pager.
bool SkipTaskbar(const QWidget& window);
//! After every show: the window is on all workspaces.
bool ShowOnAllWorkspaces(const QWidget& window);

} // namespace BPrivate::X11Extras
