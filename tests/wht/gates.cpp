// SPDX-License-Identifier: MIT
// The machine code of the kernels, read back: gates, and that bodies keep to their buffers.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/shape.h"
#include "wht/kernel.h"

namespace orvgen::test::wht {
namespace {

class Gates : public testing::TestWithParam<Kernel> {};

TEST_P(Gates, LeadToTheirBodies) {
    const Kernel& k = GetParam();
    KernelFacts facts;
    facts.name = k.name();
    facts.twin = k.hasTwin() ? k.twin() : "";
    facts.twoBodies = k.kind() == "two_bodies";
    facts.pointerStep = static_cast<int>(k.size());
    facts.takesBuffer = k.passes();
    ShapeRules& r = facts.rules;
    r.srcBytes = r.dstBytes = k.points() * k.size();
    r.bufferBytes = k.bufferBytes();
    r.straight = !k.passes();
    r.scalar = k.scalar();
    if (k.scalar()) r.elementBytes = static_cast<int>(k.size());
    r.movddup = !k.single && !k.scalar();
    r.allReadsFirst = true;
    facts.twinRules = r;
    if (!k.scalar()) {
        facts.rules.elementBytes = 16;
        facts.twinRules.elementBytes = k.single ? 16 : 8;
    }
    // The second build takes buffers of any alignment in one body, in vectors of both sizes.
    if (isSecondBuild()) {
        r.threeOperands = true;
        facts.twin.clear();
        facts.twoBodies = r.scalar = false;
        r.movddup = true;
        r.elementBytes = 0;
    }
    for (const std::string& complaint : checkKernel(library(), facts)) ADD_FAILURE() << complaint;
    EXPECT_EQ(library().has(k.twin()), k.hasTwin());
    // The calls: of the allocator, where there is a buffer.
    for (const std::string& name : k.functions()) {
        const auto& code = library().function(name).instructions;
        EXPECT_EQ(std::count_if(code.begin(), code.end(),
                                [](const Instruction& i) { return i.kind == Kind::call; }),
                  k.passes() ? 2 : 0);
    }
}

INSTANTIATE_TEST_SUITE_P(Wht, Gates, testing::ValuesIn(allKernels()),
                         [](const auto& p) { return p.param.name(); });

}  // namespace
}  // namespace orvgen::test::wht
