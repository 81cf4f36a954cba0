// SPDX-License-Identifier: MIT
// Every kernel gives the bits of its evaluated graph, in every way in which it may be called.
#include <gtest/gtest.h>

#include <map>

#include "kernel_list.h"
#include "kernelgen/evaluate.h"
#include "support/tester.h"

namespace {

using namespace orvgen::test;

class Bits : public testing::TestWithParam<std::size_t> {};

template <class Real>
std::string report(const ListedKernel& k) {
    const orvgen::kernelgen::Kernel kernel = k.kernel();
    std::map<std::int32_t, double> scale;
    for (const std::int32_t flag : {1, 2, 4, 8}) scale[flag] = k.scale(flag);

    const auto typed = [](const KernelCall& call) {
        return
            [call](const Real* src, Real* dst, std::int32_t flag) { return call(src, dst, flag); };
    };
    KernelTester<Real> tester;
    tester.name = k.name;
    tester.call = typed(k.call);
    tester.variants = {{"by length", typed(k.dispatch)}};
    if (k.twin) tester.variants.push_back({k.twinName, typed(k.twin)});
    tester.reference = [&](const Real* src, Real* dst, std::int32_t flag) {
        std::vector<Real> whole(src, src + k.srcCount);
        whole.resize(k.srcCount + k.srcBeyond);  // any finite value
        orvgen::kernelgen::evaluate(kernel.flow, whole.data(), dst, scale.at(flag));
    };
    tester.srcCount = k.srcCount;
    tester.dstCount = k.dstCount;
    tester.srcBeyond = k.srcBeyond;
    tester.neverRead = k.neverRead;
    tester.overlap = k.complex;
    tester.impulses = 8;
    return tester.report();
}

TEST_P(Bits, AreThoseOfTheGraph) {
    const ListedKernel& k = listedKernels()[GetParam()];
    EXPECT_EQ(k.single ? report<float>(k) : report<double>(k), "");
}

INSTANTIATE_TEST_SUITE_P(Kernels, Bits, testing::Range(std::size_t{0}, listedKernels().size()),
                         [](const auto& p) { return listedKernels()[p.param].name; });

}  // namespace
