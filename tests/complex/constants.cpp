// SPDX-License-Identifier: MIT
// Constants that a complex kernel must hold, and must not, read back from the library.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <numbers>
#include <numeric>

#include "complex/complex_calls.h"
#include "machine/library.h"
#include "support/data_table.h"

namespace orvgen::test {
namespace {

using Four = std::array<float, 4>;

// The vectors of four that a call reads from the library's constants, alone or in pairs.
std::vector<Four> vectorsOf(const std::string& function) {
    std::vector<Four> list;
    for (const Step& s : traceOf(function).steps) {
        if (!s.access || s.access->region != Region::constants) continue;
        for (int at = 0; at + 16 <= s.access->size; at += 16) {
            const auto bytes =
                library().image().bytes(static_cast<std::uint64_t>(s.access->offset + at), 16);
            Four v{};
            std::memcpy(v.data(), bytes.data(), 16);
            list.push_back(v);
        }
    }
    return list;
}

bool holds(const std::vector<Four>& list, const std::vector<double>& lanes) {
    Four wanted{};
    for (std::size_t i = 0; i < 4; ++i) wanted[i] = static_cast<float>(lanes[i]);
    for (const Four& v : list) {
        if (v == wanted) return true;
    }
    return false;
}

TEST(ComplexConstants, LengthEightHoldsItsTwiddles) {
    for (const DataRow& row : dataTable("length8_twiddles").rows()) {
        const std::string name = complexName(
            row.text("direction") == "inverse" ? Direction::Inverse : Direction::Forward, 8,
            Precision::Single);
        const std::vector<Four> list = vectorsOf(name);
        EXPECT_TRUE(holds(list, row.numbers("real"))) << name;
        EXPECT_TRUE(holds(list, row.numbers("imaginary"))) << name;
    }
}

// Each part of B[k] stands in a lane, with its sign or without.
TEST(ComplexConstants, LengthSevenHoldsTheSpectrumOfItsRoots) {
    const std::vector<Four> list = vectorsOf(complexName(Direction::Forward, 7, Precision::Single));
    const auto holdsPart = [&](double part) {
        for (const Four& v : list)
            for (const float lane : v)
                if (std::abs(std::abs(static_cast<double>(lane)) - std::abs(part)) < 6e-8)
                    return true;
        return false;
    };
    for (const DataRow& row : dataTable("rader7_constants").rows()) {
        EXPECT_TRUE(holdsPart(row.number("re"))) << row.integer("k");
        EXPECT_TRUE(holdsPart(row.number("im"))) << row.integer("k");
    }
}

// The real parts of twiddles of denominator 60 stand in vectors of length 60; in length 63 every
// vector holds one constant in all lanes, as twiddles of its stage of nine are of denominator 9.
TEST(ComplexConstants, HoldTwiddlesOfSixtyAndNoneOfSixtyThree) {
    const auto denominators = [](const std::string& name, int n) {
        int found = 0;
        for (const Four& v : vectorsOf(name)) {
            for (const float lane : v) {
                for (int k = 1; k < n; ++k) {
                    if (std::gcd(k, n) != 1) continue;
                    const double angle = 2 * std::numbers::pi * k / n;
                    found += lane == static_cast<float>(std::cos(angle));
                }
            }
        }
        return found;
    };
    for (const Direction direction : kBothDirections) {
        const std::string sixty = complexName(direction, 60, Precision::Single);
        const std::string sixtyThree = complexName(direction, 63, Precision::Single);
        EXPECT_GT(denominators(sixty, 60), 0);
        EXPECT_EQ(denominators(sixtyThree, 63), 0);
    }
}

}  // namespace
}  // namespace orvgen::test
