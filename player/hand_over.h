#pragma once

#include <Message.h>

struct CommandLine;

/*!	What a player that is started beside a running one asks of it. */

//! Whether such a command line goes to the running player; otherwise its program stands alone.
bool is_for_running_player(const CommandLine& line);

/*!	kMsgPlayFiles with all that `line` asks for. Files that are not there are told on standard error and left out; false if none
	is left. */
[[nodiscard]] bool make_play_request(const CommandLine& line, BMessage& request);
