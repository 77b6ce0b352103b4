#include "server/FontFallback.h"

#include <algorithm>

namespace BPrivate {

namespace {

constexpr const char* kGood[] = {"Noto Sans CJK JP", "Noto Sans JP", "Source Han Sans JP",
	"IPAexGothic", "IPAPGothic", "IPAGothic", "VL PGothic", "TakaoPGothic"};
// Fonts for all of China, Japan and Korea name their forms in the family.
constexpr const char* kOtherForms[] = {" SC", " TC", " HK", " KR", " CN", " TW", " MO"};
constexpr const char* kOtherStyles[] = {"Serif", "Mincho"};

template<size_t count>
bool
has_any(const QString& family, const char* const (&parts)[count])
{
	return std::any_of(std::begin(parts), std::end(parts),
		[&](const char* part) { return family.contains(QLatin1String(part)); });
}

} // namespace

QString
han_family(QLocale::Language language, const QStringList& japanese, const QString& plain)
{
	if (language == QLocale::Chinese || language == QLocale::Korean)
		return QString();
	if (japanese.contains(plain)
		&& (plain.endsWith(QLatin1String(" JP")) || language == QLocale::Japanese)
		&& !has_any(plain, kOtherForms))
		return plain;
	for (const char* good : kGood) {
		if (japanese.contains(QLatin1String(good)))
			return QLatin1String(good);
	}
	QString found;
	for (const QString& family : japanese) {
		if (has_any(family, kOtherForms))
			continue;
		if (!has_any(family, kOtherStyles))
			return family;
		if (found.isEmpty())
			found = family;
	}
	return found.isEmpty() && !japanese.isEmpty() ? japanese.first() : found;
}

QStringList
fallback_families(const QString& family, const QString& plain, bool plainHasHan, const QString& han)
{
	QStringList families{family};
	if (plainHasHan)
		families << han << plain;
	else
		families << plain << han;
	families.removeAll(QString());
	families.removeDuplicates();
	return families;
}

} // namespace BPrivate
