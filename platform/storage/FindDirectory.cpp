#include <FindDirectory.h>

#include <cstdlib>
#include <pwd.h>
#include <string>
#include <unistd.h>
#include <vector>

#include <Directory.h>
#include <Path.h>

namespace {

std::string
absolute_variable(const char* name)
{
	const char* value = getenv(name);
	return value != NULL && value[0] == '/' ? value : "";
}

std::string
home_of_user()
{
	std::string home = absolute_variable("HOME");
	if (!home.empty())
		return home;

	std::vector<char> buffer(16384);
	struct passwd entry;
	struct passwd* found = NULL;
	getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found);
	if (found == NULL || found->pw_dir == NULL || found->pw_dir[0] != '/')
		return "";
	return found->pw_dir;
}

std::string
user_folder(const char* variable, const char* inHome)
{
	std::string folder = absolute_variable(variable);
	if (!folder.empty())
		return folder;
	std::string home = home_of_user();
	return home.empty() ? "" : home + '/' + inHome;
}

std::string
temporary_folder()
{
	std::string folder = absolute_variable("TMPDIR");
	return folder.empty() ? "/tmp" : folder;
}

//!	Doubled and last slashes would have the path looked up, which fails when it does not exist yet.
std::string
without_needless_slashes(const std::string& path)
{
	std::string result;
	for (char c : path) {
		if (c != '/' || !result.ends_with('/'))
			result += c;
	}
	if (result.size() > 1 && result.ends_with('/'))
		result.pop_back();
	return result;
}

} // namespace

status_t
find_directory(directory_which which, BPath* path, bool createIt)
{
	if (path == NULL)
		return B_BAD_VALUE;
	path->Unset();

	std::string folder;
	switch (which) {
		case B_SYSTEM_TEMP_DIRECTORY:
			folder = temporary_folder();
			break;
		case B_USER_DIRECTORY:
			folder = home_of_user();
			break;
		case B_USER_CONFIG_DIRECTORY:
		case B_USER_SETTINGS_DIRECTORY:
			folder = user_folder("XDG_CONFIG_HOME", ".config");
			break;
		case B_USER_CACHE_DIRECTORY:
			folder = user_folder("XDG_CACHE_HOME", ".cache");
			break;
		default:
			return B_BAD_VALUE;
	}
	if (folder.empty())
		return B_ENTRY_NOT_FOUND;
	folder = without_needless_slashes(folder);
	// Readable by the user alone, as the desktop's convention for these folders wants it.
	status_t status = createIt ? create_directory(folder.c_str(), S_IRWXU) : B_OK;
	return status == B_OK ? path->SetTo(folder.c_str()) : status;
}
