/* SPDX-License-Identifier: MIT */
/* A program with an allocator of its own in the core library's place. */
#include <orvgen.h>
#include <stdio.h>
#include <stdlib.h>

static int taken = 0, given = 0;

void* orvMalloc(int32_t bytes) {
    ++taken;
    return malloc((size_t)bytes);
}
void orvFree(void* block) {
    ++given;
    free(block);
}

int main(void) {
    static Orv32f x[256] = {1}, y[256];
    const OrvStatus status = orvgWHT_8_32f(x, y, orvScaleNone, NULL);
    printf("WHT: status %d, y[255] = %g, %d blocks taken, %d given back\n", status, y[255], taken,
           given);
    return !(status == orvOk && y[255] == 1 && taken == 1 && given == 1);
}
