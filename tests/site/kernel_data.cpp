// SPDX-License-Identifier: MIT
// What the explorer is told of a kernel is what the kernel is.
#include "kernel_data.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "flow_data.h"
#include "generator/operations.h"
#include "generator/registry.h"
#include "kernelgen/compile.h"
#include "plan/notation.h"
#include "plan_tree.h"

namespace orvgen::test {
namespace {

using namespace orvgen::site;

std::size_t occurrences(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

TEST(PlanTree, IsThePlanOfEveryKernel) {
    for (const KernelFamily& family : generator::allFamilies()) {
        if (kindOf(*family.info) == Kind::WalshHadamard) continue;
        for (const int length : family.info->numbers) {
            const kernelgen::Kernel kernel = family.kernel(length);
            const plan::PlanPtr plan = planOf(*family.info, length);
            EXPECT_EQ(plan->length, length);
            // In front of it Hartley kernels say which way they go.
            EXPECT_TRUE(kernel.method.ends_with(plan::notation(*plan))) << kernel.name.exported();
        }
    }
}

// Every block of a join is there: the lengths below a join's stages add up to N each.
TEST(PlanTree, NamesEveryPart) {
    const plan::PlanPtr plan = planOf(familyOf("DFTFwd_RToCCS", "64f"), 15);
    const Branch tree = branchOf(*plan);
    ASSERT_EQ(tree.parts.size(), 3U);
    EXPECT_EQ(tree.plan, "3, 5");
    EXPECT_EQ(tree.parts[0].role, "first, 5 times");
    EXPECT_EQ(tree.parts[0].what, "Direct block of 3 real points");
    EXPECT_EQ(tree.parts[1].what, "Direct block of 5 real points");
}

// Operations of a flow as the page reads them: by the letters in front of the nodes.
TEST(ExplorerFlow, HasEveryOperationOfTheKernel) {
    for (const KernelFamily& family : generator::allFamilies()) {
        for (const int length : {3, 5, 7}) {
            const kernelgen::Kernel kernel = family.kernel(length);
            SCOPED_TRACE(kernel.name.exported());
            const std::string flow = flowOf(kernel).text;
            const std::string mark = "\"nodes\":\"";
            std::istringstream nodes(flow.substr(flow.find(mark) + mark.size()));
            std::map<char, int> letters;
            for (std::string node; std::getline(nodes, node, ';');) ++letters[node[0]];
            const generator::Operations o = generator::operationsOf(kernel);
            if (o.lanes) continue;  // counted on distinct values
            const int each = o.inPairs ? 2 : 1;
            EXPECT_EQ(each * (letters['+'] + letters['-']), o.additions);
            EXPECT_EQ(each * letters['*'], o.constantProducts + o.doublings);
            EXPECT_EQ(each * letters['s'], o.scaleProducts);
            EXPECT_EQ(letters['W'] + letters['N'], o.conversions);
        }
    }
}

TEST(Assembly, ComesBackFromItsMarks) {
    for (const KernelFamily& family : generator::allFamilies()) {
        const kernelgen::Kernel kernel = family.kernel(6);
        const std::string assembly = kernelgen::compileKernel(kernel).assembly;
        std::string text = marked(assembly, kernel.name);
        EXPECT_LT(text.size(), assembly.size() * 3 / 4);
        const auto replace = [&text](const std::string& from, const std::string& to) {
            for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos;
                 at += to.size())
                text.replace(at, from.size(), to);
        };
        std::vector<Mark> list = marks();
        std::ranges::reverse(list);
        for (const Mark& mark : list) replace(mark.mark, mark.text);
        replace("&", kernel.name.stem);
        EXPECT_EQ(text, assembly);
    }
}

TEST(Row, HoldsTheFiguresOfTheHead) {
    const KernelFamily family = generator::allFamilies().front();
    const kernelgen::Kernel kernel = family.kernel(8);
    const kernelgen::CompiledKernel compiled = kernelgen::compileKernel(kernel);
    const std::string row = rowOf(kernel, 0, 8, compiled.assembly).text;
    EXPECT_EQ(occurrences(row, "," + std::to_string(compiled.figures.instructions) + ","), 1U);
    EXPECT_THROW(rowOf(kernel, 0, 8, "no head"), std::runtime_error);
}

}  // namespace
}  // namespace orvgen::test
