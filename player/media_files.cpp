#include "media_files.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <set>
#include <string_view>

#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

constexpr auto kExtensions = std::to_array<std::string_view>(
	{"aac", "ac3", "aif", "aifc", "aiff", "amr", "ape", "au", "caf", "dsf", "dts", "flac", "it",
		"m4a", "m4b", "mka", "mod", "mp2", "mp3", "mp4", "mpc", "mpga", "oga", "ogg", "opus", "s3m",
		"snd", "spx", "tta", "wav", "wave", "weba", "webm", "wma", "wv", "xm"});

bool
is_digit(char c)
{
	return c >= '0' && c <= '9';
}

char
lower(char c)
{
	return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

//! Takes the run of digits at `at`, without leading zeros.
std::string_view
take_number(std::string_view text, size_t& at)
{
	size_t first = at;
	while (at < text.size() && is_digit(text[at]))
		at++;
	while (first < at && text[first] == '0')
		first++;
	return text.substr(first, at - first);
}

int
natural_compare(std::string_view a, std::string_view b)
{
	size_t i = 0;
	size_t j = 0;
	while (i < a.size() && j < b.size()) {
		if (is_digit(a[i]) && is_digit(b[j])) {
			std::string_view left = take_number(a, i);
			std::string_view right = take_number(b, j);
			if (left.size() != right.size())
				return left.size() < right.size() ? -1 : 1;
			if (int order = left.compare(right))
				return order;
			continue;
		}
		unsigned char left = lower(a[i++]);
		unsigned char right = lower(b[j++]);
		if (left != right)
			return left < right ? -1 : 1;
	}
	return static_cast<int>(i < a.size()) - static_cast<int>(j < b.size());
}

using FolderId = std::pair<dev_t, ino_t>;

bool
first_visit(const fs::path& folder, std::set<FolderId>& visited)
{
	struct stat info;
	return stat(folder.c_str(), &info) == 0 && visited.insert({info.st_dev, info.st_ino}).second;
}

std::vector<std::string>
visible_names(const fs::path& folder, const std::atomic<bool>& stop)
{
	std::vector<std::string> names;
	std::error_code error;
	for (fs::directory_iterator it(folder, error), end; !error && it != end && !stop;
		 it.increment(error)) {
		std::string name = it->path().filename();
		if (name[0] != '.')
			names.push_back(name);
	}
	std::sort(names.begin(), names.end(), natural_less);
	return names;
}

void
collect_folder(const fs::path& folder, std::set<FolderId>& visited, std::vector<std::string>& files,
	const std::atomic<bool>& stop)
{
	if (!first_visit(folder, visited))
		return;
	for (const std::string& name : visible_names(folder, stop)) {
		if (stop)
			return;
		fs::path path = folder / name;
		std::error_code error;
		if (fs::is_directory(path, error))
			collect_folder(path, visited, files, stop);
		else if (fs::is_regular_file(path, error) && has_media_extension(name))
			files.push_back(path);
	}
}

} // namespace

bool
natural_less(const std::string& a, const std::string& b)
{
	int order = natural_compare(a, b);
	return order != 0 ? order < 0 : a < b;
}

bool
has_media_extension(const std::string& name)
{
	size_t dot = name.rfind('.');
	if (dot == std::string::npos || dot == 0)
		return false;
	std::string extension = name.substr(dot + 1);
	std::transform(extension.begin(), extension.end(), extension.begin(), lower);
	return std::find(kExtensions.begin(), kExtensions.end(), extension) != kExtensions.end();
}

bool
collect_media_files(
	const std::string& path, std::vector<std::string>& files, const std::atomic<bool>& stop)
{
	std::error_code error;
	const fs::path whole = fs::absolute(path, error);
	if (error || !fs::exists(whole, error))
		return false;
	fs::path absolute = whole.lexically_normal();
	if (!fs::equivalent(absolute, whole, error)) // ".." behind a link leads elsewhere
		absolute = whole;
	if (!absolute.has_filename()) // "folder/"
		absolute = absolute.parent_path();
	std::set<FolderId> visited;
	if (fs::is_directory(absolute, error))
		collect_folder(absolute, visited, files, stop);
	else
		files.push_back(absolute);
	return true;
}
