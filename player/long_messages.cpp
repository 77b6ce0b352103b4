#include "long_messages.h"

#include <DataIO.h>
#include <Message.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

constexpr int32 kPartCode = 'QLmp';
constexpr size_t kPartSize = 128 * 1024;
constexpr size_t kMaxSize = 64 * 1024 * 1024; // beyond any command line
constexpr size_t kMaxSenders = 16;            // that are in the middle of a message; more have gone

//! Before the bytes of each part.
struct PartHeader {
	int32 sender;
	int32 number; // from 0
	int32 isLast; // 0 or 1
};

bigtime_t
time_left(bigtime_t end)
{
	return std::max<bigtime_t>(end - system_time(), 0);
}

} // namespace

status_t
send_long_message(port_id port, int32 sender, const BMessage& message, bigtime_t end)
{
	BMallocIO flat;
	status_t status = message.Flatten(&flat);
	const char* const bytes = static_cast<const char*>(flat.Buffer());
	PartHeader header = {sender, 0, 0};
	for (size_t at = 0; status == B_OK && header.isLast == 0; at += kPartSize, header.number++) {
		const size_t size = std::min(kPartSize, flat.BufferLength() - at);
		header.isLast = at + size == flat.BufferLength() ? 1 : 0;
		std::string part(reinterpret_cast<const char*>(&header), sizeof(header));
		part.append(bytes + at, size);
		status = write_port_etc(
			port, kPartCode, part.data(), part.size(), B_RELATIVE_TIMEOUT, time_left(end));
	}
	return status;
}

bool
LongMessageReader::ReadNext(port_id port, bigtime_t end)
{
	for (;;) {
		const bool forEver = end == B_INFINITE_TIMEOUT;
		ssize_t size = port_buffer_size_etc(
			port, forEver ? 0 : B_RELATIVE_TIMEOUT, forEver ? 0 : time_left(end));
		if (size < 0)
			return false;
		std::string part(size, '\0');
		int32 code;
		size = read_port(port, &code, part.data(), part.size());
		if (size < 0)
			return false;
		if (code == kPartCode && TakePart(part))
			return true;
	}
}

//! True when the message is whole.
bool
LongMessageReader::TakePart(const std::string& part)
{
	PartHeader header;
	if (part.size() < sizeof(header))
		return false;
	memcpy(&header, part.data(), sizeof(header));
	if (!fParts.contains(header.sender) && fParts.size() >= kMaxSenders)
		fParts.clear();
	if (header.number == 0)
		fParts[header.sender] = {};
	const auto found = fParts.find(header.sender);
	if (found == fParts.end())
		return false;
	Parts& parts = found->second;
	if (header.number != parts.next || parts.bytes.size() + part.size() > kMaxSize) {
		fParts.erase(found);
		return false;
	}
	parts.next++;
	parts.bytes.append(part, sizeof(header));
	if (header.isLast == 0)
		return false;
	fSender = header.sender;
	fBytes = std::move(parts.bytes);
	fParts.erase(found);
	return true;
}

status_t
LongMessageReader::Unflatten(BMessage& message) const
{
	BMemoryIO bytes(fBytes.data(), fBytes.size());
	return message.Unflatten(&bytes);
}
