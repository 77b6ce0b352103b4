// The main program of tests that play the host.

#include "support/ScriptedHost.h"
#include "support/run_tests.h"

int
main(int argc, char** argv)
{
	return run_tests(argc, argv, [] { return std::make_unique<ScriptedHost>(); });
}
