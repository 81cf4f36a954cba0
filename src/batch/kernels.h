// SPDX-License-Identifier: MIT
// The block kernels that the kernel compiler makes, by kind and length. Included by the file of
// each target, in its namespace; ORVGEN_BATCH_TARGET is the target's name in those of the kernels,
// ORVGEN_BATCH_SHORT_ROWS lists the short rows in binary32 that it has kernels for.

#define ORVGEN_JOIN(FORM, NAME, N, T, TARGET) owng##FORM##NAME##_##N##_##T##_##TARGET
#define ORVGEN_KERNEL(FORM, NAME, N, T, TARGET) ORVGEN_JOIN(FORM, NAME, N, T, TARGET)

using Real_32f = float;
using Real_32fc = float;
using Real_64f = double;
using Real_64fc = double;

#define ADDRESS_OF(NAME, N, T) ORVGEN_KERNEL(Batch, NAME, N, T, ORVGEN_BATCH_TARGET)
#define ADDRESS(NAME, N, T) ADDRESS_OF(NAME, N, T),
#define ROWS_ADDRESS_OF(NAME, N, T) ORVGEN_KERNEL(Rows, NAME, N, T, ORVGEN_BATCH_TARGET)
#define ROWS_ADDRESS(NAME, N, T) ROWS_ADDRESS_OF(NAME, N, T),
#define PAIRS_ADDRESS_OF(NAME, N, T) ORVGEN_KERNEL(Pairs, NAME, N, T, ORVGEN_BATCH_TARGET)
#define PAIRS_ADDRESS(NAME, N, T) PAIRS_ADDRESS_OF(NAME, N, T),
#define DECLARE(NAME, N, T) extern "C" BlockKernel<Real_##T> ADDRESS_OF(NAME, N, T);
#define DECLARE_ROWS(NAME, N, T) extern "C" RowsKernel<Real_##T> ROWS_ADDRESS_OF(NAME, N, T);
#define DECLARE_PAIRS(NAME, N, T) extern "C" BlockKernel<Real_##T> PAIRS_ADDRESS_OF(NAME, N, T);
// The lengths at which single complex binary32 kernels move whole vectors only.
#define EIGHTS(F, NAME, T)              \
    ORVGEN_BATCH_SHORT_ROWS(F, NAME, T) \
    F(NAME, 24, T)                      \
    F(NAME, 32, T)                      \
    F(NAME, 40, T)                      \
    F(NAME, 48, T)                      \
    F(NAME, 56, T)                      \
    F(NAME, 64, T)

// The kernels of the real type T. From Pack there are those of the lengths at which the inverse
// from CCS sums in an order of its own.
#define DECLARE_ALL(T, ROWS_LENGTHS)                 \
    ORVGEN_LENGTHS(DECLARE, DFTFwd_CToC, T##c)       \
    ORVGEN_LENGTHS(DECLARE, DFTInv_CToC, T##c)       \
    ORVGEN_LENGTHS(DECLARE, DFTFwd_RToCCS, T)        \
    ORVGEN_LENGTHS(DECLARE, DFTInv_CCSToR, T)        \
    ORVGEN_LENGTHS(DECLARE, Hartley, T)              \
    DECLARE(DFTInv_PackToR, 7, T)                    \
    DECLARE(DFTInv_PackToR, 49, T)                   \
    ROWS_LENGTHS(DECLARE_ROWS, DFTFwd_CToC, T##c)    \
    ROWS_LENGTHS(DECLARE_ROWS, DFTInv_CToC, T##c)    \
    ORVGEN_LENGTHS(DECLARE_PAIRS, DFTFwd_CToC, T##c) \
    ORVGEN_LENGTHS(DECLARE_PAIRS, DFTInv_CToC, T##c) \
    ORVGEN_LENGTHS(DECLARE_PAIRS, DFTFwd_RToCCS, T)  \
    ORVGEN_LENGTHS(DECLARE_PAIRS, DFTInv_CCSToR, T)
DECLARE_ALL(32f, EIGHTS)
DECLARE_ALL(64f, ORVGEN_LENGTHS)

// By kind, all lengths in their order.
template <class R>
struct KernelsByKind {
    using Lengths = BlockKernel<R> * [kLengths.count()];
    Lengths forward, inverse, realForward, realInverse, hartley;

    BlockKernel<R>* find(Kind kind, int n) const {
        const int at = n - kLengths.first;
        switch (kind) {
            case Kind::Forward:
                return forward[at];
            case Kind::Inverse:
                return inverse[at];
            case Kind::RealForward:
                return realForward[at];
            case Kind::Hartley:
                return hartley[at];
            default:
                return realInverse[at];
        }
    }
};

template <class R>
struct Kernels;
#define KERNELS_OF(T, ROWS_LENGTHS)                                                             \
    template <>                                                                                 \
    struct Kernels<Real_##T> {                                                                  \
        static constexpr KernelsByKind<Real_##T> blocks = {                                     \
            .forward = {ORVGEN_LENGTHS(ADDRESS, DFTFwd_CToC, T##c)},                            \
            .inverse = {ORVGEN_LENGTHS(ADDRESS, DFTInv_CToC, T##c)},                            \
            .realForward = {ORVGEN_LENGTHS(ADDRESS, DFTFwd_RToCCS, T)},                         \
            .realInverse = {ORVGEN_LENGTHS(ADDRESS, DFTInv_CCSToR, T)},                         \
            .hartley = {ORVGEN_LENGTHS(ADDRESS, Hartley, T)}};                                  \
        static constexpr KernelsByKind<Real_##T> pairs = {                                      \
            .forward = {ORVGEN_LENGTHS(PAIRS_ADDRESS, DFTFwd_CToC, T##c)},                      \
            .inverse = {ORVGEN_LENGTHS(PAIRS_ADDRESS, DFTInv_CToC, T##c)},                      \
            .realForward = {ORVGEN_LENGTHS(PAIRS_ADDRESS, DFTFwd_RToCCS, T)},                   \
            .realInverse = {ORVGEN_LENGTHS(PAIRS_ADDRESS, DFTInv_CCSToR, T)},                   \
            .hartley = {}};                                                                     \
        static constexpr BlockKernel<Real_##T>* fromPack7 = ADDRESS_OF(DFTInv_PackToR, 7, T);   \
        static constexpr BlockKernel<Real_##T>* fromPack49 = ADDRESS_OF(DFTInv_PackToR, 49, T); \
        static constexpr RowsKernel<Real_##T>* forwardRows[] = {                                \
            ROWS_LENGTHS(ROWS_ADDRESS, DFTFwd_CToC, T##c)};                                     \
        static constexpr RowsKernel<Real_##T>* inverseRows[] = {                                \
            ROWS_LENGTHS(ROWS_ADDRESS, DFTInv_CToC, T##c)};                                     \
    };
KERNELS_OF(32f, EIGHTS)
KERNELS_OF(64f, ORVGEN_LENGTHS)

// On split elements and real ones.
template <class R>
BlockKernel<R>* kernelOf(Kind kind, int n) {
    if (kind == Kind::InverseFromPack && n == 7) return Kernels<R>::fromPack7;
    if (kind == Kind::InverseFromPack && n == 49) return Kernels<R>::fromPack49;
    return Kernels<R>::blocks.find(kind, n);
}

// On interleaved elements.
template <class R>
BlockKernel<R>* pairsKernelOf(Kind kind, int n) {
    return Kernels<R>::pairs.find(kind, n);
}

// The kernel for rows of complex elements, where there is one.
template <class R>
RowsKernel<R>* rowsKernelOf(Kind kind, int n) {
    using Ks = Kernels<R>;
    constexpr int step = sizeof(R) == 4 ? 8 : 1;
    constexpr int rows = static_cast<int>(std::size(Ks::forwardRows));
    constexpr int shortest = kLengths.last - step * (rows - 1);
    const bool hasKernel = n >= shortest && n % step == 0;
    const int row = (n - shortest) / step;
    if (!hasKernel) return nullptr;
    if (kind == Kind::Forward) return Ks::forwardRows[row];
    return kind == Kind::Inverse ? Ks::inverseRows[row] : nullptr;
}
