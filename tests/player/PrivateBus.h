#pragma once

#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

/*!	A session bus of a test's own. */
class PrivateBus {
public:
	PrivateBus()
	{
		int pipe[2];
		if (pipe2(pipe, 0) != 0)
			throw std::runtime_error("no pipe");
		const std::string print = "--print-address=" + std::to_string(pipe[1]);
		fProcess = fork();
		if (fProcess == 0) {
			execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--nosyslog",
				"--address=unix:tmpdir=/tmp", print.c_str(), nullptr);
			_exit(127);
		}
		close(pipe[1]);
		char c;
		while (read(pipe[0], &c, 1) == 1 && c != '\n')
			fAddress += c;
		close(pipe[0]);
		if (fAddress.empty())
			throw std::runtime_error("dbus-daemon did not start");
	}
	PrivateBus(const PrivateBus&) = delete;
	PrivateBus& operator=(const PrivateBus&) = delete;
	~PrivateBus() { End(); }

	const std::string& Address() const { return fAddress; }

	//! Stopped, it takes nothing and answers nothing; its connections stay.
	void Stop() { kill(fProcess, SIGSTOP); }
	void Continue() { kill(fProcess, SIGCONT); }
	void End()
	{
		if (fProcess <= 0)
			return;
		kill(fProcess, SIGKILL);
		waitpid(fProcess, nullptr, 0);
		fProcess = 0;
		// a killed one leaves its socket: "unix:path=/tmp/dbus-...,guid=..."
		const size_t path = fAddress.find('/');
		unlink(fAddress.substr(path, fAddress.find(',') - path).c_str());
	}

private:
	pid_t fProcess;
	std::string fAddress;
};
