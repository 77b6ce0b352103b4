#pragma once

#include <OS.h>

/*!	ASSERT stops the program with a sentence on standard error when its condition does not hold.
	Like on the platform it is there only when DEBUG is defined and not 0, or in a build without
	NDEBUG. */
#if (defined(DEBUG) && DEBUG) || !defined(NDEBUG)

namespace BPrivate {
//! Writes where and what, then calls debugger(). Does not return.
[[noreturn]] void assertion_failed(const char* file, int line, const char* text);
} // namespace BPrivate

#define ASSERT(condition)                                                                          \
	((condition) ? (void)0 : BPrivate::assertion_failed(__FILE__, __LINE__, #condition))
#define ASSERT_WITH_MESSAGE(condition, message)                                                    \
	((condition) ? (void)0 : BPrivate::assertion_failed(__FILE__, __LINE__, message))

#else

#define ASSERT(condition) ((void)0)
#define ASSERT_WITH_MESSAGE(condition, message) ((void)0)

#endif
