// The main program of tests that show something.

#include <Application.h>

#include "support/run_tests.h"

int
main(int argc, char** argv)
{
	return run_tests(argc, argv,
		[] { return std::make_unique<BApplication>("application/x-vnd.MERION-tests"); });
}
