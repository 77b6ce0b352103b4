#include "app/DesktopFile.h"

#include <errno.h>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdlib.h>
#include <string.h>
#include <strings.h>
#include <sys/wait.h>
#include <unistd.h>

namespace BPrivate {

namespace fs = std::filesystem;

namespace {

std::string
environment(const char* name, const std::string& otherwise)
{
	const char* value = getenv(name);
	return value != NULL && value[0] != '\0' ? value : otherwise;
}

std::vector<fs::path>
application_folders()
{
	const std::string home = environment("HOME", "/");
	std::vector<fs::path> folders
		= {fs::path(environment("XDG_DATA_HOME", home + "/.local/share")) / "applications"};
	std::istringstream system(environment("XDG_DATA_DIRS", "/usr/local/share:/usr/share"));
	for (std::string folder; std::getline(system, folder, ':');) {
		if (!folder.empty())
			folders.push_back(fs::path(folder) / "applications");
	}
	return folders;
}

//! The value of `key=value`, blanks around the = allowed; false for another key.
bool
value_of(const std::string& line, const std::string& key, std::string* value)
{
	if (line.compare(0, key.size(), key) != 0)
		return false;
	const size_t equals = line.find_first_not_of(" \t", key.size());
	if (equals == std::string::npos || line[equals] != '=')
		return false;
	const size_t start = line.find_first_not_of(" \t", equals + 1);
	const size_t end = line.find_last_not_of(" \t\r");
	*value = start != std::string::npos ? line.substr(start, end + 1 - start) : "";
	return true;
}

//! Exec of the file, if it is the application's.
std::string
exec_if_signature_is(const fs::path& path, const char* signature)
{
	std::ifstream file(path);
	std::string exec, found;
	bool inEntry = false;
	for (std::string line; std::getline(file, line);) {
		if (line.starts_with("["))
			inEntry = line.starts_with("[Desktop Entry]");
		else if (inEntry && !value_of(line, "Exec", &exec))
			value_of(line, "X-MERION-Signature", &found);
	}
	return strcasecmp(found.c_str(), signature) == 0 ? exec : "";
}

//! In the value of a key \\ stands for one backslash.
std::string
unescape_value(const std::string& value)
{
	std::string text;
	for (size_t i = 0; i < value.size(); i++) {
		if (value[i] == '\\' && i + 1 < value.size()) {
			const char next = value[++i];
			if (next == 's')
				text += ' ';
			else if (next == '\\')
				text += '\\';
			else
				text += {'\\', next};
		} else
			text += value[i];
	}
	return text;
}

//! Arguments are parted by blanks; within quotes a backslash protects four characters.
std::vector<std::string>
split_exec(const std::string& exec)
{
	std::vector<std::string> words;
	std::string word;
	bool quoted = false, any = false;
	for (size_t i = 0; i < exec.size(); i++) {
		const char letter = exec[i];
		if (letter == '"') {
			quoted = !quoted;
			any = true;
		} else if (quoted && letter == '\\' && i + 1 < exec.size()
			&& strchr("\"`$\\", exec[i + 1]) != NULL)
			word += exec[++i];
		else if (!quoted && (letter == ' ' || letter == '\t')) {
			if (any || !word.empty())
				words.push_back(word);
			word.clear();
			any = false;
		} else
			word += letter;
	}
	if (any || !word.empty())
		words.push_back(word);
	return words;
}

std::string
without_doubled_percents(const std::string& word)
{
	std::string text;
	for (size_t i = 0; i < word.size(); i++) {
		text += word[i];
		if (word[i] == '%' && i + 1 < word.size() && word[i + 1] == '%')
			i++;
	}
	return text;
}

//! In the second child: what it writes to the pipe is its id, then an error if the program does not start.
[[noreturn]] void
run_command(char* const* arguments, int pipeEnd)
{
	const int null = open("/dev/null", O_RDWR);
	if (null >= 0)
		dup2(null, STDIN_FILENO);
	const int numbers[2] = {int(getpid()), 0};
	(void)!write(pipeEnd, numbers, sizeof(int));
	execvp(arguments[0], arguments);
	const int error = errno;
	(void)!write(pipeEnd, &error, sizeof(error));
	_exit(127);
}

} // namespace

std::vector<std::string>
expand_exec(const std::string& exec, const std::vector<std::string>& files)
{
	std::vector<std::string> command;
	for (const std::string& word : split_exec(unescape_value(exec))) {
		if (word == "%f" || word == "%u") {
			if (!files.empty())
				command.push_back(files.front());
		} else if (word == "%F" || word == "%U")
			command.insert(command.end(), files.begin(), files.end());
		else if (word == "%%" || word.size() != 2
			|| word[0] != '%') // else icon, name, and what is out of use
			command.push_back(without_doubled_percents(word));
	}
	return command;
}

std::vector<std::string>
command_for_signature(const char* signature, const std::vector<std::string>& files)
{
	for (const fs::path& folder : application_folders()) {
		std::error_code error;
		const auto options = fs::directory_options::skip_permission_denied;
		for (fs::recursive_directory_iterator at(folder, options, error), end; !error && at != end;
			 at.increment(error)) {
			if (at->path().extension() != ".desktop")
				continue;
			const std::string exec = exec_if_signature_is(at->path(), signature);
			if (!exec.empty())
				return expand_exec(exec, files);
		}
	}
	return {};
}

status_t
launch_detached(const std::vector<std::string>& command, team_id* team)
{
	if (command.empty())
		return B_BAD_VALUE;
	std::vector<char*> arguments;
	for (const std::string& argument : command)
		arguments.push_back(const_cast<char*>(argument.c_str()));
	arguments.push_back(NULL);
	int ends[2];
	if (pipe2(ends, O_CLOEXEC) != 0)
		return B_LAUNCH_FAILED;

	// Two generations, so that init is the one that waits for the program.
	const pid_t child = fork();
	if (child == 0) {
		setsid();
		const pid_t grandchild = fork();
		if (grandchild == 0)
			run_command(arguments.data(), ends[1]);
		_exit(grandchild < 0 ? 1 : 0);
	}
	close(ends[1]);
	int process = -1, error = 0;
	if (child > 0) {
		while (waitpid(child, NULL, 0) < 0 && errno == EINTR) { }
		(void)!read(ends[0], &process, sizeof(process));
		(void)!read(ends[0], &error, sizeof(error)); // closed by a program that has started
	}
	close(ends[0]);
	if (process < 0)
		return B_LAUNCH_FAILED;
	if (error != 0)
		return error == ENOENT ? B_ENTRY_NOT_FOUND : B_LAUNCH_FAILED_EXECUTABLE;
	if (team != NULL)
		*team = process;
	return B_OK;
}

} // namespace BPrivate
