#pragma once

#include "kernel/Deadline.h"
#include <string>
#include <vector>

namespace BPrivate {

//! A message of a port is at most this long, as on the platform.
constexpr size_t kPortMaxMessageSize = 256 * 1024;

/*!	How a port is known to the user's other processes. */
struct PortAddress {
	team_id team = 0; // the owner's process id
	port_id port = 0; // the owner's id of it
	int32 capacity = 0;
	std::string name;

	bool operator==(const PortAddress& other) const = default;
};

/*!	The folder where the user's processes find each other's ports: one datagram socket a port, whose
	file name says all of the address. It is "tavora-ports" in $XDG_RUNTIME_DIR, else
	"tavora-ports-UID" in /tmp, and is used only when nobody else can get at it. A socket whose
	owner has died refuses connections and is removed by whoever notices. A message is the code
	(int32) and the bytes, in one datagram. Thread: any, each with an object of its own. */
class PortFolder {
public:
	PortFolder();
	~PortFolder();
	PortFolder(const PortFolder&) = delete;
	PortFolder& operator=(const PortFolder&) = delete;

	//! The owner's socket, or -1 when other processes cannot have it.
	int Bind(const PortAddress& address) const;
	void Remove(const PortAddress& address) const;

	//! The living and the dead; of other processes only.
	std::vector<PortAddress> List() const;
	bool IsAlive(const PortAddress& address) const;
	//! As write_port_etc().
	status_t Send(const PortAddress& address, int32 code, const void* buffer, size_t size,
		const Deadline& deadline) const;

private:
	int Connect(const PortAddress& address) const;

	int fFolder = -1;
};

} // namespace BPrivate
