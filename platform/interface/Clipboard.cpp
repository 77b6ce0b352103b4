#include "server/ServerLink.h"

#include <Clipboard.h>
#include <Locker.h>
#include <Message.h>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace BPrivate {

struct ClipboardData {
	BLocker lock{"clipboard"};
	BMessage content;
	bool isRead = false; // since the lock was taken
};

} // namespace BPrivate

using namespace BPrivate;

static const char* const kTextType = "text/plain";

// it stays to the end, when others' destructors may still want it
BClipboard* be_clipboard = new BClipboard;

BClipboard::BClipboard() : fData(std::make_unique<ClipboardData>()) { }

BClipboard::~BClipboard() = default;

bool
BClipboard::Lock()
{
	if (!fData->lock.Lock())
		return false;
	if (fData->lock.CountLocks() == 1)
		Revert();
	return true;
}

void
BClipboard::Unlock()
{
	if (IsLocked())
		fData->lock.Unlock();
}

bool
BClipboard::IsLocked() const
{
	return fData->lock.IsLocked();
}

status_t
BClipboard::Clear()
{
	if (!IsLocked())
		return B_NOT_ALLOWED;
	fData->content.MakeEmpty();
	fData->isRead = true;
	return B_OK;
}

status_t
BClipboard::Commit()
{
	if (!IsLocked())
		return B_NOT_ALLOWED;
	// what nobody has looked at is as it was
	if (!fData->isRead)
		return B_OK;
	const void* bytes;
	ssize_t size = 0;
	const bool hasText
		= fData->content.FindData(kTextType, B_MIME_TYPE, &bytes, &size) == B_OK && size > 0;
	const QString text
		= hasText ? QString::fromUtf8(static_cast<const char*>(bytes), size) : QString();
	const bool isDone = ServerLink::Default().CallJob([text] {
		QClipboard* clipboard = QGuiApplication::clipboard();
		text.isEmpty() ? clipboard->clear() : clipboard->setText(text);
	});
	return isDone ? B_OK : B_ERROR;
}

status_t
BClipboard::Revert()
{
	if (!IsLocked())
		return B_NOT_ALLOWED;
	fData->content.MakeEmpty();
	fData->isRead = false;
	return B_OK;
}

//! Asked for as late as this, because the program that has the text may take its time.
BMessage*
BClipboard::Data() const
{
	if (!IsLocked())
		return NULL;
	if (!fData->isRead) {
		fData->isRead = true;
		const QByteArray text
			= ServerLink::Default()
				  .Call([] { return QGuiApplication::clipboard()->text().toUtf8(); })
				  .value_or(QByteArray());
		if (!text.isEmpty())
			fData->content.AddData(kTextType, B_MIME_TYPE, text.constData(), text.size(), false);
	}
	return &fData->content;
}
