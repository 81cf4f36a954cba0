/* SPDX-License-Identifier: MIT */
/* What compiled programs hold of the headers: sizes, offsets and values of every public type,
 * enumerator and macro. The file need only compile; names.sh sees that no name is missing. */
#include <orvgen_batch.h>

#define HOLDS(condition) _Static_assert(condition, #condition)
#define IS(value, type) HOLDS(_Generic((value), type : 1, default : 0))

/* Types. */
HOLDS(sizeof(Orv32f) == 4);
HOLDS(sizeof(Orv64f) == 8);
IS((Orv32f)0, float);
IS((Orv64f)0, double);
IS((OrvStatus)0, int32_t);
HOLDS(sizeof(Orv32fc) == 8 && _Alignof(Orv32fc) == 4);
HOLDS(offsetof(Orv32fc, re) == 0 && offsetof(Orv32fc, im) == 4);
HOLDS(sizeof(Orv64fc) == 16 && _Alignof(Orv64fc) == 8);
HOLDS(offsetof(Orv64fc, re) == 0 && offsetof(Orv64fc, im) == 8);
HOLDS(sizeof(OrvLibraryVersion) == 48 && _Alignof(OrvLibraryVersion) == 8);
HOLDS(offsetof(OrvLibraryVersion, versionMajor) == 0);
HOLDS(offsetof(OrvLibraryVersion, versionMinor) == 4);
HOLDS(offsetof(OrvLibraryVersion, buildMajor) == 8);
HOLDS(offsetof(OrvLibraryVersion, buildMinor) == 12);
HOLDS(offsetof(OrvLibraryVersion, cpuTag) == 16);
HOLDS(sizeof(((OrvLibraryVersion*)0)->cpuTag) == 8);
HOLDS(offsetof(OrvLibraryVersion, libraryName) == 24);
HOLDS(offsetof(OrvLibraryVersion, versionText) == 32);
HOLDS(offsetof(OrvLibraryVersion, buildDate) == 40);
/* Plans are handed on by address only. */
IS((OrvDCT4Spec_32f*)0, struct OrvDCT4Spec_32f*);
IS((OrvDCT4Spec_64f*)0, struct OrvDCT4Spec_64f*);

/* Enumerators. */
HOLDS(orvOk == 0);
HOLDS(orvErrPlan == -5);
HOLDS(orvErrSize == -6);
HOLDS(orvErrNullPtr == -8);
HOLDS(orvErrFlag == -16);
HOLDS(orvScaleFwdByN == 1);
HOLDS(orvScaleInvByN == 2);
HOLDS(orvScaleBySqrtN == 4);
HOLDS(orvScaleNone == 8);
HOLDS(orvTargetSSE2 == 1);
HOLDS(orvTargetAVX2 == 2);
HOLDS(orvTargetAVX512 == 4);

/* Macros. */
HOLDS(ORVGEN_DCT4_MAX_LENGTH_32f == 67108864);
HOLDS(ORVGEN_DCT4_MAX_LENGTH_64f == 33554432);
HOLDS(ORVGEN_VERSION ==
      ORVGEN_VERSION_MAJOR * 10000 + ORVGEN_VERSION_MINOR * 100 + ORVGEN_VERSION_PATCH);
HOLDS(sizeof(ORVGEN_VERSION_TEXT) >= sizeof("0.0.0"));

/* The lists: how many rows, and that numbers follow one another. */
#define COUNT_NUMBER(NAME, N, T) +1
#define SUM_NUMBER(NAME, N, T) +N
HOLDS(0 ORVGEN_LENGTHS(COUNT_NUMBER, , ) == 63);
HOLDS(0 ORVGEN_LENGTHS(SUM_NUMBER, , ) == 64 * 65 / 2 - 1);
HOLDS(0 ORVGEN_ORDERS(COUNT_NUMBER, , ) == 13);
HOLDS(0 ORVGEN_ORDERS(SUM_NUMBER, , ) == 13 * 14 / 2);
#define COUNT_FAMILY(NAME, ...) +1
HOLDS(0 ORVGEN_LENGTH_FAMILIES(COUNT_FAMILY) == 18);
HOLDS(0 ORVGEN_ORDER_FAMILIES(COUNT_FAMILY) == 2);
HOLDS(0 ORVGEN_DCT4_FAMILIES(COUNT_FAMILY) == 2);
HOLDS(0 ORVGEN_BATCH_LENGTH_FAMILIES(COUNT_FAMILY) == 18);
HOLDS(0 ORVGEN_BATCH_SPLIT_FAMILIES(COUNT_FAMILY) == 4);

/* What programs may define or use in declarations. */
ORVGEN_NODISCARD ORVGEN_API OrvStatus attributesAreAccepted(void);
