#pragma once

#include "support/display.h"

#include <Message.h>
#include <mutex>
#include <string>
#include <utility>

//! A window that writes down what a derived class notes, such as what its controls send.
class LoggingWindow : public BWindow {
public:
	using BWindow::BWindow;

	//! What has come since the last time: first the control's event, then what the control sends.
	std::string Take()
	{
		settle(this);
		settle(this);
		std::lock_guard lock(fMutex);
		return std::exchange(fLog, std::string());
	}

protected:
	void Note(const std::string& text)
	{
		std::lock_guard lock(fMutex);
		fLog += text;
	}

	//! The four characters of a message, and its value.
	static std::string TextOf(const BMessage* message, const char* beforeValue = "")
	{
		std::string text;
		for (int shift = 24; shift >= 0; shift -= 8)
			text += char(message->what >> shift);
		int32 value;
		if (message->FindInt32("be:value", &value) == B_OK)
			text += beforeValue + std::to_string(value);
		return text;
	}

private:
	std::mutex fMutex;
	std::string fLog;
};
