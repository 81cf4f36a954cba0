// The two families, 32-bit and 64-bit float, are one source: every file that includes this one is
// compiled once for each, with ORVGEN_DCT4_FAMILY 32 or 64.
//
//   Real                the element type
//   lanes               elements in a 16-byte vector
//   FAMILY(env1_plan)   the family's symbol of that name: owngDCT4_32fw7_env1_plan
//   EXPORTED(DCT4Init)  the family's exported symbol: orvgDCT4Init_32f
//   Spec                the plan as a caller sees it
#pragma once

#include "orvgen.h"

#if ORVGEN_DCT4_FAMILY == 32
#define ORVGEN_DCT4_NAMESPACE binary32
#define FAMILY(name) owngDCT4_32fw7_##name
#define EXPORTED(name) orvg##name##_32f
#elif ORVGEN_DCT4_FAMILY == 64
#define ORVGEN_DCT4_NAMESPACE binary64
#define FAMILY(name) owngDCT4_64fw7_##name
#define EXPORTED(name) orvg##name##_64f
#else
#error "ORVGEN_DCT4_FAMILY must be 32 or 64"
#endif

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

#if ORVGEN_DCT4_FAMILY == 32
using Real = Orv32f;
using Spec = OrvDCT4Spec_32f;
#else
using Real = Orv64f;
using Spec = OrvDCT4Spec_64f;
#endif

constexpr int vectorBytes = 16;
constexpr int lanes = vectorBytes / static_cast<int>(sizeof(Real));

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
