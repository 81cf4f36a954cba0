// SPDX-License-Identifier: MIT
// The second build does the operations of the first, lane for lane: as many sums, products and
// conversions, whatever vectors they are done in.
#include <gtest/gtest.h>

#include <ostream>

#include "kernels/kernel_list.h"
#include "live_lanes.h"
#include "machine/library.h"
#include "orvgen.h"

namespace orvgen::test {

static std::ostream& operator<<(std::ostream& out, const LiveCounts& c) {
    return out << "sums " << c.additions32 << " + " << c.additions64 << ", products "
               << c.multiplications32 << " + " << c.multiplications64 << ", widenings "
               << c.widenings << ", narrowings " << c.narrowings;
}

namespace {

const MachineCode& secondBuild() {
    static const MachineCode code(secondBuildFile(ORVGEN_SECOND_BUILD));
    return code;
}

// No sum at all would be equal, too.
LiveCounts countsIn(const MachineCode& code, const std::string& function) {
    const Trace trace = runIntegers(code, function, {});
    EXPECT_EQ(trace.complaints, std::vector<std::string>()) << function;
    const LiveCounts counts = liveCounts(trace);
    EXPECT_GT(counts.additions32 + counts.additions64, 0) << function;
    return counts;
}

TEST(SecondCounts, AreThoseOfTheFirstBuild) {
    for (const ListedKernel& k : listedKernels()) {
        const LiveCounts first = countsIn(library(), k.name);
        EXPECT_EQ(countsIn(secondBuild(), k.name), first) << k.name;
    }
}

#define ORDER(NAME, K, T)                                                            \
    {                                                                                \
        const std::string name = "orvg" #NAME "_" #K "_" #T;                         \
        EXPECT_EQ(countsIn(secondBuild(), name), countsIn(library(), name)) << name; \
    }
#define ORDERS(NAME, T, LIST) \
    TEST(SecondCounts, OfOrdersAreThoseOfTheFirstBuild_##T) { LIST(ORDER, NAME, T) }
ORVGEN_ORDER_FAMILIES(ORDERS)

}  // namespace
}  // namespace orvgen::test
