#pragma once

#include <TypeConstants.h>

/*!	An object that can write itself into a flat buffer and read itself back. */
class BFlattenable {
public:
	virtual ~BFlattenable();

	virtual bool IsFixedSize() const = 0;
	virtual type_code TypeCode() const = 0;
	virtual ssize_t FlattenedSize() const = 0;
	//! B_NO_MEMORY when `size` is less than FlattenedSize().
	virtual status_t Flatten(void* buffer, ssize_t size) const = 0;
	//! By default just TypeCode().
	virtual bool AllowsTypeCode(type_code code) const;
	virtual status_t Unflatten(type_code code, const void* buffer, ssize_t size) = 0;
};
