// SPDX-License-Identifier: MIT
// The tester of kernels: calls one kernel in every way in which it may be called and compares bits.
//
//   KernelTester<float> tester;
//   tester.name = "orvgDFTFwd_CToC_8_32fc";
//   tester.call = [](const float* src, float* dst, int flag) { return ...; };
//   tester.srcCount = tester.dstCount = 16;     // reals, not complex elements
//   tester.overlap = true;
//   tester.reference = [](const float* src, float* dst, int flag) { ... };
//   EXPECT_EQ(tester.report(), "");
//
// Entry forms: aligned; every misalignment of src and dst by elements; in place; partly overlapping
// where that is promised; the variants (twin, dispatcher). Against the aligned call they agree bit
// for bit. Against the reference any NaN equals any NaN. Everything under four flags, four rounding
// modes and with denormals flushed; src is compared afterwards, and the bytes around dst; dst is
// poisoned before each call, in another way each time. Guard pages stand on both sides of both
// buffers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "support/inputs.h"

namespace orvgen::test {

template <class Real>
class KernelTester {
  public:
    using Call = std::function<std::int32_t(const Real* src, Real* dst, std::int32_t flag)>;
    using Reference = std::function<void(const Real* src, Real* dst, std::int32_t flag)>;

    std::string name;
    Call call;
    std::vector<std::pair<std::string, Call>> variants;  // other ways to the same bits
    // Sees the rounding mode of the call it is compared with. May be left out: then the entry forms
    // are compared with each other only.
    Reference reference;
    std::size_t srcCount = 0;
    std::size_t dstCount = 0;
    std::size_t srcBeyond = 0;           // reals behind src that are read along; any finite value
    std::vector<std::size_t> neverRead;  // positions of src whose value has no effect at all
    bool overlap = false;                // partial overlap is harmless
    bool raisesFlagsFreely = false;      // else ordinary data may only raise the inexact flag
    std::size_t impulses = 40;           // see makeInputs
    std::vector<Input<Real>> moreInputs;

    // What is wrong, at most a few lines; empty when all is well.
    std::vector<std::string> complaints() const;
    std::string report() const;
};

extern template class KernelTester<float>;
extern template class KernelTester<double>;

}  // namespace orvgen::test
