// SPDX-License-Identifier: MIT
// Additions, multiplications, conversions and lane swaps as the machine code executes them, against
// the tables and against the flows that the kernels were compiled from.
#include <gtest/gtest.h>

#include "kernelgen/count.h"
#include "kernels/kernel_list.h"
#include "machine/library.h"
#include "support/count_check.h"
#include "support/data_table.h"

namespace orvgen::test {
namespace {

// The table of a family of real transforms or of the complex binary64 one.
std::string tableOf(const ListedKernel& k) {
    if (k.info->transform == Transform::Hartley) return "hartley";
    if (k.complex) return k.single ? "" : "complex_f64";
    return k.info->direction == Direction::Inverse ? "real_inverse" : "real_forward";
}

struct Real {
    long additions = 0;
    long multiplications = 0;
};

// Real operations: a packed one on pairs is two.
Real executed(const BodyCounts& c) {
    const auto count = [&](Kind kind) {
        return c.count(kind, Lanes::scalar32) + c.count(kind, Lanes::scalar64) +
               2 * c.count(kind, Lanes::packed64);
    };
    return {count(Kind::add), count(Kind::multiply)};
}

TEST(MachineCounts, OfRealAndDoubleKernelsAreThoseOfTheTables) {
    std::map<std::string, CountCheck> checks;  // one for each family of kernels
    for (const ListedKernel& k : listedKernels()) {
        const std::string table = tableOf(k);
        if (table.empty()) continue;
        CountCheck& check = checks.try_emplace(k.family, table).first->second;
        const DataRow& row = dataTable(table).row("length", k.length);
        const Real found = executed(BodyCounts(traceOf(k.name)));
        for (const auto& [column, value] :
             {std::pair<const char*, long>{"additions", found.additions},
              {"multiplications", found.multiplications}}) {
            check.compare(k.length, column, row.integer(column), value);
        }
    }
    for (const auto& [family, check] : checks) {
        for (const std::string& c : check.countComplaints({"additions", "multiplications"})) {
            ADD_FAILURE() << family << ": " << c;
        }
    }
}

TEST(MachineCounts, OfConversionsAreThoseOfTheTables) {
    for (const ListedKernel& k : listedKernels()) {
        if (k.complex) continue;
        SCOPED_TRACE(k.name);
        const BodyCounts c(traceOf(k.name));
        const long expected =
            k.single ? dataTable(tableOf(k)).row("length", k.length).integer("conversions") : 0;
        // The widened scale is stored beside the binary32 one, so that it is no conversion.
        EXPECT_EQ(c.mnemonic("cvtss2sd") + c.mnemonic("cvtsd2ss"), expected);
        EXPECT_EQ(c.mnemonic("cvtsd2ss"), kernelgen::countOperations(k.kernel().flow).narrowings);
    }
}

TEST(MachineCounts, OfLaneSwapsAreThoseOfTheTable) {
    for (const ListedKernel& k : listedKernels()) {
        if (!k.complex || k.single) continue;
        SCOPED_TRACE(k.name);
        for (const int off : {0, 8}) {
            const Trace trace = traceOf(k.name, off);
            long swaps = 0, flips = 0, others = 0;
            for (const Step& s : trace.steps) {
                const Instruction& in = *s.instruction;
                const bool swap = in.mnemonic == "shufpd" && in.operands[2].value == 1 &&
                                  in.operands[0].number == in.operands[1].number;
                if (swap) ++swaps;
                if (in.kind == Kind::shuffle && !swap) ++others;
                if (in.kind == Kind::convert) ++others;
                if (in.kind == Kind::logic && !in.clears) ++flips;
            }
            EXPECT_EQ(swaps, dataTable("complex_f64").row("length", k.length).integer("swaps"));
            EXPECT_LE(flips, swaps);
            EXPECT_EQ(others, 0);
        }
    }
}

// Compiling changes no count.
TEST(MachineCounts, OfEveryKernelAreThoseOfItsFlow) {
    for (const ListedKernel& k : listedKernels()) {
        SCOPED_TRACE(k.name);
        const BodyCounts c(traceOf(k.name));
        const kernelgen::Kernel kernel = k.kernel();
        if (k.complex && k.single && k.length >= 6) {
            const kernelgen::LaneCounts flow = kernelgen::countLanes(kernel.flow);
            EXPECT_EQ(4 * c.count(Kind::add, Lanes::packed32), flow.executedAdditions);
            // Beside them one multiplication by the scale for each vector of results.
            const long scale =
                c.count(Kind::multiply, Lanes::packed32) - flow.executedMultiplications / 4;
            EXPECT_EQ(flow.executedMultiplications % 4, 0);
            EXPECT_GE(2 * scale, k.length);
            EXPECT_LE(scale, k.length);
        } else {
            const kernelgen::Counts flow = kernelgen::countOperations(kernel.flow);
            const int pair = k.complex && !k.single ? 2 : 1;
            EXPECT_EQ(executed(c).additions, pair * flow.additions);
            EXPECT_EQ(executed(c).multiplications, pair * flow.multiplications());
        }
    }
}

// The executed columns of the Rader kernels: packed additions are four real ones each. (The table's
// multiplications count the scale by live results, two for each element.)
TEST(MachineCounts, OfRaderKernelsAreThoseOfTheTable) {
    for (const Direction direction : {Direction::Forward, Direction::Inverse}) {
        CountCheck check("complex_f32_rader");
        long compared = 0;
        for (const ListedKernel& k : listedKernels()) {
            const DataRow* row = dataTable("complex_f32_rader").find("length", k.length);
            if (!k.complex || !k.single || !row || k.info->direction != direction) continue;
            const BodyCounts c(traceOf(k.name));
            check.compare(k.length, "executed_additions", row->integer("executed_additions"),
                          4 * c.count(Kind::add, Lanes::packed32));
            ++compared;
        }
        if (compared == 0) continue;
        for (const std::string& s : check.countComplaints({"executed_additions"})) {
            ADD_FAILURE() << (direction == Direction::Forward ? "forward: " : "inverse: ") << s;
        }
    }
}

}  // namespace
}  // namespace orvgen::test
