#include "explanation.h"

#include "Deck.h"
#include "Texts.h"
#include "lyrics_view.h"

#include <Message.h>
#include <Messenger.h>

#include <filesystem>

#include <strings.h>

namespace fs = std::filesystem;

namespace {

constexpr bigtime_t kLookTime = 20000; // between two looks at the view
constexpr const char* kExtensions[] = {".lrc", ".txt"};

//! What the view says of the song of that title; false while it does not know it.
bool
ask_view(const std::string& title, BMessage& source)
{
	BMessenger view;
	BMessage reply;
	return find_lyrics_view(view) && get_property(view, kLyricsProperty, reply)
		&& reply.FindMessage("result", &source) == B_OK && title == source.GetString("Title", "");
}

std::string
leaf_with(const fs::path& song, const char* extension)
{
	return song.stem().string() + extension;
}

//! A file that differs from a lyrics file of the song only by capitals; "" if there is none.
std::string
misspelt_file(const fs::path& song)
{
	std::error_code error;
	for (fs::directory_iterator it(song.parent_path(), error), end; !error && it != end;
		 it.increment(error)) {
		const std::string name = it->path().filename();
		for (const char* extension : kExtensions) {
			const std::string wanted = leaf_with(song, extension);
			if (name != wanted && strcasecmp(name.c_str(), wanted.c_str()) == 0)
				return name;
		}
	}
	return "";
}

std::string
fault_text(int32 error)
{
	switch (error) {
		case B_IS_A_DIRECTORY:
			return text(kTextReasonFolder);
		case B_PERMISSION_DENIED:
		case B_NOT_ALLOWED:
			return text(kTextReasonNotAllowed);
		default:
			return text(kTextReasonError, std::to_string(error));
	}
}

std::string
why_none(const BMessage& source)
{
	const char* song = source.GetString("Song", "");
	const char* file = source.GetString("File", "");
	const int32 error = source.GetInt32("Error", B_OK);
	if (song[0] == '\0')
		return text(kTextReasonNoEntry);
	if (error == B_ENTRY_NOT_FOUND)
		return text(
			kTextReasonNeither, leaf_with(song, kExtensions[0]), leaf_with(song, kExtensions[1]));
	return text(kTextReasonUnreadable, file, fault_text(error));
}

void
add_line(std::string& lines, const std::string& line)
{
	lines.append(line).append("\n");
}

std::string
entry_line(const PlayState& state)
{
	PlaylistEntry entry;
	const int32 index = state.CurrentIndex();
	return state.GetEntry(index, entry) ? text(kTextEntry, std::to_string(index + 1), entry.path)
										: "";
}

void
describe_lyrics(const BMessage& source, std::string& lines)
{
	const int32 times = source.GetInt32("Times", 0);
	const bool isGuessed = source.GetBool("Guessed", false);
	add_line(lines, text(kTextLyricsFile, source.GetString("File", "")));
	add_line(lines,
		text(isGuessed ? kTextEncodingGuessed : kTextEncodingChosen,
			source.GetString("Encoding", "")));
	add_line(lines,
		text(kTextLines, std::to_string(source.GetInt32("Lines", 0)), std::to_string(times)));
	if (times == 0)
		add_line(lines, text(kTextNoTimes));
}

void
explain_absence(const BMessage& source, std::string& lines)
{
	add_line(lines, text(kTextNoLyrics, why_none(source)));
	if (source.GetInt32("Error", B_OK) != B_ENTRY_NOT_FOUND)
		return;
	if (const std::string other = misspelt_file(source.GetString("Song", "")); !other.empty())
		add_line(lines, text(kTextMisspelt, other));
}

} // namespace

bool
explain_lyrics(const Deck& deck, bigtime_t end, const std::function<bool()>& isAskedToStop,
	std::string& explanation)
{
	const std::string title = deck.State().Info().title;
	explanation.clear();
	if (title.empty()) {
		add_line(explanation, text(kTextNoLyrics, text(kTextReasonNoSong)));
		return true;
	}
	add_line(explanation, text(kTextTitle, title));
	if (const std::string line = entry_line(deck.State()); !line.empty())
		add_line(explanation, line);
	BMessage source;
	while (!ask_view(title, source)) {
		if (system_time() > end || isAskedToStop()) {
			add_line(explanation, text(kTextNoLyrics, text(kTextReasonNoView)));
			return false;
		}
		snooze(kLookTime);
	}
	if (source.HasString("Encoding"))
		describe_lyrics(source, explanation);
	else
		explain_absence(source, explanation);
	return true;
}
