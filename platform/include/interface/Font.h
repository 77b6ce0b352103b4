#pragma once

#include <InterfaceDefs.h>

#define B_FONT_FAMILY_LENGTH 63
#define B_FONT_STYLE_LENGTH 63

namespace BPrivate {
struct FontAccess;
}

typedef char font_family[B_FONT_FAMILY_LENGTH + 1];
typedef char font_style[B_FONT_STYLE_LENGTH + 1];

// Flags of BFont::SetFlags().
enum {
	B_DISABLE_ANTIALIASING = 0x00000001,
	B_FORCE_ANTIALIASING = 0x00000002,
};

// Faces, to be combined.
enum {
	B_ITALIC_FACE = 0x0001,
	B_UNDERSCORE_FACE = 0x0002,
	B_NEGATIVE_FACE = 0x0004,
	B_OUTLINED_FACE = 0x0008,
	B_STRIKEOUT_FACE = 0x0010,
	B_BOLD_FACE = 0x0020,
	B_REGULAR_FACE = 0x0040,
};

enum { B_CHAR_SPACING = 0, B_STRING_SPACING, B_BITMAP_SPACING, B_FIXED_SPACING };

//! Text in the drawing calls is UTF-8 whatever a font's encoding says.
enum { B_UNICODE_UTF8 = 0 };

// What SetFont(font, mask) takes over from the font.
enum {
	B_FONT_FAMILY_AND_STYLE = 0x00000001,
	B_FONT_SIZE = 0x00000002,
	B_FONT_SPACING = 0x00000010,
	B_FONT_ENCODING = 0x00000020,
	B_FONT_FACE = 0x00000040,
	B_FONT_FLAGS = 0x00000080,
	B_FONT_ALL = 0x000001FF,
};

//! Distances from the baseline in pixels, all positive.
struct font_height {
	float ascent;
	float descent;
	float leading;
};

/*!	A family, style, size and flags: a plain value without a thread.
	A family that is not installed stays as it was named, and each of its characters is drawn in the
	desktop's default font, or in one that has it. Han characters take the Japanese forms unless the
	desktop's language is Chinese or Korean. */
class BFont {
public:
	//! Like *be_plain_font.
	BFont();
	BFont(const BFont& other) = default;
	//! Like `*font`, or *be_plain_font for NULL.
	explicit BFont(const BFont* font);
	BFont& operator=(const BFont& other) = default;

	/*!	NULL for `family` keeps the family and looks for `style` in it, NULL for `style` takes the
		family's regular style.
		B_NAME_TOO_LONG and no change when a name has more than 63 bytes; a name that is not
		installed is taken (see above). */
	status_t SetFamilyAndStyle(const char* family, const char* style);
	//! The style of the family that has these faces; NULL for `family` keeps it.
	status_t SetFamilyAndFace(const char* family, uint16 face);
	status_t SetFace(uint16 face);
	/*!	Height of the em square in pixels; fractions count. Below 0 becomes 0, above 10000 becomes
		10000. */
	void SetSize(float size);
	void SetSpacing(uint8 spacing);
	void SetEncoding(uint8 encoding);
	void SetFlags(uint32 flags);

	//! Either may be NULL.
	void GetFamilyAndStyle(font_family* family, font_style* style) const;
	float Size() const { return fSize; }
	uint16 Face() const { return fFace; }
	uint8 Spacing() const { return fSpacing; }
	uint8 Encoding() const { return fEncoding; }
	uint32 Flags() const { return fFlags; }

	//! Heights of the font itself, not of a particular text.
	void GetHeight(font_height* height) const;
	/*!	Width in pixels of UTF-8 text. Of a text of more than 4096 UTF-16 units only that much
		counts, and the result is never above 32767, so that no text takes longer than some
		milliseconds. NULL and a length of 0 give 0; a negative length means up to the NUL. */
	float StringWidth(const char* string) const;
	float StringWidth(const char* string, int32 length) const;

	bool operator==(const BFont& other) const;
	bool operator!=(const BFont& other) const { return !(*this == other); }

private:
	friend struct BPrivate::FontAccess;

	font_family fFamily{};
	font_style fStyle{};
	float fSize = 12;
	uint16 fFace = B_REGULAR_FACE;
	uint8 fSpacing = B_BITMAP_SPACING;
	uint8 fEncoding = B_UNICODE_UTF8;
	uint32 fFlags = 0;
};

//! The desktop's own fonts; valid from the BApplication's construction on, plain defaults before.
extern const BFont* be_plain_font;
extern const BFont* be_bold_font;
extern const BFont* be_fixed_font;

/*!	The installed families in the order of their names. Any thread; the list is kept until
	update_font_families() or a change of the fonts. */
int32 count_font_families();
//! B_ERROR for an index out of range; `flags`, if not NULL, gets 0.
status_t get_font_family(int32 index, font_family* family, uint32* flags = NULL);
//! The styles of one family, 0 for one that is not installed.
int32 count_font_styles(font_family family);
status_t get_font_style(font_family family, int32 index, font_style* style, uint32* flags = NULL);
//! Reads the list anew; true if it is another than before.
bool update_font_families(bool checkOnly);
