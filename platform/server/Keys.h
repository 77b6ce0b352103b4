#pragma once

#include <QByteArray>
#include <QKeyEvent>
#include <SupportDefs.h>

namespace BPrivate {

//! Shift, Command (Alt), Control and Option (Super) of what the toolkit tells.
uint32 platform_modifiers(Qt::KeyboardModifiers modifiers);
uint32 platform_buttons(Qt::MouseButtons buttons);

//! A key as the platform's messages tell it.
struct PlatformKey {
	int32 code;       // the place on the keyboard, 0 if unknown
	QByteArray bytes; // what it produces, UTF-8; empty for a key that produces nothing
	int32 rawChar;    // what it produces without any modifier, 0 if nothing
};

PlatformKey platform_key(const QKeyEvent& event);

} // namespace BPrivate
