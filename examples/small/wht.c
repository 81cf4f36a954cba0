/* SPDX-License-Identifier: MIT */
/* The Walsh-Hadamard transform of 1024 points (order 10): finds the one Walsh function that the
 * samples are. */
#include <orvgen.h>
#include <stdio.h>
#include <stdlib.h>

int main(void) {
    static Orv64f x[1024], y[1024];
    int32_t bytes = 0; /* of scratch memory, from order 8 on; with a null pointer the function
                          fetches it by itself */
    if (orvgWHTGetBufferSize_64f(10, &bytes) != orvOk) return 1;
    uint8_t* buffer = malloc(bytes);
    for (int n = 0; n < 1024; ++n) x[n] = __builtin_parity(n & 300) ? -1 : 1;
    const OrvStatus status = orvgWHT_10_64f(x, y, orvScaleFwdByN, buffer);
    free(buffer);
    for (int k = 0; k < 1024; ++k)
        if (y[k] != 0) printf("function %d: %.0f\n", k, y[k]);
    return status != orvOk;
}
