/* SPDX-License-Identifier: MIT */
/* orvgen: short signal transforms for x86-64 Linux, every length a function of its own.
 *
 * A caller hands over a source buffer, a destination buffer and a scaling flag; the function runs
 * one straight-line body with all its constants built in, and returns a status. There is nothing to
 * start and nothing to stop, no plan (the DCT-IV excepted), no lookup, no allocation (the
 * Walsh-Hadamard orders 8 to 13 excepted), no lock.
 *
 *     #include <orvgen.h>
 *
 *     Orv32fc x[64], y[64];                                  // fill x with samples
 *     OrvStatus s = orvgDFTFwd_CToC_64_32fc(x, y, orvScaleNone);   // the length in the name
 *     s = orvgDFTFwd_CToC_32fc(x, y, 64, orvScaleFwdByN);          // or as an argument
 *     if (s != orvOk) ...
 *
 * Link with -lorvgenm7 (CMake: find_package(orvgen), orvgen::orvgen; pkg-config: orvgen).
 * Any x86-64 processor with SSE3 runs it.
 *
 * The libraries. m7 is the processor variant that these kernels are written for: 128-bit vectors,
 * SSE3. liborvgenm7.so.6.1 holds every function of this header. It takes its memory, where it needs
 * any, from the core library, liborvcorexwide.so.6.1, which programs need not name but which must
 * be installed; a stand-in for it comes with this project. The archive liborvgenm7.a (CMake:
 * orvgen::static; link -lm behind it) holds the same functions and needs no core library; its
 * orvMalloc and orvFree are the stand-in's, unless the program brings both of its own.
 *
 * Beyond 64 points there are the Walsh-Hadamard transform (to 8192) and the DCT-IV (powers of two)
 * here. For longer Fourier and Hartley transforms take a library that plans, such as FFTW. For very
 * many short transforms at once see orvgen_batch.h.
 *
 * What holds for every transform:
 *
 * Order of checks. A by-length function first tests the length (orvErrSize). Then src and dst are
 * tested for null (orvErrNullPtr), then the flag (orvErrFlag). A transform that fails has written
 * nothing.
 * Order of data. Natural order on both sides, never bit-reversed.
 * Alignment. Any address that suits the element type. Where both buffers lie on 16-byte boundaries
 * the complex and the Walsh-Hadamard kernels take a faster body; the results are the same bits.
 * Aliasing. src and dst may be the same pointer, with the result of separate buffers to the bit
 * (where the output is longer than the input the buffer holds the longer one; the DCT-IV of a
 * length that is no power of two excepted). The complex kernels also allow a partial overlap;
 * for the others it is not supported.
 * Special values. NaN and infinity are data: they propagate through the arithmetic, status orvOk.
 * Rounding. The caller's rounding mode and exception masks stay in force; the floating-point
 * control word is neither read nor changed. The order of arithmetic is fixed.
 * Threads. Every function may be called from any number of threads at once, as long as no two
 * calls write to the same memory. (A DCT-IV plan has a rule of its own, told there.)
 */
#ifndef ORVGEN_H
#define ORVGEN_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define ORVGEN_API __attribute__((visibility("default")))

/* Marks what returns a status, so that the compiler speaks up where it is dropped. Where that is
 * not wanted, define it empty before this header. */
#ifndef ORVGEN_NODISCARD
#if defined(__cplusplus) && __cplusplus >= 201703L
#define ORVGEN_NODISCARD [[nodiscard]]
#else
#define ORVGEN_NODISCARD __attribute__((warn_unused_result))
#endif
#endif

/* ---- Release ---------------------------------------------------------------------------------
 * Of this project, and what CMake and pkg-config call its version; ORVGEN_VERSION serves in #if.
 * Not to be mixed up with 6.1, the version of the binary interface: that one is in the library's
 * file name and in the record of orvgenGetLibVersion, and is fixed. */

#define ORVGEN_VERSION_MAJOR 1
#define ORVGEN_VERSION_MINOR 0
#define ORVGEN_VERSION_PATCH 0
#define ORVGEN_VERSION \
    (ORVGEN_VERSION_MAJOR * 10000 + ORVGEN_VERSION_MINOR * 100 + ORVGEN_VERSION_PATCH)
#define ORVGEN_VERSION_TEXT "1.0.0"

/* ---- Element types ---------------------------------------------------------------------------
 * Their suffixes name them in the function names: _32f, _64f, _32fc, _64fc. */

typedef float Orv32f;  /* IEEE 754 binary32 */
typedef double Orv64f; /* IEEE 754 binary64 */

/* A complex number; arrays of it are interleaved: re, im, re, im, ... 8 bytes each. */
typedef struct {
    Orv32f re;
    Orv32f im;
} Orv32fc;

/* The same in binary64; 16 bytes each. */
typedef struct {
    Orv64f re;
    Orv64f im;
} Orv64fc;

/* ---- Status ----------------------------------------------------------------------------------
 * What every function but orvgenGetLibVersion returns. Exactly these values occur. */

typedef int32_t OrvStatus;
enum {
    orvOk = 0,          /* success */
    orvErrPlan = -5,    /* a DCT-IV plan carries a kind that the run does not know */
    orvErrSize = -6,    /* length or order outside what the function supports */
    orvErrNullPtr = -8, /* a required pointer is null (or memory ran out: orvgDCT4InitAlloc) */
    orvErrFlag = -16    /* the flag is not one of the four values below */
};

/* ---- Scaling flags ---------------------------------------------------------------------------
 * Four exact values, not bits of a mask: 0, 3, 5, 9, 16 and -1 are all refused. The scale s of a
 * transform of length N (Walsh-Hadamard: N = 2 to the power of the order):
 *
 *                        forward DFT   inverse DFT   Hartley, Walsh-Hadamard
 *     orvScaleFwdByN     1/N           1             1/N
 *     orvScaleInvByN     1             1/N           1/N
 *     orvScaleBySqrtN    1/sqrt(N)     1/sqrt(N)     1/sqrt(N)
 *     orvScaleNone       1             1             1
 *
 * So a forward and an inverse DFT with the same flag of the first three are the identity. The
 * multiplication by s is always performed, as the last operation, also when s is 1. In binary64
 * the stored 1/sqrt(N) is 1.0 divided by the rounded square root. */

enum { orvScaleFwdByN = 1, orvScaleInvByN = 2, orvScaleBySqrtN = 4, orvScaleNone = 8 };

/* ---- Version of the binary interface ---------------------------------------------------------*/

/* A constant record of the library's; not to be changed or freed. Its numbers are those of the
 * binary interface, the same in every release of this project. */
typedef struct {
    int32_t versionMajor;
    int32_t versionMinor;
    int32_t buildMajor;
    int32_t buildMinor;
    char cpuTag[8];          /* padded with NUL */
    const char* libraryName; /* the name that the loader knows */
    const char* versionText;
    const char* buildDate;
} OrvLibraryVersion;

/* The address of the one record. */
ORVGEN_API const OrvLibraryVersion* orvgenGetLibVersion(void);

/* ---- The lists -------------------------------------------------------------------------------
 * What exists is named here and nowhere else: the declarations below, the library's dispatch
 * tables and export list, its tests and benchmarks are made of these lists. A caller may use them
 * too, for instance to run over all lengths. F is a macro of the user's. */

/* clang-format off */

/* The lengths of a fixed-length family: F(NAME, N, T) for N = 2 to 64. */
#define ORVGEN_LENGTHS(F, NAME, T)                                                                 \
    F(NAME, 2, T) F(NAME, 3, T) F(NAME, 4, T) F(NAME, 5, T) F(NAME, 6, T)                          \
    F(NAME, 7, T) F(NAME, 8, T) F(NAME, 9, T) F(NAME, 10, T) F(NAME, 11, T)                        \
    F(NAME, 12, T) F(NAME, 13, T) F(NAME, 14, T) F(NAME, 15, T) F(NAME, 16, T)                     \
    F(NAME, 17, T) F(NAME, 18, T) F(NAME, 19, T) F(NAME, 20, T) F(NAME, 21, T)                     \
    F(NAME, 22, T) F(NAME, 23, T) F(NAME, 24, T) F(NAME, 25, T) F(NAME, 26, T)                     \
    F(NAME, 27, T) F(NAME, 28, T) F(NAME, 29, T) F(NAME, 30, T) F(NAME, 31, T)                     \
    F(NAME, 32, T) F(NAME, 33, T) F(NAME, 34, T) F(NAME, 35, T) F(NAME, 36, T)                     \
    F(NAME, 37, T) F(NAME, 38, T) F(NAME, 39, T) F(NAME, 40, T) F(NAME, 41, T)                     \
    F(NAME, 42, T) F(NAME, 43, T) F(NAME, 44, T) F(NAME, 45, T) F(NAME, 46, T)                     \
    F(NAME, 47, T) F(NAME, 48, T) F(NAME, 49, T) F(NAME, 50, T) F(NAME, 51, T)                     \
    F(NAME, 52, T) F(NAME, 53, T) F(NAME, 54, T) F(NAME, 55, T) F(NAME, 56, T)                     \
    F(NAME, 57, T) F(NAME, 58, T) F(NAME, 59, T) F(NAME, 60, T) F(NAME, 61, T)                     \
    F(NAME, 62, T) F(NAME, 63, T) F(NAME, 64, T)

/* The orders of a Walsh-Hadamard family: F(NAME, K, T) for K = 1 to 13. */
#define ORVGEN_ORDERS(F, NAME, T)                                                                  \
    F(NAME, 1, T) F(NAME, 2, T) F(NAME, 3, T) F(NAME, 4, T) F(NAME, 5, T)                          \
    F(NAME, 6, T) F(NAME, 7, T) F(NAME, 8, T) F(NAME, 9, T) F(NAME, 10, T)                         \
    F(NAME, 11, T) F(NAME, 12, T) F(NAME, 13, T)

/* The fixed-length families: F(NAME, T, LIST), LIST being the list of their lengths. */
#define ORVGEN_LENGTH_FAMILIES(F)                                                                  \
    F(DFTFwd_CToC, 32fc, ORVGEN_LENGTHS)                                                           \
    F(DFTInv_CToC, 32fc, ORVGEN_LENGTHS)                                                           \
    F(DFTFwd_CToC, 64fc, ORVGEN_LENGTHS)                                                           \
    F(DFTInv_CToC, 64fc, ORVGEN_LENGTHS)                                                           \
    F(DFTFwd_RToCCS, 32f, ORVGEN_LENGTHS)                                                          \
    F(DFTFwd_RToPack, 32f, ORVGEN_LENGTHS)                                                         \
    F(DFTFwd_RToPerm, 32f, ORVGEN_LENGTHS)                                                         \
    F(DFTFwd_RToCCS, 64f, ORVGEN_LENGTHS)                                                          \
    F(DFTFwd_RToPack, 64f, ORVGEN_LENGTHS)                                                         \
    F(DFTFwd_RToPerm, 64f, ORVGEN_LENGTHS)                                                         \
    F(DFTInv_CCSToR, 32f, ORVGEN_LENGTHS)                                                          \
    F(DFTInv_PackToR, 32f, ORVGEN_LENGTHS)                                                         \
    F(DFTInv_PermToR, 32f, ORVGEN_LENGTHS)                                                         \
    F(DFTInv_CCSToR, 64f, ORVGEN_LENGTHS)                                                          \
    F(DFTInv_PackToR, 64f, ORVGEN_LENGTHS)                                                         \
    F(DFTInv_PermToR, 64f, ORVGEN_LENGTHS)                                                         \
    F(Hartley, 32f, ORVGEN_LENGTHS)                                                                \
    F(Hartley, 64f, ORVGEN_LENGTHS)

/* The Walsh-Hadamard families: F(NAME, T, LIST), LIST being the list of their orders. */
#define ORVGEN_ORDER_FAMILIES(F)                                                                   \
    F(WHT, 32f, ORVGEN_ORDERS)                                                                     \
    F(WHT, 64f, ORVGEN_ORDERS)

/* The DCT-IV families: F(NAME, T). */
#define ORVGEN_DCT4_FAMILIES(F)                                                                    \
    F(DCT4, 32f)                                                                                   \
    F(DCT4, 64f)

/* clang-format on */

/* ---- Transforms of a fixed length, 2 to 64 ---------------------------------------------------
 *
 *     OrvStatus orvg<NAME>_<N>_<T>(const Orv<T>* src, Orv<T>* dst, int32_t flag);
 *     OrvStatus orvg<NAME>_<T>(const Orv<T>* src, Orv<T>* dst, int32_t len, int32_t flag);
 *
 * The first form has the length in its name; there is one for each N = 2 to 64. The second looks
 * the first up; a length outside 2 to 64 gives orvErrSize, whatever the other arguments. src is
 * read only, dst written only.
 *
 * In the definitions w = exp(-2 pi i / N), and s is the scale that the flag selects.
 *
 * DFTFwd_CToC, DFTInv_CToC (_32fc, _64fc): the complex discrete Fourier transform.
 *     forward   y[k] = s sum_j x[j] w^(jk)         inverse   y[k] = s sum_j x[j] w^(-jk)
 * src and dst hold N complex elements. At lengths 47 and 59 the _32fc kernels also read the 8 bytes
 * behind src, which must be memory that can be read, holding any finite values; they have no
 * effect. (With src on a 16-byte boundary it can always be read. An infinity or NaN there would
 * make every output a NaN.)
 *
 * DFTFwd_RToCCS, DFTFwd_RToPack, DFTFwd_RToPerm (_32f, _64f): the forward transform of N real
 * samples. The spectrum X[k] = R[k] + i I[k] is Hermitian, so that bins 0 to N/2 say all; they are
 * stored in one of three layouts of real elements, which hold the same numbers to the bit:
 *     N even   CCS   R0  0  R1 I1 R2 I2 ... R[N/2]  0      N + 2 elements
 *              Pack  R0 R1 I1 R2 I2 ... R[N/2]             N
 *              Perm  R0 R[N/2] R1 I1 R2 I2 ...             N
 *     N odd    CCS   R0  0  R1 I1 R2 I2 ...                N + 1
 *              Pack  R0 R1 I1 R2 I2 ...                    N
 *              Perm  the same as Pack                      N
 * src holds N elements, dst as many as the layout has.
 *
 * DFTInv_CCSToR, DFTInv_PackToR, DFTInv_PermToR (_32f, _64f): from a half spectrum in one of these
 * layouts back to N real samples, x[n] = s sum_k X[k] w^(-nk), the sum over all N bins. The zeros
 * of CCS are not read. For instance
 *
 *     Orv64f x[9], X[10];                             // X: R0 0 R1 I1 R2 I2 R3 I3 R4 I4
 *     orvgDFTFwd_RToCCS_9_64f(x, X, orvScaleNone);
 *     orvgDFTInv_CCSToR_9_64f(X, x, orvScaleInvByN);  // the samples back, but for rounding
 *
 * Hartley (_32f, _64f): H[k] = s sum_n x[n] (cos(2 pi nk / N) + sin(2 pi nk / N)), N real elements
 * on both sides. Its own inverse up to the factor N: once with orvScaleNone and once with
 * orvScaleFwdByN gives the samples back.
 *
 * The _32f kernels of the real and Hartley transforms add in binary32 and multiply by a constant in
 * binary64; the _32fc kernels compute in binary32 throughout, lengths 3 and 5 excepted. */

#define ORVGEN_DECLARE_LENGTH(NAME, N, T)                                                        \
    ORVGEN_NODISCARD ORVGEN_API OrvStatus orvg##NAME##_##N##_##T(const Orv##T* src, Orv##T* dst, \
                                                                 int32_t flag);
#define ORVGEN_DECLARE_LENGTH_FAMILY(NAME, T, LIST)                                        \
    LIST(ORVGEN_DECLARE_LENGTH, NAME, T)                                                   \
    ORVGEN_NODISCARD ORVGEN_API OrvStatus orvg##NAME##_##T(const Orv##T* src, Orv##T* dst, \
                                                           int32_t len, int32_t flag);

ORVGEN_LENGTH_FAMILIES(ORVGEN_DECLARE_LENGTH_FAMILY)

/* ---- Walsh-Hadamard transform, orders 1 to 13 ------------------------------------------------
 *
 *     OrvStatus orvgWHT_<K>_<T>(const Orv<T>* src, Orv<T>* dst, int32_t flag, uint8_t* buffer);
 *     OrvStatus orvgWHT_<T>(const Orv<T>* src, Orv<T>* dst, int32_t order, int32_t flag,
 *                           uint8_t* buffer);
 *     OrvStatus orvgWHTGetBufferSize_<T>(int32_t order, int32_t* size);
 *
 * y[i] = s sum_j (-1)^popcount(i & j) x[j] over the N = 2^K real elements of src; the order of rows
 * is the natural one (Sylvester's). Its own inverse up to the factor N. Mind that the by-order
 * function takes the order before the flag; an order outside 1 to 13 gives orvErrSize.
 *
 * buffer is scratch memory of the size in bytes that orvgWHTGetBufferSize_<T> stores (0 for orders
 * 1 to 7, which may be given any pointer), on a 16-byte boundary, which is not tested: off it the
 * call faults. aligned_alloc(16, size) gives such a block (all sizes are multiples of 16), so does
 * malloc on x86-64, and for an array the attribute aligned(16), or alignas. Nothing in it needs to
 * be set, and nothing in it is kept. It may not overlap src or dst. Where it is null, orders 8 to
 * 13 allocate the block for the time of the call; there is no status for memory that runs out
 * there, so that a caller who cannot accept that passes a buffer. The size query refuses orders
 * outside 1 to 13 with orvErrSize and leaves *size as it was; it does not test the pointer for
 * null. */

#define ORVGEN_DECLARE_ORDER(NAME, K, T)                                                         \
    ORVGEN_NODISCARD ORVGEN_API OrvStatus orvg##NAME##_##K##_##T(const Orv##T* src, Orv##T* dst, \
                                                                 int32_t flag, uint8_t* buffer);
#define ORVGEN_DECLARE_ORDER_FAMILY(NAME, T, LIST)                                     \
    LIST(ORVGEN_DECLARE_ORDER, NAME, T)                                                \
    ORVGEN_NODISCARD ORVGEN_API OrvStatus orvg##NAME##_##T(                            \
        const Orv##T* src, Orv##T* dst, int32_t order, int32_t flag, uint8_t* buffer); \
    ORVGEN_NODISCARD ORVGEN_API OrvStatus orvg##NAME##GetBufferSize_##T(int32_t order, \
                                                                        int32_t* size);

ORVGEN_ORDER_FAMILIES(ORVGEN_DECLARE_ORDER_FAMILY)

/* ---- DCT-IV ----------------------------------------------------------------------------------
 *
 * y[k] = sum_j x[j] cos(pi/N (j + 1/2)(k + 1/2)), without any scale: applied twice it gives N/2
 * times the input. src and dst hold N elements. The one transform that works through a plan, which
 * is built once for a length and run many times.
 *
 *     OrvStatus orvgDCT4InitAlloc_<T>(OrvDCT4Spec_<T>** spec, int32_t len);
 *     OrvStatus orvgDCT4_<T>(const Orv<T>* src, Orv<T>* dst, OrvDCT4Spec_<T>* spec);
 *     OrvStatus orvgDCT4Free_<T>(OrvDCT4Spec_<T>* spec);
 *
 * builds a plan in memory of its own, runs it, gives it back;
 *
 *     OrvStatus orvgDCT4GetSize_<T>(int32_t len, int32_t* size);
 *     OrvStatus orvgDCT4Init_<T>(OrvDCT4Spec_<T>** spec, int32_t len, uint8_t* mem);
 *
 * builds it in a block of the caller's, of the size in bytes that GetSize stores, at any alignment.
 * Such a plan is not handed to Free: its owner reuses or releases the block. A plan is a pointer
 * into the block and cannot be copied.
 *
 * Lengths: the powers of two from 2 to ORVGEN_DCT4_MAX_LENGTH_<T>. Others give orvErrSize, with
 * two exceptions that a caller has to keep away from.
 *     2^k + 1, from 33 on (_64f: from 9 on), is accepted although a run on it means nothing, and
 *     reads src[len] and writes dst[len], one element beyond the end.
 *     2^30 (_64f: also 2^29), and the same plus 1, is accepted although the true size does not fit
 *     into an int32_t. GetSize reports far too few bytes, Init builds the plan beyond the end of
 *     such a block, and InitAlloc allocates such a block and writes past it.
 * Init does not know how large the block is, and of a length that GetSize refuses it builds as far
 * as it gets in mem before it refuses too: ask GetSize first.
 * Status: orvErrNullPtr for a null spec, mem, src or dst, and where InitAlloc finds no memory;
 * orvErrSize for a length, leaving *spec and *size as they were; orvErrPlan from a run on a plan
 * that Init did not finish. The size pointer is not tested for null. The status of Free, which
 * fails for a null plan only, may be dropped.
 * Threads: a plan of a length up to 32 is only read by a run. From 64 on a run writes scratch
 * memory inside the plan: one run at a time, or a plan for each thread. */

/* The largest lengths; their plans take 1.4 GB. */
#define ORVGEN_DCT4_MAX_LENGTH_32f (1 << 26)
#define ORVGEN_DCT4_MAX_LENGTH_64f (1 << 25)

typedef struct OrvDCT4Spec_32f OrvDCT4Spec_32f;
typedef struct OrvDCT4Spec_64f OrvDCT4Spec_64f;

#define ORVGEN_DECLARE_DCT4_FAMILY(NAME, T)                                                     \
    ORVGEN_NODISCARD ORVGEN_API OrvStatus orvg##NAME##GetSize_##T(int32_t len, int32_t* size);  \
    ORVGEN_NODISCARD ORVGEN_API OrvStatus orvg##NAME##Init_##T(Orv##NAME##Spec_##T** spec,      \
                                                               int32_t len, uint8_t* mem);      \
    ORVGEN_NODISCARD ORVGEN_API OrvStatus orvg##NAME##InitAlloc_##T(Orv##NAME##Spec_##T** spec, \
                                                                    int32_t len);               \
    ORVGEN_API OrvStatus orvg##NAME##Free_##T(Orv##NAME##Spec_##T* spec);                       \
    ORVGEN_NODISCARD ORVGEN_API OrvStatus orvg##NAME##_##T(const Orv##T* src, Orv##T* dst,      \
                                                           Orv##NAME##Spec_##T* spec);

ORVGEN_DCT4_FAMILIES(ORVGEN_DECLARE_DCT4_FAMILY)

#undef ORVGEN_DECLARE_LENGTH
#undef ORVGEN_DECLARE_LENGTH_FAMILY
#undef ORVGEN_DECLARE_ORDER
#undef ORVGEN_DECLARE_ORDER_FAMILY
#undef ORVGEN_DECLARE_DCT4_FAMILY

#ifdef __cplusplus
}
#endif

#endif
