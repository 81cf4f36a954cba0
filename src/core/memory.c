/* SPDX-License-Identifier: MIT */
#define _POSIX_C_SOURCE 200112L

#include <stdlib.h>

#include "orvcore.h"

/* A cache line, which is also more than the 16 bytes that aligned vector accesses need. */
enum { blockAlignment = 64 };

void* orvMalloc(int32_t bytes) {
    void* block = NULL;
    if (bytes < 0) return NULL;
    if (posix_memalign(&block, blockAlignment, bytes > 0 ? (size_t)bytes : 1) != 0) return NULL;
    return block;
}

void orvFree(void* block) { free(block); }
