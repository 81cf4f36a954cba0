// SPDX-License-Identifier: MIT
// The functions of the batch library by element type instead of by name.
#pragma once

#include <orvgen_batch.h>

namespace orvgen::python {

template <class R>
struct Batches;

template <>
struct Batches<Orv32f> {
    using Complex = Orv32fc;
    using Plan = OrvDCT4Spec_32f;
    static constexpr auto complexForward = orvgBatchDFTFwd_CToC_32fc;
    static constexpr auto complexInverse = orvgBatchDFTInv_CToC_32fc;
    static constexpr auto splitForward = orvgBatchSplitDFTFwd_CToC_32f;
    static constexpr auto splitInverse = orvgBatchSplitDFTInv_CToC_32f;
    static constexpr auto realForward = orvgBatchDFTFwd_RToCCS_32f;
    static constexpr auto realInverse = orvgBatchDFTInv_CCSToR_32f;
    static constexpr auto hartley = orvgBatchHartley_32f;
    static constexpr auto hadamard = orvgBatchWHT_32f;
    static constexpr auto dct4 = orvgBatchDCT4_32f;
    static constexpr auto makePlan = orvgDCT4InitAlloc_32f;
    static constexpr auto freePlan = orvgDCT4Free_32f;
};

template <>
struct Batches<Orv64f> {
    using Complex = Orv64fc;
    using Plan = OrvDCT4Spec_64f;
    static constexpr auto complexForward = orvgBatchDFTFwd_CToC_64fc;
    static constexpr auto complexInverse = orvgBatchDFTInv_CToC_64fc;
    static constexpr auto splitForward = orvgBatchSplitDFTFwd_CToC_64f;
    static constexpr auto splitInverse = orvgBatchSplitDFTInv_CToC_64f;
    static constexpr auto realForward = orvgBatchDFTFwd_RToCCS_64f;
    static constexpr auto realInverse = orvgBatchDFTInv_CCSToR_64f;
    static constexpr auto hartley = orvgBatchHartley_64f;
    static constexpr auto hadamard = orvgBatchWHT_64f;
    static constexpr auto dct4 = orvgBatchDCT4_64f;
    static constexpr auto makePlan = orvgDCT4InitAlloc_64f;
    static constexpr auto freePlan = orvgDCT4Free_64f;
};

}  // namespace orvgen::python
