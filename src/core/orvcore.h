/* SPDX-License-Identifier: MIT */
/* The two functions of the core library that the product calls. */
#ifndef ORVCORE_H
#define ORVCORE_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#ifndef ORVCORE_API
#define ORVCORE_API __attribute__((visibility("default")))
#endif

/* A block of `bytes` bytes on a 64-byte boundary; null when the count is negative or no memory is
 * left. A count of 0 gives a block that may be freed. */
ORVCORE_API void* orvMalloc(int32_t bytes);

/* Gives a block of orvMalloc back. Null is allowed and does nothing. */
ORVCORE_API void orvFree(void* block);

#ifdef __cplusplus
}
#endif

#endif
