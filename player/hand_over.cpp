#include "hand_over.h"

#include "CommandLine.h"
#include "Texts.h"
#include "player_messages.h"

#include <cstdio>
#include <filesystem>

namespace fs = std::filesystem;

bool
is_for_running_player(const CommandLine& line)
{
	return !line.headless && !line.print && line.snapshot.empty() && line.addOns.empty();
}

bool
make_play_request(const CommandLine& line, BMessage& request)
{
	request = BMessage(kMsgPlayFiles);
	for (const std::string& file : line.files) {
		std::error_code error;
		const fs::path path = fs::absolute(file, error);
		if (!error && fs::exists(path, error))
			request.AddString("path", path.c_str());
		else
			fprintf(stderr, "qubo: %s\n",
				text(kTextCannotPlay, file, text(kTextReasonNotThere)).c_str());
	}
	request.AddInt64("start", line.start);
	if (line.volume)
		request.AddInt32("volume", *line.volume);
	if (line.shift)
		request.AddInt32("shift", *line.shift);
	if (line.follow)
		request.AddString("player", line.players.empty() ? "" : line.players.front().c_str());
	return line.files.empty() || request.HasString("path");
}
