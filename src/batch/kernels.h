// SPDX-License-Identifier: MIT
// The block kernels that the kernel compiler makes, by kind and length. Included by the file of
// each target, in its namespace; ORVGEN_BATCH_TARGET is the target's name in those of the kernels.

#define ORVGEN_JOIN(FORM, NAME, N, T, TARGET) owng##FORM##NAME##_##N##_##T##_##TARGET
#define ORVGEN_KERNEL(FORM, NAME, N, T, TARGET) ORVGEN_JOIN(FORM, NAME, N, T, TARGET)

#define ADDRESS_OF(NAME, N, T) ORVGEN_KERNEL(Batch, NAME, N, T, ORVGEN_BATCH_TARGET)
#define ADDRESS(NAME, N, T) ADDRESS_OF(NAME, N, T),
#define ROWS_ADDRESS_OF(NAME, N, T) ORVGEN_KERNEL(Rows, NAME, N, T, ORVGEN_BATCH_TARGET)
#define ROWS_ADDRESS(NAME, N, T) ROWS_ADDRESS_OF(NAME, N, T),
#define PAIRS_ADDRESS_OF(NAME, N, T) ORVGEN_KERNEL(Pairs, NAME, N, T, ORVGEN_BATCH_TARGET)
#define PAIRS_ADDRESS(NAME, N, T) PAIRS_ADDRESS_OF(NAME, N, T),
#define DECLARE_32(NAME, N, T) extern "C" BlockKernel<float> ADDRESS_OF(NAME, N, T);
#define DECLARE_64(NAME, N, T) extern "C" BlockKernel<double> ADDRESS_OF(NAME, N, T);
#define DECLARE_ROWS_32(NAME, N, T) extern "C" RowsKernel<float> ROWS_ADDRESS_OF(NAME, N, T);
#define DECLARE_ROWS_64(NAME, N, T) extern "C" RowsKernel<double> ROWS_ADDRESS_OF(NAME, N, T);
#define DECLARE_PAIRS_32(NAME, N, T) extern "C" BlockKernel<float> PAIRS_ADDRESS_OF(NAME, N, T);
#define DECLARE_PAIRS_64(NAME, N, T) extern "C" BlockKernel<double> PAIRS_ADDRESS_OF(NAME, N, T);
// The lengths at which single complex binary32 kernels move whole vectors only.
#define EIGHTS(F, NAME, T) \
    F(NAME, 8, T)          \
    F(NAME, 16, T)         \
    F(NAME, 24, T)         \
    F(NAME, 32, T)         \
    F(NAME, 40, T)         \
    F(NAME, 48, T)         \
    F(NAME, 56, T)         \
    F(NAME, 64, T)

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
EIGHTS(DECLARE_ROWS_32, DFTFwd_CToC, 32fc)
EIGHTS(DECLARE_ROWS_32, DFTInv_CToC, 32fc)
ORVGEN_LENGTHS(DECLARE_ROWS_64, DFTFwd_CToC, 64fc)
ORVGEN_LENGTHS(DECLARE_ROWS_64, DFTInv_CToC, 64fc)
ORVGEN_LENGTHS(DECLARE_PAIRS_32, DFTFwd_CToC, 32fc)
ORVGEN_LENGTHS(DECLARE_PAIRS_32, DFTInv_CToC, 32fc)
ORVGEN_LENGTHS(DECLARE_PAIRS_32, DFTFwd_RToCCS, 32f)
ORVGEN_LENGTHS(DECLARE_PAIRS_32, DFTInv_CCSToR, 32f)
ORVGEN_LENGTHS(DECLARE_PAIRS_64, DFTFwd_CToC, 64fc)
ORVGEN_LENGTHS(DECLARE_PAIRS_64, DFTInv_CToC, 64fc)
ORVGEN_LENGTHS(DECLARE_PAIRS_64, DFTFwd_RToCCS, 64f)
ORVGEN_LENGTHS(DECLARE_PAIRS_64, DFTInv_CCSToR, 64f)

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
    static constexpr RowsKernel<float>* forwardRows[] = {EIGHTS(ROWS_ADDRESS, DFTFwd_CToC, 32fc)};
    static constexpr RowsKernel<float>* inverseRows[] = {EIGHTS(ROWS_ADDRESS, DFTInv_CToC, 32fc)};
    static constexpr Row forwardPairs[] = {ORVGEN_LENGTHS(PAIRS_ADDRESS, DFTFwd_CToC, 32fc)};
    static constexpr Row inversePairs[] = {ORVGEN_LENGTHS(PAIRS_ADDRESS, DFTInv_CToC, 32fc)};
    static constexpr Row realForwardPairs[] = {ORVGEN_LENGTHS(PAIRS_ADDRESS, DFTFwd_RToCCS, 32f)};
    static constexpr Row realInversePairs[] = {ORVGEN_LENGTHS(PAIRS_ADDRESS, DFTInv_CCSToR, 32f)};
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
    static constexpr RowsKernel<double>* forwardRows[] = {
        ORVGEN_LENGTHS(ROWS_ADDRESS, DFTFwd_CToC, 64fc)};
    static constexpr RowsKernel<double>* inverseRows[] = {
        ORVGEN_LENGTHS(ROWS_ADDRESS, DFTInv_CToC, 64fc)};
    static constexpr Row forwardPairs[] = {ORVGEN_LENGTHS(PAIRS_ADDRESS, DFTFwd_CToC, 64fc)};
    static constexpr Row inversePairs[] = {ORVGEN_LENGTHS(PAIRS_ADDRESS, DFTInv_CToC, 64fc)};
    static constexpr Row realForwardPairs[] = {ORVGEN_LENGTHS(PAIRS_ADDRESS, DFTFwd_RToCCS, 64f)};
    static constexpr Row realInversePairs[] = {ORVGEN_LENGTHS(PAIRS_ADDRESS, DFTInv_CCSToR, 64f)};
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

// The kernel on interleaved elements.
template <class R>
BlockKernel<R>* pairsKernelOf(Kind kind, int n) {
    using Ks = Kernels<R>;
    const int row = n - kLengths.first;
    switch (kind) {
        case Kind::Forward:
            return Ks::forwardPairs[row];
        case Kind::Inverse:
            return Ks::inversePairs[row];
        case Kind::RealForward:
            return Ks::realForwardPairs[row];
        default:
            return Ks::realInversePairs[row];
    }
}

// The kernel for rows of complex elements, where there is one and it is ahead of the transposes: in
// binary32 the vectors of 64 bytes win short rows transposed.
template <class R>
RowsKernel<R>* rowsKernelOf(Kind kind, int n) {
    using Ks = Kernels<R>;
    constexpr bool isSingle = sizeof(R) == 4;
    constexpr int shortest = isSingle ? (Vectors<R>::lanes == 16 ? 24 : 8) : 2;
    const bool hasKernel = n >= shortest && (!isSingle || n % 8 == 0);
    const int row = isSingle ? n / 8 - 1 : n - 2;
    if (!hasKernel) return nullptr;
    if (kind == Kind::Forward) return Ks::forwardRows[row];
    return kind == Kind::Inverse ? Ks::inverseRows[row] : nullptr;
}
