#include "track_path.h"

#include "../song_title.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits.h>

#include <unistd.h>

namespace {

constexpr const char* kScheme = "file:";
constexpr const char* kExtension = ".track"; // lyrics have another in its place
constexpr size_t kLongestName = 240;         // of 255 bytes, with any extension

int
digit_value(char c)
{
	if (c >= '0' && c <= '9')
		return c - '0';
	const char lower = static_cast<char>(c | 0x20);
	return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

//! "%" without two digits is itself: some players write names as they are.
std::string
decoded(const std::string& text)
{
	std::string result;
	for (size_t i = 0; i < text.size(); i++) {
		const int high = text[i] == '%' && i + 2 < text.size() ? digit_value(text[i + 1]) : -1;
		const int low = high >= 0 ? digit_value(text[i + 2]) : -1;
		result += low >= 0 ? static_cast<char>(high * 16 + low) : text[i];
		i += low >= 0 ? 2 : 0;
	}
	return result;
}

bool
exists(const std::string& path)
{
	std::error_code error;
	return std::filesystem::exists(path, error);
}

bool
is_scheme(const std::string& url)
{
	const std::string scheme = kScheme;
	return url.size() >= scheme.size()
		&& std::equal(scheme.begin(), scheme.end(), url.begin(),
			[](char a, char b) { return a == (b >= 'A' && b <= 'Z' ? b | 0x20 : b); });
}

bool
is_this_machine(const std::string& host)
{
	char name[HOST_NAME_MAX + 1] = "";
	return host.empty() || host == "localhost"
		|| (gethostname(name, sizeof(name) - 1) == 0 && host == name);
}

//! The path in "file:" urls, as it is written; "" for other machines' and other urls.
std::string
written_path(const std::string& url)
{
	if (url.starts_with('/'))
		return url;
	if (!is_scheme(url))
		return {};
	const std::string rest = url.substr(std::string(kScheme).size());
	if (!rest.starts_with("//"))
		return rest.starts_with('/') ? rest : "";
	const size_t slash = rest.find('/', 2);
	if (slash == std::string::npos || !is_this_machine(rest.substr(2, slash - 2)))
		return {};
	return rest.substr(slash);
}

std::string
variable(const char* name)
{
	const char* value = getenv(name);
	return value != nullptr ? value : "";
}

/*!	As the desktop's file of user folders has it: XDG_MUSIC_DIR="$HOME/Music". "" without one. */
std::string
told_music_folder(const std::string& home)
{
	const std::string config = variable("XDG_CONFIG_HOME");
	std::ifstream file((config.empty() ? home + "/.config" : config) + "/user-dirs.dirs");
	const std::string key = "XDG_MUSIC_DIR=\"";
	for (std::string line; std::getline(file, line);) {
		const size_t end = line.rfind('"');
		if (!line.starts_with(key) || end < key.size())
			continue;
		const std::string value = line.substr(key.size(), end - key.size());
		const std::string variable = "$HOME/";
		return value.starts_with(variable) ? home + "/" + value.substr(variable.size()) : value;
	}
	return {};
}

} // namespace

std::string
file_of_url(const std::string& url)
{
	// neither "#" nor "?" ends a path: players that write names as they are write these too
	const std::string written = written_path(url);
	const std::string path = decoded(written);
	const bool asWritten = path != written && !exists(path) && exists(written);
	return path.find('\0') != std::string::npos || asWritten ? written : path;
}

std::string
entry_of_track(const std::string& folder, const SongTags& tags)
{
	std::string name = cut_utf8(song_title(tags.artist, tags.title, ""), kLongestName);
	std::replace(name.begin(), name.end(), '/', '_');
	return folder + "/" + name + kExtension;
}

std::string
name_of_url(const std::string& url)
{
	const std::string place = url.substr(0, url.find_first_of("?#"));
	const size_t last = place.find_last_not_of('/');
	if (last == std::string::npos)
		return url;
	const size_t slash = place.rfind('/', last);
	return decoded(place.substr(slash + 1, last - slash));
}

std::string
default_lyrics_folder()
{
	const std::string home = variable("HOME");
	const std::string told = told_music_folder(home);
	return (told.empty() ? home + "/Music" : told) + "/Lyrics";
}
