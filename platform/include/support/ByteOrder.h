#pragma once

#include <SupportDefs.h>

// macros, because they are asked for in #if
#if __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
#define B_HOST_IS_LENDIAN 1
#define B_HOST_IS_BENDIAN 0
#else
#define B_HOST_IS_LENDIAN 0
#define B_HOST_IS_BENDIAN 1
#endif

#define B_SWAP_INT16(value) __builtin_bswap16(value)
#define B_SWAP_INT32(value) __builtin_bswap32(value)
#define B_SWAP_INT64(value) __builtin_bswap64(value)

#define B_HOST_TO_LENDIAN_INT16(value) (B_HOST_IS_LENDIAN ? (uint16)(value) : B_SWAP_INT16(value))
#define B_HOST_TO_LENDIAN_INT32(value) (B_HOST_IS_LENDIAN ? (uint32)(value) : B_SWAP_INT32(value))
#define B_HOST_TO_LENDIAN_INT64(value) (B_HOST_IS_LENDIAN ? (uint64)(value) : B_SWAP_INT64(value))
#define B_HOST_TO_BENDIAN_INT16(value) (B_HOST_IS_BENDIAN ? (uint16)(value) : B_SWAP_INT16(value))
#define B_HOST_TO_BENDIAN_INT32(value) (B_HOST_IS_BENDIAN ? (uint32)(value) : B_SWAP_INT32(value))
#define B_HOST_TO_BENDIAN_INT64(value) (B_HOST_IS_BENDIAN ? (uint64)(value) : B_SWAP_INT64(value))

#define B_LENDIAN_TO_HOST_INT16(value) B_HOST_TO_LENDIAN_INT16(value)
#define B_LENDIAN_TO_HOST_INT32(value) B_HOST_TO_LENDIAN_INT32(value)
#define B_LENDIAN_TO_HOST_INT64(value) B_HOST_TO_LENDIAN_INT64(value)
#define B_BENDIAN_TO_HOST_INT16(value) B_HOST_TO_BENDIAN_INT16(value)
#define B_BENDIAN_TO_HOST_INT32(value) B_HOST_TO_BENDIAN_INT32(value)
#define B_BENDIAN_TO_HOST_INT64(value) B_HOST_TO_BENDIAN_INT64(value)
