// The other process of the port tests.
//   port_peer echo NAME CAPACITY BACK   owns a port and sends each message back to the port BACK;
// ends by the code 0
//   port_peer hold NAME CAPACITY        owns a port and never reads it; ends when standard input
// does
// "ready" on standard output tells that the port is there.

#include <OS.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <vector>

static int
echo(port_id port, const char* backName)
{
	std::vector<char> buffer(256 * 1024);
	int32 code;
	for (;;) {
		const ssize_t size = read_port(port, &code, buffer.data(), buffer.size());
		if (size < 0 || code == 0)
			return size < 0;
		const port_id back = find_port(backName);
		if (write_port(back, code, buffer.data(), size) != B_OK)
			return 2;
	}
}

int
main(int argc, char** argv)
{
	if (argc < 4)
		return 3;
	const port_id port = create_port(atoi(argv[3]), argv[2]);
	if (port < 0)
		return 4;
	printf("ready\n");
	fflush(stdout);
	if (strcmp(argv[1], "echo") == 0)
		return echo(port, argv[4]);
	while (getchar() != EOF)
		;
	return 0;
}
