// SPDX-License-Identifier: MIT
// The complex transform in binary64, its length an argument: every length from 2 to 64 there and
// back.
#include <orvgen.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

int main() {
    double worst = 0;
    for (int N = 2; N <= 64; ++N) {
        std::vector<Orv64fc> x(N), y(N);
        for (int n = 0; n < N; ++n) x[n] = {n + 1.0, -n / 2.0};
        if (orvgDFTFwd_CToC_64fc(x.data(), y.data(), N, orvScaleBySqrtN) != orvOk) return 1;
        if (orvgDFTInv_CToC_64fc(y.data(), y.data(), N, orvScaleBySqrtN) != orvOk) return 1;
        for (int n = 0; n < N; ++n) worst = std::max(worst, std::abs(y[n].re - n - 1));
    }
    std::printf("back %s\n", worst < 1e-12 ? "but for rounding" : "otherwise");
}
