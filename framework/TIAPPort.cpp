#include "framework/TIAPPort.h"

#include <cinttypes>
#include <cstdio>
#include <string_view>
#include <vector>

#include <DataIO.h>

#include "framework/framework_codes.h"

namespace merion {

namespace {

constexpr std::string_view kPrefix = "MERION_IAP:";
constexpr int32 kCapacity = 50;
constexpr ssize_t kMaxSize = 4096;     // bytes; a notice has some hundred
constexpr bigtime_t kPatience = 50000; // µs for one port that is full

uint64
hash_of(std::string_view text)
{
	uint64 hash = 0xcbf29ce484222325;
	for (const unsigned char c : text)
		hash = (hash ^ c) * 0x100000001b3;
	return hash;
}

//! The ports of all of the maker's applications.
std::vector<port_id>
all_ports()
{
	std::vector<port_id> ports;
	int32 teamCookie = 0;
	team_info team;
	while (get_next_team_info(&teamCookie, &team) == B_OK) {
		int32 portCookie = 0;
		port_info port;
		while (get_next_port_info(team.team, &portCookie, &port) == B_OK) {
			if (std::string_view(port.name).starts_with(kPrefix))
				ports.push_back(port.port);
		}
	}
	return ports;
}

} // namespace

TIAPPort::TIAPPort(const char* signature, Receiver receiver)
	: fReceiver(std::move(receiver)),
	  fPort(create_port(kCapacity, PortName(signature).c_str())),
	  fThread(fPort)
{
	if (fPort < 0)
		return;
	fThread = spawn_thread(ReaderThread, "Inter-app preferences", B_LOW_PRIORITY, this);
	if (fThread >= 0)
		resume_thread(fThread);
}

TIAPPort::~TIAPPort()
{
	if (fPort >= 0)
		delete_port(fPort); // wakes the reader
	status_t result;
	if (fThread >= 0)
		wait_for_thread(fThread, &result);
}

void
TIAPPort::SendToOthers(const BMessage& message) const
{
	BMallocIO flattened;
	if (message.Flatten(&flattened) != B_OK)
		return;
	for (const port_id port : all_ports()) {
		if (port != fPort)
			write_port_etc(port, kIAPChanged, flattened.Buffer(), flattened.BufferLength(),
				B_RELATIVE_TIMEOUT, kPatience);
	}
}

std::string
TIAPPort::PortName(const char* signature)
{
	char digits[17];
	snprintf(digits, sizeof(digits), "%016" PRIx64, hash_of(signature));
	return std::string(kPrefix) + digits;
}

status_t
TIAPPort::ReaderThread(void* port)
{
	static_cast<TIAPPort*>(port)->Read();
	return B_OK;
}

void
TIAPPort::Read()
{
	while (ReadOne())
		continue;
}

//! False when the port is gone. Anybody can write to it: what is no notice is thrown away.
bool
TIAPPort::ReadOne()
{
	char buffer[kMaxSize];
	int32 code = 0;
	const ssize_t size = port_buffer_size(fPort);
	if (size < 0)
		return size == B_INTERRUPTED;
	const ssize_t read = read_port(fPort, &code, buffer, sizeof(buffer));
	if (read < 0)
		return read == B_INTERRUPTED;

	BMemoryIO stream(buffer, static_cast<size_t>(read));
	BMessage message;
	if (size <= kMaxSize && code == kIAPChanged && message.Unflatten(&stream) == B_OK)
		fReceiver(message);
	return true;
}

} // namespace merion
