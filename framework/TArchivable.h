#pragma once

#include <string>

#include <Entry.h>
#include <Message.h>
#include <Rect.h>
#include <SupportDefs.h>

namespace merion {

/*!	Base of the records that are kept as one flattened message a file, what code 0.
	The order of the virtual operations is shared with the maker's other applications. Thread: any; a record that
	several threads use locks for itself. */
class TArchivable {
public:
	virtual ~TArchivable() = default;
	//! Adds the record's fields to the message; true when all went in. The base has none.
	virtual bool Archive(BMessage* archive) const;
	//! Takes the fields that are there, the others keep their values; true when all were there.
	virtual bool Unarchive(const BMessage& archive);

	//! False when the file cannot be read, holds no message, or lacks a field.
	bool Load(const BEntry& entry);
	//! Creates or empties the file, then writes it; false leaves it empty.
	bool Save(const BEntry& entry) const;

protected:
	// Each stores the item only when it is there and of that type; otherwise `value` stays, and the status says why.
	static status_t FindString(const BMessage&, const char* name, std::string* value);
	static status_t FindString(const BMessage&, const char* name, int32 index, std::string* value);
	//! `value` points into the message.
	static status_t FindString(const BMessage&, const char* name, const char** value);
	static status_t FindString(const BMessage&, const char* name, int32 index, const char** value);
	static status_t FindRef(const BMessage&, const char* name, entry_ref* value);
	static status_t FindRef(const BMessage&, const char* name, int32 index, entry_ref* value);
	static status_t FindRect(const BMessage&, const char* name, BRect* value);
	static status_t FindRect(const BMessage&, const char* name, int32 index, BRect* value);
	static status_t FindMessage(const BMessage&, const char* name, BMessage* value);
	static status_t FindMessage(const BMessage&, const char* name, int32 index, BMessage* value);
	static status_t FindInt64(const BMessage&, const char* name, int64* value);
	static status_t FindInt64(const BMessage&, const char* name, int32 index, int64* value);
	static status_t FindInt32(const BMessage&, const char* name, int32* value);
	static status_t FindInt32(const BMessage&, const char* name, int32 index, int32* value);
	static status_t FindFloat(const BMessage&, const char* name, float* value);
	static status_t FindFloat(const BMessage&, const char* name, int32 index, float* value);
	static status_t FindDouble(const BMessage&, const char* name, double* value);
	static status_t FindDouble(const BMessage&, const char* name, int32 index, double* value);
	static status_t FindBool(const BMessage&, const char* name, bool* value);
	static status_t FindBool(const BMessage&, const char* name, int32 index, bool* value);
	//! `data` points into the message; `size` in bytes.
	static status_t FindData(
		const BMessage&, const char* name, type_code type, const void** data, ssize_t* size);
	static status_t FindData(const BMessage&, const char* name, type_code type, int32 index,
		const void** data, ssize_t* size);
};

} // namespace merion
