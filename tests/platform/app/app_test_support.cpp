#include "platform/app/app_test_support.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <stdlib.h>

Watchdog::Watchdog(const char* sentence, int seconds)
	: fThread([this, sentence, seconds] {
		  std::unique_lock lock(fLock);
		  if (!fDone.wait_for(lock, std::chrono::seconds(seconds), [this] { return fEnd; })) {
			  fprintf(stderr, "the test hangs: %s\n", sentence);
			  abort();
		  }
	  })
{ }

Watchdog::~Watchdog()
{
	{
		std::lock_guard lock(fLock);
		fEnd = true;
	}
	fDone.notify_one();
	fThread.join();
}

bool
happens(const std::function<bool()>& condition, bigtime_t timeout)
{
	const bigtime_t end = system_time() + timeout;
	while (!condition()) {
		if (system_time() > end)
			return false;
		snooze(200);
	}
	return true;
}

Bytes
read_file(const std::string& path)
{
	std::ifstream file(path, std::ios::binary);
	EXPECT_TRUE(file.is_open()) << path;
	return Bytes(std::istreambuf_iterator<char>(file), {});
}

Bytes
flatten(const BMessage& message)
{
	Bytes bytes(static_cast<size_t>(message.FlattenedSize()));
	EXPECT_EQ(message.Flatten(bytes.data(), ssize_t(bytes.size())), B_OK);
	return bytes;
}

static void
print_items(
	std::ostringstream& out, const BMessage& message, const char* name, type_code type, int32 count)
{
	for (int32 i = 0; i < count; i++) {
		const void* data;
		ssize_t size = 0;
		out << ' ';
		if (message.FindData(name, type, i, &data, &size) != B_OK) {
			out << "(not found)";
			continue;
		}
		for (ssize_t at = 0; at < size; at++) {
			char hex[3];
			snprintf(hex, sizeof(hex), "%02x", static_cast<const uint8*>(data)[at]);
			out << hex;
		}
	}
}

std::string
describe(const BMessage& message, bool withSizeFlag)
{
	std::ostringstream out;
	out << "what " << message.what << '\n';
	char* name;
	type_code type;
	int32 count;
	for (int32 i = 0; message.GetInfo(B_ANY_TYPE, i, &name, &type, &count) == B_OK; i++) {
		bool fixed = false;
		message.GetInfo(name, &type, &fixed);
		out << "type " << type << " '" << name << "' x" << count;
		if (withSizeFlag)
			out << (fixed ? " fixed" : " variable");
		print_items(out, message, name, type, count);
		out << '\n';
	}
	return out.str();
}

TestLooper::TestLooper(Function function, const char* name, int32 capacity)
	: BLooper(name, B_NORMAL_PRIORITY, capacity),
	  fFunction(std::move(function))
{ }

TestLooper::~TestLooper()
{
	if (deleted != nullptr)
		*deleted = true;
}

void
TestLooper::MessageReceived(BMessage* message)
{
	if (fFunction)
		fFunction(this, message);
	else
		BLooper::MessageReceived(message);
	received++;
}

void
quit(BLooper* looper)
{
	if (looper->Lock())
		looper->Quit();
}
