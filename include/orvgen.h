#ifndef ORVGEN_H
#define ORVGEN_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define ORVGEN_API __attribute__((visibility("default")))

typedef float Orv32f;
typedef double Orv64f;

typedef struct {
    Orv32f re;
    Orv32f im;
} Orv32fc;

typedef struct {
    Orv64f re;
    Orv64f im;
} Orv64fc;

typedef int32_t OrvStatus;
enum {
    orvOk = 0,
    orvErrPlan = -5,
    orvErrSize = -6,
    orvErrNullPtr = -8,
    orvErrFlag = -16
};

enum {
    orvScaleFwdByN = 1,
    orvScaleInvByN = 2,
    orvScaleBySqrtN = 4,
    orvScaleNone = 8
};

typedef struct {
    int32_t versionMajor;
    int32_t versionMinor;
    int32_t buildMajor;
    int32_t buildMinor;
    char cpuTag[8];
    const char* libraryName;
    const char* versionText;
    const char* buildDate;
} OrvLibraryVersion;

ORVGEN_API const OrvLibraryVersion* orvgenGetLibVersion(void);

/* ---- The lists ------------------------------------------------------------------------------
 * Each list names what exists, once: the declarations below, the library's dispatch tables, its
 * export list, the tests and the benchmarks are all made of them. F is a macro of the user's.
 */

/* The lengths of a fixed-length family: F(NAME, N, T) for N = 2 to 64. */
#define ORVGEN_LENGTHS(F, NAME, T)                                                              \
    F(NAME, 2, T) F(NAME, 3, T) F(NAME, 4, T) F(NAME, 5, T) F(NAME, 6, T) F(NAME, 7, T)         \
    F(NAME, 8, T) F(NAME, 9, T) F(NAME, 10, T) F(NAME, 11, T) F(NAME, 12, T) F(NAME, 13, T)     \
    F(NAME, 14, T) F(NAME, 15, T) F(NAME, 16, T) F(NAME, 17, T) F(NAME, 18, T) F(NAME, 19, T)   \
    F(NAME, 20, T) F(NAME, 21, T) F(NAME, 22, T) F(NAME, 23, T) F(NAME, 24, T) F(NAME, 25, T)   \
    F(NAME, 26, T) F(NAME, 27, T) F(NAME, 28, T) F(NAME, 29, T) F(NAME, 30, T) F(NAME, 31, T)   \
    F(NAME, 32, T) F(NAME, 33, T) F(NAME, 34, T) F(NAME, 35, T) F(NAME, 36, T) F(NAME, 37, T)   \
    F(NAME, 38, T) F(NAME, 39, T) F(NAME, 40, T) F(NAME, 41, T) F(NAME, 42, T) F(NAME, 43, T)   \
    F(NAME, 44, T) F(NAME, 45, T) F(NAME, 46, T) F(NAME, 47, T) F(NAME, 48, T) F(NAME, 49, T)   \
    F(NAME, 50, T) F(NAME, 51, T) F(NAME, 52, T) F(NAME, 53, T) F(NAME, 54, T) F(NAME, 55, T)   \
    F(NAME, 56, T) F(NAME, 57, T) F(NAME, 58, T) F(NAME, 59, T) F(NAME, 60, T) F(NAME, 61, T)   \
    F(NAME, 62, T) F(NAME, 63, T) F(NAME, 64, T)

/* The orders of the Walsh-Hadamard family: F(NAME, K, T) for K = 1 to 13. */
#define ORVGEN_ORDERS(F, NAME, T)                                                               \
    F(NAME, 1, T) F(NAME, 2, T) F(NAME, 3, T) F(NAME, 4, T) F(NAME, 5, T) F(NAME, 6, T)         \
    F(NAME, 7, T) F(NAME, 8, T) F(NAME, 9, T) F(NAME, 10, T) F(NAME, 11, T) F(NAME, 12, T)      \
    F(NAME, 13, T)

/* The fixed-length families: F(NAME, T, LIST), with LIST the lengths that exist. */
#define ORVGEN_LENGTH_FAMILIES(F)

/* The Walsh-Hadamard families: F(NAME, T, LIST), with LIST the orders that exist. */
#define ORVGEN_ORDER_FAMILIES(F)

/* The DCT-IV families: F(T). */
#define ORVGEN_DCT4_FAMILIES(F)

#define ORVGEN_DECLARE_LENGTH(NAME, N, T) \
    ORVGEN_API OrvStatus orvg##NAME##_##N##_##T(const Orv##T* src, Orv##T* dst, int32_t flag);
#define ORVGEN_DECLARE_LENGTH_FAMILY(NAME, T, LIST) \
    LIST(ORVGEN_DECLARE_LENGTH, NAME, T)            \
    ORVGEN_API OrvStatus orvg##NAME##_##T(const Orv##T* src, Orv##T* dst, int32_t len, int32_t flag);
ORVGEN_LENGTH_FAMILIES(ORVGEN_DECLARE_LENGTH_FAMILY)

#define ORVGEN_DECLARE_ORDER(NAME, K, T)                                                      \
    ORVGEN_API OrvStatus orvg##NAME##_##K##_##T(const Orv##T* src, Orv##T* dst, int32_t flag, \
                                                uint8_t* buffer);
#define ORVGEN_DECLARE_ORDER_FAMILY(NAME, T, LIST)                                      \
    LIST(ORVGEN_DECLARE_ORDER, NAME, T)                                                 \
    ORVGEN_API OrvStatus orvg##NAME##_##T(const Orv##T* src, Orv##T* dst, int32_t order, \
                                          int32_t flag, uint8_t* buffer);               \
    ORVGEN_API OrvStatus orvg##NAME##GetBufferSize_##T(int32_t order, int32_t* size);
ORVGEN_ORDER_FAMILIES(ORVGEN_DECLARE_ORDER_FAMILY)

typedef struct OrvDCT4Spec_32f OrvDCT4Spec_32f;
typedef struct OrvDCT4Spec_64f OrvDCT4Spec_64f;

#define ORVGEN_DECLARE_DCT4_FAMILY(T)                                                              \
    ORVGEN_API OrvStatus orvgDCT4GetSize_##T(int32_t len, int32_t* size);                          \
    ORVGEN_API OrvStatus orvgDCT4Init_##T(OrvDCT4Spec_##T** spec, int32_t len, uint8_t* mem);      \
    ORVGEN_API OrvStatus orvgDCT4InitAlloc_##T(OrvDCT4Spec_##T** spec, int32_t len);               \
    ORVGEN_API OrvStatus orvgDCT4Free_##T(OrvDCT4Spec_##T* spec);                                  \
    ORVGEN_API OrvStatus orvgDCT4_##T(const Orv##T* src, Orv##T* dst, OrvDCT4Spec_##T* spec);
ORVGEN_DCT4_FAMILIES(ORVGEN_DECLARE_DCT4_FAMILY)

#ifdef __cplusplus
}
#endif

#endif
