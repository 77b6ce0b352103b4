#pragma once

#include <Flattenable.h>

class BMessage;

#define B_PROPERTY_INFO_COMMANDS 10 // at most in one entry

//! A scripting property: which commands it takes with which specifiers. A list of commands or specifiers ends with 0; an empty one means any.
struct property_info {
	const char* name;
	uint32 commands[B_PROPERTY_INFO_COMMANDS];
	uint32 specifiers[B_PROPERTY_INFO_COMMANDS];
	const char* usage;
	uint32 extra_data;
	uint32 types[B_PROPERTY_INFO_COMMANDS]; // of the value
};

/*!	A table of scripting properties. Flattened it tells others what an object understands; the layout is little-endian: count, then per entry name
	and usage with their NUL, extra data, and the three lists, each ended by 0.
	Owner: the caller's table stays the caller's (unless `freeOnDelete`, then free()d) and must outlive it. */
class BPropertyInfo : public BFlattenable {
public:
	//! `properties` ends with an entry without a name.
	BPropertyInfo(const property_info* properties = NULL, bool freeOnDelete = false);
	~BPropertyInfo() override;
	BPropertyInfo(const BPropertyInfo&) = delete;
	BPropertyInfo& operator=(const BPropertyInfo&) = delete;

	/*!	The entry for a message's command, its current specifier's index, form and property; -1 if there is none.
		An entry that lists its commands is only for the last specifier (index 0). `data` (may be NULL): its extra_data. */
	virtual int32 FindMatch(BMessage* message, int32 index, BMessage* specifier, int32 form,
		const char* property, void* data = NULL) const;

	bool IsFixedSize() const override;
	type_code TypeCode() const override;
	ssize_t FlattenedSize() const override;
	status_t Flatten(void* buffer, ssize_t size) const override;
	//! B_BAD_TYPE; B_BAD_VALUE for bytes that are no table, which leave it empty.
	status_t Unflatten(type_code code, const void* buffer, ssize_t size) override;

	const property_info* Properties() const;
	int32 CountProperties() const;

private:
	void Clear();

	const property_info* fProperties;
	int32 fCount = 0;
	bool fFreeOnDelete;
	char* fStrings = nullptr; // of an unflattened table
};
