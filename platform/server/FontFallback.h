#pragma once

#include <QLocale>
#include <QStringList>

namespace BPrivate {

/*!	A family for Han characters in the forms that Japanese readers expect, out of the families that have those; `plain`, the
	desktop's own, if it is one. Empty if the desktop's language has forms of its own. */
QString han_family(QLocale::Language language, const QStringList& japanese, const QString& plain);

/*!	Where the glyphs of a text come from, in this order. `family` is empty if it is not installed; `plainHasHan`: the desktop's
	default has Han characters, of whichever forms. */
QStringList fallback_families(
	const QString& family, const QString& plain, bool plainHasHan, const QString& han);

} // namespace BPrivate
