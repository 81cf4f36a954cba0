// SPDX-License-Identifier: MIT
// The order of stages decides the rounding. The composite lengths without a factor from 13 on are
// computed here a second time, from the tables alone and in plain numbers: the joins as they are
// defined, and the butterflies as formulas. The flows give the same bits.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <sstream>

#include "dft/families.h"
#include "kernelgen/evaluate.h"
#include "support/data_table.h"
#include "support/written_blocks.h"

namespace orvgen::test {
namespace {

using namespace written;
using written::Numbers;

// The stages of a row: radices, and whether twiddles stand before each but the first.
struct Stages {
    std::vector<std::size_t> radices;
    std::vector<bool> twiddled;

    std::size_t length() const {
        std::size_t n = 1;
        for (const std::size_t r : radices) n *= r;
        return n;
    }
    Stages part(std::size_t from, std::size_t to) const {
        Stages s;
        for (std::size_t i = from; i < to; ++i) {
            s.radices.push_back(radices[i]);
            s.twiddled.push_back(twiddled[i]);
        }
        return s;
    }
};

Stages parse(const std::string& text) {
    Stages s;
    std::istringstream words(text);
    bool twiddled = false;
    for (std::string word; words >> word;) {
        if (word == "T") {
            twiddled = true;
            continue;
        }
        s.radices.push_back(std::stoul(word));
        s.twiddled.push_back(twiddled);
        twiddled = false;
    }
    return s;
}

// `first` is the length of the first factor. Column c begins with x[step c].
Numbers transform(const Stages& s, std::size_t first, std::size_t step, const Numbers& x) {
    if (s.radices.size() == 1) return butterfly(Sign::Forward, x);
    std::size_t split = 1;
    while (s.part(0, split).length() != first) ++split;
    const Stages left = s.part(0, split), right = s.part(split, s.radices.size());
    const auto runLeft = [&](const Numbers& z) { return transform(left, left.radices[0], 1, z); };
    const auto runRight = [&](const Numbers& z) {
        return transform(right, right.radices[0], 1, z);
    };
    const std::size_t R = left.length(), M = right.length(), N = R * M;
    if (!s.twiddled[split]) return goodThomas(R, M, x, runLeft, runRight);
    std::vector<Numbers> v;
    for (std::size_t c = 0; c < M; ++c) {
        Numbers z;
        for (std::size_t t = 0; t < R; ++t) z.push_back(x[(step * c + M * t) % N]);
        v.push_back(runLeft(z));
        for (std::size_t k = 0; k < R; ++k)
            v[c][k] = rotated(root(Sign::Forward, step * c * k, N), v[c][k]);
    }
    Numbers y(N);
    for (std::size_t k = 0; k < R; ++k) {
        Numbers z;
        for (const Numbers& column : v) z.push_back(column[k]);
        const Numbers out = runRight(z);
        for (std::size_t q = 0; q < M; ++q) y[k + R * q] = out[step * q % M];
    }
    return y;
}

TEST(ComplexBinary32Stages, RunInTheOrderOfTheTable) {
    const auto forward = dft::complexSingleFamilies()[0];
    int compared = 0;
    for (const auto& row : dataTable("complex_f32_composite").rows()) {
        const auto n = static_cast<std::size_t>(row.integer("length"));
        const Stages stages = parse(row.text("stages"));
        if (stages.radices.size() < 2 || *std::ranges::max_element(stages.radices) > 11) continue;
        // The first factor of the top join; of three coprime ones the first two. At 18, 50 and 54
        // the two-point stage stands inside the odd part's: even columns.
        const std::string top = row.text("top");
        std::size_t first = std::stoul(top.substr(top.find(' ') + 1));
        if (n == 30 || n == 42) first *= 2;
        const bool even = n == 18 || n == 50 || n == 54;
        if (even) first = n == 50 ? 10 : n / 3;
        const auto kernel = forward.kernel(static_cast<int>(n));
        std::mt19937 random(static_cast<unsigned>(n));
        std::uniform_real_distribution<float> uniform(-1, 1);
        for (int i = 0; i < 50; ++i) {
            Numbers x(n), y(n);
            for (Number& z : x) z = {uniform(random), uniform(random)};
            kernelgen::evaluate(kernel.flow, x.data(), y.data(), 1.0);
            const Numbers expected = transform(stages, first, even ? 2 : 1, x);
            EXPECT_EQ(std::memcmp(y.data(), expected.data(), n * sizeof(Number)), 0) << n;
        }
        ++compared;
    }
    EXPECT_EQ(compared, 34);
}

}  // namespace
}  // namespace orvgen::test
