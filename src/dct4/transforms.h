// What the nodes env5 and env9 do alike: both run odd-frequency transforms of n points, by a kernel
// or, where n has none, by an env7 for each group of sequences. They differ in where the sequences
// stand.
#pragma once

#include "dct4/oddfrequency.h"
#include "dct4/records.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

void initTransforms(TransformNode* node, Arena* arena, std::int32_t n, std::int32_t length);

// The strides are those from sample to sample, and from component to component of the results.
std::int32_t planTransforms(TransformNode* node, std::int32_t inStride, std::int32_t outStride);

void dropTransforms(TransformNode* node);

OrvStatus runTransforms(const TransformNode& node, const SequenceWalk& walk);

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
