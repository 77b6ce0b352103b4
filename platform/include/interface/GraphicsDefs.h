#pragma once

#include <SupportDefs.h>

//! Rows of eight pixels, the leftmost in the highest bit; a 1 takes the high colour, a 0 the low
//! one.
typedef struct pattern {
	uint8 data[8];

	bool operator==(const pattern& other) const
	{
		return __builtin_memcmp(data, other.data, sizeof(data)) == 0;
	}
	bool operator!=(const pattern& other) const { return !(*this == other); }
} pattern;

inline constexpr pattern B_SOLID_HIGH = {{0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff}};
inline constexpr pattern B_MIXED_COLORS = {{0xaa, 0x55, 0xaa, 0x55, 0xaa, 0x55, 0xaa, 0x55}};
inline constexpr pattern B_SOLID_LOW = {{0, 0, 0, 0, 0, 0, 0, 0}};

//! Components from 0 to 255, alpha not multiplied into them.
typedef struct rgb_color {
	uint8 red;
	uint8 green;
	uint8 blue;
	uint8 alpha;

	void set_to(uint8 newRed, uint8 newGreen, uint8 newBlue, uint8 newAlpha = 255)
	{
		red = newRed;
		green = newGreen;
		blue = newBlue;
		alpha = newAlpha;
	}
	constexpr bool operator==(const rgb_color& other) const
	{
		return red == other.red && green == other.green && blue == other.blue
			&& alpha == other.alpha;
	}
	constexpr bool operator!=(const rgb_color& other) const { return !(*this == other); }
} rgb_color;

inline constexpr rgb_color
make_color(uint8 red, uint8 green, uint8 blue, uint8 alpha = 255)
{
	return rgb_color{red, green, blue, alpha};
}

//! As a view's colour: nothing is painted. In a 32-bit bitmap these are the bytes of a pixel that
//! is not drawn.
inline constexpr rgb_color B_TRANSPARENT_COLOR = {0x77, 0x74, 0x77, 0x00};
inline constexpr uint8 B_TRANSPARENT_MAGIC_CMAP8 = 0xff;
inline constexpr uint16 B_TRANSPARENT_MAGIC_RGBA15 = 0x39ce;
inline constexpr uint32 B_TRANSPARENT_MAGIC_RGBA32 = 0x00777477;

typedef struct {
	int32 id;
} screen_id;

inline constexpr screen_id B_MAIN_SCREEN_ID = {0};

//! How a pixel lies in memory; B_RGB32 and B_RGBA32 are blue, green, red, alpha.
typedef enum {
	B_NO_COLOR_SPACE = 0x0000,
	B_GRAY1 = 0x0001,
	B_GRAY8 = 0x0002,
	B_RGB24 = 0x0003,
	B_CMAP8 = 0x0004,
	B_RGB16 = 0x0005,
	B_RGB32 = 0x0008,
	B_RGB15 = 0x0010,
	B_RGB24_BIG = 0x1003,
	B_RGB32_BIG = 0x1008,
	B_RGBA32 = 0x2008,
	B_RGBA15 = 0x2010,
	B_RGBA32_BIG = 0x3008
} color_space;

enum drawing_mode {
	B_OP_COPY,
	B_OP_OVER,
	B_OP_ERASE,
	B_OP_INVERT,
	B_OP_ADD,
	B_OP_SUBTRACT,
	B_OP_BLEND,
	B_OP_MIN,
	B_OP_MAX,
	B_OP_SELECT,
	B_OP_ALPHA
};

enum source_alpha { B_PIXEL_ALPHA, B_CONSTANT_ALPHA };

enum alpha_function { B_ALPHA_OVERLAY, B_ALPHA_COMPOSITE };
