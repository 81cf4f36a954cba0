// SPDX-License-Identifier: MIT
// Batches that are run again and again, by several threads or on a stack that is looked at.
#pragma once

#include <gtest/gtest.h>

#include <vector>

#include "batch/comparison.h"

namespace orvgen::test::batch {

// One batch with its results, which every repetition must find again: rows, their elements `stride`
// apart.
template <class R>
struct Case {
    const Family<R>* family;
    int number;
    std::ptrdiff_t stride;
    std::vector<R> src[2], expected[2];
    static constexpr std::size_t count = 21;

    std::size_t reals(const Side& side) const {
        return static_cast<std::size_t>(side.elements(family->points(number)) * side.width *
                                        stride);
    }
    OrvStatus run(std::vector<R> (&dst)[2]) const {
        const Side &from = family->src, &to = family->dst;
        const int points = family->points(number);
        return family->batch(
            {{src[0].data(), src[1].data()}, stride, from.elements(points) * stride},
            {{dst[0].data(), dst[1].data()}, stride, to.elements(points) * stride}, number, count,
            orvScaleBySqrtN);
    }
    Case(const Family<R>& f, int n, std::ptrdiff_t s = 1) : family(&f), number(n), stride(s) {
        for (int p = 0; p < f.src.planes; ++p)
            src[p] = draw<R>(Data::Ordinary, count * reals(f.src), static_cast<unsigned>(n + p));
        for (int p = 0; p < f.dst.planes; ++p) expected[p].resize(count * reals(f.dst));
        EXPECT_EQ(run(expected), orvOk) << f.name;
    }
    bool repeats() const {
        std::vector<R> found[2];
        for (int p = 0; p < 2; ++p) found[p].resize(expected[p].size());
        return run(found) == orvOk && found[0] == expected[0] && found[1] == expected[1];
    }
};

}  // namespace orvgen::test::batch
