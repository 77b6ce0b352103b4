#include "server/Desktop.h"

#include <Font.h>
#include <QCoreApplication>
#include <QFontDatabase>
#include <memory>
#include <mutex>
#include <string.h>

using namespace BPrivate;

static std::mutex sMutex;
static std::shared_ptr<const QList<QByteArray>> sFamilies;
static int32 sGeneration = 0;

//! Names that fit into a font_family and that users may choose.
static std::shared_ptr<const QList<QByteArray>>
read_families()
{
	auto list = std::make_shared<QList<QByteArray>>();
	if (QCoreApplication::instance() == nullptr)
		return list;
	const QStringList families = QFontDatabase::families();
	for (const QString& family : families) {
		QByteArray name = family.toUtf8();
		if (!QFontDatabase::isPrivateFamily(family) && name.size() <= B_FONT_FAMILY_LENGTH)
			list->append(name);
	}
	return list;
}

static std::shared_ptr<const QList<QByteArray>>
families()
{
	std::lock_guard lock(sMutex);
	int32 generation = font_generation();
	if (!sFamilies || sFamilies->isEmpty() || generation != sGeneration) {
		sFamilies = read_families();
		sGeneration = generation;
	}
	return sFamilies;
}

int32
count_font_families()
{
	return families()->size();
}

status_t
get_font_family(int32 index, font_family* family, uint32* flags)
{
	auto list = families();
	if (family == NULL || index < 0 || index >= list->size())
		return B_ERROR;
	strcpy(*family, list->at(index).constData());
	if (flags != NULL)
		*flags = 0;
	return B_OK;
}

static QStringList
styles_of(const char* family)
{
	if (family == NULL || QCoreApplication::instance() == nullptr)
		return QStringList();
	return QFontDatabase::styles(QString::fromUtf8(family));
}

int32
count_font_styles(font_family family)
{
	return styles_of(family).size();
}

status_t
get_font_style(font_family family, int32 index, font_style* style, uint32* flags)
{
	const QStringList styles = styles_of(family);
	if (style == NULL || index < 0 || index >= styles.size())
		return B_ERROR;
	const QByteArray name = styles.at(index).toUtf8().left(B_FONT_STYLE_LENGTH);
	strcpy(*style, name.constData());
	if (flags != NULL)
		*flags = 0;
	return B_OK;
}

bool
update_font_families(bool checkOnly)
{
	auto fresh = read_families();
	std::lock_guard lock(sMutex);
	bool changed = !sFamilies || *fresh != *sFamilies;
	if (!checkOnly)
		sFamilies = fresh;
	return changed;
}
