/* SPDX-License-Identifier: MIT */
/* orvgen-batch: any number of short transforms at once, one in each lane of the widest vectors.
 *
 * The functions of orvgen.h take one transform a call. These take an array of them: rows or columns
 * of a matrix, blocks, strided data, split real and imaginary parts. Each operation of a kernel
 * works on as many transforms as a vector has lanes, and every result has the bits that the
 * function of orvgen.h gives for that transform alone, whatever its place in the batch, the count,
 * the strides and the processor.
 *
 *     #include <orvgen_batch.h>
 *
 *     Orv32fc x[1000][48], y[1000][48];
 *     OrvStatus s = orvgBatchDFTFwd_CToC_32fc(x[0], 1, 48, y[0], 1, 48, 48, 1000, orvScaleNone);
 *
 * Link with -lorvgenbatch (CMake: find_package(orvgen), orvgen::batch; pkg-config: orvgen-batch).
 *
 * Places. Element j of transform t stands at
 *
 *     src + j * srcStride + t * srcDistance        dst + j * dstStride + t * dstDistance
 *
 * in elements of the pointer's type, of either sign. Rows of an N-column matrix are stride 1,
 * distance N; columns of a matrix of M columns are stride M, distance 1. The stride and the
 * distance of src may be 0 (an element or a transform is then read many times); the elements of dst
 * must all be distinct. In the layout CCS the half spectrum is an array of complex bins, and its
 * stride and distance count bins.
 *
 * Order of checks. First the length (orvErrSize), then the pointers (orvErrNullPtr), then the flag
 * (orvErrFlag). With count 0 the pointers are not looked at and nothing is done.
 * Memory. Nothing but the results is written, and nothing outside the transforms is read. (Lengths
 * 47 and 59 of the complex transform in binary32 therefore run as the single kernel does with zeros
 * behind src.) Any address that suits the element type will do.
 * In place. With equal pointers, strides and distances: complex transforms, Pack, Perm, Hartley,
 * Walsh-Hadamard, DCT-IV of 2 to 32 points. CCS: with both strides 1, and distances that are equal
 * in bytes. Any other overlap of src and dst is undefined.
 * Special values, rounding, exceptions. As in orvgen.h: the caller's rounding mode, masks, and
 * settings for denormal numbers stay in force, and the five IEEE flags raised are those that the
 * single calls raise together. Left open are the payloads of NaN, the denormal-operand flag, and
 * what dst holds after a trap.
 * Threads. Every function may be called from any number of threads at once, as long as no two calls
 * write to the same memory. Nothing is allocated; a call takes at most 256 KiB of stack.
 */
#ifndef ORVGEN_BATCH_H
#define ORVGEN_BATCH_H

#include <orvgen.h>
#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Targets ---------------------------------------------------------------------------------
 * What the transforms run on. The results do not depend on it. */

enum {
    orvTargetSSE2 = 1,  /* a loop over the functions of orvgen.h */
    orvTargetAVX2 = 2,  /* 256-bit vectors: AVX and AVX2 */
    orvTargetAVX512 = 4 /* 512-bit vectors: AVX512F, AVX512DQ and AVX512VL, beside AVX2 */
};

/* The targets that this library holds and this processor and operating system can run, as a sum of
 * the values above. orvTargetSSE2 is always among them. */
ORVGEN_API uint32_t orvgBatchTargets(void);

/* Chooses the target for all later calls of the process: one of those above, or 0 for the best,
 * which is also the choice at the start. Anything else gives orvErrFlag and changes nothing. May be
 * called at any time from any thread. The choice is the only memory that this library writes beyond
 * its results (a program that links it statically more than once has as many choices). */
ORVGEN_NODISCARD ORVGEN_API OrvStatus orvgBatchUse(uint32_t target);

/* A status of this library or of orvgen.h in a few English words, for messages. */
ORVGEN_API const char* orvgBatchStatusText(OrvStatus status);

/* ---- The lists -------------------------------------------------------------------------------
 * F(NAME, T, S, D): a family of orvgen.h with the element types of src and dst in a batch. */

/* clang-format off */

#define ORVGEN_BATCH_LENGTH_FAMILIES(F)                                                            \
    F(DFTFwd_CToC, 32fc, Orv32fc, Orv32fc)                                                         \
    F(DFTInv_CToC, 32fc, Orv32fc, Orv32fc)                                                         \
    F(DFTFwd_CToC, 64fc, Orv64fc, Orv64fc)                                                         \
    F(DFTInv_CToC, 64fc, Orv64fc, Orv64fc)                                                         \
    F(DFTFwd_RToCCS, 32f, Orv32f, Orv32fc)                                                         \
    F(DFTFwd_RToPack, 32f, Orv32f, Orv32f)                                                         \
    F(DFTFwd_RToPerm, 32f, Orv32f, Orv32f)                                                         \
    F(DFTFwd_RToCCS, 64f, Orv64f, Orv64fc)                                                         \
    F(DFTFwd_RToPack, 64f, Orv64f, Orv64f)                                                         \
    F(DFTFwd_RToPerm, 64f, Orv64f, Orv64f)                                                         \
    F(DFTInv_CCSToR, 32f, Orv32fc, Orv32f)                                                         \
    F(DFTInv_PackToR, 32f, Orv32f, Orv32f)                                                         \
    F(DFTInv_PermToR, 32f, Orv32f, Orv32f)                                                         \
    F(DFTInv_CCSToR, 64f, Orv64fc, Orv64f)                                                         \
    F(DFTInv_PackToR, 64f, Orv64f, Orv64f)                                                         \
    F(DFTInv_PermToR, 64f, Orv64f, Orv64f)                                                         \
    F(Hartley, 32f, Orv32f, Orv32f)                                                                \
    F(Hartley, 64f, Orv64f, Orv64f)

/* The complex transforms of split arrays: F(NAME, T, R), R being the type of the parts. */
#define ORVGEN_BATCH_SPLIT_FAMILIES(F)                                                             \
    F(DFTFwd_CToC, 32f, Orv32f)                                                                    \
    F(DFTInv_CToC, 32f, Orv32f)                                                                    \
    F(DFTFwd_CToC, 64f, Orv64f)                                                                    \
    F(DFTInv_CToC, 64f, Orv64f)

/* clang-format on */

/* ---- Transforms of a fixed length, 2 to 64 ---------------------------------------------------
 *
 *     OrvStatus orvgBatch<NAME>_<T>(const S* src, ptrdiff_t srcStride, ptrdiff_t srcDistance,
 *                                   D* dst, ptrdiff_t dstStride, ptrdiff_t dstDistance,
 *                                   int32_t len, size_t count, int32_t flag);
 *
 * `count` transforms orvg<NAME>_<len>_<T>, as orvgen.h defines them. Per transform src and dst hold
 * len elements (complex, real, Pack, Perm) or len / 2 + 1 bins (CCS). Of the bins that are real,
 * number 0 and for even len number len / 2, the imaginary parts are written as zeros and not read.
 * For instance, the spectra of overlapping frames, 64 samples each and 16 apart:
 *
 *     orvgBatchDFTFwd_RToCCS_32f(samples, 1, 16, bins, 1, 33, 64, frames, orvScaleNone); */

#define ORVGEN_DECLARE_BATCH(NAME, T, S, D)                                                    \
    ORVGEN_NODISCARD ORVGEN_API OrvStatus orvgBatch##NAME##_##T(                               \
        const S* src, ptrdiff_t srcStride, ptrdiff_t srcDistance, D* dst, ptrdiff_t dstStride, \
        ptrdiff_t dstDistance, int32_t len, size_t count, int32_t flag);

ORVGEN_BATCH_LENGTH_FAMILIES(ORVGEN_DECLARE_BATCH)

/* ---- Complex transforms of split arrays, 2 to 64 ---------------------------------------------
 *
 * The same with the real and the imaginary parts in arrays of their own: element j of transform t
 * stands at srcRe[..] and srcIm[..], with one stride and one distance for both. All four pointers
 * must not be null. In place means srcRe == dstRe and srcIm == dstIm. */

#define ORVGEN_DECLARE_BATCH_SPLIT(NAME, T, R)                                                \
    ORVGEN_NODISCARD ORVGEN_API OrvStatus orvgBatchSplit##NAME##_##T(                         \
        const R* srcRe, const R* srcIm, ptrdiff_t srcStride, ptrdiff_t srcDistance, R* dstRe, \
        R* dstIm, ptrdiff_t dstStride, ptrdiff_t dstDistance, int32_t len, size_t count,      \
        int32_t flag);

ORVGEN_BATCH_SPLIT_FAMILIES(ORVGEN_DECLARE_BATCH_SPLIT)

/* ---- Walsh-Hadamard transform, orders 1 to 13 ------------------------------------------------
 *
 * `count` transforms of 2^order points each. No buffer is asked for and none is allocated. */

#define ORVGEN_DECLARE_BATCH_WHT(T)                                                 \
    ORVGEN_NODISCARD ORVGEN_API OrvStatus orvgBatchWHT_##T(                         \
        const Orv##T* src, ptrdiff_t srcStride, ptrdiff_t srcDistance, Orv##T* dst, \
        ptrdiff_t dstStride, ptrdiff_t dstDistance, int32_t order, size_t count, int32_t flag);

ORVGEN_DECLARE_BATCH_WHT(32f)
ORVGEN_DECLARE_BATCH_WHT(64f)

/* ---- DCT-IV ----------------------------------------------------------------------------------
 *
 * `count` transforms orvgDCT4_<T> of len points, without any scale.
 *
 * Lengths 2, 4, 8, 16 and 32 run in lanes: spec is not looked at and may be null, and any number of
 * threads may call at once. From 64 on the transforms run one after another through spec, a plan
 * made for this len, which must be a power of two; both strides must be 1. Anything else gives
 * orvErrSize, in the order: a len that no plan has, null pointers (orvErrNullPtr; of spec from 64
 * on only), a plan of another length, strides. One thread a plan. */

#define ORVGEN_DECLARE_BATCH_DCT4(T)                                                    \
    ORVGEN_NODISCARD ORVGEN_API OrvStatus orvgBatchDCT4_##T(                            \
        const Orv##T* src, ptrdiff_t srcStride, ptrdiff_t srcDistance, Orv##T* dst,     \
        ptrdiff_t dstStride, ptrdiff_t dstDistance, int32_t len, OrvDCT4Spec_##T* spec, \
        size_t count);

ORVGEN_DECLARE_BATCH_DCT4(32f)
ORVGEN_DECLARE_BATCH_DCT4(64f)

#undef ORVGEN_DECLARE_BATCH
#undef ORVGEN_DECLARE_BATCH_SPLIT
#undef ORVGEN_DECLARE_BATCH_WHT
#undef ORVGEN_DECLARE_BATCH_DCT4

#ifdef __cplusplus
}
#endif

#endif
