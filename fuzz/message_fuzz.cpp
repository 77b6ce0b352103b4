// Any bytes as a flattened message: reading, walking, editing and writing it again must come to an end and agree.

#include <DataIO.h>
#include <Entry.h>
#include <Message.h>
#include <stdlib.h>
#include <string>
#include <vector>

namespace {

std::vector<char>
flatten(const BMessage& message)
{
	std::vector<char> bytes(static_cast<size_t>(message.FlattenedSize()));
	if (message.Flatten(bytes.data(), ssize_t(bytes.size())) != B_OK)
		abort();
	return bytes;
}

void
check_round_trip(const BMessage& message)
{
	const std::vector<char> bytes = flatten(message);
	BMessage again, fromStream;
	BMemoryIO stream(static_cast<const void*>(bytes.data()), bytes.size());
	if (again.Unflatten(bytes.data()) != B_OK || fromStream.Unflatten(&stream) != B_OK)
		abort();
	if (flatten(again) != bytes || flatten(fromStream) != bytes)
		abort();
}

//! Looks each item up as every type that has a reader of its own.
void
find_all(const BMessage& message, const char* name, int32 index)
{
	const void* data;
	ssize_t size;
	if (message.FindData(name, B_ANY_TYPE, index, &data, &size) == B_OK) {
		// the copy touches every byte
		const std::vector<char> bytes(
			static_cast<const char*>(data), static_cast<const char*>(data) + size);
		if (ssize_t(bytes.size()) != size)
			abort();
	}
	const char* text;
	if (message.FindString(name, index, &text) == B_OK)
		(void)std::string(text);
	entry_ref ref;
	BMessage inner;
	BMessenger messenger;
	message.FindRef(name, index, &ref);
	message.FindMessage(name, index, &inner);
	message.FindMessenger(name, index, &messenger);
	message.GetInt64(name, index, 0);
	message.GetRect(name, BRect());
}

void
edit(BMessage message, const std::vector<std::string>& names)
{
	for (size_t i = 0; i < names.size(); i++) {
		const char* name = names[i].c_str();
		switch (i % 5) {
			case 0:
				message.RemoveName(name);
				break;
			case 1:
				message.Rename(name, ("renamed " + names[i]).c_str());
				break;
			case 2:
				message.AddString(name, "one more");
				break;
			case 3:
				message.RemoveData(name, 0);
				break;
			default:
				message.ReplaceString(name, "another");
				break;
		}
	}
	check_round_trip(message);
}

} // namespace

extern "C" int
LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size)
{
	BMessage message;
	BMemoryIO stream(static_cast<const void*>(bytes), size);
	if (message.Unflatten(&stream) != B_OK) {
		if (!message.IsEmpty())
			abort();
		return 0;
	}
	std::vector<std::string> names;
	char* name;
	type_code type;
	int32 count;
	for (int32 i = 0; message.GetInfo(B_ANY_TYPE, i, &name, &type, &count) == B_OK; i++) {
		names.push_back(name);
		for (int32 item = 0; item < count && item < 20; item++)
			find_all(message, name, item);
	}
	check_round_trip(message);
	edit(message, names);
	return 0;
}
