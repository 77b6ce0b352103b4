#include "interface/FontCache.h"
#include "server/Desktop.h"

#include <Font.h>
#include <string.h>

using namespace BPrivate;

namespace BPrivate {

struct FontAccess {
	static void SetUp(BFont& font, const char* family, uint16 face, float size)
	{
		font.SetFamilyAndFace(family, face);
		font.fSize = size;
	}
	static const char* Family(const BFont& font) { return font.fFamily; }
};

} // namespace BPrivate

static constexpr float kMaxSize = 10000;

static BFont*
standard_font(bool fixed, uint16 face)
{
	auto* font = new BFont;
	DesktopInfo desktop = desktop_info();
	const QString& family = fixed ? desktop.fixedFamily : desktop.plainFamily;
	FontAccess::SetUp(
		*font, family.toUtf8().constData(), face, fixed ? desktop.fixedSize : desktop.plainSize);
	return font;
}

const BFont* be_plain_font = standard_font(false, B_REGULAR_FACE);
const BFont* be_bold_font = standard_font(false, B_BOLD_FACE);
const BFont* be_fixed_font = standard_font(true, B_REGULAR_FACE);

namespace BPrivate {

//! Once, before there are other threads: when the server has just learnt the desktop's fonts.
void
update_standard_fonts()
{
	DesktopInfo desktop = desktop_info();
	const QByteArray plain = desktop.plainFamily.toUtf8();
	FontAccess::SetUp(
		const_cast<BFont&>(*be_plain_font), plain.constData(), B_REGULAR_FACE, desktop.plainSize);
	FontAccess::SetUp(
		const_cast<BFont&>(*be_bold_font), plain.constData(), B_BOLD_FACE, desktop.plainSize);
	FontAccess::SetUp(const_cast<BFont&>(*be_fixed_font), desktop.fixedFamily.toUtf8().constData(),
		B_REGULAR_FACE, desktop.fixedSize);
}

} // namespace BPrivate

BFont::BFont()
{
	if (be_plain_font != NULL)
		*this = *be_plain_font;
}

BFont::BFont(const BFont* font) : BFont()
{
	if (font != NULL)
		*this = *font;
}

status_t
BFont::SetFamilyAndStyle(const char* family, const char* style)
{
	if ((family != NULL && strlen(family) > B_FONT_FAMILY_LENGTH)
		|| (style != NULL && strlen(style) > B_FONT_STYLE_LENGTH))
		return B_NAME_TOO_LONG;
	if (family != NULL)
		strcpy(fFamily, family);
	strcpy(fStyle, style != NULL ? style : "");
	fFace = B_REGULAR_FACE;
	if (style == NULL || strcmp(style, "Regular") == 0)
		return B_OK;
	// the faces by the usual names; any other is the style's own
	fFace = 0;
	if (strstr(style, "Bold") != NULL)
		fFace |= B_BOLD_FACE;
	if (strstr(style, "Italic") != NULL || strstr(style, "Oblique") != NULL)
		fFace |= B_ITALIC_FACE;
	return B_OK;
}

status_t
BFont::SetFamilyAndFace(const char* family, uint16 face)
{
	if (family != NULL && strlen(family) > B_FONT_FAMILY_LENGTH)
		return B_NAME_TOO_LONG;
	if (family != NULL)
		strcpy(fFamily, family);
	return SetFace(face);
}

status_t
BFont::SetFace(uint16 face)
{
	fStyle[0] = '\0';
	fFace = face;
	return B_OK;
}

void
BFont::SetSize(float size)
{
	// not a number is no size either
	fSize = size > 0 ? std::min(size, kMaxSize) : 0;
}

void
BFont::SetSpacing(uint8 spacing)
{
	fSpacing = spacing;
}

void
BFont::SetEncoding(uint8 encoding)
{
	fEncoding = encoding;
}

void
BFont::SetFlags(uint32 flags)
{
	fFlags = flags;
}

void
BFont::GetFamilyAndStyle(font_family* family, font_style* style) const
{
	if (family != NULL)
		memcpy(*family, fFamily, sizeof(fFamily));
	if (style == NULL)
		return;
	static const char* const kNames[] = {"Regular", "Italic", "Bold", "Bold Italic"};
	int name = ((fFace & B_ITALIC_FACE) != 0) + 2 * ((fFace & B_BOLD_FACE) != 0);
	strcpy(*style, fStyle[0] != '\0' ? fStyle : kNames[name]);
}

void
BFont::GetHeight(font_height* height) const
{
	if (height == NULL)
		return;
	*height = {fSize, fSize / 4, 0};
	if (const PreparedFont* font = prepared_font(*this)) {
		height->ascent = font->metrics.ascent();
		height->descent = font->metrics.descent();
		height->leading = std::max(0.0, font->metrics.leading());
	}
}

float
BFont::StringWidth(const char* string) const
{
	return StringWidth(string, -1);
}

float
BFont::StringWidth(const char* string, int32 length) const
{
	const PreparedFont* font = prepared_font(*this);
	return font != NULL && fSize > 0 ? text_width(*font, drawn_text(string, length)) : 0;
}

bool
BFont::operator==(const BFont& other) const
{
	return strcmp(fFamily, other.fFamily) == 0 && strcmp(fStyle, other.fStyle) == 0
		&& fSize == other.fSize && fFace == other.fFace && fSpacing == other.fSpacing
		&& fEncoding == other.fEncoding && fFlags == other.fFlags;
}
