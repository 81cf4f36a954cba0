// SPDX-License-Identifier: MIT
// The ways in which the arrays of a batch are laid out in the tests.
#pragma once

#include "batch/comparison.h"

namespace orvgen::test::batch {

// All layouts for `most` transforms with so many elements in src and dst.
template <class R>
std::vector<Layout> layoutsOf(const Family<R>& family, int number, int most) {
    const std::ptrdiff_t m = family.src.elements(family.points(number));
    const std::ptrdiff_t n = family.dst.elements(family.points(number));
    const std::ptrdiff_t T = most;
    std::vector<Layout> layouts = {
        {"rows", 1, m, 1, n},
        {"columns", T, 1, T, 1},
        {"rows with gaps", 1, m + 3, 1, n + 5},
        {"columns of a wider matrix", T + 5, 1, T + 2, 1},
        {"rows to columns", 1, m, T + 1, 1},
        {"columns to rows", T, 1, 1, n},
        {"every third to every second", 3, 3 * m + 2, 2, 2 * n + 1},
        {"wide strides", 3 * T + 1, 3, 2 * T, 2},
        {"rows backwards", -1, m, -1, n},
        {"rows from the last", 1, -m, 1, -n},
        {"columns backwards", -T, -1, -(T + 1), -1},
        {"one transform for all", 1, 0, 1, n},
        {"one element for all of a transform", 0, 1, T, 1},
        {"one element", 0, 0, 1, n + 1},
    };
    const auto addInPlace = [&](Layout layout) {
        layout.inPlace = true;
        layouts.push_back(layout);
    };
    if (family.src == family.dst) {
        addInPlace({"rows in place", 1, n, 1, n});
        addInPlace({"columns in place", T, 1, T, 1});
        addInPlace({"rows with gaps in place", 1, n + 1, 1, n + 1});
        addInPlace({"strided in place", -2, 2 * n + 1, -2, 2 * n + 1});
    } else if (family.src.bins != family.dst.bins) {
        // The same bytes: a bin is two real numbers.
        for (const std::ptrdiff_t bins : {std::max(m, n) / 2 + 1, std::max(m, n) / 2 + 3}) {
            const std::ptrdiff_t s = family.src.bins ? bins : 2 * bins;
            addInPlace({"CCS in place", 1, s, 1, 3 * bins - s});
        }
    }
    return layouts;
}

// The counts up to a few more than two blocks of `lanes` transforms, or those around one.
inline std::vector<int> allCounts(int lanes) {
    std::vector<int> counts;
    for (int count = 0; count <= 2 * lanes + 3; ++count) counts.push_back(count);
    return counts;
}
inline std::vector<int> someCounts(int lanes) {
    std::vector<int> counts;
    for (const int count : {0, 1, lanes - 1, lanes, lanes + 1})
        if (counts.empty() || count > counts.back()) counts.push_back(count);
    return counts;
}

}  // namespace orvgen::test::batch
