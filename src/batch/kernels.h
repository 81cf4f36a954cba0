// SPDX-License-Identifier: MIT
// The block kernels that the kernel compiler makes, by kind and length. Included by the file of
// each target, in its namespace; ORVGEN_BATCH_TARGET is the target's name in those of the kernels.

#define ORVGEN_JOIN(NAME, N, T, TARGET) owngBatch##NAME##_##N##_##T##_##TARGET
#define ORVGEN_KERNEL(NAME, N, T, TARGET) ORVGEN_JOIN(NAME, N, T, TARGET)

#define DECLARE_32(NAME, N, T) \
    extern "C" BlockKernel<float> ORVGEN_KERNEL(NAME, N, T, ORVGEN_BATCH_TARGET);
#define DECLARE_64(NAME, N, T) \
    extern "C" BlockKernel<double> ORVGEN_KERNEL(NAME, N, T, ORVGEN_BATCH_TARGET);
#define ADDRESS_OF(NAME, N, T) ORVGEN_KERNEL(NAME, N, T, ORVGEN_BATCH_TARGET)
#define ADDRESS(NAME, N, T) ADDRESS_OF(NAME, N, T),

ORVGEN_LENGTHS(DECLARE_32, DFTFwd_CToC, 32fc)
ORVGEN_LENGTHS(DECLARE_32, DFTInv_CToC, 32fc)
ORVGEN_LENGTHS(DECLARE_32, DFTFwd_RToCCS, 32f)
ORVGEN_LENGTHS(DECLARE_32, DFTInv_CCSToR, 32f)
ORVGEN_LENGTHS(DECLARE_32, Hartley, 32f)
ORVGEN_LENGTHS(DECLARE_64, DFTFwd_CToC, 64fc)
ORVGEN_LENGTHS(DECLARE_64, DFTInv_CToC, 64fc)
ORVGEN_LENGTHS(DECLARE_64, DFTFwd_RToCCS, 64f)
ORVGEN_LENGTHS(DECLARE_64, DFTInv_CCSToR, 64f)
ORVGEN_LENGTHS(DECLARE_64, Hartley, 64f)
// Lengths at which the inverse from CCS sums in an order of its own.
DECLARE_32(DFTInv_PackToR, 7, 32f)
DECLARE_32(DFTInv_PackToR, 49, 32f)
DECLARE_64(DFTInv_PackToR, 7, 64f)
DECLARE_64(DFTInv_PackToR, 49, 64f)

template <class R>
struct Kernels;

// Rows of all lengths in their order; InverseFromPack is looked up as InverseFromCcs.
template <>
struct Kernels<float> {
    using Row = BlockKernel<float>*;
    static constexpr Row forward[] = {ORVGEN_LENGTHS(ADDRESS, DFTFwd_CToC, 32fc)};
    static constexpr Row inverse[] = {ORVGEN_LENGTHS(ADDRESS, DFTInv_CToC, 32fc)};
    static constexpr Row realForward[] = {ORVGEN_LENGTHS(ADDRESS, DFTFwd_RToCCS, 32f)};
    static constexpr Row realInverse[] = {ORVGEN_LENGTHS(ADDRESS, DFTInv_CCSToR, 32f)};
    static constexpr Row hartley[] = {ORVGEN_LENGTHS(ADDRESS, Hartley, 32f)};
    static constexpr Row fromPack7 = ADDRESS_OF(DFTInv_PackToR, 7, 32f);
    static constexpr Row fromPack49 = ADDRESS_OF(DFTInv_PackToR, 49, 32f);
};
template <>
struct Kernels<double> {
    using Row = BlockKernel<double>*;
    static constexpr Row forward[] = {ORVGEN_LENGTHS(ADDRESS, DFTFwd_CToC, 64fc)};
    static constexpr Row inverse[] = {ORVGEN_LENGTHS(ADDRESS, DFTInv_CToC, 64fc)};
    static constexpr Row realForward[] = {ORVGEN_LENGTHS(ADDRESS, DFTFwd_RToCCS, 64f)};
    static constexpr Row realInverse[] = {ORVGEN_LENGTHS(ADDRESS, DFTInv_CCSToR, 64f)};
    static constexpr Row hartley[] = {ORVGEN_LENGTHS(ADDRESS, Hartley, 64f)};
    static constexpr Row fromPack7 = ADDRESS_OF(DFTInv_PackToR, 7, 64f);
    static constexpr Row fromPack49 = ADDRESS_OF(DFTInv_PackToR, 49, 64f);
};

template <class R>
BlockKernel<R>* kernelOf(Kind kind, int n) {
    using Ks = Kernels<R>;
    const int row = n - kLengths.first;
    switch (kind) {
        case Kind::Forward:
            return Ks::forward[row];
        case Kind::Inverse:
            return Ks::inverse[row];
        case Kind::RealForward:
            return Ks::realForward[row];
        case Kind::InverseFromPack:
            if (n == 7) return Ks::fromPack7;
            if (n == 49) return Ks::fromPack49;
            [[fallthrough]];
        case Kind::InverseFromCcs:
            return Ks::realInverse[row];
        default:
            return Ks::hartley[row];
    }
}
