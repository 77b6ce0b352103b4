#pragma once

#include <csignal>
#include <cstdlib>
#include <ctime>
#include <map>
#include <string>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

/*!	A program run by a test. It is killed when it takes longer than the test's patience, so that the test fails instead of hanging. */
class Child {
public:
	Child(const std::vector<std::string>& words,
		const std::map<std::string, std::string>& environment)
	{
		int out[2];
		int err[2];
		if (pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0)
			abort();
		std::vector<char*> arguments;
		for (const std::string& word : words)
			arguments.push_back(const_cast<char*>(word.c_str()));
		arguments.push_back(nullptr);
		fStart = Now();
		fProcess = fork();
		if (fProcess == 0) {
			dup2(out[1], STDOUT_FILENO);
			dup2(err[1], STDERR_FILENO);
			for (auto& [name, value] : environment)
				setenv(name.c_str(), value.c_str(), 1);
			execv(arguments[0], arguments.data());
			_exit(127);
		}
		close(out[1]);
		close(err[1]);
		fPipes[0] = out[0];
		fPipes[1] = err[0];
	}

	~Child()
	{
		Kill(SIGKILL);
		for (int pipe : fPipes)
			close(pipe);
	}

	void Kill(int signal)
	{
		if (!fReaped)
			kill(fProcess, signal);
	}

	//! Reads until standard output holds `text`; false if it ends or `seconds` pass before.
	bool WaitForOutput(const std::string& text, double seconds = 30)
	{
		double end = Now() + seconds;
		while (output.find(text) == std::string::npos) {
			if (!ReadSome(end))
				return false;
		}
		return true;
	}

	pid_t Process() const { return fProcess; }

	bool HasExited() const
	{
		siginfo_t info = {};
		return waitid(P_PID, fProcess, &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid != 0;
	}

	//! The exit status, 128 + signal if it was ended by one; -1 after `seconds`.
	int WaitForExit(double seconds = 30)
	{
		double end = Now() + seconds;
		while (ReadSome(end))
			continue;
		if (Now() >= end)
			Kill(SIGKILL);
		int status;
		waitpid(fProcess, &status, 0);
		fReaped = true;
		duration = Now() - fStart;
		if (duration >= seconds && Now() >= end)
			return -1;
		return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
	}

	//! Monotonic time, s.
	static double Now()
	{
		timespec now;
		clock_gettime(CLOCK_MONOTONIC, &now);
		return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
	}

	std::string output;
	std::string errors;
	double duration = 0; // seconds, after WaitForExit()

private:
	//! False when both pipes have ended or the time is over.
	bool ReadSome(double end)
	{
		pollfd polls[2]
			= {{fOpen[0] ? fPipes[0] : -1, POLLIN, 0}, {fOpen[1] ? fPipes[1] : -1, POLLIN, 0}};
		if (!fOpen[0] && !fOpen[1])
			return false;
		int left = static_cast<int>((end - Now()) * 1000);
		if (left <= 0 || poll(polls, 2, left) <= 0)
			return false;
		for (int i = 0; i < 2; i++) {
			if (polls[i].revents == 0)
				continue;
			char buffer[4096];
			ssize_t got = read(fPipes[i], buffer, sizeof(buffer));
			fOpen[i] = got > 0;
			if (got > 0)
				(i == 0 ? output : errors).append(buffer, got);
		}
		return true;
	}

	double fStart;
	pid_t fProcess;
	int fPipes[2];
	bool fOpen[2] = {true, true};
	bool fReaped = false;
};
