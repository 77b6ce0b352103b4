#include <OS.h>

#include <stdio.h>

namespace BPrivate {

// declared by Debug.h where there are assertions
[[noreturn]] void assertion_failed(const char* file, int line, const char* text);

void
assertion_failed(const char* file, int line, const char* text)
{
	char message[512];
	snprintf(message, sizeof(message), "%s:%d: assertion failed: %s", file, line, text);
	debugger(message);
}

} // namespace BPrivate
