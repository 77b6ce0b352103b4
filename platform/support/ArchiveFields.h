#pragma once

#include <Archivable.h>
#include <Message.h>

namespace BPrivate {

/*!	Writes the fields of an archive; nothing more after the first error. */
class ArchiveWriter {
public:
	//! `error`: the base class's.
	ArchiveWriter(BMessage* into, status_t error) : fInto(into), fStatus(error) { }

	void Bool(const char* name, bool value);
	//! Only if it is true, as most of the older fields are written.
	void True(const char* name, bool value);
	void Int16(const char* name, int16 value);
	void Int32(const char* name, int32 value);
	void Float(const char* name, float value);
	void Point(const char* name, BPoint value);
	void Rect(const char* name, BRect value);
	void Size(const char* name, BSize value);
	void Alignment(const char* name, const BAlignment& value);
	//! Nothing for NULL.
	void String(const char* name, const char* value);
	void Message(const char* name, const BMessage* value);
	//! B_RAW_TYPE; nothing for 0 bytes.
	void Raw(const char* name, const void* bytes, size_t size);
	//! The object's archive as a nested message; nothing for NULL.
	void Object(const char* name, const BArchivable* value);
	//! What is done with the archive by other means.
	void Done(status_t status);
	status_t Status() const { return fStatus; }

private:
	BMessage* fInto;
	status_t fStatus;
};

//! An empty message for NULL.
const BMessage& archive_or_empty(const BMessage* archive);
//! Numbers out of a file: `otherwise` when one is missing or none that a screen has.
BRect archived_rect(const BMessage& archive, const char* name, BRect otherwise);
BPoint archived_point(const BMessage& archive, const char* name, BPoint otherwise);
float archived_float(const BMessage& archive, const char* name, int32 index, float otherwise);
//! From 0 to `last`, else `otherwise`.
int32 archived_choice(const BMessage& archive, const char* name, int32 last, int32 otherwise);
//! The caller's, or NULL.
BMessage* archived_message(const BMessage& archive, const char* name);

/*!	A nested archive's object, the caller's, or NULL; what is no `T` is deleted. */
template<class T>
T*
archived_object(const BMessage& archive, const char* name, int32 index)
{
	BMessage nested;
	if (archive.FindMessage(name, index, &nested) != B_OK)
		return NULL;
	BArchivable* object = instantiate_object(&nested);
	T* wanted = dynamic_cast<T*>(object);
	if (wanted == NULL)
		delete object;
	return wanted;
}

} // namespace BPrivate
