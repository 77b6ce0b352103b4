#include "interface/FontCache.h"

#include "server/Desktop.h"
#include "server/FontFallback.h"

#include <QCoreApplication>
#include <QFontDatabase>
#include <QImage>
#include <map>
#include <string.h>
#include <tuple>

namespace BPrivate {

static constexpr int kMaxUnits = 4096;
static constexpr float kMaxWidth = 32767;
static constexpr size_t kMaxCached = 64;

namespace {

using FontKey = std::tuple<QByteArray, QByteArray, float, uint16, uint32>;

struct FontsOfThread {
	int32 generation = 0;
	std::map<FontKey, PreparedFont> fonts;
	QImage device{1, 1, QImage::Format_RGB32};

	FontsOfThread()
	{
		device.setDotsPerMeterX(kDotsPerMeter);
		device.setDotsPerMeterY(kDotsPerMeter);
	}
};

QStringList
families_for(const QString& family)
{
	const DesktopInfo desktop = desktop_info();
	return fallback_families(QFontDatabase::hasFamily(family) ? family : QString(),
		desktop.plainFamily, desktop.plainHasHan, desktop.hanFamily);
}

void
apply_flags(QFont& font, uint32 flags)
{
	int strategy = QFont::PreferDefault;
	if (flags & B_DISABLE_ANTIALIASING)
		strategy = QFont::NoAntialias;
	else if (flags & B_FORCE_ANTIALIASING)
		strategy = QFont::PreferAntialias;
	font.setStyleStrategy(static_cast<QFont::StyleStrategy>(strategy));
}

QFont
make_font(const BFont& font)
{
	font_family family;
	font_style style;
	font.GetFamilyAndStyle(&family, &style);
	QFont made;
	made.setFamilies(families_for(QString::fromUtf8(family)));
	made.setPointSizeF(std::max(font.Size(), 0.1f));
	made.setBold(font.Face() & B_BOLD_FACE);
	made.setItalic(font.Face() & B_ITALIC_FACE);
	made.setUnderline(font.Face() & B_UNDERSCORE_FACE);
	made.setStrikeOut(font.Face() & B_STRIKEOUT_FACE);
	const QString name = QString::fromUtf8(style);
	// a style beyond bold and italic, as the family names it
	if (QFontDatabase::styles(QString::fromUtf8(family)).contains(name)
		&& !(font.Face() & (B_BOLD_FACE | B_ITALIC_FACE | B_REGULAR_FACE)))
		made.setStyleName(name);
	apply_flags(made, font.Flags());
	return made;
}

FontKey
key_of(const BFont& font)
{
	font_family family;
	font_style style;
	font.GetFamilyAndStyle(&family, &style);
	return {QByteArray(family), QByteArray(style), font.Size(), font.Face(), font.Flags()};
}

} // namespace

const PreparedFont*
prepared_font(const BFont& font)
{
	if (QCoreApplication::instance() == nullptr)
		return NULL;
	static thread_local FontsOfThread sFonts;
	int32 generation = font_generation();
	if (sFonts.generation != generation || sFonts.fonts.size() >= kMaxCached) {
		sFonts.generation = generation;
		sFonts.fonts.clear();
	}
	FontKey key = key_of(font);
	auto found = sFonts.fonts.find(key);
	if (found == sFonts.fonts.end()) {
		QFont made = make_font(font);
		found = sFonts.fonts.emplace(key, PreparedFont{made, QFontMetricsF(made, &sFonts.device)})
					.first;
	}
	return &found->second;
}

QString
drawn_text(const char* string, int32 length)
{
	if (string == NULL || length == 0)
		return QString();
	// no UTF-16 unit takes more than three bytes
	size_t most = kMaxUnits * 3;
	size_t bytes = strnlen(string, length < 0 ? most : std::min<size_t>(length, most));
	QString text = QString::fromUtf8(string, bytes);
	if (text.size() > kMaxUnits)
		text.truncate(kMaxUnits);
	if (!text.isEmpty() && text.back().isHighSurrogate())
		text.chop(1);
	for (QChar& character : text) {
		if (character.unicode() < 0x20 || character.unicode() == 0x7f
			|| character == QChar::LineSeparator || character == QChar::ParagraphSeparator)
			character = QLatin1Char(' ');
	}
	return text;
}

float
text_width(const PreparedFont& font, const QString& text)
{
	return text.isEmpty() ? 0 : std::min<float>(font.metrics.horizontalAdvance(text), kMaxWidth);
}

} // namespace BPrivate
