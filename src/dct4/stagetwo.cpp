// SPDX-License-Identifier: MIT
#include "dct4/stagetwo.h"

#include "dct4/flows/stagetwo.h"
#include "dct4/lanes.h"

namespace orvgen::dct4 {

namespace {

// Result number tau = u for u >= 0 and 2r + u below belongs to c + n tau; what lies beyond the end
// is mirrored at 2N - 1.
template <int r, class Real>
[[gnu::noinline]] OrvStatus stageTwoLoop(const Env4<Real>& node, Real* dst, const Real* src) {
    using Vector = Lanes<Real>;
    const std::ptrdiff_t n = node.n;
    const Real* table = node.table;
    const Real* block = src;
    Real* up = dst;
    Real* down = dst + node.mirror;
    for (std::int32_t i = 0; i < node.groups; ++i) {
        stageTwo<r, Vector>(
            [&](auto p) ORVGEN_DCT4_INLINE_LAMBDA {
                const Complex<Vector> z{gather(block + p, 2 * r), gather(block + r + p, 2 * r)};
                const Vector c = loadAligned(table), s = loadAligned(table + lanes<Real>);
                table += 2 * lanes<Real>;
                return rotate(z, c, s);
            },
            [&](auto u, Vector y) ORVGEN_DCT4_INLINE_LAMBDA {
                if constexpr (u >= 0) {
                    scatter(up + u * n, 1, y);
                } else {
                    scatter(down - (2 * r + u) * n, -1, y);
                }
            });
        block += lanes<Real> * 2 * r;
        up += lanes<Real>;
        down -= lanes<Real>;
    }
    return orvOk;
}

}  // namespace

template <class Real>
OrvStatus stageTwoKernel(const Env4<Real>& node, Real* dst, const Real* src) {
    switch (node.rule) {
        case 1:
            return stageTwoLoop<1>(node, dst, src);
        case 2:
            return stageTwoLoop<2>(node, dst, src);
        case 3:
            return stageTwoLoop<4>(node, dst, src);
        case 4:
            return stageTwoLoop<8>(node, dst, src);
        case 5:
            return stageTwoLoop<16>(node, dst, src);
        case 6:
            return stageTwoLoop<32>(node, dst, src);
        default:
            return orvErrPlan;
    }
}

template OrvStatus stageTwoKernel(const Env4<Orv32f>& node, Orv32f* dst, const Orv32f* src);
template OrvStatus stageTwoKernel(const Env4<Orv64f>& node, Orv64f* dst, const Orv64f* src);

}  // namespace orvgen::dct4
