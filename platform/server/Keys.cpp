#include "server/Keys.h"

#include <InterfaceDefs.h>
#include <View.h>

namespace BPrivate {

namespace {

struct SpecialKey {
	int key; // Qt::Key
	uint8 byte;
};

constexpr SpecialKey kSpecialKeys[] = {
	{Qt::Key_Return, B_ENTER},
	{Qt::Key_Enter, B_ENTER},
	{Qt::Key_Backspace, B_BACKSPACE},
	{Qt::Key_Tab, B_TAB},
	{Qt::Key_Backtab, B_TAB},
	{Qt::Key_Escape, B_ESCAPE},
	{Qt::Key_Delete, B_DELETE},
	{Qt::Key_Insert, B_INSERT},
	{Qt::Key_Home, B_HOME},
	{Qt::Key_End, B_END},
	{Qt::Key_PageUp, B_PAGE_UP},
	{Qt::Key_PageDown, B_PAGE_DOWN},
	{Qt::Key_Left, B_LEFT_ARROW},
	{Qt::Key_Right, B_RIGHT_ARROW},
	{Qt::Key_Up, B_UP_ARROW},
	{Qt::Key_Down, B_DOWN_ARROW},
	{Qt::Key_Print, B_FUNCTION_KEY},
	{Qt::Key_Pause, B_FUNCTION_KEY},
	{Qt::Key_ScrollLock, B_FUNCTION_KEY},
};

/*!	Key codes by the kernel's numbers (linux/input-event-codes.h), which are the X server's less 8.
	The rows of the main block number on from left to right on both sides. */
struct CodeRun {
	int kernelFirst;
	int count;
	int32 platformFirst;
};

constexpr CodeRun kCodeRuns[] = {
	{1, 1, 0x01},   // Escape
	{59, 10, 0x02}, // F1 to F10
	{87, 2, 0x0c},  // F11, F12
	{99, 1, 0x0e},  // Print
	{70, 1, 0x0f},  // Scroll Lock
	{119, 1, 0x10}, // Pause
	{41, 1, 0x11},  // grave
	{2, 13, 0x12},  // 1 to 0, minus, equal, Backspace
	{110, 1, 0x1f}, // Insert
	{102, 1, 0x20}, // Home
	{104, 1, 0x21}, // Page Up
	{69, 1, 0x22},  // Num Lock
	{98, 1, 0x23},  // keypad slash
	{55, 1, 0x24},  // keypad asterisk
	{74, 1, 0x25},  // keypad minus
	{15, 13, 0x26}, // Tab, Q to right bracket
	{43, 1, 0x33},  // backslash
	{111, 1, 0x34}, // Delete
	{107, 1, 0x35}, // End
	{109, 1, 0x36}, // Page Down
	{71, 3, 0x37},  // keypad 7 to 9
	{78, 1, 0x3a},  // keypad plus
	{58, 1, 0x3b},  // Caps Lock
	{30, 11, 0x3c}, // A to apostrophe
	{28, 1, 0x47},  // Enter
	{75, 3, 0x48},  // keypad 4 to 6
	{42, 1, 0x4b},  // left Shift
	{44, 10, 0x4c}, // Z to slash
	{54, 1, 0x56},  // right Shift
	{103, 1, 0x57}, // up
	{79, 3, 0x58},  // keypad 1 to 3
	{96, 1, 0x5b},  // keypad Enter
	{29, 1, 0x5c},  // left Control
	{56, 1, 0x5d},  // left Alt
	{57, 1, 0x5e},  // Space
	{100, 1, 0x5f}, // right Alt
	{97, 1, 0x60},  // right Control
	{105, 1, 0x61}, // left
	{108, 1, 0x62}, // down
	{106, 1, 0x63}, // right
	{82, 2, 0x64},  // keypad 0, point
	{125, 2, 0x66}, // left and right Super
	{127, 1, 0x68}, // Menu
};

//! For events that were not made by a keyboard.
constexpr struct {
	int key;
	int32 code;
} kCodesByKey[] = {
	{Qt::Key_Escape, 0x01},
	{Qt::Key_Backspace, 0x1e},
	{Qt::Key_Tab, 0x26},
	{Qt::Key_Return, 0x47},
	{Qt::Key_Space, 0x5e},
	{Qt::Key_Menu, 0x68},
	{Qt::Key_Print, B_PRINT_KEY},
	{Qt::Key_ScrollLock, B_SCROLL_KEY},
	{Qt::Key_Pause, B_PAUSE_KEY},
	{Qt::Key_Left, 0x61},
	{Qt::Key_Down, 0x62},
	{Qt::Key_Right, 0x63},
	{Qt::Key_Up, 0x57},
};

int32
key_code(const QKeyEvent& event)
{
	int kernel = static_cast<int>(event.nativeScanCode()) - 8;
	for (const CodeRun& run : kCodeRuns) {
		if (kernel >= run.kernelFirst && kernel < run.kernelFirst + run.count)
			return run.platformFirst + kernel - run.kernelFirst;
	}
	if (event.key() >= Qt::Key_F1 && event.key() <= Qt::Key_F12)
		return B_F1_KEY + event.key() - Qt::Key_F1;
	for (const auto& pair : kCodesByKey) {
		if (pair.key == event.key())
			return pair.code;
	}
	return 0;
}

QByteArray
key_bytes(const QKeyEvent& event)
{
	for (const SpecialKey& special : kSpecialKeys) {
		if (special.key == event.key())
			return QByteArray(1, special.byte);
	}
	if (event.key() >= Qt::Key_F1 && event.key() <= Qt::Key_F12)
		return QByteArray(1, B_FUNCTION_KEY);
	return event.text().toUtf8();
}

} // namespace

uint32
platform_modifiers(Qt::KeyboardModifiers modifiers)
{
	uint32 result = 0;
	if (modifiers & Qt::ShiftModifier)
		result |= B_SHIFT_KEY;
	if (modifiers & Qt::AltModifier)
		result |= B_COMMAND_KEY;
	if (modifiers & Qt::ControlModifier)
		result |= B_CONTROL_KEY;
	if (modifiers & Qt::MetaModifier)
		result |= B_OPTION_KEY;
	return result;
}

uint32
platform_buttons(Qt::MouseButtons buttons)
{
	uint32 result = 0;
	if (buttons & Qt::LeftButton)
		result |= B_PRIMARY_MOUSE_BUTTON;
	if (buttons & Qt::RightButton)
		result |= B_SECONDARY_MOUSE_BUTTON;
	if (buttons & Qt::MiddleButton)
		result |= B_TERTIARY_MOUSE_BUTTON;
	return result;
}

PlatformKey
platform_key(const QKeyEvent& event)
{
	PlatformKey key;
	key.code = key_code(event);
	key.bytes = key_bytes(event);
	// Qt names a key of the main block by the character it produces, letters by the upper case one
	if (event.key() >= Qt::Key_A && event.key() <= Qt::Key_Z)
		key.rawChar = event.key() - Qt::Key_A + 'a';
	else if (event.key() < Qt::Key_Escape)
		key.rawChar = event.key();
	else
		key.rawChar = key.bytes.size() == 1 ? static_cast<uint8>(key.bytes[0]) : 0;
	return key;
}

} // namespace BPrivate
