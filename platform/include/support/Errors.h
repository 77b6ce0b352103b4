#pragma once

#include <limits.h>

/*!	The platform's status values. Each kit has a range of its own; all errors are negative. The
	numbers go into messages and files, so they are the platform's public ones, whatever errno is
	here. */
inline constexpr int B_GENERAL_ERROR_BASE = INT_MIN;
inline constexpr int B_OS_ERROR_BASE = B_GENERAL_ERROR_BASE + 0x1000;
inline constexpr int B_APP_ERROR_BASE = B_GENERAL_ERROR_BASE + 0x2000;
inline constexpr int B_INTERFACE_ERROR_BASE = B_GENERAL_ERROR_BASE + 0x3000;
inline constexpr int B_MEDIA_ERROR_BASE = B_GENERAL_ERROR_BASE + 0x4000;
inline constexpr int B_TRANSLATION_ERROR_BASE = B_GENERAL_ERROR_BASE + 0x4800;
inline constexpr int B_MIDI_ERROR_BASE = B_GENERAL_ERROR_BASE + 0x5000;
inline constexpr int B_STORAGE_ERROR_BASE = B_GENERAL_ERROR_BASE + 0x6000;
inline constexpr int B_POSIX_ERROR_BASE = B_GENERAL_ERROR_BASE + 0x7000;
inline constexpr int B_ERRORS_END = B_GENERAL_ERROR_BASE + 0xffff;

//! General.
inline constexpr int B_NO_MEMORY = B_GENERAL_ERROR_BASE;
inline constexpr int B_IO_ERROR = B_GENERAL_ERROR_BASE + 1;
inline constexpr int B_PERMISSION_DENIED = B_GENERAL_ERROR_BASE + 2;
inline constexpr int B_BAD_INDEX = B_GENERAL_ERROR_BASE + 3;
inline constexpr int B_BAD_TYPE = B_GENERAL_ERROR_BASE + 4;
inline constexpr int B_BAD_VALUE = B_GENERAL_ERROR_BASE + 5;
inline constexpr int B_MISMATCHED_VALUES = B_GENERAL_ERROR_BASE + 6;
inline constexpr int B_NAME_NOT_FOUND = B_GENERAL_ERROR_BASE + 7;
inline constexpr int B_NAME_IN_USE = B_GENERAL_ERROR_BASE + 8;
inline constexpr int B_TIMED_OUT = B_GENERAL_ERROR_BASE + 9;
inline constexpr int B_INTERRUPTED = B_GENERAL_ERROR_BASE + 10;
inline constexpr int B_WOULD_BLOCK = B_GENERAL_ERROR_BASE + 11;
inline constexpr int B_CANCELED = B_GENERAL_ERROR_BASE + 12;
inline constexpr int B_NO_INIT = B_GENERAL_ERROR_BASE + 13;
inline constexpr int B_NOT_INITIALIZED = B_NO_INIT;
inline constexpr int B_BUSY = B_GENERAL_ERROR_BASE + 14;
inline constexpr int B_NOT_ALLOWED = B_GENERAL_ERROR_BASE + 15;
inline constexpr int B_BAD_DATA = B_GENERAL_ERROR_BASE + 16;
inline constexpr int B_DONT_DO_THAT = B_GENERAL_ERROR_BASE + 17;

inline constexpr int B_ERROR = -1;
inline constexpr int B_OK = 0;
inline constexpr int B_NO_ERROR = 0;

//! Kernel kit.
inline constexpr int B_BAD_SEM_ID = B_OS_ERROR_BASE;
inline constexpr int B_NO_MORE_SEMS = B_OS_ERROR_BASE + 1;

inline constexpr int B_BAD_THREAD_ID = B_OS_ERROR_BASE + 0x100;
inline constexpr int B_NO_MORE_THREADS = B_OS_ERROR_BASE + 0x101;
inline constexpr int B_BAD_THREAD_STATE = B_OS_ERROR_BASE + 0x102;
inline constexpr int B_BAD_TEAM_ID = B_OS_ERROR_BASE + 0x103;
inline constexpr int B_NO_MORE_TEAMS = B_OS_ERROR_BASE + 0x104;

inline constexpr int B_BAD_PORT_ID = B_OS_ERROR_BASE + 0x200;
inline constexpr int B_NO_MORE_PORTS = B_OS_ERROR_BASE + 0x201;

inline constexpr int B_BAD_IMAGE_ID = B_OS_ERROR_BASE + 0x300;
inline constexpr int B_BAD_ADDRESS = B_OS_ERROR_BASE + 0x301;
inline constexpr int B_NOT_AN_EXECUTABLE = B_OS_ERROR_BASE + 0x302;
inline constexpr int B_MISSING_LIBRARY = B_OS_ERROR_BASE + 0x303;
inline constexpr int B_MISSING_SYMBOL = B_OS_ERROR_BASE + 0x304;

//! Application kit.
inline constexpr int B_BAD_REPLY = B_APP_ERROR_BASE;
inline constexpr int B_DUPLICATE_REPLY = B_APP_ERROR_BASE + 1;
inline constexpr int B_MESSAGE_TO_SELF = B_APP_ERROR_BASE + 2;
inline constexpr int B_BAD_HANDLER = B_APP_ERROR_BASE + 3;
inline constexpr int B_ALREADY_RUNNING = B_APP_ERROR_BASE + 4;
inline constexpr int B_LAUNCH_FAILED = B_APP_ERROR_BASE + 5;
inline constexpr int B_AMBIGUOUS_APP_LAUNCH = B_APP_ERROR_BASE + 6;
inline constexpr int B_UNKNOWN_MIME_TYPE = B_APP_ERROR_BASE + 7;
inline constexpr int B_BAD_SCRIPT_SYNTAX = B_APP_ERROR_BASE + 8;
inline constexpr int B_LAUNCH_FAILED_NO_RESOLVE_LINK = B_APP_ERROR_BASE + 9;
inline constexpr int B_LAUNCH_FAILED_EXECUTABLE = B_APP_ERROR_BASE + 10;
inline constexpr int B_LAUNCH_FAILED_APP_NOT_FOUND = B_APP_ERROR_BASE + 11;
inline constexpr int B_LAUNCH_FAILED_APP_IN_TRASH = B_APP_ERROR_BASE + 12;
inline constexpr int B_LAUNCH_FAILED_NO_PREFERRED_APP = B_APP_ERROR_BASE + 13;
inline constexpr int B_LAUNCH_FAILED_FILES_APP_NOT_FOUND = B_APP_ERROR_BASE + 14;
inline constexpr int B_BAD_MIME_SNIFFER_RULE = B_APP_ERROR_BASE + 15;
inline constexpr int B_NOT_A_MESSAGE = B_APP_ERROR_BASE + 16;
inline constexpr int B_SHUTDOWN_CANCELLED = B_APP_ERROR_BASE + 17;
inline constexpr int B_SHUTTING_DOWN = B_APP_ERROR_BASE + 18;

//! Translation kit.
inline constexpr int B_TRANSLATION_BASE_ERROR = B_TRANSLATION_ERROR_BASE;
inline constexpr int B_NO_TRANSLATOR = B_TRANSLATION_ERROR_BASE;
inline constexpr int B_ILLEGAL_DATA = B_TRANSLATION_ERROR_BASE + 1;

//! Storage kit.
inline constexpr int B_FILE_ERROR = B_STORAGE_ERROR_BASE;
inline constexpr int B_FILE_NOT_FOUND = B_STORAGE_ERROR_BASE + 1;
inline constexpr int B_FILE_EXISTS = B_STORAGE_ERROR_BASE + 2;
inline constexpr int B_ENTRY_NOT_FOUND = B_STORAGE_ERROR_BASE + 3;
inline constexpr int B_NAME_TOO_LONG = B_STORAGE_ERROR_BASE + 4;
inline constexpr int B_NOT_A_DIRECTORY = B_STORAGE_ERROR_BASE + 5;
inline constexpr int B_DIRECTORY_NOT_EMPTY = B_STORAGE_ERROR_BASE + 6;
inline constexpr int B_DEVICE_FULL = B_STORAGE_ERROR_BASE + 7;
inline constexpr int B_READ_ONLY_DEVICE = B_STORAGE_ERROR_BASE + 8;
inline constexpr int B_IS_A_DIRECTORY = B_STORAGE_ERROR_BASE + 9;
inline constexpr int B_NO_MORE_FDS = B_STORAGE_ERROR_BASE + 10;
inline constexpr int B_CROSS_DEVICE_LINK = B_STORAGE_ERROR_BASE + 11;
inline constexpr int B_LINK_LIMIT = B_STORAGE_ERROR_BASE + 12;
inline constexpr int B_BUSTED_PIPE = B_STORAGE_ERROR_BASE + 13;
inline constexpr int B_UNSUPPORTED = B_STORAGE_ERROR_BASE + 14;
inline constexpr int B_PARTITION_TOO_SMALL = B_STORAGE_ERROR_BASE + 15;
inline constexpr int B_PARTIAL_READ = B_STORAGE_ERROR_BASE + 16;
inline constexpr int B_PARTIAL_WRITE = B_STORAGE_ERROR_BASE + 17;

//! Errors that the platform takes over from POSIX.
inline constexpr int B_TOO_MANY_ARGS = B_POSIX_ERROR_BASE + 1;
inline constexpr int B_FILE_TOO_LARGE = B_POSIX_ERROR_BASE + 4;
inline constexpr int B_DEVICE_NOT_FOUND = B_POSIX_ERROR_BASE + 7;
inline constexpr int B_RESULT_NOT_REPRESENTABLE = B_POSIX_ERROR_BASE + 17;
inline constexpr int B_BUFFER_OVERFLOW = B_POSIX_ERROR_BASE + 41;
inline constexpr int B_NOT_SUPPORTED = B_POSIX_ERROR_BASE + 43;
