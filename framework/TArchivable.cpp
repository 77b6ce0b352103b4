#include "framework/TArchivable.h"

#include <File.h>

namespace merion {

namespace {

// Looks a value up by `find` and hands it on only when it was there.
template<typename T, typename Find>
status_t
find_value(T* value, Find find)
{
	T found{};
	const status_t status = find(&found);
	if (status == B_OK)
		*value = found;
	return status;
}

} // namespace

bool
TArchivable::Archive(BMessage*) const
{
	return true;
}

bool
TArchivable::Unarchive(const BMessage&)
{
	return true;
}

bool
TArchivable::Load(const BEntry& entry)
{
	BFile file(&entry, B_READ_ONLY);
	BMessage archive;
	return file.InitCheck() == B_OK && archive.Unflatten(&file) == B_OK && Unarchive(archive);
}

bool
TArchivable::Save(const BEntry& entry) const
{
	BFile file(&entry, B_WRITE_ONLY | B_CREATE_FILE | B_ERASE_FILE);
	BMessage archive(static_cast<uint32>(0));
	return file.InitCheck() == B_OK && Archive(&archive) && archive.Flatten(&file) == B_OK;
}

status_t
TArchivable::FindString(const BMessage& message, const char* name, std::string* value)
{
	return FindString(message, name, 0, value);
}

status_t
TArchivable::FindString(const BMessage& message, const char* name, int32 index, std::string* value)
{
	const char* text = nullptr;
	const status_t status = FindString(message, name, index, &text);
	if (status == B_OK)
		*value = text;
	return status;
}

status_t
TArchivable::FindString(const BMessage& message, const char* name, const char** value)
{
	return FindString(message, name, 0, value);
}

status_t
TArchivable::FindString(const BMessage& message, const char* name, int32 index, const char** value)
{
	return find_value(
		value, [&](const char** found) { return message.FindString(name, index, found); });
}

status_t
TArchivable::FindRef(const BMessage& message, const char* name, entry_ref* value)
{
	return FindRef(message, name, 0, value);
}

status_t
TArchivable::FindRef(const BMessage& message, const char* name, int32 index, entry_ref* value)
{
	return find_value(value, [&](entry_ref* found) { return message.FindRef(name, index, found); });
}

status_t
TArchivable::FindRect(const BMessage& message, const char* name, BRect* value)
{
	return FindRect(message, name, 0, value);
}

status_t
TArchivable::FindRect(const BMessage& message, const char* name, int32 index, BRect* value)
{
	return find_value(value, [&](BRect* found) { return message.FindRect(name, index, found); });
}

status_t
TArchivable::FindMessage(const BMessage& message, const char* name, BMessage* value)
{
	return FindMessage(message, name, 0, value);
}

status_t
TArchivable::FindMessage(const BMessage& message, const char* name, int32 index, BMessage* value)
{
	return find_value(
		value, [&](BMessage* found) { return message.FindMessage(name, index, found); });
}

status_t
TArchivable::FindInt64(const BMessage& message, const char* name, int64* value)
{
	return FindInt64(message, name, 0, value);
}

status_t
TArchivable::FindInt64(const BMessage& message, const char* name, int32 index, int64* value)
{
	return find_value(value, [&](int64* found) { return message.FindInt64(name, index, found); });
}

status_t
TArchivable::FindInt32(const BMessage& message, const char* name, int32* value)
{
	return FindInt32(message, name, 0, value);
}

status_t
TArchivable::FindInt32(const BMessage& message, const char* name, int32 index, int32* value)
{
	return find_value(value, [&](int32* found) { return message.FindInt32(name, index, found); });
}

status_t
TArchivable::FindFloat(const BMessage& message, const char* name, float* value)
{
	return FindFloat(message, name, 0, value);
}

status_t
TArchivable::FindFloat(const BMessage& message, const char* name, int32 index, float* value)
{
	return find_value(value, [&](float* found) { return message.FindFloat(name, index, found); });
}

status_t
TArchivable::FindDouble(const BMessage& message, const char* name, double* value)
{
	return FindDouble(message, name, 0, value);
}

status_t
TArchivable::FindDouble(const BMessage& message, const char* name, int32 index, double* value)
{
	return find_value(value, [&](double* found) { return message.FindDouble(name, index, found); });
}

status_t
TArchivable::FindBool(const BMessage& message, const char* name, bool* value)
{
	return FindBool(message, name, 0, value);
}

status_t
TArchivable::FindBool(const BMessage& message, const char* name, int32 index, bool* value)
{
	return find_value(value, [&](bool* found) { return message.FindBool(name, index, found); });
}

status_t
TArchivable::FindData(
	const BMessage& message, const char* name, type_code type, const void** data, ssize_t* size)
{
	return FindData(message, name, type, 0, data, size);
}

status_t
TArchivable::FindData(const BMessage& message, const char* name, type_code type, int32 index,
	const void** data, ssize_t* size)
{
	const void* foundData = nullptr;
	ssize_t foundSize = 0;
	const status_t status = message.FindData(name, type, index, &foundData, &foundSize);
	if (status == B_OK) {
		*data = foundData;
		*size = foundSize;
	}
	return status;
}

} // namespace merion
