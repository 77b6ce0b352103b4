#include "support/ArchiveFields.h"

#include <cmath>

namespace BPrivate {

// Beyond it no two pixels can be told apart.
static constexpr float kFarthest = 1 << 23;

void
ArchiveWriter::Bool(const char* name, bool value)
{
	if (fStatus == B_OK)
		fStatus = fInto->AddBool(name, value);
}

void
ArchiveWriter::True(const char* name, bool value)
{
	if (value)
		Bool(name, true);
}

void
ArchiveWriter::Int16(const char* name, int16 value)
{
	if (fStatus == B_OK)
		fStatus = fInto->AddInt16(name, value);
}

void
ArchiveWriter::Int32(const char* name, int32 value)
{
	if (fStatus == B_OK)
		fStatus = fInto->AddInt32(name, value);
}

void
ArchiveWriter::Float(const char* name, float value)
{
	if (fStatus == B_OK)
		fStatus = fInto->AddFloat(name, value);
}

void
ArchiveWriter::Point(const char* name, BPoint value)
{
	if (fStatus == B_OK)
		fStatus = fInto->AddPoint(name, value);
}

void
ArchiveWriter::Rect(const char* name, BRect value)
{
	if (fStatus == B_OK)
		fStatus = fInto->AddRect(name, value);
}

void
ArchiveWriter::Size(const char* name, BSize value)
{
	if (fStatus == B_OK)
		fStatus = fInto->AddSize(name, value);
}

void
ArchiveWriter::Alignment(const char* name, const BAlignment& value)
{
	if (fStatus == B_OK)
		fStatus = fInto->AddAlignment(name, value);
}

void
ArchiveWriter::String(const char* name, const char* value)
{
	if (fStatus == B_OK && value != NULL)
		fStatus = fInto->AddString(name, value);
}

void
ArchiveWriter::Message(const char* name, const BMessage* value)
{
	if (fStatus == B_OK && value != NULL)
		fStatus = fInto->AddMessage(name, value);
}

void
ArchiveWriter::Raw(const char* name, const void* bytes, size_t size)
{
	if (fStatus == B_OK && size > 0)
		fStatus = fInto->AddData(name, B_RAW_TYPE, bytes, size, false);
}

void
ArchiveWriter::Object(const char* name, const BArchivable* value)
{
	if (fStatus != B_OK || value == NULL)
		return;
	BMessage nested;
	fStatus = value->Archive(&nested, true);
	Message(name, &nested);
}

void
ArchiveWriter::Done(status_t status)
{
	if (fStatus == B_OK)
		fStatus = status;
}

const BMessage&
archive_or_empty(const BMessage* archive)
{
	static const BMessage sEmpty;
	return archive != NULL ? *archive : sEmpty;
}

static bool
is_place(float value)
{
	return std::abs(value) <= kFarthest; // false for what is no number
}

BRect
archived_rect(const BMessage& archive, const char* name, BRect otherwise)
{
	BRect rect;
	if (archive.FindRect(name, &rect) != B_OK || !is_place(rect.left) || !is_place(rect.top)
		|| !is_place(rect.right) || !is_place(rect.bottom))
		return otherwise;
	return rect;
}

BPoint
archived_point(const BMessage& archive, const char* name, BPoint otherwise)
{
	BPoint point;
	if (archive.FindPoint(name, &point) != B_OK || !is_place(point.x) || !is_place(point.y))
		return otherwise;
	return point;
}

float
archived_float(const BMessage& archive, const char* name, int32 index, float otherwise)
{
	float value;
	return archive.FindFloat(name, index, &value) == B_OK && is_place(value) ? value : otherwise;
}

int32
archived_choice(const BMessage& archive, const char* name, int32 last, int32 otherwise)
{
	const int32 value = archive.GetInt32(name, otherwise);
	return value >= 0 && value <= last ? value : otherwise;
}

BMessage*
archived_message(const BMessage& archive, const char* name)
{
	BMessage message;
	return archive.FindMessage(name, &message) == B_OK ? new BMessage(message) : NULL;
}

} // namespace BPrivate
