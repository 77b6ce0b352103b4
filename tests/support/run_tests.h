#pragma once

#include <functional>
#include <memory>

class BApplication;

/*!	The main program of tests with an application: they run on a thread of their own, while the application, and with it the
	display server, has the main thread. A settings folder of their own; a watchdog ends what takes too long. Returns main()'s
	result.
	`make`: makes the application, once the settings folder is there. */
int run_tests(int argc, char** argv, const std::function<std::unique_ptr<BApplication>()>& make);
