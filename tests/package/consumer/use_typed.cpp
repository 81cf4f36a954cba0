// SPDX-License-Identifier: MIT
// The C++ headers as they are installed.
#include <cstdio>
#include <orvgen/check.hpp>
#include <orvgen_batch.hpp>
#include <vector>

using namespace orvgen;

int main() {
    std::vector<double> x(64, 1), y(64);
    check(hartley(x, y, Scale::fwdByN));
    const bool one = y[0] == 1;
    check(batch::wht(batch::rows(x, 16), batch::rows(y, 16), Scale::none));
    std::printf("typed: %f %f\n", y[0], y[16]);
    return !(one && y[0] == 16 && y[16] == 16);
}
