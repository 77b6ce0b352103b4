#pragma once

#include <Font.h>
#include <QFont>
#include <QFontMetricsF>
#include <QString>

namespace BPrivate {

/*!	A font of the toolkit and its metrics. Sizes in points are pixels, as all images of ours have 72
	dots per inch. */
struct PreparedFont {
	QFont font;
	QFontMetricsF metrics;
};

/*!	The calling thread's own copy, because the toolkit's fonts must not go from thread to thread.
	Good until the next call in this thread. NULL before there is a BApplication. */
const PreparedFont* prepared_font(const BFont& font);

//! The toolkit's unit for an image that text is drawn into.
constexpr int kDotsPerMeter = 2835;

/*!	What is drawn of a text: UTF-8, ill-formed parts as replacement characters, controls as blanks,
	cut to 4096 UTF-16 units. */
QString drawn_text(const char* string, int32 length);
//! In pixels, at most 32767.
float text_width(const PreparedFont& font, const QString& text);

//! Sets be_plain_font and the others to the desktop's fonts. Only while there is one thread.
void update_standard_fonts();

} // namespace BPrivate
