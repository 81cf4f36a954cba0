// SPDX-License-Identifier: MIT
// Constants: the exact values and their one rounding, compared with MPFR, which the kernel compiler
// does not use.
#include <gtest/gtest.h>

#include <set>

#include "generator/registry.h"
#include "kernelgen/real.h"
#include "support/mpfr_number.h"

namespace orvgen::test {
namespace {

using namespace orvgen::kernelgen;

// The exact value, read from its decimal digits.
void set(Mpfr& m, const Real& value) {
    const std::string digits = value.str(90, std::ios::scientific);
    ASSERT_EQ(mpfr_set_str(m.x, digits.c_str(), 10, MPFR_RNDN), 0) << digits;
}

constexpr mpfr_prec_t kBits = 320;

TEST(Constants, CosinesAndSinesAreExact) {
    Mpfr angle(kBits), expected(kBits), found(kBits);
    for (long den = 1; den <= 128; ++den) {
        for (long num = -den; num <= 2 * den; ++num) {
            mpfr_const_pi(angle.x, MPFR_RNDN);
            mpfr_mul_si(angle.x, angle.x, 2 * num, MPFR_RNDN);
            mpfr_div_si(angle.x, angle.x, den, MPFR_RNDN);
            for (const bool sine : {false, true}) {
                (sine ? mpfr_sin : mpfr_cos)(expected.x, angle.x, MPFR_RNDN);
                set(found, (sine ? sinTurn(num, den) : cosTurn(num, den)).exact().value);
                mpfr_sub(found.x, found.x, expected.x, MPFR_RNDN);
                ASSERT_LT(std::abs(mpfr_get_d(found.x, MPFR_RNDN)), 0x1p-250) << num << "/" << den;
            }
        }
    }
}

// Each constant of each flow is its exact value rounded once, but for the two that are stored as
// they are for a reason (direct.h, rader_constants.cpp).
TEST(Constants, AreRoundedOnce) {
    const std::set<double> pinned = {0.22252093395631434, 0.3004626062886657};
    std::set<std::pair<bool, Real>> seen;
    std::set<double> foundPinned;
    Mpfr exact(kBits);
    for (const KernelFamily& family : generator::allFamilies()) {
        for (const int n : family.info->numbers) {
            const Graph g = family.kernel(n).flow;
            for (const Node& node : g.nodes()) {
                if (node.op != Op::Mul) continue;
                const StoredConstant& stored = g.constant(node);
                for (const Constant& c : stored.lanes) {
                    const bool single = stored.type == Type::F32 || stored.type == Type::F32x4;
                    if (!single && pinned.contains(std::abs(c.asDouble()))) {
                        foundPinned.insert(std::abs(c.asDouble()));
                        continue;
                    }
                    const Real& value = c.exact().value;
                    if (!seen.emplace(single, value).second) continue;
                    set(exact, value);
                    const double rounded =
                        single ? static_cast<double>(mpfr_get_flt(exact.x, MPFR_RNDN))
                               : mpfr_get_d(exact.x, MPFR_RNDN);
                    const double found = single ? static_cast<double>(c.asFloat()) : c.asDouble();
                    ASSERT_EQ(found, rounded) << c.formula();
                }
            }
        }
    }
    EXPECT_GT(seen.size(), 1000U);
    EXPECT_EQ(foundPinned, pinned);
}

}  // namespace
}  // namespace orvgen::test
