// SPDX-License-Identifier: MIT
// The forward real transform: 24 samples give the bins 0 to 12, as pairs of real and imaginary part
// (CCS).
#include <orvgen.h>

#include <array>
#include <cmath>
#include <complex>
#include <cstdio>
#include <numbers>

int main() {
    std::array<Orv64f, 24> x;
    for (int n = 0; n < 24; ++n) x[n] = 3 + 2 * std::cos(2 * std::numbers::pi * 7 * n / 24);
    std::array<std::complex<Orv64f>, 13> bins;
    if (orvgDFTFwd_RToCCS_24_64f(x.data(), reinterpret_cast<Orv64f*>(bins.data()),
                                 orvScaleFwdByN) != orvOk)
        return 1;
    for (int k = 0; k <= 12; ++k)
        if (std::abs(bins[k]) > 1e-9) std::printf("bin %d: %.3f\n", k, std::abs(bins[k]));
}
