// SPDX-License-Identifier: MIT
#include "dct4/oddfrequency.h"

#include "dct4/flows/oddfrequency.h"
#include "dct4/lanes.h"

namespace orvgen::dct4 {

namespace {

template <int n, class Real>
[[gnu::noinline]] OrvStatus oddFrequencyLoop(const SequenceWalk<Real>& walk) {
    using Vector = Lanes<Real>;
    const std::ptrdiff_t stride = walk.sampleStride;
    const std::ptrdiff_t component = walk.componentStride;
    const Real* up = walk.src + walk.a;
    const Real* down = walk.src + walk.a + walk.b;
    Real* out = walk.dst + walk.c;
    for (std::int32_t i = 0; i < walk.count; ++i) {
        oddFrequency<n, Vector>(
            [&](auto t) ORVGEN_DCT4_INLINE_LAMBDA {
                if constexpr (t < n / 2) {
                    return gather(up + t * stride, 1);
                } else {
                    return gather(down - t * stride, -1);
                }
            },
            [&](auto c, Complex<Vector> z) ORVGEN_DCT4_INLINE_LAMBDA {
                storeAligned(out + 2 * c * component, z.re);
                storeAligned(out + (2 * c + 1) * component, z.im);
            });
        up += walk.sourceStep;
        down -= walk.sourceStep;
        out += walk.dstStep;
    }
    return orvOk;
}

}  // namespace

template <class Real>
OrvStatus oddFrequencyKernel(std::int32_t rule, const SequenceWalk<Real>& walk) {
    switch (rule) {
        case 1:
            return oddFrequencyLoop<2>(walk);
        case 2:
            return oddFrequencyLoop<4>(walk);
        case 3:
            return oddFrequencyLoop<8>(walk);
        case 4:
            return oddFrequencyLoop<16>(walk);
        case 5:
            return oddFrequencyLoop<32>(walk);
        case 6:
            return oddFrequencyLoop<64>(walk);
        default:
            return orvErrPlan;
    }
}

template OrvStatus oddFrequencyKernel(std::int32_t rule, const SequenceWalk<Orv32f>& walk);
template OrvStatus oddFrequencyKernel(std::int32_t rule, const SequenceWalk<Orv64f>& walk);

}  // namespace orvgen::dct4
