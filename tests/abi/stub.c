/* SPDX-License-Identifier: MIT */
/* The public functions as C sees them, with empty bodies: assembly carries no types, so this is
 * what describes the binary interface. All lengths of a family are declared by one macro; the first
 * and the last stand for them here (the names of all are compared with tests/frame/exports.txt). */
#include <orvgen_batch.h>
#include <stddef.h>

#define LENGTH(NAME, N, T)                                                           \
    OrvStatus orvg##NAME##_##N##_##T(const Orv##T* src, Orv##T* dst, int32_t flag) { \
        return src == (const void*)dst ? flag : orvOk;                               \
    }
#define LENGTH_FAMILY(NAME, T, LIST)                                                        \
    LENGTH(NAME, 2, T)                                                                      \
    LENGTH(NAME, 64, T)                                                                     \
    OrvStatus orvg##NAME##_##T(const Orv##T* src, Orv##T* dst, int32_t len, int32_t flag) { \
        return src == (const void*)dst ? flag : len;                                        \
    }
ORVGEN_LENGTH_FAMILIES(LENGTH_FAMILY)

#define ORDER(NAME, K, T)                                                          \
    OrvStatus orvg##NAME##_##K##_##T(const Orv##T* src, Orv##T* dst, int32_t flag, \
                                     uint8_t* buffer) {                            \
        return src == (const void*)dst && buffer ? flag : orvOk;                   \
    }
#define ORDER_FAMILY(NAME, T, LIST)                                                         \
    ORDER(NAME, 1, T)                                                                       \
    ORDER(NAME, 13, T)                                                                      \
    OrvStatus orvg##NAME##_##T(const Orv##T* src, Orv##T* dst, int32_t order, int32_t flag, \
                               uint8_t* buffer) {                                           \
        return src == (const void*)dst && buffer ? flag : order;                            \
    }                                                                                       \
    OrvStatus orvg##NAME##GetBufferSize_##T(int32_t order, int32_t* size) { return *size = order; }
ORVGEN_ORDER_FAMILIES(ORDER_FAMILY)

#define DCT4_FAMILY(NAME, T)                                                                \
    OrvStatus orvg##NAME##GetSize_##T(int32_t len, int32_t* size) { return *size = len; }   \
    OrvStatus orvg##NAME##Init_##T(Orv##NAME##Spec_##T** spec, int32_t len, uint8_t* mem) { \
        return spec && mem ? len : orvOk;                                                   \
    }                                                                                       \
    OrvStatus orvg##NAME##InitAlloc_##T(Orv##NAME##Spec_##T** spec, int32_t len) {          \
        return spec ? len : orvOk;                                                          \
    }                                                                                       \
    OrvStatus orvg##NAME##Free_##T(Orv##NAME##Spec_##T* spec) { return spec != NULL; }      \
    OrvStatus orvg##NAME##_##T(const Orv##T* src, Orv##T* dst, Orv##NAME##Spec_##T* spec) { \
        return src == dst && spec;                                                          \
    }
ORVGEN_DCT4_FAMILIES(DCT4_FAMILY)

static const OrvLibraryVersion version;
const OrvLibraryVersion* orvgenGetLibVersion(void) { return &version; }

#define PLACES ptrdiff_t srcStride, ptrdiff_t srcDistance
#define TO_PLACES ptrdiff_t dstStride, ptrdiff_t dstDistance
#define SUM (OrvStatus)(srcStride + srcDistance + dstStride + dstDistance)
#define BATCH(NAME, T, S, D)                                                              \
    OrvStatus orvgBatch##NAME##_##T(const S* src, PLACES, D* dst, TO_PLACES, int32_t len, \
                                    size_t count, int32_t flag) {                         \
        return src == (const void*)dst ? SUM : len + flag + (int32_t)count;               \
    }
ORVGEN_BATCH_LENGTH_FAMILIES(BATCH)
#define SPLIT(NAME, T, R)                                                                  \
    OrvStatus orvgBatchSplit##NAME##_##T(const R* srcRe, const R* srcIm, PLACES, R* dstRe, \
                                         R* dstIm, TO_PLACES, int32_t len, size_t count,   \
                                         int32_t flag) {                                   \
        return srcRe == dstRe && srcIm == dstIm ? SUM : len + flag + (int32_t)count;       \
    }
ORVGEN_BATCH_SPLIT_FAMILIES(SPLIT)
#define BATCH_PLANS(T)                                                                           \
    OrvStatus orvgBatchWHT_##T(const Orv##T* src, PLACES, Orv##T* dst, TO_PLACES, int32_t order, \
                               size_t count, int32_t flag) {                                     \
        return src == dst ? SUM : order + flag + (int32_t)count;                                 \
    }                                                                                            \
    OrvStatus orvgBatchDCT4_##T(const Orv##T* src, PLACES, Orv##T* dst, TO_PLACES, int32_t len,  \
                                OrvDCT4Spec_##T* spec, size_t count) {                           \
        return src == dst && spec ? SUM : len + (int32_t)count;                                  \
    }
BATCH_PLANS(32f)
BATCH_PLANS(64f)
uint32_t orvgBatchTargets(void) { return orvTargetSSE2; }
OrvStatus orvgBatchUse(uint32_t target) { return (OrvStatus)target; }
const char* orvgBatchStatusText(OrvStatus status) { return status ? "" : "success"; }
