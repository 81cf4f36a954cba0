// The kernels that join the inner transforms of a recursion level. Every access is of a whole
// aligned vector: the lanes run over the sequences of one group, as they do in the inner results.
#include "dct4/flows/joinstage.h"
#include "dct4/lanes.h"
#include "dct4/operations.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

namespace {

using Vector = Lanes<Real>;

ORVGEN_DCT4_INLINE Complex<Vector> rotateBy(Complex<Vector> z, const Real* entry) {
    return rotate(z, loadAligned(entry), loadAligned(entry + lanes));
}

template <int R>
[[gnu::noinline]] OrvStatus joinLoop(const Env8& node, Real* dst, const Real* src) {
    constexpr int firstVectors = R <= 8 ? 2 * R - 2 : 2 * 3 * (R / 4);
    constexpr int secondVectors = R <= 8 ? 0 : 2 * (R / 4 - 1);
    const std::ptrdiff_t stride = node.sizes.stride;
    const std::int32_t m = node.sizes.m;
    const Real* in = src;
    const Real* firstTable = node.table;
    const Real* secondTable = node.table + std::ptrdiff_t{m} * firstVectors * lanes;
    Real* up = dst;                                               // results Z(2m f + d)
    Real* down = dst + (2 * std::ptrdiff_t{m} - 1) * 2 * stride;  // Z(2m q + 2m - 1 - d)
    for (std::int32_t d = 0; d < m; ++d) {
        joinStage<R, Vector>(
            [&](auto s) ORVGEN_DCT4_INLINE_LAMBDA {
                return Complex<Vector>{loadAligned(in + s * stride),
                                       loadAligned(in + (R + s) * stride)};
            },
            [&](Complex<Vector> z) ORVGEN_DCT4_INLINE_LAMBDA {
                const Complex<Vector> rotated = rotateBy(z, firstTable);
                firstTable += 2 * lanes;
                return rotated;
            },
            [&](Complex<Vector> z, auto k) ORVGEN_DCT4_INLINE_LAMBDA {
                return rotateBy(z, secondTable + 2 * lanes * (k - 1));
            },
            [&](auto f, Complex<Vector> z) ORVGEN_DCT4_INLINE_LAMBDA {
                Real* out;
                if constexpr (f < R / 2) {
                    out = up + std::ptrdiff_t{2 * f} * m * 2 * stride;
                } else {
                    out = down + std::ptrdiff_t{2 * (R - 1 - f)} * m * 2 * stride;
                }
                storeAligned(out, z.re);
                storeAligned(out + stride, z.im);
            });
        in += 2 * R * stride;
        secondTable += secondVectors * lanes;
        up += 2 * stride;
        down -= 2 * stride;
    }
    return orvOk;
}

}  // namespace

// The inner results lie from c0 on in src, the joined ones from c1 on in dst.
extern "C" OrvStatus FAMILY(env8_compute)(const Env8* node, Real* dst, const Real* src,
                                          std::int32_t c0, std::int32_t c1) {
    switch (node->rule) {
        case 1:
            return joinLoop<2>(*node, dst + c1, src + c0);
        case 2:
            return joinLoop<4>(*node, dst + c1, src + c0);
        case 3:
            return joinLoop<8>(*node, dst + c1, src + c0);
        case 4:
            return joinLoop<16>(*node, dst + c1, src + c0);
        case 5:
            return joinLoop<32>(*node, dst + c1, src + c0);
        default:
            return orvErrPlan;
    }
}

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
