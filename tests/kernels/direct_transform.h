// SPDX-License-Identifier: MIT
// The transforms by their definitions, as direct sums in binary128: the reference for accuracy.
#pragma once

#include <vector>

#include "kernel_list.h"

namespace orvgen::test {

__extension__ typedef __float128 Quad;

#ifdef __clang__
// The C library has them, but declares them only to compilers that know the type _Float128.
extern "C" Quad acosf128(Quad);
extern "C" Quad cosf128(Quad);
extern "C" Quad sinf128(Quad);
extern "C" Quad sqrtf128(Quad);
#endif

// What kernel `k` computes of src (reals, in memory order) with scale 1; one entry for each real of
// dst. Angles are reduced exactly.
std::vector<Quad> directTransform(const ListedKernel& k, const std::vector<Quad>& src);

}  // namespace orvgen::test
