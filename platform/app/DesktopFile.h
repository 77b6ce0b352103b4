#pragma once

#include <OS.h>
#include <string>
#include <vector>

namespace BPrivate {

/*!	The command line of the application whose desktop file has `X-MERION-Signature` equal to `signature`, with `files` where it takes some.
	Looked for in the user's applications first, then in the system's. Empty if there is none.
	Format: the freedesktop.org Desktop Entry standard. */
std::vector<std::string> command_for_signature(
	const char* signature, const std::vector<std::string>& files);
//! Splits the value of a key Exec and puts the files in the place of its field codes.
std::vector<std::string> expand_exec(
	const std::string& exec, const std::vector<std::string>& files);

/*!	Starts a program that has nothing more to do with us: no child to wait for, no open files of ours.
	B_ENTRY_NOT_FOUND when there is no such program, B_LAUNCH_FAILED_EXECUTABLE when it cannot run. */
status_t launch_detached(const std::vector<std::string>& command, team_id* team);

} // namespace BPrivate
