// SPDX-License-Identifier: MIT
// Batches in C++: the columns of a matrix are transformed, then its rows, by views on one array.
#include <complex>
#include <cstdio>
#include <orvgen_batch.hpp>
#include <vector>

using namespace orvgen;

int main() {
    std::vector<std::complex<float>> a(48 * 32);  // 48 rows, 32 columns
    for (int n = 0; n < 48; ++n)
        for (int m = 0; m < 32; ++m)
            a[32 * n + m] = std::polar(1.0F, 6.2831853F * (5 * n / 48.0F + 3 * m / 32.0F));
    const auto rows = batch::rows(a, 32), columns = batch::columns(a, 32);
    Status status = batch::fft(columns, columns, Scale::fwdByN);
    if (status == Status::ok) status = batch::fft(rows, rows, Scale::fwdByN);
    if (status != Status::ok) return std::puts(statusText(status)), 1;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (std::abs(a[i]) > 1e-3F) std::printf("row %zu, column %zu\n", i / 32, i % 32);
}
