#pragma once

#include <Errors.h>
#include <inttypes.h>
#include <stddef.h>
#include <stdint.h>
#include <sys/types.h>

/*!	The platform's names of the plain types. */
typedef int8_t int8;
typedef uint8_t uint8;
typedef int16_t int16;
typedef uint16_t uint16;
typedef int32_t int32;
typedef uint32_t uint32;
typedef int64_t int64;
typedef uint64_t uint64;
typedef unsigned char uchar;
typedef unsigned short unichar;

typedef int32 status_t;  // B_OK or more, else one of Errors.h
typedef int64 bigtime_t; // µs; of the monotonic clock when it is a point in time
typedef int32 nanotime_t;
typedef uint32 type_code; // what a field holds, see TypeConstants.h
typedef uint32 perform_code;

#define B_PRId8 PRId8
#define B_PRIu8 PRIu8
#define B_PRId16 PRId16
#define B_PRIu16 PRIu16
#define B_PRId32 PRId32
#define B_PRIu32 PRIu32
#define B_PRIx32 PRIx32
#define B_PRId64 PRId64
#define B_PRIu64 PRIu64
#define B_PRIx64 PRIx64
#define B_PRIdBIGTIME B_PRId64
#define B_PRIdOFF B_PRId64

#define min_c(a, b) ((a) > (b) ? (b) : (a))
#define max_c(a, b) ((a) > (b) ? (a) : (b))

inline constexpr const char* B_EMPTY_STRING = "";

/*!	Atomic operations, sequentially consistent. All but atomic_set() and the two reads change the
	value and answer what it was before; atomic_test_and_set() stores only when the value equals
	`testAgainst`. */
inline int32
atomic_add(int32* value, int32 addValue)
{
	return __atomic_fetch_add(value, addValue, __ATOMIC_SEQ_CST);
}

inline int32
atomic_and(int32* value, int32 andValue)
{
	return __atomic_fetch_and(value, andValue, __ATOMIC_SEQ_CST);
}

inline int32
atomic_or(int32* value, int32 orValue)
{
	return __atomic_fetch_or(value, orValue, __ATOMIC_SEQ_CST);
}

inline int32
atomic_get(const int32* value)
{
	return __atomic_load_n(value, __ATOMIC_SEQ_CST);
}

inline void
atomic_set(int32* value, int32 newValue)
{
	__atomic_store_n(value, newValue, __ATOMIC_SEQ_CST);
}

inline int32
atomic_get_and_set(int32* value, int32 newValue)
{
	return __atomic_exchange_n(value, newValue, __ATOMIC_SEQ_CST);
}

inline int32
atomic_test_and_set(int32* value, int32 newValue, int32 testAgainst)
{
	__atomic_compare_exchange_n(
		value, &testAgainst, newValue, false, __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST);
	return testAgainst;
}

inline int64
atomic_add64(int64* value, int64 addValue)
{
	return __atomic_fetch_add(value, addValue, __ATOMIC_SEQ_CST);
}

inline int64
atomic_get64(const int64* value)
{
	return __atomic_load_n(value, __ATOMIC_SEQ_CST);
}

inline void
atomic_set64(int64* value, int64 newValue)
{
	__atomic_store_n(value, newValue, __ATOMIC_SEQ_CST);
}
