// SPDX-License-Identifier: MIT
// No kernel becomes longer, spills more, needs more of the stack or takes more cycles by the model
// than it did when its figures were kept.
#include "figures.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "support/data_table.h"

namespace orvgen::test {
namespace {

TEST(KernelFigures, AreNoWorseThanThoseKept) {
    std::ostringstream worse;
    for (const DataRow& kept : dataTable("kernel_figures").rows()) {
        const std::string& name = kept.text("name");
        const KernelFigures f = figuresOf(name);
        const auto compare = [&](const char* figure, double now) {
            const double before = kept.number(figure);
            if (now > before)
                worse << name << ": " << figure << " " << before << " -> " << now << "\n";
        };
        compare("instructions", f.instructions);
        compare("spills", f.spills);
        compare("frame", f.frame);
        compare("cycles", f.cycles);
    }
    EXPECT_EQ(worse.str(), "") << "where this is the price of something better: ./dev figures";
}

TEST(KernelFigures, AreKeptOfEveryKernel) {
    std::multiset<std::string> kept, written;
    for (const DataRow& row : dataTable("kernel_figures").rows()) kept.insert(row.text("name"));
    for (const std::string& name : kernelsWithFigures()) written.insert(name);
    EXPECT_EQ(kept, written);
}

}  // namespace
}  // namespace orvgen::test
