#pragma once

#include <GraphicsDefs.h>
#include <Point.h>
#include <Rect.h>
#include <SupportDefs.h>

// Characters that control keys produce: the only byte of "bytes" in B_KEY_DOWN.
enum {
	B_BACKSPACE = 0x08,
	B_RETURN = 0x0a,
	B_ENTER = 0x0a,
	B_SPACE = 0x20,
	B_TAB = 0x09,
	B_ESCAPE = 0x1b,
	B_SUBSTITUTE = 0x1a,
	B_LEFT_ARROW = 0x1c,
	B_RIGHT_ARROW = 0x1d,
	B_UP_ARROW = 0x1e,
	B_DOWN_ARROW = 0x1f,
	B_INSERT = 0x05,
	B_DELETE = 0x7f,
	B_HOME = 0x01,
	B_END = 0x04,
	B_PAGE_UP = 0x0b,
	B_PAGE_DOWN = 0x0c,
	B_FUNCTION_KEY = 0x10,
};

/*!	Key codes: "key" of the key messages. The codes of all keys are the platform's (Escape 0x01 to
	Menu 0x68). */
enum {
	B_F1_KEY = 0x02,
	B_F2_KEY = 0x03,
	B_F3_KEY = 0x04,
	B_F4_KEY = 0x05,
	B_F5_KEY = 0x06,
	B_F6_KEY = 0x07,
	B_F7_KEY = 0x08,
	B_F8_KEY = 0x09,
	B_F9_KEY = 0x0a,
	B_F10_KEY = 0x0b,
	B_F11_KEY = 0x0c,
	B_F12_KEY = 0x0d,
	B_PRINT_KEY = 0x0e,
	B_SCROLL_KEY = 0x0f,
	B_PAUSE_KEY = 0x10,
};

/*! What modifiers() and "modifiers" of the mouse and key messages are made of. Command is the Alt
	key, Control is Ctrl, Option is the Super (logo) key. The left and right bits come with key
	messages only as far as the desktop tells them. */
enum {
	B_SHIFT_KEY = 0x00000001,
	B_COMMAND_KEY = 0x00000002,
	B_CONTROL_KEY = 0x00000004,
	B_CAPS_LOCK = 0x00000008,
	B_SCROLL_LOCK = 0x00000010,
	B_NUM_LOCK = 0x00000020,
	B_OPTION_KEY = 0x00000040,
	B_MENU_KEY = 0x00000080,
	B_LEFT_SHIFT_KEY = 0x00000100,
	B_RIGHT_SHIFT_KEY = 0x00000200,
	B_LEFT_COMMAND_KEY = 0x00000400,
	B_RIGHT_COMMAND_KEY = 0x00000800,
	B_LEFT_CONTROL_KEY = 0x00001000,
	B_RIGHT_CONTROL_KEY = 0x00002000,
	B_LEFT_OPTION_KEY = 0x00004000,
	B_RIGHT_OPTION_KEY = 0x00008000,
};

/*!	The modifier keys held at this moment, whoever has the focus. Any thread; asks the display
	server, so a call takes some ten microseconds and the last known state is returned once the
	server has gone. */
uint32 modifiers();

enum button_width { B_WIDTH_AS_USUAL, B_WIDTH_FROM_WIDEST, B_WIDTH_FROM_LABEL };

enum join_mode { B_ROUND_JOIN = 0, B_MITER_JOIN, B_BEVEL_JOIN, B_BUTT_JOIN, B_SQUARE_JOIN };
enum cap_mode {
	B_ROUND_CAP = B_ROUND_JOIN,
	B_BUTT_CAP = B_BUTT_JOIN,
	B_SQUARE_CAP = B_SQUARE_JOIN
};

enum border_style { B_PLAIN_BORDER, B_FANCY_BORDER, B_NO_BORDER };

enum orientation { B_HORIZONTAL, B_VERTICAL };

enum alignment {
	B_ALIGN_LEFT,
	B_ALIGN_RIGHT,
	B_ALIGN_CENTER,
	B_ALIGN_HORIZONTAL_UNSET = -1,
	B_ALIGN_HORIZONTAL_CENTER = B_ALIGN_CENTER,
	B_ALIGN_USE_FULL_WIDTH = -2,
};

enum vertical_alignment {
	B_ALIGN_TOP = 0x10,
	B_ALIGN_MIDDLE = 0x20,
	B_ALIGN_BOTTOM = 0x30,
	B_ALIGN_VERTICAL_UNSET = -1,
	B_ALIGN_VERTICAL_CENTER = B_ALIGN_MIDDLE,
	B_ALIGN_NO_VERTICAL = B_ALIGN_VERTICAL_UNSET,
	B_ALIGN_USE_FULL_HEIGHT = -2,
};

//! The desktop's colours, as its theme gives them.
enum color_which {
	B_PANEL_BACKGROUND_COLOR = 1,
	B_MENU_BACKGROUND_COLOR = 2,
	B_KEYBOARD_NAVIGATION_COLOR = 4,
	B_DESKTOP_COLOR = 5,
	B_MENU_SELECTED_BACKGROUND_COLOR = 6,
	B_MENU_ITEM_TEXT_COLOR = 7,
	B_MENU_SELECTED_ITEM_TEXT_COLOR = 8,
	B_PANEL_TEXT_COLOR = 10,
	B_DOCUMENT_BACKGROUND_COLOR = 11,
	B_DOCUMENT_TEXT_COLOR = 12,
	B_CONTROL_BACKGROUND_COLOR = 13,
	B_CONTROL_TEXT_COLOR = 14,
	B_CONTROL_HIGHLIGHT_COLOR = 17,
	B_TOOL_TIP_BACKGROUND_COLOR = 20,
	B_TOOL_TIP_TEXT_COLOR = 21,
	B_LINK_TEXT_COLOR = 40,
};

/*!	The colour that the desktop uses for `which`; black for a number that is none of the above. Any
	thread. */
rgb_color ui_color(color_which which);

/*!	The pointer in screen coordinates and the buttons held (B_PRIMARY_MOUSE_BUTTON...); either
	pointer may be NULL. */
status_t get_mouse(BPoint* screenWhere, uint32* buttons);
//! The longest time between the clicks of a double click, in microseconds.
status_t get_click_speed(bigtime_t* speed);
