#include <OS.h>

#include "kernel/LocalPort.h"
#include <algorithm>
#include <limits.h>
#include <map>
#include <memory>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

using BPrivate::Deadline;
using BPrivate::kPortMaxMessageSize;
using BPrivate::LocalPort;
using BPrivate::PortAddress;
using BPrivate::PortFolder;

namespace {

constexpr int32 kMaxCapacity = 4096;

/*!	Ports of this process and those of others that were found. Ids are given out in one row for
	both, so that they are never the same. */
struct Table {
	std::mutex lock;
	std::map<port_id, std::shared_ptr<LocalPort>> local;
	std::map<port_id, PortAddress> remote;
	port_id lastId = 0;
};

Table&
table()
{
	static Table* const sTable = new Table; // never deleted: threads may outlive the statics
	return *sTable;
}

//! With the lock held.
port_id
new_id(Table& table)
{
	do
		table.lastId = table.lastId == INT_MAX ? 1 : table.lastId + 1;
	while (table.local.contains(table.lastId) || table.remote.contains(table.lastId));
	return table.lastId;
}

std::string
cut_name(const char* name)
{
	return std::string(name, strnlen(name, B_OS_NAME_LENGTH - 1));
}

//! What an id stands for: one of the two, or nothing.
struct Target {
	std::shared_ptr<LocalPort> local;
	PortAddress remote;

	bool IsNothing() const { return local == nullptr && remote.team == 0; }
	//! Why what only the owner may do is not done.
	status_t Refusal() const { return IsNothing() ? B_BAD_PORT_ID : B_NOT_ALLOWED; }
};

Target
target_of(port_id id)
{
	Table& table = ::table();
	std::lock_guard lock(table.lock);
	Target target;
	if (const auto found = table.local.find(id); found != table.local.end())
		target.local = found->second;
	else if (const auto other = table.remote.find(id); other != table.remote.end())
		target.remote = other->second;
	return target;
}

port_id
id_of_remote(const PortAddress& address)
{
	Table& table = ::table();
	std::lock_guard lock(table.lock);
	for (const auto& [id, known] : table.remote) {
		if (known == address)
			return id;
	}
	const port_id id = new_id(table);
	table.remote[id] = address;
	return id;
}

void
forget_remote(port_id id)
{
	Table& table = ::table();
	std::lock_guard lock(table.lock);
	table.remote.erase(id);
}

//! Ids of ports that are no longer listed would pile up in a process that runs for weeks.
void
forget_unlisted(const std::vector<PortAddress>& listed)
{
	Table& table = ::table();
	std::lock_guard lock(table.lock);
	std::erase_if(table.remote, [&](const auto& entry) {
		return std::find(listed.begin(), listed.end(), entry.second) == listed.end();
	});
}

std::shared_ptr<LocalPort>
next_local(port_id after)
{
	Table& table = ::table();
	std::lock_guard lock(table.lock);
	const auto next = table.local.upper_bound(after);
	return next != table.local.end() ? next->second : nullptr;
}

void
fill_info(const PortAddress& address, port_id id, port_info* info)
{
	memset(info, 0, sizeof(*info));
	info->port = id;
	info->team = address.team;
	info->capacity = address.capacity;
	address.name.copy(info->name, sizeof(info->name) - 1);
}

void
fill_local_info(LocalPort& port, port_info* info)
{
	fill_info(port.Address(), port.Address().port, info);
	port.GetInfo(info);
}

status_t
next_remote_info(team_id team, int32* cookie, port_info* info)
{
	const PortFolder folder;
	const std::vector<PortAddress> listed = folder.List();
	forget_unlisted(listed);
	std::map<port_id, PortAddress> rest;
	for (const PortAddress& address : listed) {
		if (address.team != team)
			continue;
		if (const port_id id = id_of_remote(address); id > *cookie)
			rest[id] = address;
	}
	for (const auto& [id, address] : rest) {
		*cookie = id;
		if (!folder.IsAlive(address)) {
			forget_remote(id);
			continue;
		}
		fill_info(address, id, info);
		return B_OK;
	}
	return B_BAD_VALUE;
}

//! The next process that has a port, or 0.
team_id
next_team(team_id after)
{
	const PortFolder folder;
	std::map<team_id, bool> alive = {{getpid(), true}};
	for (const PortAddress& address : folder.List()) {
		if (address.team > after && !alive[address.team])
			alive[address.team] = folder.IsAlive(address);
	}
	for (const auto& [team, is] : alive) {
		if (is && team > after)
			return team;
	}
	return 0;
}

//! The sockets of a process that ends in order do not stay behind; those that a fork has inherited
//! are not its own.
[[gnu::destructor]] void
close_ports()
{
	while (const std::shared_ptr<LocalPort> port = next_local(0)) {
		if (port->Address().team != getpid())
			return;
		delete_port(port->Address().port);
	}
}

} // namespace

port_id
create_port(int32 capacity, const char* name)
{
	if (capacity < 1 || capacity > kMaxCapacity)
		return B_BAD_VALUE;
	PortAddress address{getpid(), 0, capacity, cut_name(name != nullptr ? name : "")};
	Table& table = ::table();
	std::lock_guard lock(table.lock);
	address.port = new_id(table);
	auto port = std::make_shared<LocalPort>(address);
	if (!port->IsValid())
		return B_NO_MORE_PORTS;
	table.local[address.port] = std::move(port);
	return address.port;
}

port_id
find_port(const char* name)
{
	if (name == nullptr)
		return B_BAD_VALUE;
	const std::string wanted = cut_name(name);
	Table& table = ::table();
	{
		std::lock_guard lock(table.lock);
		for (const auto& [id, port] : table.local) {
			if (port->Address().name == wanted)
				return id;
		}
	}
	const PortFolder folder;
	for (const PortAddress& address : folder.List()) {
		if (address.name == wanted && folder.IsAlive(address))
			return id_of_remote(address);
	}
	return B_NAME_NOT_FOUND;
}

status_t
write_port(port_id id, int32 code, const void* buffer, size_t size)
{
	return write_port_etc(id, code, buffer, size, 0, 0);
}

status_t
write_port_etc(
	port_id id, int32 code, const void* buffer, size_t size, uint32 flags, bigtime_t timeout)
{
	if (size > kPortMaxMessageSize || (buffer == nullptr && size > 0))
		return B_BAD_VALUE;
	const Target target = target_of(id);
	const Deadline deadline(flags, timeout);
	if (target.local != nullptr)
		return target.local->Write(code, buffer, size, deadline);
	if (target.IsNothing())
		return B_BAD_PORT_ID;
	const status_t result = PortFolder().Send(target.remote, code, buffer, size, deadline);
	if (result == B_BAD_PORT_ID)
		forget_remote(id);
	return result;
}

ssize_t
read_port(port_id id, int32* code, void* buffer, size_t size)
{
	return read_port_etc(id, code, buffer, size, 0, 0);
}

ssize_t
read_port_etc(port_id id, int32* code, void* buffer, size_t size, uint32 flags, bigtime_t timeout)
{
	if (buffer == nullptr && size > 0)
		return B_BAD_VALUE;
	const Target target = target_of(id);
	if (target.local == nullptr)
		return target.Refusal();
	return target.local->Read(code, buffer, size, Deadline(flags, timeout));
}

ssize_t
port_buffer_size(port_id id)
{
	return port_buffer_size_etc(id, 0, 0);
}

ssize_t
port_buffer_size_etc(port_id id, uint32 flags, bigtime_t timeout)
{
	const Target target = target_of(id);
	if (target.local == nullptr)
		return target.Refusal();
	return target.local->NextSize(Deadline(flags, timeout));
}

ssize_t
port_count(port_id id)
{
	const Target target = target_of(id);
	return target.local != nullptr ? target.local->Count() : target.Refusal();
}

status_t
close_port(port_id id)
{
	const Target target = target_of(id);
	if (target.local == nullptr)
		return target.Refusal();
	target.local->Close();
	return B_OK;
}

status_t
delete_port(port_id id)
{
	const Target target = target_of(id);
	if (target.local == nullptr)
		return target.Refusal();
	Table& table = ::table();
	{
		std::lock_guard lock(table.lock);
		if (table.local.erase(id) == 0)
			return B_BAD_PORT_ID;
	}
	target.local->Delete();
	return B_OK;
}

status_t
get_port_info(port_id id, port_info* info)
{
	if (info == nullptr)
		return B_BAD_VALUE;
	const Target target = target_of(id);
	if (target.local != nullptr) {
		fill_local_info(*target.local, info);
		return B_OK;
	}
	if (target.IsNothing() || !PortFolder().IsAlive(target.remote))
		return B_BAD_PORT_ID;
	fill_info(target.remote, id, info);
	return B_OK;
}

status_t
get_next_port_info(team_id team, int32* cookie, port_info* info)
{
	if (cookie == nullptr || info == nullptr || *cookie < 0)
		return B_BAD_VALUE;
	if (team != B_CURRENT_TEAM && team != getpid())
		return next_remote_info(team, cookie, info);
	const std::shared_ptr<LocalPort> port = next_local(*cookie);
	if (port == nullptr)
		return B_BAD_VALUE;
	fill_local_info(*port, info);
	*cookie = info->port;
	return B_OK;
}

status_t
get_next_team_info(int32* cookie, team_info* info)
{
	if (cookie == nullptr || info == nullptr || *cookie < 0)
		return B_BAD_VALUE;
	const team_id team = next_team(*cookie);
	if (team == 0)
		return B_BAD_VALUE;
	*cookie = team;
	memset(info, 0, sizeof(*info));
	info->team = team;
	const std::string path = "/proc/" + std::to_string(team) + "/cmdline";
	if (FILE* file = fopen(path.c_str(), "re")) {
		// the arguments, each with its NUL
		const size_t length = fread(info->args, 1, sizeof(info->args) - 1, file);
		std::replace(info->args, info->args + length, '\0', ' ');
		fclose(file);
	}
	return B_OK;
}
