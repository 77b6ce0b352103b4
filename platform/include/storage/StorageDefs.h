#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <SupportDefs.h>

// Buffers of these sizes hold every name and every path, the NUL included.
#define B_FILE_NAME_LENGTH 256
#define B_PATH_NAME_LENGTH 4096

// How BFile opens a file: one of the first three, and any of the others.
#define B_READ_ONLY 0x0000u
#define B_WRITE_ONLY 0x0001u
#define B_READ_WRITE 0x0002u
#define B_FAIL_IF_EXISTS 0x0100u // with B_CREATE_FILE: B_FILE_EXISTS when there is one
#define B_CREATE_FILE 0x0200u
#define B_ERASE_FILE 0x0400u
#define B_OPEN_AT_END 0x0800u // the first position is the end of the file

enum node_flavor {
	B_FILE_NODE = 0x01,
	B_SYMLINK_NODE = 0x02,
	B_DIRECTORY_NODE = 0x04,
	B_ANY_NODE = 0x07
};
