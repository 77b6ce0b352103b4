#include <Message.h>

#include "app/MessageAccess.h"
#include "app/MessageBody.h"
#include <ctype.h>
#include <stdio.h>

using namespace BPrivate;

//! `data`, or a copy when they are bytes of the message itself, which a change would move.
static const void*
stable_bytes(const MessageBody* body, const void* data, size_t size, std::vector<uint8>* copy)
{
	if (body == nullptr || !body->Contains(data))
		return data;
	const uint8* bytes = static_cast<const uint8*>(data);
	copy->assign(bytes, bytes + size);
	return copy->data();
}

BMessage::BMessage() : BMessage(0) { }

BMessage::BMessage(uint32 what) : what(what), fHeader(MessageAccess::FreshHeader()) { }

BMessage::BMessage(const BMessage& other) : BMessage(other.what)
{
	*this = other;
}

BMessage::~BMessage()
{
	if (ReplyMatters())
		SendReply(B_NO_REPLY);
	SetBody(nullptr);
}

BMessage&
BMessage::operator=(const BMessage& other)
{
	if (this == &other)
		return *this;
	if (ReplyMatters())
		SendReply(B_NO_REPLY);
	what = other.what;
	fHeader = other.fHeader;
	fHeader.flags &= ~(kMessageReplyRequired | kMessageReplyDone | kMessageIsReply
		| kMessageWasDelivered | kMessageInArea);
	fDelivered = other.fDelivered;
	fPrevious.reset();
	if (other.fBody != nullptr)
		other.fBody->Acquire();
	SetBody(other.fBody);
	return *this;
}

void
BMessage::SetBody(MessageBody* body)
{
	MessageBody* old = fBody;
	fBody = body;
	if (old != nullptr)
		old->Release();
}

MessageBody&
BMessage::MutableBody()
{
	if (fBody == nullptr)
		fBody = new MessageBody;
	else if (fBody->IsShared())
		SetBody(new MessageBody(*fBody));
	return *fBody;
}

status_t
BMessage::GetInfo(type_code typeRequested, int32 index, char** nameFound, type_code* typeFound,
	int32* countFound) const
{
	if (index < 0)
		return B_BAD_INDEX;
	int32 seen = 0;
	for (int32 i = 0; fBody != nullptr && i < int32(fBody->Fields().size()); i++) {
		const FieldHeader& field = fBody->Fields()[i];
		if (typeRequested != B_ANY_TYPE && typeRequested != field.type)
			continue;
		if (seen++ < index)
			continue;
		if (nameFound != NULL)
			*nameFound = const_cast<char*>(fBody->NameOf(field));
		if (typeFound != NULL)
			*typeFound = field.type;
		if (countFound != NULL)
			*countFound = int32(field.count);
		return B_OK;
	}
	return typeRequested == B_ANY_TYPE || seen > 0 ? B_BAD_INDEX : B_BAD_TYPE;
}

status_t
BMessage::GetInfo(const char* name, type_code* typeFound, int32* countFound) const
{
	return GetInfo(name, typeFound, countFound, NULL);
}

status_t
BMessage::GetInfo(const char* name, type_code* typeFound, bool* fixedSize) const
{
	return GetInfo(name, typeFound, NULL, fixedSize);
}

status_t
BMessage::GetInfo(const char* name, type_code* typeFound, int32* countFound, bool* fixedSize) const
{
	if (name == NULL)
		return B_BAD_VALUE;
	int32 index;
	const status_t error
		= fBody != nullptr ? fBody->Find(name, B_ANY_TYPE, &index) : B_NAME_NOT_FOUND;
	if (error != B_OK) {
		if (countFound != NULL)
			*countFound = 0;
		return error;
	}
	const FieldHeader& field = fBody->Fields()[index];
	if (typeFound != NULL)
		*typeFound = field.type;
	if (countFound != NULL)
		*countFound = int32(field.count);
	if (fixedSize != NULL)
		*fixedSize = (field.flags & kFieldFixed) != 0;
	return B_OK;
}

int32
BMessage::CountNames(type_code type) const
{
	int32 count = 0;
	if (fBody == nullptr)
		return 0;
	for (const FieldHeader& field : fBody->Fields())
		count += type == B_ANY_TYPE || type == field.type ? 1 : 0;
	return count;
}

bool
BMessage::IsEmpty() const
{
	return fBody == nullptr || fBody->Fields().empty();
}

bool
BMessage::IsSystem() const
{
	return (what >> 24) == '_' && isupper((what >> 16) & 0xff) && isupper((what >> 8) & 0xff)
		&& isupper(what & 0xff);
}

void
BMessage::PrintToStream() const
{
	char code[5] = {};
	for (int i = 0; i < 4; i++) {
		const char letter = char(what >> (24 - 8 * i));
		code[i] = isprint(static_cast<unsigned char>(letter)) ? letter : '.';
	}
	printf("BMessage: what = %s (0x%" B_PRIx32 ", or %" B_PRId32 ")\n", code, what, int32(what));
	if (fBody == nullptr)
		return;
	for (const FieldHeader& field : fBody->Fields()) {
		const type_code type = field.type;
		printf("    entry %s, type='%c%c%c%c', count=%" B_PRIu32 ", size=%" B_PRIu32 "\n",
			fBody->NameOf(field), char(type >> 24), char(type >> 16), char(type >> 8), char(type),
			field.count, field.dataSize);
	}
}

status_t
BMessage::Rename(const char* oldEntry, const char* newEntry)
{
	if (oldEntry == NULL || newEntry == NULL)
		return B_BAD_VALUE;
	int32 index;
	if (fBody == nullptr || fBody->Find(oldEntry, B_ANY_TYPE, &index) != B_OK)
		return B_NAME_NOT_FOUND;
	int32 other;
	if (fBody->Find(newEntry, B_ANY_TYPE, &other) == B_OK)
		return other == index ? B_OK : B_NAME_IN_USE;
	return MutableBody().Rename(index, newEntry);
}

status_t
BMessage::RemoveData(const char* name, int32 item)
{
	if (name == NULL)
		return B_BAD_VALUE;
	int32 index;
	if (fBody == nullptr || fBody->Find(name, B_ANY_TYPE, &index) != B_OK)
		return B_NAME_NOT_FOUND;
	return MutableBody().RemoveItem(index, item);
}

status_t
BMessage::RemoveName(const char* name)
{
	if (name == NULL)
		return B_BAD_VALUE;
	int32 index;
	if (fBody == nullptr || fBody->Find(name, B_ANY_TYPE, &index) != B_OK)
		return B_NAME_NOT_FOUND;
	MutableBody().RemoveField(index);
	return B_OK;
}

status_t
BMessage::MakeEmpty()
{
	SetBody(nullptr);
	fHeader.flags &= ~kMessageHasSpecifiers;
	fHeader.currentSpecifier = -1;
	return B_OK;
}

const void*
BMessage::FindItem(
	const char* name, type_code type, int32 item, size_t* size, status_t* error) const
{
	int32 index;
	if (name == NULL || item < 0)
		*error = B_BAD_VALUE;
	else if (fBody == nullptr)
		*error = B_NAME_NOT_FOUND;
	else
		*error = fBody->Find(name, type, &index);
	if (*error != B_OK)
		return NULL;
	const void* found = fBody->ItemAt(index, item, size);
	*error = found != NULL ? B_OK : B_BAD_INDEX;
	return found;
}

status_t
BMessage::AddData(
	const char* name, type_code type, const void* data, ssize_t numBytes, bool isFixedSize, int32)
{
	if (name == NULL || data == NULL || numBytes <= 0)
		return B_BAD_VALUE;
	std::vector<uint8> copy;
	data = stable_bytes(fBody, data, size_t(numBytes), &copy);
	return MutableBody().AddItem(name, type, data, size_t(numBytes), isFixedSize);
}

status_t
BMessage::FindData(const char* name, type_code type, const void** data, ssize_t* numBytes) const
{
	return FindData(name, type, 0, data, numBytes);
}

status_t
BMessage::FindData(
	const char* name, type_code type, int32 index, const void** data, ssize_t* numBytes) const
{
	if (data == NULL)
		return B_BAD_VALUE;
	size_t size;
	status_t error;
	const void* found = FindItem(name, type, index, &size, &error);
	if (error != B_OK)
		return error;
	*data = found;
	if (numBytes != NULL)
		*numBytes = ssize_t(size);
	return B_OK;
}

bool
BMessage::HasData(const char* name, type_code type, int32 index) const
{
	size_t size;
	status_t error;
	return FindItem(name, type, index, &size, &error) != NULL;
}

status_t
BMessage::ReplaceData(const char* name, type_code type, const void* data, ssize_t numBytes)
{
	return ReplaceData(name, type, 0, data, numBytes);
}

status_t
BMessage::ReplaceData(
	const char* name, type_code type, int32 item, const void* data, ssize_t numBytes)
{
	if (name == NULL || data == NULL || numBytes <= 0 || item < 0)
		return B_BAD_VALUE;
	if (fBody == nullptr)
		return B_NAME_NOT_FOUND;
	int32 index;
	const status_t error = fBody->Find(name, type, &index);
	if (error != B_OK)
		return error;
	std::vector<uint8> copy;
	data = stable_bytes(fBody, data, size_t(numBytes), &copy);
	return MutableBody().ReplaceItem(index, item, data, size_t(numBytes));
}
