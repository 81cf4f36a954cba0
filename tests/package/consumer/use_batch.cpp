// SPDX-License-Identifier: MIT
// The same header in C++.
#include <orvgen_batch.h>

#include <cstdio>
#include <vector>

int main() {
    constexpr std::size_t count = 100;
    std::vector<Orv64f> x(16 * count, 1), y(x.size());
    const OrvStatus status =
        orvgBatchWHT_64f(x.data(), 1, 16, y.data(), 1, 16, 4, count, orvScaleNone);
    int wrong = 0;
    for (std::size_t i = 0; i < y.size(); ++i) wrong += y[i] != (i % 16 == 0 ? 16 : 0);
    std::printf("batches: %s, %d wrong\n", orvgBatchStatusText(status), wrong);
    return status != orvOk || wrong != 0;
}
