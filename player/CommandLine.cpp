#include "CommandLine.h"

#include "Deck.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <functional>
#include <map>

namespace {

constexpr const char* kHelp = R"(Usage: qubo [OPTION]... [FILE]...
Plays music files and folders, and shows what its add-ons show.

  --add-ons DIR        take the add-ons from DIR
  --at SECONDS         take the picture at this time of the song (see --snapshot)
  --explain            say which title, playlist entry, lyrics file and encoding are in
                       use, or why there are no lyrics, and end: for each FILE, else
                       for what the running qubo plays
  --follow [NAME,...]  follow what another player plays; of these players only
  --headless           show nothing on any screen; end when playing ends
  --help               show this text and end
  --ignore NAME,...    never follow these players
  --lyrics-folder DIR  look here for the lyrics of a followed song that has no file,
                       "Artist - Title.lrc" (otherwise in "Lyrics" of the music folder)
  --no-follow          follow no player at the start
  --print              write each line of the lyrics, when it is sung, with its time
  --shift MS           show the lyrics so much earlier, -10000 to 10000; below 0 later,
                       for sound that is heard late; the usual is 38
  --snapshot FILE.png  save a picture of the lyrics window when playing ends
  --start SECONDS      start the first song here
  --version            show the version and end
  --volume PERCENT     0 to 100

Without FILE, qubo follows another player that is running; if none is, its window opens
empty and takes what is dropped on it. NAME is a player's on the session bus, such as
mpv or vlc. When a qubo runs already on this screen it plays the FILEs at once; with
--add-ons, --headless, --print or --snapshot a qubo stands alone.

Exit status: 0 all went well, 1 nothing could be played or saved, 2 wrong use,
3 there is no screen.
)";

template<typename Number>
std::optional<Number>
parse_number(const std::string& text)
{
	Number value;
	const char* end = text.data() + text.size();
	auto [stop, error] = std::from_chars(text.data(), end, value);
	if (error != std::errc() || stop != end)
		return std::nullopt;
	return value;
}

bool
parse_time(const std::string& text, bigtime_t& time)
{
	std::optional<double> seconds = parse_number<double>(text);
	if (!seconds || !std::isfinite(*seconds) || *seconds < 0 || *seconds > 1e8)
		return false;
	time = std::llround(*seconds * 1e6);
	return true;
}

bool
parse_percent(const std::string& text, std::optional<int32>& percent)
{
	std::optional<int32> value = parse_number<int32>(text);
	if (!value || *value < 0 || *value > 100)
		return false;
	percent = value;
	return true;
}

bool
parse_shift(const std::string& text, std::optional<int32>& shift)
{
	constexpr int32 kLargest = Deck::kLargestShift;
	const bool hasPlus = text.size() > 1 && text[0] == '+' && text[1] != '-';
	std::optional<int32> value = parse_number<int32>(text.substr(hasPlus ? 1 : 0));
	if (!value || *value < -kLargest || *value > kLargest)
		return false;
	shift = value;
	return true;
}

bool
parse_path(const std::string& text, std::string& path)
{
	path = text;
	return !text.empty();
}

//! Names with commas between.
bool
parse_names(const std::string& text, std::vector<std::string>& names)
{
	for (size_t at = 0; at <= text.size();) {
		const size_t end = std::min(text.find(',', at), text.size());
		if (end == at)
			return false;
		names.push_back(text.substr(at, end - at));
		at = end + 1;
	}
	return true;
}

using TakeValue = std::function<bool(const std::string&)>;

/*!	One walk over the arguments: options anywhere, "--name value" or "--name=value", files only after "--". */
class Reader {
public:
	Reader(const std::vector<std::string>& arguments, CommandLine& line, std::string& error);
	bool Read();

private:
	bool ReadOption(const std::string& argument);
	bool ReadFollowed(const std::string& argument, size_t equals);
	bool ReadValue(const std::string& name, const TakeValue& take, const std::string* attached);
	bool Fail(const std::string& message);

	const std::vector<std::string>& fArguments;
	CommandLine& fLine;
	std::string& fError;
	std::map<std::string, bool*> fSwitches;
	std::map<std::string, TakeValue> fValues;
	size_t fAt = 0;
};

Reader::Reader(const std::vector<std::string>& arguments, CommandLine& line, std::string& error)
	: fArguments(arguments),
	  fLine(line),
	  fError(error)
{
	fSwitches = {{"--headless", &line.headless}, {"--explain", &line.explain},
		{"--print", &line.print}, {"--no-follow", &line.noFollow}, {"--help", &line.help},
		{"-h", &line.help}, {"--version", &line.version}};
	fValues = {
		{"--add-ons", [&line](auto& text) { return parse_path(text, line.addOns); }},
		{"--ignore", [&line](auto& text) { return parse_names(text, line.ignored); }},
		{"--lyrics-folder", [&line](auto& text) { return parse_path(text, line.lyricsFolder); }},
		{"--snapshot", [&line](auto& text) { return parse_path(text, line.snapshot); }},
		{"--at", [&line](auto& text) { return parse_time(text, line.snapshotTime); }},
		{"--shift", [&line](auto& text) { return parse_shift(text, line.shift); }},
		{"--start", [&line](auto& text) { return parse_time(text, line.start); }},
		{"--volume", [&line](auto& text) { return parse_percent(text, line.volume); }},
	};
}

bool
Reader::Read()
{
	bool onlyFiles = false;
	while (fAt < fArguments.size()) {
		const std::string& argument = fArguments[fAt++];
		if (!onlyFiles && argument == "--")
			onlyFiles = true;
		else if (onlyFiles || argument.size() < 2 || argument[0] != '-')
			fLine.files.push_back(argument);
		else if (!ReadOption(argument))
			return false;
	}
	if (fLine.help || fLine.version)
		return true;
	if (fLine.snapshotTime >= 0 && fLine.snapshot.empty())
		return Fail("--at needs --snapshot");
	if (fLine.explain && (fLine.print || !fLine.snapshot.empty()))
		return Fail("--explain plays nothing: --print and --snapshot do not go with it");
	if (fLine.follow && (!fLine.files.empty() || fLine.noFollow))
		return Fail(fLine.noFollow ? "--follow or --no-follow?" : "--follow plays no files");
	if (fLine.follow && !fLine.snapshot.empty() && fLine.snapshotTime < 0)
		return Fail("--snapshot with --follow needs --at");
	if (fLine.explain)
		fLine.headless = !fLine.files.empty();
	else if (fLine.headless && fLine.files.empty() && !fLine.follow)
		return Fail("--headless needs a file to play, or --follow");
	return true;
}

bool
Reader::ReadOption(const std::string& argument)
{
	size_t equals = argument.find('=');
	std::string name = argument.substr(0, equals);
	if (auto it = fValues.find(name); it != fValues.end()) {
		std::string attached = equals == std::string::npos ? "" : argument.substr(equals + 1);
		return ReadValue(name, it->second, equals == std::string::npos ? nullptr : &attached);
	}
	if (name == "--follow")
		return ReadFollowed(argument, equals);
	auto it = fSwitches.find(name);
	if (it == fSwitches.end())
		return Fail("unknown option " + argument);
	if (equals != std::string::npos)
		return Fail(name + " takes no value");
	*it->second = true;
	return true;
}

//! The names may be left out.
bool
Reader::ReadFollowed(const std::string& argument, size_t equals)
{
	fLine.follow = true;
	const bool isAttached = equals != std::string::npos;
	if (!isAttached && (fAt == fArguments.size() || fArguments[fAt].starts_with('-')))
		return true;
	const std::string names = isAttached ? argument.substr(equals + 1) : fArguments[fAt++];
	return parse_names(names, fLine.players)
		|| Fail("--follow: \"" + names + "\" names no players");
}

bool
Reader::ReadValue(const std::string& name, const TakeValue& take, const std::string* attached)
{
	if (attached == nullptr && fAt == fArguments.size())
		return Fail(name + " needs a value");
	const std::string& value = attached != nullptr ? *attached : fArguments[fAt++];
	return take(value) || Fail(name + ": \"" + value + "\" is no value for it");
}

bool
Reader::Fail(const std::string& message)
{
	fError = message;
	return false;
}

} // namespace

bool
CommandLine::Parse(const std::vector<std::string>& arguments, std::string& error)
{
	return Reader(arguments, *this, error).Read();
}

const char*
CommandLine::HelpText()
{
	return kHelp;
}
