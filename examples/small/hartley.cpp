// SPDX-License-Identifier: MIT
// The Hartley transform is its own inverse but for the factor N. In place, of a length by argument.
#include <orvgen.h>

#include <cstdio>

int main() {
    Orv32f x[7] = {1, 2, 3, 4, 5, 6, 7};
    if (orvgHartley_32f(x, x, 7, orvScaleNone) != orvOk) return 1;
    std::printf("sum of the samples: %.2f\n", x[0]);
    if (orvgHartley_32f(x, x, 7, orvScaleFwdByN) != orvOk) return 1;
    for (const Orv32f sample : x) std::printf(" %.2f", sample);
    std::printf("\n");
}
