// SPDX-License-Identifier: MIT
// The machine code of every kernel, read back: gates, straight-line bodies, the instruction set,
// every access inside its buffer, and the figures that are promised.
#include "support/shape.h"

#include <gtest/gtest.h>

#include <set>

#include "kernel_list.h"
#include "support/data_table.h"
#include "support/library_file.h"

namespace {

using namespace orvgen::test;

const MachineCode& library() {
    static const MachineCode code(libraryFile());
    return code;
}

// The frame of a real kernel is at most this large; up to length 8 there is none.
std::int64_t realFrameBytes(int length) { return length <= 8 ? 0 : 696; }

KernelFacts factsOf(const ListedKernel& k) {
    KernelFacts facts;
    facts.name = k.name;
    facts.twin = k.twin ? k.twinName : "";
    facts.twoBodies = k.info->alignmentOf(k.length) == orvgen::Alignment::TwoBodies;
    facts.pointerStep = k.realBytes();
    ShapeRules& r = facts.rules;
    const int size = k.realBytes();
    r.srcBytes = static_cast<std::int64_t>(k.srcCount) * size;
    r.dstBytes = static_cast<std::int64_t>(k.dstCount) * size;
    r.srcBeyond = static_cast<std::int64_t>(k.srcBeyond) * size;
    for (const std::size_t i : k.neverRead) {
        const auto from = static_cast<std::int64_t>(i) * size;
        r.neverRead.emplace_back(from, from + size);
    }
    // Real data, and the smallest complex lengths in binary32, are scalar code.
    r.scalar = !k.complex || (k.single && k.length <= 5);
    if (r.scalar) r.elementBytes = size;
    r.allReadsFirst = k.complex;
    if (!k.complex) r.frameLimit = realFrameBytes(k.length);
    // The second build takes buffers of any alignment in one body, which packs scalar code and has
    // vectors of both sizes.
    if (isSecondBuild()) {
        facts.twin.clear();
        facts.twoBodies = r.scalar = false;
        r.threeOperands = true;
        r.elementBytes = 0;
        r.frameLimit = -1;
        return facts;
    }
    facts.twinRules = r;
    // A twin of binary64 moves data as halves.
    if (k.complex && !k.single) facts.twinRules.elementBytes = 8;
    return facts;
}

class Shape : public testing::TestWithParam<std::size_t> {};

TEST_P(Shape, IsAsPromised) {
    const ListedKernel& k = listedKernels()[GetParam()];
    for (const std::string& complaint : checkKernel(library(), factsOf(k)))
        ADD_FAILURE() << complaint;
}

INSTANTIATE_TEST_SUITE_P(Kernels, Shape, testing::Range(std::size_t{0}, listedKernels().size()),
                         [](const auto& p) { return listedKernels()[p.param].name; });

}  // namespace
