#pragma once

#include <InterfaceDefs.h>
#include <QImage>
#include <QRect>
#include <QString>
#include <functional>
#include <vector>

namespace BPrivate {

struct ScreenInfo {
	QRect frame;
	float scale;
};

struct PointerState {
	QPoint where;
	uint32 buttons = 0;
	uint32 modifiers = 0;
};

//! What the loopers' side needs of the desktop without asking: kept here by the server.
struct DesktopInfo {
	std::vector<ScreenInfo> screens; // the main one first
	QString plainFamily = "Sans Serif";
	float plainSize = 12;
	QString fixedFamily = "Monospace";
	float fixedSize = 12;
	QString hanFamily; // see han_family()
	bool plainHasHan = false;
	bigtime_t clickSpeed = 400000;
	std::vector<std::pair<color_which, rgb_color>> colors;
};

//! The newest. Any thread.
DesktopInfo desktop_info();
//! The largest scale of the screens. Any thread.
float desktop_scale();
//! Grows by one whenever fonts were installed or removed. Any thread.
int32 font_generation();

/*!	The server's end of it. Server thread only. */
namespace Desktop {

//! Reads everything and follows the changes; `screensChanged` is called after those of screens.
void Watch(std::function<void()> screensChanged);
PointerState Pointer();
uint32 Modifiers();
//! For tests: asked instead of the keyboard; empty for the real one.
void SetModifierSource(std::function<uint32()> source);
//! A picture of a part of all screens; null where the desktop does not allow it.
QImage Grab(QRect part);

} // namespace Desktop
} // namespace BPrivate
