// SPDX-License-Identifier: MIT
// Every access is of a whole aligned vector: the lanes run over the sequences of one group, as they
// do in the inner results.
#include "dct4/joins.h"

#include "dct4/flows/joinstage.h"
#include "dct4/lanes.h"

namespace orvgen::dct4 {

namespace {

template <class Real>
ORVGEN_DCT4_INLINE Complex<Lanes<Real>> rotateBy(Complex<Lanes<Real>> z, const Real* entry) {
    return rotate(z, loadAligned(entry), loadAligned(entry + lanes<Real>));
}

template <int R, class Real>
[[gnu::noinline]] OrvStatus joinLoop(const JoinWalk<Real>& walk) {
    using Vector = Lanes<Real>;
    const std::ptrdiff_t source = walk.sourceStride;
    const std::ptrdiff_t result = walk.resultStride;
    const std::ptrdiff_t component = walk.componentStride;
    const Real* in = walk.src;
    const Real* firstTable = walk.first;
    const Real* secondTable = walk.second;
    Real* up = walk.up;
    Real* down = walk.down;
    for (std::int32_t i = 0; i < walk.count; ++i) {
        const Real* entry = firstTable;
        joinStage<R, Vector>(
            [&](auto s) ORVGEN_DCT4_INLINE_LAMBDA {
                return Complex<Vector>{loadAligned(in + s * source),
                                       loadAligned(in + (R + s) * source)};
            },
            [&](Complex<Vector> z) ORVGEN_DCT4_INLINE_LAMBDA {
                const Complex<Vector> rotated = rotateBy(z, entry);
                entry += 2 * lanes<Real>;
                return rotated;
            },
            [&](Complex<Vector> z, auto k) ORVGEN_DCT4_INLINE_LAMBDA {
                return rotateBy(z, secondTable + 2 * lanes<Real> * (k - 1));
            },
            [&](auto f, Complex<Vector> z) ORVGEN_DCT4_INLINE_LAMBDA {
                Real* out;
                if constexpr (f < R / 2) {
                    out = up + f * result;
                } else {
                    out = down + (R - 1 - f) * result;
                }
                storeAligned(out, z.re);
                storeAligned(out + component, z.im);
            });
        in += walk.sourceStep;
        firstTable += walk.firstStep;
        secondTable += walk.secondStep;
        up += walk.upStep;
        down += walk.downStep;
    }
    return orvOk;
}

}  // namespace

template <class Real>
OrvStatus joinKernel(std::int32_t rule, const JoinWalk<Real>& walk) {
    switch (rule) {
        case 1:
            return joinLoop<2>(walk);
        case 2:
            return joinLoop<4>(walk);
        case 3:
            return joinLoop<8>(walk);
        case 4:
            return joinLoop<16>(walk);
        case 5:
            return joinLoop<32>(walk);
        default:
            return orvErrPlan;
    }
}

template OrvStatus joinKernel(std::int32_t rule, const JoinWalk<Orv32f>& walk);
template OrvStatus joinKernel(std::int32_t rule, const JoinWalk<Orv64f>& walk);

}  // namespace orvgen::dct4
