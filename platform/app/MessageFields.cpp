#include <Message.h>

#include "app/MessageAccess.h"
#include <DataIO.h>
#include <Entry.h>
#include <Flattenable.h>
#include <String.h>
#include <string.h>
#include <string>
#include <vector>

using namespace BPrivate;

// How each type lies in a field. Values of one size are their own bytes; the others are packed first.

namespace {

constexpr size_t kMessengerSize = 24; // port, token, team and 12 bytes that are not used
constexpr size_t kRefNumbersSize = 12;

std::string
pack_messenger(const BMessenger& messenger)
{
	const int32 numbers[] = {MessengerAccess::Port(messenger), MessengerAccess::Token(messenger),
		MessengerAccess::Team(messenger)};
	std::string bytes(kMessengerSize, '\0');
	memcpy(bytes.data(), numbers, sizeof(numbers));
	return bytes;
}

std::string
pack_ref(const entry_ref& ref)
{
	const int32 device = int32(ref.device);
	const int64 directory = int64(ref.directory);
	std::string bytes(kRefNumbersSize, '\0');
	memcpy(bytes.data(), &device, sizeof(device));
	memcpy(bytes.data() + sizeof(device), &directory, sizeof(directory));
	if (ref.name != NULL)
		bytes.append(ref.name, strlen(ref.name) + 1);
	return bytes;
}

status_t
unpack_ref(const void* data, size_t size, entry_ref* ref)
{
	const char* bytes = static_cast<const char*>(data);
	if (size < kRefNumbersSize || (size > kRefNumbersSize && bytes[size - 1] != '\0'))
		return B_BAD_VALUE;
	int32 device;
	int64 directory;
	memcpy(&device, bytes, sizeof(device));
	memcpy(&directory, bytes + sizeof(device), sizeof(directory));
	// a device number has more bits here than on the platform, and none of them is a sign but in "no device"
	*ref = entry_ref(device == -1 ? dev_t(-1) : dev_t(uint32(device)), ino_t(directory),
		size > kRefNumbersSize ? bytes + kRefNumbersSize : NULL);
	return B_OK;
}

std::string
pack_message(const BMessage& message)
{
	std::string bytes(size_t(message.FlattenedSize()), '\0');
	message.Flatten(bytes.data(), ssize_t(bytes.size()));
	return bytes;
}

std::vector<char>
pack_flat(const BFlattenable& object, status_t* error)
{
	const ssize_t size = object.FlattenedSize();
	std::vector<char> bytes(size > 0 ? size_t(size) : 0);
	*error = size <= 0 ? B_BAD_VALUE : object.Flatten(bytes.data(), size);
	return bytes;
}

template<typename Value>
status_t
copy_value(const void* data, size_t size, Value* value)
{
	if (size != sizeof(Value))
		return B_BAD_VALUE;
	memcpy(static_cast<void*>(value), data, sizeof(Value));
	return B_OK;
}

template<>
status_t
copy_value(const void* data, size_t size, bool* value)
{
	if (size != 1)
		return B_BAD_VALUE;
	*value = *static_cast<const char*>(data) != 0;
	return B_OK;
}

} // namespace

// Adding, finding, replacing and asking for values of one size: Argument is how the value is passed.
#define DEFINE_VALUE(Name, Type, Argument, code)                                                   \
	status_t BMessage::Add##Name(const char* name, Argument value)                                 \
	{                                                                                              \
		return AddData(name, code, &value, sizeof(Type), true);                                    \
	}                                                                                              \
	status_t BMessage::Find##Name(const char* name, Type* value) const                             \
	{                                                                                              \
		return Find##Name(name, 0, value);                                                         \
	}                                                                                              \
	status_t BMessage::Find##Name(const char* name, int32 index, Type* value) const                \
	{                                                                                              \
		size_t size;                                                                               \
		status_t error;                                                                            \
		const void* data = FindItem(name, code, index, &size, &error);                             \
		if (error != B_OK)                                                                         \
			return error;                                                                          \
		return value == NULL ? B_BAD_VALUE : copy_value(data, size, value);                        \
	}                                                                                              \
	status_t BMessage::Replace##Name(const char* name, Argument value)                             \
	{                                                                                              \
		return ReplaceData(name, code, 0, &value, sizeof(Type));                                   \
	}                                                                                              \
	status_t BMessage::Replace##Name(const char* name, int32 index, Argument value)                \
	{                                                                                              \
		return ReplaceData(name, code, index, &value, sizeof(Type));                               \
	}                                                                                              \
	bool BMessage::Has##Name(const char* name, int32 index) const                                  \
	{                                                                                              \
		return HasData(name, code, index);                                                         \
	}

// The value or a default.
#define DEFINE_GETTERS(Name, Type)                                                                 \
	Type BMessage::Get##Name(const char* name, Type defaultValue) const                            \
	{                                                                                              \
		return Get##Name(name, 0, defaultValue);                                                   \
	}                                                                                              \
	Type BMessage::Get##Name(const char* name, int32 index, Type defaultValue) const               \
	{                                                                                              \
		Find##Name(name, index, &defaultValue);                                                    \
		return defaultValue;                                                                       \
	}

DEFINE_VALUE(Alignment, BAlignment, const BAlignment&, B_ALIGNMENT_TYPE)
DEFINE_VALUE(Rect, BRect, BRect, B_RECT_TYPE)
DEFINE_VALUE(Point, BPoint, BPoint, B_POINT_TYPE)
DEFINE_VALUE(Size, BSize, BSize, B_SIZE_TYPE)
DEFINE_VALUE(Int8, int8, int8, B_INT8_TYPE)
DEFINE_VALUE(UInt8, uint8, uint8, B_UINT8_TYPE)
DEFINE_VALUE(Int16, int16, int16, B_INT16_TYPE)
DEFINE_VALUE(UInt16, uint16, uint16, B_UINT16_TYPE)
DEFINE_VALUE(Int32, int32, int32, B_INT32_TYPE)
DEFINE_VALUE(UInt32, uint32, uint32, B_UINT32_TYPE)
DEFINE_VALUE(Int64, int64, int64, B_INT64_TYPE)
DEFINE_VALUE(UInt64, uint64, uint64, B_UINT64_TYPE)
DEFINE_VALUE(Bool, bool, bool, B_BOOL_TYPE)
DEFINE_VALUE(Float, float, float, B_FLOAT_TYPE)
DEFINE_VALUE(Double, double, double, B_DOUBLE_TYPE)
DEFINE_VALUE(Color, rgb_color, rgb_color, B_RGB_32_BIT_TYPE)

static_assert(sizeof(BRect) == 16 && sizeof(BPoint) == 8 && sizeof(BSize) == 8);
static_assert(sizeof(BAlignment) == 8 && sizeof(rgb_color) == 4 && sizeof(bool) == 1);

DEFINE_GETTERS(Bool, bool)
DEFINE_GETTERS(Int8, int8)
DEFINE_GETTERS(UInt8, uint8)
DEFINE_GETTERS(Int16, int16)
DEFINE_GETTERS(UInt16, uint16)
DEFINE_GETTERS(Int32, int32)
DEFINE_GETTERS(UInt32, uint32)
DEFINE_GETTERS(Int64, int64)
DEFINE_GETTERS(UInt64, uint64)
DEFINE_GETTERS(Float, float)
DEFINE_GETTERS(Double, double)
DEFINE_GETTERS(Color, rgb_color)

BAlignment
BMessage::GetAlignment(const char* name, const BAlignment& defaultValue) const
{
	BAlignment value = defaultValue;
	FindAlignment(name, &value);
	return value;
}

BRect
BMessage::GetRect(const char* name, BRect defaultValue) const
{
	FindRect(name, &defaultValue);
	return defaultValue;
}

BPoint
BMessage::GetPoint(const char* name, BPoint defaultValue) const
{
	FindPoint(name, &defaultValue);
	return defaultValue;
}

BSize
BMessage::GetSize(const char* name, BSize defaultValue) const
{
	FindSize(name, &defaultValue);
	return defaultValue;
}

// Strings

status_t
BMessage::AddString(const char* name, const char* string)
{
	return AddData(
		name, B_STRING_TYPE, string, string != NULL ? ssize_t(strlen(string) + 1) : 0, false);
}

status_t
BMessage::AddString(const char* name, const BString& string)
{
	return AddString(name, string.String());
}

status_t
BMessage::FindString(const char* name, const char** string) const
{
	return FindString(name, 0, string);
}

status_t
BMessage::FindString(const char* name, int32 index, const char** string) const
{
	size_t size;
	status_t error;
	const void* data = FindItem(name, B_STRING_TYPE, index, &size, &error);
	if (error != B_OK)
		return error;
	const char* text = static_cast<const char*>(data);
	// AddData() takes any bytes.
	if (string == NULL || text[size - 1] != '\0')
		return B_BAD_VALUE;
	*string = text;
	return B_OK;
}

status_t
BMessage::FindString(const char* name, BString* string) const
{
	return FindString(name, 0, string);
}

status_t
BMessage::FindString(const char* name, int32 index, BString* string) const
{
	const char* text;
	const status_t error = string != NULL ? FindString(name, index, &text) : B_BAD_VALUE;
	if (error == B_OK)
		string->SetTo(text);
	return error;
}

status_t
BMessage::ReplaceString(const char* name, const char* string)
{
	return ReplaceString(name, 0, string);
}

status_t
BMessage::ReplaceString(const char* name, int32 index, const char* string)
{
	return ReplaceData(
		name, B_STRING_TYPE, index, string, string != NULL ? ssize_t(strlen(string) + 1) : 0);
}

status_t
BMessage::ReplaceString(const char* name, const BString& string)
{
	return ReplaceString(name, 0, string.String());
}

status_t
BMessage::ReplaceString(const char* name, int32 index, const BString& string)
{
	return ReplaceString(name, index, string.String());
}

bool
BMessage::HasString(const char* name, int32 index) const
{
	return HasData(name, B_STRING_TYPE, index);
}

const char*
BMessage::GetString(const char* name, const char* defaultValue) const
{
	return GetString(name, 0, defaultValue);
}

const char*
BMessage::GetString(const char* name, int32 index, const char* defaultValue) const
{
	FindString(name, index, &defaultValue);
	return defaultValue;
}

// Pointers

status_t
BMessage::AddPointer(const char* name, const void* pointer)
{
	return AddData(name, B_POINTER_TYPE, &pointer, sizeof(pointer), true);
}

status_t
BMessage::FindPointer(const char* name, void** pointer) const
{
	return FindPointer(name, 0, pointer);
}

status_t
BMessage::FindPointer(const char* name, int32 index, void** pointer) const
{
	size_t size;
	status_t error;
	const void* data = FindItem(name, B_POINTER_TYPE, index, &size, &error);
	if (error != B_OK)
		return error;
	return pointer == NULL ? B_BAD_VALUE : copy_value(data, size, pointer);
}

status_t
BMessage::ReplacePointer(const char* name, const void* pointer)
{
	return ReplacePointer(name, 0, pointer);
}

status_t
BMessage::ReplacePointer(const char* name, int32 index, const void* pointer)
{
	return ReplaceData(name, B_POINTER_TYPE, index, &pointer, sizeof(pointer));
}

bool
BMessage::HasPointer(const char* name, int32 index) const
{
	return HasData(name, B_POINTER_TYPE, index);
}

const void*
BMessage::GetPointer(const char* name, int32 index, const void* defaultValue) const
{
	void* pointer;
	return FindPointer(name, index, &pointer) == B_OK ? pointer : defaultValue;
}

const void*
BMessage::GetPointer(const char* name, const void* defaultValue) const
{
	return GetPointer(name, 0, defaultValue);
}

// Messengers

status_t
BMessage::AddMessenger(const char* name, BMessenger messenger)
{
	return AddData(name, B_MESSENGER_TYPE, pack_messenger(messenger).data(), kMessengerSize, true);
}

status_t
BMessage::FindMessenger(const char* name, BMessenger* messenger) const
{
	return FindMessenger(name, 0, messenger);
}

status_t
BMessage::FindMessenger(const char* name, int32 index, BMessenger* messenger) const
{
	size_t size;
	status_t error;
	const void* data = FindItem(name, B_MESSENGER_TYPE, index, &size, &error);
	if (error != B_OK)
		return error;
	int32 numbers[3];
	if (messenger == NULL || size < sizeof(numbers))
		return B_BAD_VALUE;
	memcpy(numbers, data, sizeof(numbers));
	*messenger = MessengerAccess::Make(numbers[0], numbers[1], numbers[2]);
	return B_OK;
}

status_t
BMessage::ReplaceMessenger(const char* name, BMessenger messenger)
{
	return ReplaceMessenger(name, 0, messenger);
}

status_t
BMessage::ReplaceMessenger(const char* name, int32 index, BMessenger messenger)
{
	return ReplaceData(
		name, B_MESSENGER_TYPE, index, pack_messenger(messenger).data(), kMessengerSize);
}

bool
BMessage::HasMessenger(const char* name, int32 index) const
{
	return HasData(name, B_MESSENGER_TYPE, index);
}

// Refs

status_t
BMessage::AddRef(const char* name, const entry_ref* ref)
{
	if (ref == NULL)
		return B_BAD_VALUE;
	const std::string bytes = pack_ref(*ref);
	return AddData(name, B_REF_TYPE, bytes.data(), ssize_t(bytes.size()), false);
}

status_t
BMessage::FindRef(const char* name, entry_ref* ref) const
{
	return FindRef(name, 0, ref);
}

status_t
BMessage::FindRef(const char* name, int32 index, entry_ref* ref) const
{
	size_t size;
	status_t error;
	const void* data = FindItem(name, B_REF_TYPE, index, &size, &error);
	if (error != B_OK)
		return error;
	return ref == NULL ? B_BAD_VALUE : unpack_ref(data, size, ref);
}

status_t
BMessage::ReplaceRef(const char* name, const entry_ref* ref)
{
	return ReplaceRef(name, 0, ref);
}

status_t
BMessage::ReplaceRef(const char* name, int32 index, const entry_ref* ref)
{
	if (ref == NULL)
		return B_BAD_VALUE;
	const std::string bytes = pack_ref(*ref);
	return ReplaceData(name, B_REF_TYPE, index, bytes.data(), ssize_t(bytes.size()));
}

bool
BMessage::HasRef(const char* name, int32 index) const
{
	return HasData(name, B_REF_TYPE, index);
}

// Messages

status_t
BMessage::AddMessage(const char* name, const BMessage* message)
{
	if (message == NULL)
		return B_BAD_VALUE;
	const std::string bytes = pack_message(*message);
	return AddData(name, B_MESSAGE_TYPE, bytes.data(), ssize_t(bytes.size()), false);
}

status_t
BMessage::FindMessage(const char* name, BMessage* message) const
{
	return FindMessage(name, 0, message);
}

status_t
BMessage::FindMessage(const char* name, int32 index, BMessage* message) const
{
	size_t size;
	status_t error;
	const void* data = FindItem(name, B_MESSAGE_TYPE, index, &size, &error);
	if (error != B_OK)
		return error;
	if (message == NULL)
		return B_BAD_VALUE;
	BMemoryIO stream(data, size);
	error = message->Unflatten(&stream);
	if (error == B_NOT_A_MESSAGE)
		message->MakeEmpty();
	return error;
}

status_t
BMessage::ReplaceMessage(const char* name, const BMessage* message)
{
	return ReplaceMessage(name, 0, message);
}

status_t
BMessage::ReplaceMessage(const char* name, int32 index, const BMessage* message)
{
	if (message == NULL)
		return B_BAD_VALUE;
	const std::string bytes = pack_message(*message);
	return ReplaceData(name, B_MESSAGE_TYPE, index, bytes.data(), ssize_t(bytes.size()));
}

bool
BMessage::HasMessage(const char* name, int32 index) const
{
	return HasData(name, B_MESSAGE_TYPE, index);
}

// Objects that flatten themselves

status_t
BMessage::AddFlat(const char* name, BFlattenable* object, int32 count)
{
	return AddFlat(name, static_cast<const BFlattenable*>(object), count);
}

status_t
BMessage::AddFlat(const char* name, const BFlattenable* object, int32 count)
{
	if (object == NULL)
		return B_BAD_VALUE;
	status_t error;
	const std::vector<char> bytes = pack_flat(*object, &error);
	if (error != B_OK)
		return error;
	return AddData(name, object->TypeCode(), bytes.data(), ssize_t(bytes.size()),
		object->IsFixedSize(), count);
}

status_t
BMessage::FindFlat(const char* name, BFlattenable* object) const
{
	return FindFlat(name, 0, object);
}

status_t
BMessage::FindFlat(const char* name, int32 index, BFlattenable* object) const
{
	if (object == NULL)
		return B_BAD_VALUE;
	type_code type;
	status_t error = GetInfo(name, &type, static_cast<int32*>(NULL));
	if (error != B_OK)
		return error;
	size_t size;
	const void* data = FindItem(name, type, index, &size, &error);
	if (error != B_OK)
		return error;
	if (!object->AllowsTypeCode(type))
		return B_BAD_TYPE;
	return object->Unflatten(type, data, ssize_t(size));
}

bool
BMessage::HasFlat(const char* name, const BFlattenable* object) const
{
	return HasFlat(name, 0, object);
}

bool
BMessage::HasFlat(const char* name, int32 index, const BFlattenable* object) const
{
	return object != NULL && HasData(name, object->TypeCode(), index);
}
