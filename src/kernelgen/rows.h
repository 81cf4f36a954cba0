// SPDX-License-Identifier: MIT
// A kernel for rows of complex elements: as many transforms at once as a vector has parts of 16
// bytes, one in each.
//
//     void f(const R* src, ptrdiff_t srcDistance, R* dst, ptrdiff_t dstDistance, int32_t scale,
//            size_t blocks);
//
// The elements of a transform stand side by side, those of the next one `distance` bytes behind. In
// its part of a vector each transform is what it is in the single kernel, whose instructions these
// are; nothing has to be transposed. `blocks` times, at least once, as many transforms follow as a
// vector has parts. Equal pointers and distances on both sides are harmless, any other overlap is
// not.
#pragma once

#include "compile.h"

namespace orvgen::kernelgen {

// orvgDFTFwd_CToC_16_64fc on the target avx2 is owngRowsDFTFwd_CToC_16_64fc_avx2.
std::string rowsName(const KernelName& kernel, const Target& target);

// Whether there is such a kernel: where the single one moves whole vectors of src and dst only.
bool hasRows(const Kernel& kernel);

CompiledKernel compileRows(const Kernel& kernel, const Target& target);

}  // namespace orvgen::kernelgen
