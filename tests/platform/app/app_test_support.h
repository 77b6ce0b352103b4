#pragma once

#include <Looper.h>
#include <Message.h>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/*!	Stops the test program, saying what did not happen, when it lives too long. */
class Watchdog {
public:
	explicit Watchdog(const char* sentence, int seconds = 30);
	~Watchdog();

private:
	std::mutex fLock;
	std::condition_variable fDone;
	bool fEnd = false;
	std::thread fThread;
};

//! Asks again and again until it is true; false when that takes longer than a test may.
bool happens(const std::function<bool()>& condition, bigtime_t timeout = 10000000);

using Bytes = std::vector<char>;
Bytes read_file(const std::string& path);
Bytes flatten(const BMessage& message);
//! All fields with their items, one to a line: what a message says, without how it is linked inside.
std::string describe(const BMessage& message, bool withSizeFlag = true);

/*!	A looper that gives its messages to a function, or counts them. Run and Quit by its owner. */
class TestLooper : public BLooper {
public:
	using Function = std::function<void(TestLooper*, BMessage*)>;

	explicit TestLooper(Function function = {}, const char* name = "test looper",
		int32 capacity = B_LOOPER_PORT_DEFAULT_CAPACITY);
	~TestLooper() override;
	void MessageReceived(BMessage* message) override;

	std::atomic<int> received{0};
	std::atomic<bool>* deleted = nullptr; // set when it is gone

private:
	Function fFunction;
};

//! Lock and quit.
void quit(BLooper* looper);
