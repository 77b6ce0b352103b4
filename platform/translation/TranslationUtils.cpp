#include "interface/BitmapData.h"

#include <Entry.h>
#include <Path.h>
#include <QImageReader>
#include <TranslationUtils.h>

using namespace BPrivate;

static constexpr int kMaxSide = 8192;
static constexpr int kMaxClaimed = 32768;
// Scaled down while it is read it takes little memory, but much time.
static constexpr qint64 kMaxPixels = 128 * 1024 * 1024;
// for one picture; the largest allowed takes 256 MB
static constexpr int kMaxMegabytes = 512;

BBitmap*
BTranslationUtils::GetBitmap(const char* path)
{
	// a pipe would be waited for
	if (path == NULL || !BEntry(path, true).IsFile())
		return NULL;
	QImageReader reader(QString::fromUtf8(path));
	// a file may be named for another format than it has
	reader.setDecideFormatFromContent(true);
	reader.setAutoTransform(true);
	QImageReader::setAllocationLimit(kMaxMegabytes);
	const QSize size = reader.size();
	if (size.width() > kMaxClaimed || size.height() > kMaxClaimed
		|| qint64(size.width()) * size.height() > kMaxPixels)
		return NULL;
	if (size.isValid() && (size.width() > kMaxSide || size.height() > kMaxSide))
		reader.setScaledSize(
			size.scaled(kMaxSide, kMaxSide, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
	QImage image = reader.read();
	if (image.isNull())
		return NULL;
	// of a format that does not tell its size beforehand
	if (image.width() > kMaxSide || image.height() > kMaxSide)
		image = image.scaled(kMaxSide, kMaxSide, Qt::KeepAspectRatio, Qt::SmoothTransformation);
	return image.isNull() ? NULL : BitmapData::FromImage(image);
}

BBitmap*
BTranslationUtils::GetBitmap(const entry_ref* ref)
{
	BPath path(ref);
	return path.InitCheck() == B_OK ? GetBitmap(path.Path()) : NULL;
}
