// SPDX-License-Identifier: MIT
#include "realdft/plans.h"

#include <algorithm>
#include <iterator>

#include "hartley.h"
#include "plan/notation.h"

namespace orvgen::hartley {

using namespace plan;

namespace {

constexpr int kForward[] = {2,  3,  4,  5,  6,  7,  8,  9,  11, 16, 17, 19, 21, 22,
                            24, 26, 29, 38, 39, 41, 47, 49, 50, 52, 57, 59, 61, 63};

// The others run the inverse real flow of their length, but for the order of the factors at 58 and
// for values that are all rounded here at 46 and 58 and that go on unrounded in both blocks alike
// at 54.
const Table& inverseRealPlans() {
    static const Table plans(
        plan::Transform::InverseReal,
        {{46, goodThomas(23, 2)}, {54, goodThomas(27, 2)}, {58, goodThomas(2, 29)}},
        &realdft::inversePlans(realdft::PackedFormat::Pack));
    return plans;
}

}  // namespace

bool runsForwardFlow(int n) { return std::ranges::count(kForward, n) != 0; }

bool hasOwnLastLayer(int n) { return n == 5 || n == 7 || n == 8 || n == 11; }

PlanPtr planOf(int n) {
    return runsForwardFlow(n) ? realdft::forwardPlans().plan(n) : inverseRealPlans().plan(n);
}

std::string notation(int n) {
    const char* way = !runsForwardFlow(n)  ? "inverse real: "
                      : hasOwnLastLayer(n) ? "forward real, last layer of its own: "
                                           : "forward real: ";
    return way + plan::notation(*planOf(n));
}

}  // namespace orvgen::hartley
