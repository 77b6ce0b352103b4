#pragma once

#include <Alignment.h>
#include <AppDefs.h>
#include <GraphicsDefs.h>
#include <Messenger.h>
#include <Point.h>
#include <Rect.h>
#include <Size.h>
#include <TypeConstants.h>
#include <memory>

class BDataIO;
class BFlattenable;
class BMessageQueue;
class BString;
struct entry_ref;

namespace BPrivate {
class MessageAccess;
class MessageBody;
} // namespace BPrivate

#define B_FIELD_NAME_LENGTH 255
#define B_PROPERTY_NAME_LENGTH 255

//! The kinds of specifiers: what codes of the messages in the field "specifiers".
enum {
	B_NO_SPECIFIER = 0,
	B_DIRECT_SPECIFIER = 1,
	B_INDEX_SPECIFIER,         // "index" (int32)
	B_REVERSE_INDEX_SPECIFIER, // "index" (int32), counted from the end
	B_RANGE_SPECIFIER,         // "index", "range" (int32)
	B_REVERSE_RANGE_SPECIFIER, // the same, counted from the end
	B_NAME_SPECIFIER,          // "name" (string)
	B_ID_SPECIFIER,            // "id" (int32)
	B_SPECIFIERS_END = 128     // an application's own kinds begin here
};

/*!	A what code and named fields, each with items of one type. In memory and flattened it is the platform's native message.
	Copies share the fields until one of them changes; a copy is nobody's reply and was not delivered, whatever the original
	is. Thread: one at a time; messages of one origin may be used by several.

	All finding functions answer B_OK or: B_BAD_VALUE (name NULL, index negative, an item that is too short for its type),
	B_NAME_NOT_FOUND, B_BAD_TYPE (a field of that name has another type), B_BAD_INDEX. What they write is left alone on failure.
	Pointers into a message hold until it is changed or deleted.
	Adding: B_BAD_VALUE (no name, no data, a length that differs in a field of items of one size), B_BAD_TYPE, B_NO_MEMORY. */
class BMessage {
public:
	uint32 what;

	BMessage();
	explicit BMessage(uint32 what);
	BMessage(const BMessage& other);
	//! A message that was delivered to us unanswered while its sender waits answers B_NO_REPLY.
	virtual ~BMessage();
	BMessage& operator=(const BMessage& other);

	// Fields in general

	/*!	The `index`th field of the type (B_ANY_TYPE: of all). B_BAD_TYPE when there is none of that type, B_BAD_INDEX.
		The out arguments may be NULL. */
	status_t GetInfo(type_code typeRequested, int32 index, char** nameFound, type_code* typeFound,
		int32* countFound = NULL) const;
	status_t GetInfo(const char* name, type_code* typeFound, int32* countFound = NULL) const;
	status_t GetInfo(const char* name, type_code* typeFound, bool* fixedSize) const;
	status_t GetInfo(
		const char* name, type_code* typeFound, int32* countFound, bool* fixedSize) const;
	//! Fields of the type.
	int32 CountNames(type_code type) const;
	bool IsEmpty() const;
	//! Is `what` one of the system's codes?
	bool IsSystem() const;
	//! Whether it answers another message. What it answers is in Previous().
	bool IsReply() const;
	void PrintToStream() const;
	//! B_NAME_NOT_FOUND; B_NAME_IN_USE when `newEntry` exists.
	status_t Rename(const char* oldEntry, const char* newEntry);

	// Delivery

	bool WasDelivered() const;
	//! Does a thread wait for the reply that this message still owes?
	bool IsSourceWaiting() const;
	bool IsSourceRemote() const;
	//! Where replies go; an invalid messenger unless it was delivered.
	BMessenger ReturnAddress() const;
	//! The message that this one answers, which belongs to it; NULL if it is no reply. The previous of the previous is not kept.
	const BMessage* Previous() const;
	//! Was it dropped by the user?
	bool WasDropped() const;
	/*!	Where it was dropped, in the screen's coordinates; `offset`: where in the dragged thing it was held. */
	BPoint DropPoint(BPoint* offset = NULL) const;

	/*!	Answers this message. B_DUPLICATE_REPLY when a waiting source has its reply already, B_BAD_REPLY for a message that was not
		delivered; else as BMessenger::SendMessage(). The forms with `replyToReply` wait for an answer to the answer. */
	status_t SendReply(uint32 command, BHandler* replyTo = NULL);
	status_t SendReply(
		BMessage* reply, BHandler* replyTo = NULL, bigtime_t timeout = B_INFINITE_TIMEOUT);
	status_t SendReply(BMessage* reply, BMessenger replyTo, bigtime_t timeout = B_INFINITE_TIMEOUT);
	status_t SendReply(uint32 command, BMessage* replyToReply);
	status_t SendReply(BMessage* reply, BMessage* replyToReply,
		bigtime_t sendTimeout = B_INFINITE_TIMEOUT, bigtime_t replyTimeout = B_INFINITE_TIMEOUT);

	// Flattening

	//! Bytes that Flatten() writes.
	ssize_t FlattenedSize() const;
	//! In the native format. B_BAD_VALUE when `size` is less than FlattenedSize().
	status_t Flatten(char* buffer, ssize_t size) const;
	//! `size` (may be NULL): bytes written. Errors are the stream's, B_ERROR when it takes less than asked.
	status_t Flatten(BDataIO* stream, ssize_t* size = NULL) const;
	/*!	Reads the native format and those of R5 and Dano, carefully: bad data answer B_BAD_VALUE (older formats also B_ERROR and
		B_BAD_DATA) and leave an empty message. B_NOT_A_MESSAGE for anything else, the message is left alone. B_NO_MEMORY when more is
		announced than fits in memory. `flattenedBuffer` has no known end: as many bytes are read as its header announces. */
	status_t Unflatten(const char* flattenedBuffer);
	status_t Unflatten(BDataIO* stream);

	// Specifiers: which object of the target a scripting command is for, the last one added first

	status_t AddSpecifier(const char* property);
	status_t AddSpecifier(const char* property, int32 index);
	//! B_BAD_VALUE for a negative range.
	status_t AddSpecifier(const char* property, int32 index, int32 range);
	status_t AddSpecifier(const char* property, const char* name);
	status_t AddSpecifier(const BMessage* specifier);
	//! To the current specifier again. B_BAD_INDEX.
	status_t SetCurrentSpecifier(int32 index);
	/*!	The specifier to be resolved next. `index` is written in any case, negative when all are; `form`: its what code; `property` points
		into `specifier`. All may be NULL. B_BAD_SCRIPT_SYNTAX: none left, not delivered, or no property. */
	status_t GetCurrentSpecifier(int32* index, BMessage* specifier = NULL, int32* form = NULL,
		const char** property = NULL) const;
	bool HasSpecifiers() const;
	//! On to the next one. B_BAD_VALUE: none left, or not delivered.
	status_t PopSpecifier();

	// Adding

	status_t AddAlignment(const char* name, const BAlignment& alignment);
	status_t AddRect(const char* name, BRect rect);
	status_t AddPoint(const char* name, BPoint point);
	status_t AddSize(const char* name, BSize size);
	status_t AddString(const char* name, const char* string);
	status_t AddString(const char* name, const BString& string);
	status_t AddInt8(const char* name, int8 value);
	status_t AddUInt8(const char* name, uint8 value);
	status_t AddInt16(const char* name, int16 value);
	status_t AddUInt16(const char* name, uint16 value);
	status_t AddInt32(const char* name, int32 value);
	status_t AddUInt32(const char* name, uint32 value);
	status_t AddInt64(const char* name, int64 value);
	status_t AddUInt64(const char* name, uint64 value);
	status_t AddBool(const char* name, bool value);
	status_t AddFloat(const char* name, float value);
	status_t AddDouble(const char* name, double value);
	status_t AddColor(const char* name, rgb_color value);
	status_t AddPointer(const char* name, const void* pointer);
	status_t AddMessenger(const char* name, BMessenger messenger);
	status_t AddRef(const char* name, const entry_ref* ref);
	status_t AddMessage(const char* name, const BMessage* message);
	status_t AddFlat(const char* name, BFlattenable* object, int32 count = 1);
	status_t AddFlat(const char* name, const BFlattenable* object, int32 count = 1);
	//! The first item of a field decides whether all its items have one size; `count` is only a hint.
	status_t AddData(const char* name, type_code type, const void* data, ssize_t numBytes,
		bool isFixedSize = true, int32 count = 1);

	// Removing: B_NAME_NOT_FOUND, B_BAD_INDEX

	status_t RemoveData(const char* name, int32 index = 0);
	status_t RemoveName(const char* name);
	//! Removes all fields; `what` and a waiting source stay.
	status_t MakeEmpty();

	// Finding

	status_t FindAlignment(const char* name, BAlignment* alignment) const;
	status_t FindAlignment(const char* name, int32 index, BAlignment* alignment) const;
	status_t FindRect(const char* name, BRect* rect) const;
	status_t FindRect(const char* name, int32 index, BRect* rect) const;
	status_t FindPoint(const char* name, BPoint* point) const;
	status_t FindPoint(const char* name, int32 index, BPoint* point) const;
	status_t FindSize(const char* name, BSize* size) const;
	status_t FindSize(const char* name, int32 index, BSize* size) const;
	status_t FindString(const char* name, const char** string) const;
	status_t FindString(const char* name, int32 index, const char** string) const;
	status_t FindString(const char* name, BString* string) const;
	status_t FindString(const char* name, int32 index, BString* string) const;
	status_t FindInt8(const char* name, int8* value) const;
	status_t FindInt8(const char* name, int32 index, int8* value) const;
	status_t FindUInt8(const char* name, uint8* value) const;
	status_t FindUInt8(const char* name, int32 index, uint8* value) const;
	status_t FindInt16(const char* name, int16* value) const;
	status_t FindInt16(const char* name, int32 index, int16* value) const;
	status_t FindUInt16(const char* name, uint16* value) const;
	status_t FindUInt16(const char* name, int32 index, uint16* value) const;
	status_t FindInt32(const char* name, int32* value) const;
	status_t FindInt32(const char* name, int32 index, int32* value) const;
	status_t FindUInt32(const char* name, uint32* value) const;
	status_t FindUInt32(const char* name, int32 index, uint32* value) const;
	status_t FindInt64(const char* name, int64* value) const;
	status_t FindInt64(const char* name, int32 index, int64* value) const;
	status_t FindUInt64(const char* name, uint64* value) const;
	status_t FindUInt64(const char* name, int32 index, uint64* value) const;
	status_t FindBool(const char* name, bool* value) const;
	status_t FindBool(const char* name, int32 index, bool* value) const;
	status_t FindFloat(const char* name, float* value) const;
	status_t FindFloat(const char* name, int32 index, float* value) const;
	status_t FindDouble(const char* name, double* value) const;
	status_t FindDouble(const char* name, int32 index, double* value) const;
	status_t FindColor(const char* name, rgb_color* value) const;
	status_t FindColor(const char* name, int32 index, rgb_color* value) const;
	status_t FindPointer(const char* name, void** pointer) const;
	status_t FindPointer(const char* name, int32 index, void** pointer) const;
	status_t FindMessenger(const char* name, BMessenger* messenger) const;
	status_t FindMessenger(const char* name, int32 index, BMessenger* messenger) const;
	status_t FindRef(const char* name, entry_ref* ref) const;
	status_t FindRef(const char* name, int32 index, entry_ref* ref) const;
	//! An item that is no message: the error of Unflatten(), and an empty `message`.
	status_t FindMessage(const char* name, BMessage* message) const;
	status_t FindMessage(const char* name, int32 index, BMessage* message) const;
	//! B_BAD_TYPE when the object does not take the field's type.
	status_t FindFlat(const char* name, BFlattenable* object) const;
	status_t FindFlat(const char* name, int32 index, BFlattenable* object) const;
	//! B_ANY_TYPE finds a field of any type.
	status_t FindData(const char* name, type_code type, const void** data, ssize_t* numBytes) const;
	status_t FindData(
		const char* name, type_code type, int32 index, const void** data, ssize_t* numBytes) const;

	// Replacing: as finding, and B_BAD_VALUE for another size in a field of items of one size

	status_t ReplaceAlignment(const char* name, const BAlignment& alignment);
	status_t ReplaceAlignment(const char* name, int32 index, const BAlignment& alignment);
	status_t ReplaceRect(const char* name, BRect rect);
	status_t ReplaceRect(const char* name, int32 index, BRect rect);
	status_t ReplacePoint(const char* name, BPoint point);
	status_t ReplacePoint(const char* name, int32 index, BPoint point);
	status_t ReplaceSize(const char* name, BSize size);
	status_t ReplaceSize(const char* name, int32 index, BSize size);
	status_t ReplaceString(const char* name, const char* string);
	status_t ReplaceString(const char* name, int32 index, const char* string);
	status_t ReplaceString(const char* name, const BString& string);
	status_t ReplaceString(const char* name, int32 index, const BString& string);
	status_t ReplaceInt8(const char* name, int8 value);
	status_t ReplaceInt8(const char* name, int32 index, int8 value);
	status_t ReplaceUInt8(const char* name, uint8 value);
	status_t ReplaceUInt8(const char* name, int32 index, uint8 value);
	status_t ReplaceInt16(const char* name, int16 value);
	status_t ReplaceInt16(const char* name, int32 index, int16 value);
	status_t ReplaceUInt16(const char* name, uint16 value);
	status_t ReplaceUInt16(const char* name, int32 index, uint16 value);
	status_t ReplaceInt32(const char* name, int32 value);
	status_t ReplaceInt32(const char* name, int32 index, int32 value);
	status_t ReplaceUInt32(const char* name, uint32 value);
	status_t ReplaceUInt32(const char* name, int32 index, uint32 value);
	status_t ReplaceInt64(const char* name, int64 value);
	status_t ReplaceInt64(const char* name, int32 index, int64 value);
	status_t ReplaceUInt64(const char* name, uint64 value);
	status_t ReplaceUInt64(const char* name, int32 index, uint64 value);
	status_t ReplaceBool(const char* name, bool value);
	status_t ReplaceBool(const char* name, int32 index, bool value);
	status_t ReplaceFloat(const char* name, float value);
	status_t ReplaceFloat(const char* name, int32 index, float value);
	status_t ReplaceDouble(const char* name, double value);
	status_t ReplaceDouble(const char* name, int32 index, double value);
	status_t ReplaceColor(const char* name, rgb_color value);
	status_t ReplaceColor(const char* name, int32 index, rgb_color value);
	status_t ReplacePointer(const char* name, const void* pointer);
	status_t ReplacePointer(const char* name, int32 index, const void* pointer);
	status_t ReplaceMessenger(const char* name, BMessenger messenger);
	status_t ReplaceMessenger(const char* name, int32 index, BMessenger messenger);
	status_t ReplaceRef(const char* name, const entry_ref* ref);
	status_t ReplaceRef(const char* name, int32 index, const entry_ref* ref);
	status_t ReplaceMessage(const char* name, const BMessage* message);
	status_t ReplaceMessage(const char* name, int32 index, const BMessage* message);
	status_t ReplaceData(const char* name, type_code type, const void* data, ssize_t numBytes);
	status_t ReplaceData(
		const char* name, type_code type, int32 index, const void* data, ssize_t numBytes);

	// Is there such an item?

	bool HasAlignment(const char* name, int32 index = 0) const;
	bool HasRect(const char* name, int32 index = 0) const;
	bool HasPoint(const char* name, int32 index = 0) const;
	bool HasSize(const char* name, int32 index = 0) const;
	bool HasString(const char* name, int32 index = 0) const;
	bool HasInt8(const char* name, int32 index = 0) const;
	bool HasUInt8(const char* name, int32 index = 0) const;
	bool HasInt16(const char* name, int32 index = 0) const;
	bool HasUInt16(const char* name, int32 index = 0) const;
	bool HasInt32(const char* name, int32 index = 0) const;
	bool HasUInt32(const char* name, int32 index = 0) const;
	bool HasInt64(const char* name, int32 index = 0) const;
	bool HasUInt64(const char* name, int32 index = 0) const;
	bool HasBool(const char* name, int32 index = 0) const;
	bool HasFloat(const char* name, int32 index = 0) const;
	bool HasDouble(const char* name, int32 index = 0) const;
	bool HasColor(const char* name, int32 index = 0) const;
	bool HasPointer(const char* name, int32 index = 0) const;
	bool HasMessenger(const char* name, int32 index = 0) const;
	bool HasRef(const char* name, int32 index = 0) const;
	bool HasMessage(const char* name, int32 index = 0) const;
	bool HasFlat(const char* name, const BFlattenable* object) const;
	bool HasFlat(const char* name, int32 index, const BFlattenable* object) const;
	bool HasData(const char* name, type_code type, int32 index = 0) const;

	// The item, or the default when there is none

	bool GetBool(const char* name, bool defaultValue = false) const;
	bool GetBool(const char* name, int32 index, bool defaultValue) const;
	int8 GetInt8(const char* name, int8 defaultValue) const;
	int8 GetInt8(const char* name, int32 index, int8 defaultValue) const;
	uint8 GetUInt8(const char* name, uint8 defaultValue) const;
	uint8 GetUInt8(const char* name, int32 index, uint8 defaultValue) const;
	int16 GetInt16(const char* name, int16 defaultValue) const;
	int16 GetInt16(const char* name, int32 index, int16 defaultValue) const;
	uint16 GetUInt16(const char* name, uint16 defaultValue) const;
	uint16 GetUInt16(const char* name, int32 index, uint16 defaultValue) const;
	int32 GetInt32(const char* name, int32 defaultValue) const;
	int32 GetInt32(const char* name, int32 index, int32 defaultValue) const;
	uint32 GetUInt32(const char* name, uint32 defaultValue) const;
	uint32 GetUInt32(const char* name, int32 index, uint32 defaultValue) const;
	int64 GetInt64(const char* name, int64 defaultValue) const;
	int64 GetInt64(const char* name, int32 index, int64 defaultValue) const;
	uint64 GetUInt64(const char* name, uint64 defaultValue) const;
	uint64 GetUInt64(const char* name, int32 index, uint64 defaultValue) const;
	float GetFloat(const char* name, float defaultValue) const;
	float GetFloat(const char* name, int32 index, float defaultValue) const;
	double GetDouble(const char* name, double defaultValue) const;
	double GetDouble(const char* name, int32 index, double defaultValue) const;
	rgb_color GetColor(const char* name, rgb_color defaultValue) const;
	rgb_color GetColor(const char* name, int32 index, rgb_color defaultValue) const;
	const void* GetPointer(const char* name, int32 index, const void* defaultValue = NULL) const;
	const void* GetPointer(const char* name, const void* defaultValue = NULL) const;
	const char* GetString(const char* name, const char* defaultValue = NULL) const;
	const char* GetString(const char* name, int32 index, const char* defaultValue) const;
	BAlignment GetAlignment(const char* name, const BAlignment& defaultValue) const;
	BRect GetRect(const char* name, BRect defaultValue) const;
	BPoint GetPoint(const char* name, BPoint defaultValue) const;
	BSize GetSize(const char* name, BSize defaultValue) const;

private:
	friend class BPrivate::MessageAccess;
	friend class BMessageQueue;

	// What the native header holds beside `what` and the fields.
	struct Header {
		uint32 flags;
		int32 target;
		int32 currentSpecifier;
		int32 replyPort;
		int32 replyTarget;
		int32 replyTeam;
	};

	const void* FindItem(
		const char* name, type_code type, int32 index, size_t* size, status_t* error) const;
	BPrivate::MessageBody& MutableBody();
	void SetBody(BPrivate::MessageBody* body);
	bool ReplyMatters() const;
	template<typename Send> status_t Reply(BMessage* reply, Send send);

	Header fHeader;
	bool fDelivered = false; // the reply address is one of this process, not a number out of a file
	BPrivate::MessageBody* fBody = nullptr; // shared; NULL without fields
	BMessage* fNext = nullptr;              // in a queue
	std::shared_ptr<const BMessage> fPrevious;
};
