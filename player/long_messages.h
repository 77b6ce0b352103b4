#pragma once

#include <map>
#include <string>

#include <OS.h>

class BMessage;

/*!	Messages of any length through a port, which takes 256 KB at a time: flattened, in parts. */

//! `sender` tells the parts of several senders apart. Waits until `end` (system_time()).
status_t send_long_message(port_id port, int32 sender, const BMessage& message, bigtime_t end);

/*!	Puts the parts together. What is no part, or out of its order, is dropped with all that came before it of that sender.
	Thread: one. */
class LongMessageReader {
public:
	//! Waits for a whole message, until `end`; false without one, or when the port is gone.
	[[nodiscard]] bool ReadNext(port_id port, bigtime_t end);
	int32 Sender() const { return fSender; }
	[[nodiscard]] status_t Unflatten(BMessage& message) const;

private:
	struct Parts {
		int32 next = 0;
		std::string bytes;
	};

	bool TakePart(const std::string& part);

	std::map<int32, Parts> fParts; // of the senders
	int32 fSender = 0;
	std::string fBytes; // of the whole message
};
