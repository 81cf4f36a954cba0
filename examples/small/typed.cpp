// SPDX-License-Identifier: MIT
// The C++ header: lengths and extents are checked by the compiler, half spectra know their layout.
#include <array>
#include <cmath>
#include <cstdio>
#include <orvgen.hpp>

int main() {
    std::array<double, 24> x;
    for (std::size_t n = 0; n < 24; ++n) x[n] = 3 + 2 * std::cos(2 * M_PI * 7 * n / 24);
    std::array<double, 24> stored;
    const orvgen::Perm<double, 24> X(stored);
    if (orvgen::rfft<24>(x, X, orvgen::Scale::fwdByN) != orvgen::Status::ok) return 1;
    for (std::size_t k = 0; k < X.bins(); ++k)
        if (std::abs(X.bin(k)) > 1e-9) std::printf("bin %zu: %.3f\n", k, std::abs(X.bin(k)));
    X.setBin(7, 0);  // without the cosine
    if (orvgen::irfft(X, x, orvgen::Scale::none) != orvgen::Status::ok) return 1;
    std::printf("sample 5: %.3f\n", x[5]);
}
