#include <PropertyInfo.h>

#include <Message.h>
#include <stdlib.h>
#include <string.h>
#include <string>

namespace {

constexpr int32 kMaxList = B_PROPERTY_INFO_COMMANDS;

//! An empty list fits everything.
bool
list_has(const uint32* list, uint32 code)
{
	if (list[0] == 0)
		return true;
	for (int32 i = 0; i < kMaxList && list[i] != 0; i++) {
		if (list[i] == code)
			return true;
	}
	return false;
}

void
put_number(std::string& bytes, uint32 number)
{
	for (int shift = 0; shift < 32; shift += 8)
		bytes += char(number >> shift);
}

void
put_list(std::string& bytes, const uint32* list)
{
	for (int32 i = 0; i < kMaxList && list[i] != 0; i++)
		put_number(bytes, list[i]);
	put_number(bytes, 0);
}

std::string
pack(const property_info* properties, int32 count)
{
	std::string bytes;
	put_number(bytes, uint32(count));
	for (int32 i = 0; i < count; i++) {
		const property_info& info = properties[i];
		bytes.append(info.name, strlen(info.name) + 1);
		bytes.append(info.usage != NULL ? info.usage : "");
		bytes += '\0';
		put_number(bytes, info.extra_data);
		put_list(bytes, info.commands);
		put_list(bytes, info.specifiers);
		put_list(bytes, info.types);
	}
	return bytes;
}

/*!	Takes a flattened table apart; nothing is read behind its end. */
class TableReader {
public:
	TableReader(const char* bytes, size_t size) : fBytes(bytes), fEnd(bytes + size) { }

	bool Number(uint32* number)
	{
		if (fEnd - fBytes < 4)
			return false;
		*number = 0;
		for (int shift = 0; shift < 32; shift += 8)
			*number |= uint32(uint8(*fBytes++)) << shift;
		return true;
	}

	bool List(uint32* list)
	{
		for (int32 i = 0; i <= kMaxList; i++) {
			uint32 number;
			if (!Number(&number) || (i == kMaxList && number != 0))
				return false;
			if (number == 0)
				return true;
			list[i] = number;
		}
		return false;
	}

	//! Points into the bytes.
	bool String(const char** string)
	{
		const void* end = memchr(fBytes, 0, size_t(fEnd - fBytes));
		if (end == NULL)
			return false;
		*string = fBytes;
		fBytes = static_cast<const char*>(end) + 1;
		return true;
	}

	bool Entry(property_info* info)
	{
		return String(&info->name) && String(&info->usage) && Number(&info->extra_data)
			&& List(info->commands) && List(info->specifiers) && List(info->types);
	}

private:
	const char* fBytes;
	const char* fEnd;
};

} // namespace

BPropertyInfo::BPropertyInfo(const property_info* properties, bool freeOnDelete)
	: fProperties(properties),
	  fFreeOnDelete(freeOnDelete)
{
	while (fProperties != NULL && fProperties[fCount].name != NULL)
		fCount++;
}

BPropertyInfo::~BPropertyInfo()
{
	Clear();
}

void
BPropertyInfo::Clear()
{
	if (fFreeOnDelete)
		free(const_cast<property_info*>(fProperties));
	free(fStrings);
	fProperties = NULL;
	fStrings = nullptr;
	fCount = 0;
	fFreeOnDelete = false;
}

int32
BPropertyInfo::FindMatch(
	BMessage* message, int32 index, BMessage*, int32 form, const char* property, void* data) const
{
	if (message == NULL || property == NULL)
		return -1;
	for (int32 i = 0; i < fCount; i++) {
		const property_info& info = fProperties[i];
		const bool takesCommand
			= info.commands[0] == 0 || (index == 0 && list_has(info.commands, message->what));
		if (strcmp(info.name, property) != 0 || !takesCommand
			|| !list_has(info.specifiers, uint32(form)))
			continue;
		if (data != NULL)
			*static_cast<uint32*>(data) = info.extra_data;
		return i;
	}
	return -1;
}

bool
BPropertyInfo::IsFixedSize() const
{
	return false;
}

type_code
BPropertyInfo::TypeCode() const
{
	return B_PROPERTY_INFO_TYPE;
}

ssize_t
BPropertyInfo::FlattenedSize() const
{
	return ssize_t(pack(fProperties, fCount).size());
}

status_t
BPropertyInfo::Flatten(void* buffer, ssize_t size) const
{
	const std::string bytes = pack(fProperties, fCount);
	if (buffer == NULL)
		return B_BAD_VALUE;
	if (size < ssize_t(bytes.size()))
		return B_NO_MEMORY;
	memcpy(buffer, bytes.data(), bytes.size());
	return B_OK;
}

status_t
BPropertyInfo::Unflatten(type_code code, const void* buffer, ssize_t size)
{
	if (code != B_PROPERTY_INFO_TYPE)
		return B_BAD_TYPE;
	Clear();
	uint32 count;
	if (buffer == NULL || size < 4)
		return B_BAD_VALUE;
	fStrings = static_cast<char*>(malloc(size_t(size)));
	if (fStrings == nullptr)
		return B_NO_MEMORY;
	memcpy(fStrings, buffer, size_t(size));
	TableReader reader(fStrings, size_t(size));
	// an entry takes at least 18 bytes
	if (!reader.Number(&count) || count > size_t(size) / 18) {
		Clear();
		return B_BAD_VALUE;
	}
	property_info* table = static_cast<property_info*>(calloc(count + 1, sizeof(property_info)));
	fProperties = table;
	fFreeOnDelete = true;
	for (uint32 i = 0; i < count; i++) {
		if (!reader.Entry(&table[i])) {
			Clear();
			return B_BAD_VALUE;
		}
	}
	fCount = int32(count);
	return B_OK;
}

const property_info*
BPropertyInfo::Properties() const
{
	return fProperties;
}

int32
BPropertyInfo::CountProperties() const
{
	return fCount;
}
